#pragma once
// The blend family (35263, "Blend Images"): lays the selected images over
// each other in list order, the first at the bottom, with the method chosen
// in CBlendMethodDlg (saved as [CBlendCmd] blendmethod), and adds the
// result as a new image at the end of the list. A psnr blend leaves the
// images as they are and reports how far each image is from the layers
// below it: the ratios go to the status bar and the log. It cannot be
// undone.

#include "app/doc/CRange.h"
#include "app/doc/Command.h"
#include "app/doc/UserInterface.h"

struct CBlendMethodDlgData : CDialogData {
    int m_Method = 0;
    const char* GetDialogName() const override { return "CBlendMethodDlg"; }
    std::vector<CDialogField> GetFields() override;
};

class CBlendCmd : public CCommand {
  public:
    CBlendCmd();
    bool Init(CTavixDoc* doc) override;
    void Do() override;

  private:
    CRange m_Range;
};

class CBlendInfo : public CCommandInfo {
  public:
    CBlendInfo();
    // Enabled for two or more selected images.
    void OnUpdate(CTavixDoc* doc, CCmdUI* ui) override;
    std::vector<std::string> GetSettingKeys() const override;
};
