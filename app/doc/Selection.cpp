#include "app/doc/Selection.h"

#include "app/doc/RangeExpression.h"

#include <algorithm>

void CSelectionModel::SetItemCount(int count) {
    m_Selected.resize(static_cast<size_t>(std::max(count, 0)), 0);
    if (m_Focus >= GetItemCount()) m_Focus = GetItemCount() - 1;
}

void CSelectionModel::InsertItems(int first, int count) {
    if (count <= 0) return;
    first = std::clamp(first, 0, GetItemCount());
    m_Selected.insert(m_Selected.begin() + first, static_cast<size_t>(count), 0);
    if (m_Focus >= first) m_Focus += count;
}

void CSelectionModel::RemoveItem(int index) {
    if (index < 0 || index >= GetItemCount()) return;
    m_Selected.erase(m_Selected.begin() + index);
    if (m_Focus > index || m_Focus >= GetItemCount()) --m_Focus;
}

void CSelectionModel::SetFocus(int index) {
    m_Focus = index >= 0 && index < GetItemCount() ? index : -1;
}

bool CSelectionModel::IsSelected(int index) const {
    return index >= 0 && index < GetItemCount() && m_Selected[static_cast<size_t>(index)];
}

void CSelectionModel::Select(int index, bool selected) {
    if (index >= 0 && index < GetItemCount()) m_Selected[static_cast<size_t>(index)] = selected;
}

void CSelectionModel::SelectAll(bool selected) {
    std::fill(m_Selected.begin(), m_Selected.end(), selected ? 1 : 0);
}

void CSelectionModel::SetSelection(const CRange& range) {
    for (int i = 0; i < GetItemCount(); ++i)
        m_Selected[static_cast<size_t>(i)] = i < range.GetSize() && range.IsSelected(i);
}

CRange CSelectionModel::GetSelection() const {
    CRange range(GetItemCount());
    for (int i = 0; i < GetItemCount(); ++i)
        if (m_Selected[static_cast<size_t>(i)]) range.SetAt(i, 1);
    return range;
}

int CSelectionModel::GetSelectedCount() const {
    return static_cast<int>(std::count(m_Selected.begin(), m_Selected.end(), 1));
}

void CSelectionModel::Invert() {
    for (uint8_t& mark : m_Selected)
        mark = !mark;
}

int CSelectionModel::NextSelected(int after) const {
    for (int i = std::max(after + 1, 0); i < GetItemCount(); ++i)
        if (m_Selected[static_cast<size_t>(i)]) return i;
    return -1;
}

int CSelectionModel::NextUnselected(int after) const {
    for (int i = std::max(after + 1, 0); i < GetItemCount(); ++i)
        if (!m_Selected[static_cast<size_t>(i)]) return i;
    return -1;
}

bool CSelectionModel::SelectByExpression(const std::string& expression,
                                         const std::vector<std::string>& names, int mode) {
    const int count = GetItemCount();
    if (!RangeExpression::Validate(expression, 0, count - 1)) return false;
    if (mode == NewSelection) SelectAll(false);
    // Removing is adding to the inverse: the matches leave the selection.
    if (mode == RemoveFromSelection) Invert();
    for (int i = 0; i < count; ++i) {
        const std::string& name =
            i < static_cast<int>(names.size()) ? names[static_cast<size_t>(i)] : std::string();
        if (RangeExpression::Match(expression, name, i)) m_Selected[static_cast<size_t>(i)] = 1;
    }
    if (mode == RemoveFromSelection) Invert();
    return true;
}
