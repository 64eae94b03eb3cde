#pragma once
// Colour reduction ("Color Reduction"): changes the colour depth of the
// selected images, either to a palette format (8, 4 or 1 bits per pixel)
// through one of the colour quantizers (imaging/quant), or to a true-colour
// layout with given bits per channel (8888, 888, 565, 1555, 0555, 4444 or
// any other combination).
//
// IDs: the Format items 35065 (4-bit), 35066 (8-bit), 35067 (1555),
// 35068 (565), 35069 (8888), 35080 (888) and 35081 (0555) set their depth
// and keep the other saved choices; 3683 "Change color depth of current
// image" applies the saved choices as they stand (the colour reduction
// toolbar's lists write them); 35005 runs the "Color Remap Wizard".
//
// A palette reduction makes one palette for all selected images (Shared
// Palette), one per image (Unique Palettes), or maps onto the focused
// image's palette (Existing Palette). It runs through the filter-command
// runner, so Undo swaps the original images back.

#include "app/doc/UndoableCmd.h"
#include "app/doc/UserInterface.h"

#include <cstdint>

// The labels of the values the command keeps, in value order: the
// toolbar's lists and the wizard's pages show them.
inline constexpr const char* kColRedDitherNames[] = {"None", "Floyd", "Burkes", "Stucki"};
inline constexpr const char* kColRedOperationNames[] = {"Shared Palette", "Unique Palettes",
                                                        "Existing Palette"};

// The wizard's values (section "CColRedWiz" for zytool command): the first
// page's reduction type, the palette page and the true-colour page.
struct CColRedWizData : CDialogData {
    int m_Type = 0; // 0 palette format, 1 true-colour format
    // Palette page.
    int m_Depth = 0;     // 0: 8 bits (256 colours), 1: 4 bits (16), 2: 1 bit (2)
    int m_PalDither = 0; // kColRedDitherNames
    int m_Method = 0;    // position in the method list: quantizer index - 1
    int m_Colours = 256;
    int m_Start = 0;
    int m_Operation = 0; // kColRedOperationNames
    int m_ExactFirst = 0;
    // True-colour page.
    int m_TrueDither = 0;
    int m_ABits = 8, m_RBits = 8, m_GBits = 8, m_BBits = 8;

    const char* GetDialogName() const override { return "CColRedWiz"; }
    std::vector<CDialogField> GetFields() override;
};

// The largest colour count a palette depth can hold (256, 16 or 2).
int ColRedMaxColours(int depthChoice);
// True for the null quantizer's entries, which make no palette.
bool ColRedIsNullQuantizer(int index);

class CColRedCmd : public CUndoableCmd {
  public:
    // Reads the saved choices from section "CColRedCmd".
    CColRedCmd();
    ~CColRedCmd() override;
    using CUndoableCmd::Init;
    // Sets the values of menu ID `nID`, copies the selection and submits;
    // false when the user cancels the wizard or the values cannot work.
    virtual bool Init(CTavixDoc* doc, unsigned nID);
    void Do() override;
    std::unique_ptr<CTavixImage> FilterImage(CTavixImage* image) override;

    int GetType() const { return m_ColRedType; }
    int GetMethod() const { return m_Method; }
    int GetOperation() const { return m_Operation; }
    int GetBpp() const { return m_Bpp; }
    int GetColourCount() const { return m_ColourCount; }
    // The quantizer the last palette was made with (Exact when exact first
    // found few enough colours).
    int GetUsedMethod() const { return m_UsedMethod; }

  private:
    bool RunWizard();
    // Refuses values that cannot give a result, with a message naming why.
    bool CheckValues();
    // A palette from a method that works on colour alone would make the
    // selection's transparent pixels opaque: a chosen method is refused with
    // a message, a menu item's saved one gives way to Tw. False to refuse.
    bool KeepAlpha(bool methodChosen);
    // Makes the command's palette from `images` with the chosen method
    // (Exact first when asked and few enough colours); false when the
    // quantizer made nothing or the user cancelled.
    bool BuildPalette(const std::vector<CTavixImage*>& images, bool showProgress);
    int CountColours(const std::vector<CTavixImage*>& images, int limit) const;
    std::unique_ptr<CTavixImage> ToPalette(CTavixImage* image);
    std::unique_ptr<CTavixImage> ToTrueColour(CTavixImage* image) const;

    int m_ColRedType;
    int m_Dither;
    int m_Method;
    int m_Bpp;
    int m_StartColour = 0;
    int m_ColourCount = 256;
    int m_ExactFirst;
    int m_ABits, m_RBits, m_GBits, m_BBits;
    int m_Operation;
    int m_UsedMethod = 0;
    bool m_PaletteFailed = false;
    bool m_Cancelled = false;
    uint32_t m_Palette[256] = {}; // 0xAARRGGBB
    uint8_t m_Used[256] = {};
};

class CColRedInfo : public CCommandInfo {
  public:
    CColRedInfo();
    bool IsCommand(unsigned nID) const override;
    void Create(CTavixDoc* doc, unsigned nID) override;
    std::vector<std::string> GetSettingKeys() const override;
};

// The reduction type kept between wizard runs in this process.
int ColRedLastType();
