#pragma once
// The swap family: two palette entries trade places in the selected
// indexed images. "Exchange Colors" (33992) swaps only the entries, so the
// pixels keep their indices and the two colours trade places on screen;
// "Swap Colors" (33993) renumbers the pixels as well, so the picture stays
// and only the two indices trade places.
//
// The two entries are the lowest and the highest colour selected in the
// palette well; unless exactly two are selected, CSwapColorDlg asks them
// ("&Swap:", "&With:"), starting from the saved [CSwapColorCmd] m_Index1
// (default 0) and m_Index2 (default 255). True-colour images are left as
// identical copies.

#include "app/doc/UndoableCmd.h"
#include "app/doc/UserInterface.h"

struct CSwapColorDlgData : CDialogData {
    int m_Index1 = 0;
    int m_Index2 = 255;
    const char* GetDialogName() const override { return "CSwapColorDlg"; }
    std::vector<CDialogField> GetFields() override;
};

class CSwapColorCmd : public CUndoableCmd {
  public:
    CSwapColorCmd();
    using CUndoableCmd::Init;
    virtual bool Init(CTavixDoc* doc, bool swapPixels);
    std::unique_ptr<CTavixImage> FilterImage(CTavixImage* image) override;

    int GetIndex1() const { return m_Index1; }
    int GetIndex2() const { return m_Index2; }

  private:
    int m_Index1;
    int m_Index2;
    bool m_bSwapPixels = false;
};

class CSwapColorInfo : public CCommandInfo {
  public:
    CSwapColorInfo();
    bool IsCommand(unsigned nID) const override;
    void Create(CTavixDoc* doc, unsigned nID) override;
    std::vector<std::string> GetSettingKeys() const override;
};
