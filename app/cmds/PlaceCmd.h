#pragma once
// CPlaceCmd: the shared base of the placement families (align, centre,
// space). They change only where images sit on the worksheet (their
// default point): each step copies the image and sets the copy's position,
// so undo is the runner's swap of whole images. No progress window, no
// format check.

#include "app/doc/UndoableCmd.h"

#include "mfx/Geometry.h"

class CPlaceCmd : public CUndoableCmd {
  public:
    CPlaceCmd();
    std::unique_ptr<CTavixImage> FilterImage(CTavixImage* image) override;

  protected:
    // The new worksheet position of `image`.
    virtual CPoint NewPosition(const CTavixImage& image) const = 0;
};
