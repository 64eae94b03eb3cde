#pragma once
// Moving the selected images on the worksheet by hand (a drag, or the
// arrow keys nudging by 1 or, with Shift, by 8 worksheet pixels): one
// undoable "Move Images" command per drag or key press that shifts each
// selected image's default point by the same amount. The worksheet view
// starts it; it has no menu item.

#include "app/cmds/PlaceCmd.h"

class CNudgeImagesCmd : public CPlaceCmd {
  public:
    CNudgeImagesCmd(int dx, int dy);

  protected:
    CPoint NewPosition(const CTavixImage& image) const override;

  private:
    int m_Dx, m_Dy;
};
