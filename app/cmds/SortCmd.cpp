#include "app/cmds/SortCmd.h"

#include "app/cmds/ListEdit.h"
#include "app/doc/CommandIds.h"
#include "app/doc/TavixDoc.h"

#include <algorithm>
#include <cstring>
#include <numeric>

namespace {

constexpr int kSortByName = 1;

int compareNames(const std::string& a, const std::string& b) {
    return memcmp(a.data(), b.data(), std::min(a.size(), b.size()));
}

} // namespace

std::vector<int> SortedOrder(const std::vector<std::string>& names, int key, bool ascending) {
    std::vector<int> order(names.size());
    std::iota(order.begin(), order.end(), 0);
    if (key == kSortByName)
        std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
            return compareNames(names[static_cast<size_t>(a)], names[static_cast<size_t>(b)]) < 0;
        });
    if (!ascending) std::reverse(order.begin(), order.end());
    return order;
}

CSortCmd::CSortCmd() {
    m_Name = "Sort Images";
}

void CSortCmd::Do() {
    const int key = GetProfileInt("CImageListView", "m_SortKey", kSortByName);
    const bool ascending = GetProfileInt("CImageListView", "m_SortAscending", 1) != 0;
    const int count = m_pDoc->GetImageCount();
    std::vector<std::string> names;
    std::vector<uint8_t> selected;
    for (int i = 0; i < count; ++i) {
        names.push_back(m_pDoc->GetImageAt(i)->GetName());
        selected.push_back(m_pDoc->GetSelectionModel().IsSelected(i) ? 1 : 0);
    }
    std::vector<CTavixImage*> images;
    std::vector<uint8_t> marks;
    for (int index : SortedOrder(names, key, ascending)) {
        images.push_back(m_pDoc->GetImageAt(index));
        marks.push_back(selected[static_cast<size_t>(index)]);
    }
    ReorderImages(m_pDoc, images, marks);
}

CSortInfo::CSortInfo() : CCommandInfo(ID_LIST_SORT, [] { return new CSortCmd; }) {}

std::vector<std::string> CSortInfo::GetSettingKeys() const {
    return {"CImageListView/m_SortKey", "CImageListView/m_SortAscending"};
}

namespace {
CSortInfo g_sortInfo;
} // namespace
