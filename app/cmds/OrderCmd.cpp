#include "app/cmds/OrderCmd.h"

#include "app/cmds/ListEdit.h"
#include "app/doc/CommandIds.h"
#include "app/doc/TavixDoc.h"

#include <climits>
#include <utility>

template <typename T>
bool OrderStep(std::vector<T>& items, std::vector<uint8_t>& marks, bool towardStart) {
    const int n = static_cast<int>(items.size());
    if (n == 0) return false;
    bool moved = false;
    if (towardStart) {
        if (marks[0]) return false;
        for (int i = 1; i < n; ++i) {
            if (!marks[static_cast<size_t>(i)] || marks[static_cast<size_t>(i - 1)]) continue;
            std::swap(items[static_cast<size_t>(i)], items[static_cast<size_t>(i - 1)]);
            std::swap(marks[static_cast<size_t>(i)], marks[static_cast<size_t>(i - 1)]);
            moved = true;
        }
    } else {
        if (marks[static_cast<size_t>(n - 1)]) return false;
        for (int i = n - 2; i >= 0; --i) {
            if (!marks[static_cast<size_t>(i)] || marks[static_cast<size_t>(i + 1)]) continue;
            std::swap(items[static_cast<size_t>(i)], items[static_cast<size_t>(i + 1)]);
            std::swap(marks[static_cast<size_t>(i)], marks[static_cast<size_t>(i + 1)]);
            moved = true;
        }
    }
    return moved;
}

template bool OrderStep<CTavixImage*>(std::vector<CTavixImage*>&, std::vector<uint8_t>&, bool);
template bool OrderStep<int>(std::vector<int>&, std::vector<uint8_t>&, bool);

COrderCmd::COrderCmd() {
    m_Name = "Ordering";
}

bool COrderCmd::Init(CTavixDoc* doc, int operation) {
    m_pDoc = doc;
    m_Operation = operation;
    doc->GetSelectionMask(m_Range);
    Submit();
    return true;
}

void COrderCmd::Do() {
    m_Images.assign(m_pDoc->GetImages().begin(), m_pDoc->GetImages().end());
    std::vector<uint8_t> marks(m_Images.size());
    for (size_t i = 0; i < marks.size(); ++i)
        marks[i] = m_Range.IsSelected(static_cast<int32_t>(i)) ? 1 : 0;
    const bool towardStart =
        m_Operation == BringForward || m_Operation == BringToFront || m_Operation == MoveUpFive;
    int steps = 1;
    if (m_Operation == MoveUpFive || m_Operation == MoveDownFive) steps = 5;
    if (m_Operation == BringToFront || m_Operation == SendToBottom) steps = INT_MAX;
    for (int k = 0; k < steps && OrderStep(m_Images, marks, towardStart); ++k) {
    }
    for (size_t i = 0; i < marks.size(); ++i)
        m_Range.SetAt(static_cast<int32_t>(i), marks[i]);
    ReorderImages(m_pDoc, m_Images, marks);
}

COrderInfo::COrderInfo() : CCommandInfo(ID_ORDER_BRING_FORWARD) {}

bool COrderInfo::IsCommand(unsigned nID) const {
    return nID >= ID_ORDER_BRING_FORWARD && nID <= ID_ORDER_MOVE_DOWN_FIVE;
}

void COrderInfo::Create(CTavixDoc* doc, unsigned nID) {
    const int operation = static_cast<int>(nID - ID_ORDER_BRING_FORWARD);
    Start(doc, new COrderCmd, [doc, operation](CCommand* cmd) {
        return static_cast<COrderCmd*>(cmd)->Init(doc, operation);
    });
}

namespace {
COrderInfo g_orderInfo;
} // namespace
