#pragma once
// A plain form for a dialog that has no window of its own: one row per
// field of its data (spin boxes for numbers, a list for choices, a line for
// text) with OK and Cancel.

class CDialogData;
class QDialog;
class QWidget;

// True on OK, with the fields written back; false on Cancel. Values the
// data refuses (CDialogData::Validate) keep the form open with the reason;
// data with a preview gets the before/after pane beside the fields.
bool RunFieldForm(CDialogData& data, QWidget* parent);
// Fills `dialog` with the form of `data` without running it (for tests and
// screenshots).
void BuildFieldForm(QDialog& dialog, CDialogData& data);
