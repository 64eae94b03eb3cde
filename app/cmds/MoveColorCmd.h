#pragma once
// The move family (33991, "Move Colors"): every pixel of the selected
// indexed images whose index is selected in the palette well takes one
// target index instead. The palette is not touched. CMoveColorDlg asks the
// target; the last target is remembered while the program runs. The item
// is disabled while no colour is selected. The palette well starts the
// same command with the entry the colours were dropped on as the target.

#include "app/doc/UndoableCmd.h"
#include "app/doc/UserInterface.h"

#include <array>

struct CMoveColorDlgData : CDialogData {
    int m_Target = 0;
    const char* GetDialogName() const override { return "CMoveColorDlg"; }
    std::vector<CDialogField> GetFields() override;
};

class CMoveColorCmd : public CUndoableCmd {
  public:
    // Copies the colour selection as the source mask.
    CMoveColorCmd();
    // Asks the target, unless one was preset.
    bool Init(CTavixDoc* doc) override;
    // A target known before the command starts (a drop in the palette
    // well): Init then asks nothing.
    void PresetTarget(int target) { m_Preset = target; }
    // With the target given (a drop in the palette well): no dialog.
    bool Init(CTavixDoc* doc, int target);
    std::unique_ptr<CTavixImage> FilterImage(CTavixImage* image) override;

    int GetTarget() const { return m_Target; }

  private:
    std::vector<uint8_t> m_Mask;
    int m_Target = 0;
    int m_Preset = -1;
};

class CMoveColorInfo : public CCommandInfo {
  public:
    CMoveColorInfo();
    void OnUpdate(CTavixDoc* doc, CCmdUI* ui) override;
    std::vector<std::string> GetSettingKeys() const override;
};
