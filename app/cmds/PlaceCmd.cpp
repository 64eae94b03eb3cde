#include "app/cmds/PlaceCmd.h"

#include "app/doc/TavixImage.h"

CPlaceCmd::CPlaceCmd() {
    m_bShowProgress = false;
    m_bCheckFormat = false;
    // Only attributes change: views need not rebuild the images' bitmaps.
    m_Hint.m_Flag = 1;
}

std::unique_ptr<CTavixImage> CPlaceCmd::FilterImage(CTavixImage* image) {
    std::unique_ptr<CTavixImage> copy = image->Duplicate();
    if (copy) copy->SetDefaultPoint(NewPosition(*image));
    return copy;
}
