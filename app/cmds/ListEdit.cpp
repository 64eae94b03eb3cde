#include "app/cmds/ListEdit.h"

#include "app/doc/CRange.h"
#include "app/doc/TavixDoc.h"

#include <algorithm>

int InsertImageAt(CTavixDoc* doc, int position, std::unique_ptr<CTavixImage> image) {
    // The document inserts after the image at the index it is given.
    const int taken = doc->InsertImage(position - 1, image.get());
    image.release();
    return taken;
}

std::vector<int> MarkedPositions(const CRange& range) {
    std::vector<int> positions;
    for (int i = 0; i < range.GetSize(); ++i)
        if (range.IsSelected(i)) positions.push_back(i);
    return positions;
}

void ReorderImages(CTavixDoc* doc, const std::vector<CTavixImage*>& order,
                   const std::vector<uint8_t>& marks) {
    CTavixImage* focused = doc->GetFocusImage();
    doc->SetImages(static_cast<int>(order.size()), order.data(), false);
    CRange selection(static_cast<int32_t>(marks.size()));
    for (size_t i = 0; i < marks.size(); ++i)
        selection.SetAt(static_cast<int32_t>(i), marks[i]);
    doc->GetSelectionModel().SetSelection(selection);
    auto at = std::find(order.begin(), order.end(), focused);
    if (focused && at != order.end()) doc->SetFocus(static_cast<int>(at - order.begin()), false);
    doc->UpdateAllViews(nullptr);
}
