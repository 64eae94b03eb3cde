#pragma once
// The set-palette family: palette entries of one image are copied into
// other images; pixels keep their indices. CSetPaletteDlg asks:
//   "Get palette from shape index:"  m_ShapeIndex, 1 to the number of
//                                    images, or 0 for the focused image;
//   "All Colors"                     m_AllColors, 1 = every entry;
//   "Colors to set:"                 m_Colors, a colour list naming the
//                                    entries to copy when m_AllColors is 0:
//                                    indexes and ranges separated by commas,
//                                    e.g. "0-15, 32, 40-47" (at most 255
//                                    characters). Other entries keep their
//                                    colours.
// m_AllColors and m_Colors are saved under [CSetPaletteCmd].
//
// "Set Palette to Selected" (35006) sets the selected images, "Set Palette
// to All" (35007) every image; both leave true-colour images as identical
// copies. "Attach Palette" (35300) sets the selected images and also
// stores the palette in the record of true-colour ones, for formats that
// keep a palette beside deep pixels. The source must be indexed.

#include "app/cmds/PaletteOps.h"
#include "app/doc/UndoableCmd.h"
#include "app/doc/UserInterface.h"

#include <string>

struct CSetPaletteDlgData : CDialogData {
    int m_ShapeIndex = 0;
    int m_AllColors = 1;
    std::string m_Colors;
    int m_ImageCount = 0; // the top of m_ShapeIndex
    const char* GetDialogName() const override { return "CSetPaletteDlg"; }
    std::vector<CDialogField> GetFields() override;
};

class CSetPaletteCmd : public CUndoableCmd {
  public:
    enum Target { Selected, All, Attach };

    CSetPaletteCmd();
    using CUndoableCmd::Init;
    virtual bool Init(CTavixDoc* doc, int target);
    std::unique_ptr<CTavixImage> FilterImage(CTavixImage* image) override;

  private:
    int m_Target = Selected;
    TavixColour m_Palette[256] = {};
    palette_ops::Flags m_Entries{};
};

class CSetPaletteInfo : public CCommandInfo {
  public:
    CSetPaletteInfo();
    bool IsCommand(unsigned nID) const override;
    void Create(CTavixDoc* doc, unsigned nID) override;
    std::vector<std::string> GetSettingKeys() const override;
};
