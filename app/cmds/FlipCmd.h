#pragma once
// The flip family: "Flip Horizontal" (35024) and "Flip Vertical" (35025)
// run the module "flip" over the selected images. No dialog, nothing saved.

#include "app/doc/Command.h"
#include "app/doc/UndoableCmd.h"

class CFlipCmd : public CUndoableCmd {
  public:
    enum Direction { None = 0, Horizontal = 1, Vertical = 2 };

    CFlipCmd();
    using CUndoableCmd::Init;
    // Takes the direction, copies the selection and submits.
    virtual bool Init(CTavixDoc* doc, int direction);
    std::unique_ptr<CTavixImage> FilterImage(CTavixImage* image) override;

    int GetDirection() const { return m_Direction; }

  private:
    int m_Direction = None;
};

class CFlipInfo : public CCommandInfo {
  public:
    CFlipInfo();
    bool IsCommand(unsigned nID) const override;
    void Create(CTavixDoc* doc, unsigned nID) override;
};
