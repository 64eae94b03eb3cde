#pragma once
// The spacing family: "Space Across" (35284) and "Space Down" (35285)
// spread three or more selected images evenly along one axis.
//
// The gap rule: the images are taken in the order of their current
// coordinate on the axis (list order among equals). The first keeps its
// place and so does the far edge of the last; the others are moved so that
// the gaps between neighbouring images (from one image's far edge to the
// next one's near edge) are equal. The total gap is split by integer
// division and the pixels left over widen the first gaps by one each, so
// the last image ends exactly where it did. Images wider than the space
// between the ends overlap by equal amounts (negative gaps).

#include "app/cmds/PlaceCmd.h"
#include "app/doc/Command.h"

#include <utility>
#include <vector>

class CSpaceCmd : public CPlaceCmd {
  public:
    enum Axis { Across = 1, Down = 2 };

    CSpaceCmd();
    using CUndoableCmd::Init;
    // False (the command is dropped) with fewer than 3 selected images.
    virtual bool Init(CTavixDoc* doc, int axis);

  protected:
    CPoint NewPosition(const CTavixImage& image) const override;

  private:
    int m_Axis = Across;
    // Each selected image and its new coordinate, in list order.
    std::vector<std::pair<const CTavixImage*, int>> m_Table;
};

class CSpaceInfo : public CCommandInfo {
  public:
    CSpaceInfo();
    bool IsCommand(unsigned nID) const override;
    void Create(CTavixDoc* doc, unsigned nID) override;
};

// The spaced near-edge coordinates of items at `starts` with `lengths`
// along one axis, in the same order.
std::vector<int> SpacedCoordinates(const std::vector<int>& starts, const std::vector<int>& lengths);
