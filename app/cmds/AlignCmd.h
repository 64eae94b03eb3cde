#pragma once
// The align family: "Align Left" (35280), "Align Right" (35281), "Align
// Top" (35282) and "Align Bottom" (35283) line the selected images' edges
// up with the same edge of the focused image, which keeps its place.

#include "app/cmds/PlaceCmd.h"
#include "app/doc/Command.h"

class CAlignCmd : public CPlaceCmd {
  public:
    enum Side { Top = 1, Bottom = 2, Left = 3, Right = 4 };

    CAlignCmd();
    using CUndoableCmd::Init;
    // Takes the side, copies the selection, reads the target edge from the
    // focused image and submits.
    virtual bool Init(CTavixDoc* doc, int side);

  protected:
    CPoint NewPosition(const CTavixImage& image) const override;

  private:
    int m_Side = Left;
    int m_Target = 0;
};

class CAlignInfo : public CCommandInfo {
  public:
    CAlignInfo();
    bool IsCommand(unsigned nID) const override;
    void Create(CTavixDoc* doc, unsigned nID) override;
};
