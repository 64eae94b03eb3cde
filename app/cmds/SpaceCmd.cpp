#include "app/cmds/SpaceCmd.h"

#include "app/cmds/ListEdit.h"
#include "app/doc/CommandIds.h"
#include "app/doc/TavixDoc.h"

#include <algorithm>
#include <numeric>

std::vector<int> SpacedCoordinates(const std::vector<int>& starts,
                                   const std::vector<int>& lengths) {
    const size_t n = starts.size();
    std::vector<int> result(starts);
    if (n < 3) return result;
    std::vector<size_t> order(n);
    std::iota(order.begin(), order.end(), size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [&](size_t a, size_t b) { return starts[a] < starts[b]; });
    const int64_t first = starts[order.front()];
    const int64_t end = static_cast<int64_t>(starts[order.back()]) + lengths[order.back()];
    int64_t occupied = 0;
    for (int length : lengths)
        occupied += length;
    const int64_t gaps = static_cast<int64_t>(n) - 1;
    const int64_t free = end - first - occupied;
    // Floor division, so that the remainder is never negative.
    int64_t gap = free / gaps;
    int64_t extra = free % gaps;
    if (extra < 0) {
        gap -= 1;
        extra += gaps;
    }
    int64_t at = first;
    for (size_t k = 0; k < n; ++k) {
        result[order[k]] = static_cast<int>(at);
        at += lengths[order[k]] + gap + (static_cast<int64_t>(k) < extra ? 1 : 0);
    }
    return result;
}

CSpaceCmd::CSpaceCmd() {
    m_Name = "Spacing";
}

bool CSpaceCmd::Init(CTavixDoc* doc, int axis) {
    m_pDoc = doc;
    m_Axis = axis;
    CopySelection();
    const std::vector<int> positions = MarkedPositions(m_Range);
    if (positions.size() < 3) return false;
    std::vector<int> starts, lengths;
    for (int position : positions) {
        const CTavixImage* image = doc->GetImageAt(position);
        const CRect place = image->GetPlacementRect();
        starts.push_back(axis == Across ? place.left : place.top);
        lengths.push_back(axis == Across ? place.Width() : place.Height());
    }
    const std::vector<int> spaced = SpacedCoordinates(starts, lengths);
    for (size_t k = 0; k < positions.size(); ++k)
        m_Table.emplace_back(doc->GetImageAt(positions[k]), spaced[k]);
    Submit();
    return true;
}

CPoint CSpaceCmd::NewPosition(const CTavixImage& image) const {
    auto entry = std::find_if(m_Table.begin(), m_Table.end(),
                              [&](const auto& e) { return e.first == &image; });
    const int coordinate = entry != m_Table.end() ? entry->second : m_Table.front().second;
    CPoint point = image.GetDefaultPoint();
    (m_Axis == Across ? point.x : point.y) = coordinate;
    return point;
}

CSpaceInfo::CSpaceInfo() : CCommandInfo(ID_SPACE_ACROSS) {}

bool CSpaceInfo::IsCommand(unsigned nID) const {
    return nID == ID_SPACE_ACROSS || nID == ID_SPACE_DOWN;
}

void CSpaceInfo::Create(CTavixDoc* doc, unsigned nID) {
    const int axis = nID == ID_SPACE_ACROSS ? CSpaceCmd::Across : CSpaceCmd::Down;
    Start(doc, new CSpaceCmd,
          [doc, axis](CCommand* cmd) { return static_cast<CSpaceCmd*>(cmd)->Init(doc, axis); });
}

namespace {
CSpaceInfo g_spaceInfo;
} // namespace
