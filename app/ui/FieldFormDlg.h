#pragma once
// A plain form for a dialog that has no window of its own: one row per
// field of its data (spin boxes for numbers, a list for choices, a line for
// text) with OK and Cancel.

class CDialogData;
class QWidget;

// True on OK, with the fields written back; false on Cancel.
bool RunFieldForm(CDialogData& data, QWidget* parent);
