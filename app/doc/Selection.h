#pragma once
// The selection and the focused image of one document. The shape list view
// shows and edits this object; the document and the commands read it, so
// that commands run without a window exactly as they run with one.
//
// The document keeps the item count in step with its image list: inserted
// items arrive unselected, removed items take their marks with them, and
// the focus stays on the same image where it can.

#include "app/doc/CRange.h"

#include <string>
#include <vector>

class CSelectionModel {
  public:
    int GetItemCount() const { return static_cast<int>(m_Selected.size()); }
    // Grows with unselected items or cuts the tail.
    void SetItemCount(int count);
    // `count` unselected items before position `first` (clamped to the ends).
    void InsertItems(int first, int count);
    void RemoveItem(int index);

    // The focused item as the view holds it; -1 when none.
    int GetFocus() const { return m_Focus; }
    // Index out of range is kept as -1 (no focus).
    void SetFocus(int index);

    bool IsSelected(int index) const;
    void Select(int index, bool selected = true);
    void SelectAll(bool selected = true);
    // Takes the marks of `range` (its size need not match; missing entries
    // are unselected).
    void SetSelection(const CRange& range);
    // One byte per item, 1 = selected.
    CRange GetSelection() const;
    int GetSelectedCount() const;
    // Every selected item becomes unselected and every other one selected.
    void Invert();
    // The first selected (unselected) item after `after`; -1 when none.
    int NextSelected(int after) const;
    int NextUnselected(int after) const;
    int FirstSelected() const { return NextSelected(-1); }
    int FirstUnselected() const { return NextUnselected(-1); }

    // How a range expression changes the selection.
    enum ExpressionMode { NewSelection = 0, AddToSelection = 1, RemoveFromSelection = 2 };
    // Selects the items whose index and name (`names[i]`) the range
    // expression matches, in `mode`. False, with the selection unchanged,
    // when a bound of the expression lies outside the items.
    bool SelectByExpression(const std::string& expression, const std::vector<std::string>& names,
                            int mode);

  private:
    std::vector<uint8_t> m_Selected;
    int m_Focus = -1;
};
