#pragma once
// The colour reduction toolbar's lists: reduction type, channel layout,
// palette depth, palette operation and dither. Each writes its value to
// the colour reduction command's saved choices (section "CColRedCmd"), and
// the bar's "Change Color Depth" button (3683) applies them to the
// selected images.

class QAction;
class QToolBar;

// Appends the five lists to `bar`, then `apply` (the Change Color Depth
// action) when there is one.
void AddColRedToolbarLists(QToolBar* bar, QAction* apply);
// Shows the saved choices again (the wizard may have changed them).
void RefreshColRedToolbarLists(QToolBar* bar);
