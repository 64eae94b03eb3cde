#pragma once
// The layout wizard ("Layout Wizard", 35127): places shapes into a
// rectangle of texture memory with the image library's texture-page packer
// and moves each shape there (its default point is its position on the
// worksheet). Shapes the packer turns are turned by 90 degrees. Shapes that
// do not fit go along y = 512 and the user is told so.
//
// The nine settings live in section "CLayoutCmd". One undo puts every shape
// back where it was, turned shapes included.

#include "app/doc/CRange.h"
#include "app/doc/Command.h"
#include "app/doc/UserInterface.h"
#include "mfx/Geometry.h"

#include <iterator>
#include <memory>
#include <vector>

class CTavixImage;

// A target platform of the wizard: the texture page its hardware samples
// in one piece. Pages tile texture memory from (0, 0).
struct CLayoutPlatform {
    const char* m_Name;
    int m_PageWidth; // 0: no pages
    int m_PageHeight;
};
// Each page is the largest texture the hardware samples in one piece; the
// small generic pages serve engines that atlas into tiles of their own.
inline constexpr CLayoutPlatform kLayoutPlatforms[] = {
    {"PC (no texture pages)", 0, 0},
    {"PlayStation (256 x 256 pages)", 256, 256},
    {"PlayStation 2 (1024 x 1024 pages)", 1024, 1024},
    {"GameCube (1024 x 1024 pages)", 1024, 1024},
    {"Xbox (4096 x 4096 pages)", 4096, 4096},
    {"64 x 64 pages", 64, 64},
    {"128 x 128 pages", 128, 128},
};
inline constexpr int kLayoutPlatformCount = static_cast<int>(std::size(kLayoutPlatforms));

// The values the "Layout Wizard" dialog edits.
struct CLayoutDlgData : CDialogData {
    int m_X = 0;
    int m_Y = 0;
    int m_Width = 256;
    int m_Height = 256;
    int m_Rotate = 0;     // "Shapes can be rotated"
    int m_Platform = 0;   // index in kLayoutPlatforms
    int m_CheckUVs = 1;   // "Respect Texture Pages"
    int m_CheckEdges = 1; // "Check Texture Page Edges"
    int m_AllShapes = 1;  // "Layout all shapes in file"
    const char* GetDialogName() const override { return "CLayoutDlg"; }
    std::vector<CDialogField> GetFields() override;
};

class CLayoutCmd : public CCommand {
  public:
    // Reads the settings from the profile.
    CLayoutCmd();
    ~CLayoutCmd() override;
    // Shows the dialog, saves the nine settings and submits; false on Cancel.
    bool Init(CTavixDoc* doc) override;
    void Do() override;
    void Undo() override;
    void Redo() override;

    const CLayoutDlgData& GetSettings() const { return m_Settings; }

  private:
    // One shape the command moved. A turned shape is a new image object:
    // m_Other holds whichever of the two is out of the document.
    struct CMove {
        int m_Position;
        CPoint m_Before;
        CPoint m_After;
        std::unique_ptr<CTavixImage> m_Other;
    };
    void Swap(bool toAfter);
    std::unique_ptr<CTavixImage> Turn(const CTavixImage& image);

    CLayoutDlgData m_Settings;
    CRange m_Range;
    std::vector<CMove> m_Moves;
    int m_RotModule = -1; // -1: not tried yet; 0: "rot" cannot turn, use our own
};

class CLayoutInfo : public CCommandInfo {
  public:
    CLayoutInfo();
    std::vector<std::string> GetSettingKeys() const override;
};

// A copy of `image` turned a quarter clockwise: pixels, centre point and hot
// spots. Throws CMemoryException.
std::unique_ptr<CTavixImage> TurnQuarterClockwise(const CTavixImage& image);
