#pragma once
// The centre family: "Center Vertical" (35289) centres the selected images
// vertically on the worksheet's screen area, "Center Horizontal" (35290)
// horizontally. The screen size is the worksheet's ([CImageView]
// m_ScreenWidth, m_ScreenHeight).

#include "app/cmds/PlaceCmd.h"
#include "app/doc/Command.h"

class CCenterCmd : public CPlaceCmd {
  public:
    enum Axis { Horizontal = 1, Vertical = 2 };

    CCenterCmd();
    using CUndoableCmd::Init;
    virtual bool Init(CTavixDoc* doc, int axis);

  protected:
    CPoint NewPosition(const CTavixImage& image) const override;

  private:
    int m_Axis = Horizontal;
    int m_ScreenExtent = 0;
};

class CCenterInfo : public CCommandInfo {
  public:
    CCenterInfo();
    bool IsCommand(unsigned nID) const override;
    void Create(CTavixDoc* doc, unsigned nID) override;
    std::vector<std::string> GetSettingKeys() const override;
};
