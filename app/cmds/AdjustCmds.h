#pragma once
// The adjustment and filter families: commands that change pixel values
// but not the size of the selected images. Each runs one module through the
// filter-command runner and differs from its siblings only in the values it
// passes and how it gets them (a fixed value of its menu item, or a
// dialog). The dialogs start with the values last confirmed while the
// program runs; nothing is written to the settings store.

#include "app/doc/UndoableCmd.h"
#include "app/doc/UserInterface.h"

#include <cstdint>

// One real amount in a dialog (blur and sharpen "by an exact amount").
struct CAmountDlgData : CDialogData {
    CAmountDlgData(const char* name, double low, double high)
        : m_DlgName(name), m_Low(low), m_High(high) {}
    double m_Amount = 1.0;
    const char* GetDialogName() const override { return m_DlgName; }
    std::vector<CDialogField> GetFields() override {
        return {{"m_Amount", CDialogField::Real, &m_Amount, m_Low, m_High, "", "Amount"}};
    }

  private:
    const char* m_DlgName;
    double m_Low;
    double m_High;
};

// Runs its module with one real amount. Blur: "Blur" 1.5, "Blur More" 3.0,
// "Blur Amount..." 0.1 to 4.0 in CBlurDlg. Sharpen: "Sharpen" 8.0, "Sharpen
// More" 5.0 (the module sharpens less the larger the amount), "Sharpen
// Amount..." 0.1 to 256.0 in CSharpenDlg.
class CAmountCmd : public CUndoableCmd {
  public:
    using CUndoableCmd::Init;
    // A fixed amount: no dialog.
    virtual bool Init(CTavixDoc* doc, double amount);
    std::unique_ptr<CTavixImage> FilterImage(CTavixImage* image) override;
    double GetAmount() const { return m_Amount; }

  protected:
    double m_Amount = 0;
};

class CBlurCmd : public CAmountCmd {
  public:
    CBlurCmd();
    using CAmountCmd::Init;
    bool Init(CTavixDoc* doc) override; // the amount dialog
};

class CSharpenCmd : public CAmountCmd {
  public:
    CSharpenCmd();
    using CAmountCmd::Init;
    bool Init(CTavixDoc* doc) override;
};

struct CCBDlgData : CDialogData {
    double m_Contrast = 0;   // percent, -100 .. 100
    double m_Brightness = 0; // levels, -255 .. 255
    const char* GetDialogName() const override { return "CCBDlg"; }
    std::vector<CDialogField> GetFields() override;
};

// Contrast/Brightness through "contrast", which reads the brightness from
// its first slot and the contrast from its second.
class CCBCmd : public CUndoableCmd {
  public:
    CCBCmd();
    bool Init(CTavixDoc* doc) override;
    std::unique_ptr<CTavixImage> FilterImage(CTavixImage* image) override;
    // The values for `data`, in the module's slot order.
    static std::vector<ModuleValue> Values(const CCBDlgData& data);

  private:
    CCBDlgData m_Values;
};

struct CHSDlgData : CDialogData {
    double m_Hue = 0;        // degrees, -180 .. 180
    double m_Saturation = 0; // percent, -100 .. 100
    double m_Lightness = 0;  // percent, -100 .. 100
    const char* GetDialogName() const override { return "CHSDlg"; }
    std::vector<CDialogField> GetFields() override;
};

// Hue/Saturation through "hsl": saturation, lightness, the channel mask
// (all) and the hue, the module's slot order. The image that enters the
// document is a copy of the module's result.
class CHSCmd : public CUndoableCmd {
  public:
    CHSCmd();
    bool Init(CTavixDoc* doc) override;
    std::unique_ptr<CTavixImage> FilterImage(CTavixImage* image) override;
    static std::vector<ModuleValue> Values(const CHSDlgData& data);

  private:
    CHSDlgData m_Values;
};

struct CColorBalanceDlgData : CDialogData {
    double m_Red = 0;
    double m_Green = 0;
    double m_Blue = 0;
    int m_PreserveLuminance = 1;
    const char* GetDialogName() const override { return "CColorBalanceDlg"; }
    std::vector<CDialogField> GetFields() override;
};

// "Color Balance" keeps its menu item but does nothing yet: Init stores the
// document and declines, so the command is dropped at once and the Undo
// item is untouched. The per-image step is there for when the dialog is
// switched on.
class CColorBalanceCmd : public CUndoableCmd {
  public:
    CColorBalanceCmd();
    bool Init(CTavixDoc* doc) override;
    std::unique_ptr<CTavixImage> FilterImage(CTavixImage* image) override;

  private:
    CColorBalanceDlgData m_Values;
};

struct CGreyScaleDlgData : CDialogData {
    int m_Levels = 256;
    int m_Average = 0; // 1: plain average of red, green and blue
    const char* GetDialogName() const override { return "CGreyScaleDlg"; }
    std::vector<CDialogField> GetFields() override;
};

class CGreyScaleCmd : public CUndoableCmd {
  public:
    CGreyScaleCmd();
    bool Init(CTavixDoc* doc) override;
    std::unique_ptr<CTavixImage> FilterImage(CTavixImage* image) override;
    static std::vector<ModuleValue> Values(const CGreyScaleDlgData& data);

  private:
    CGreyScaleDlgData m_Values;
};

// Invert: no dialog, no progress window (it is quick on any selection).
class CInvertCmd : public CUndoableCmd {
  public:
    CInvertCmd();
};

// Pre-Attenuate (direction 0) and Un-Attenuate (1); no progress window.
class CAttenuateCmd : public CUndoableCmd {
  public:
    CAttenuateCmd();
    using CUndoableCmd::Init;
    virtual bool Init(CTavixDoc* doc, int direction);
    std::unique_ptr<CTavixImage> FilterImage(CTavixImage* image) override;

  private:
    int m_Direction = 0;
};

struct CCreepDlgData : CDialogData {
    int m_Amount = 1; // pixels, 1 .. 255
    const char* GetDialogName() const override { return "CCreepDlg"; }
    std::vector<CDialogField> GetFields() override;
};

// Creep grows the areas of the foreground colour (the current colour, as
// an index for indexed images and ARGB otherwise) by the amount.
class CCreepCmd : public CUndoableCmd {
  public:
    CCreepCmd();
    bool Init(CTavixDoc* doc) override;
    std::unique_ptr<CTavixImage> FilterImage(CTavixImage* image) override;
    static std::vector<ModuleValue> Values(const CCreepDlgData& data, uint32_t colour);

  private:
    CCreepDlgData m_Values;
    uint32_t m_Index = 0;
    uint32_t m_Argb = 0;
};

struct CCleanEdgeDlgData : CDialogData {
    int m_NumPixels = 1; // 0 .. 10
    int m_Operation = 0; // "Spikes and Pits,Spikes,Pits"
    const char* GetDialogName() const override { return "CCleanEdgeDlg"; }
    std::vector<CDialogField> GetFields() override;
};

// Clean Edges on the back colour, the application's current colour 4.
class CCleanEdgeCmd : public CUndoableCmd {
  public:
    CCleanEdgeCmd();
    bool Init(CTavixDoc* doc) override;
    std::unique_ptr<CTavixImage> FilterImage(CTavixImage* image) override;
    static std::vector<ModuleValue> Values(const CCleanEdgeDlgData& data, uint32_t colour);

  private:
    CCleanEdgeDlgData m_Values;
    uint32_t m_Index = 0;
    uint32_t m_Argb = 0;
};

// Outline draws a one-pixel outline in the foreground colour around the
// content of each image, without a module: every background pixel that
// touches a content pixel across or down (its four direct neighbours)
// takes the colour. Background is the fully transparent pixels (alpha 0,
// or a palette entry of alpha 0); an image without any of them takes the
// colour of its top-left pixel as background, the way sprites drawn on a
// key colour are made. The size never changes, so content at the image's
// border gets no outline beyond it.
class COutlineCmd : public CUndoableCmd {
  public:
    COutlineCmd();
    bool Init(CTavixDoc* doc) override;
    std::unique_ptr<CTavixImage> FilterImage(CTavixImage* image) override;

  private:
    uint32_t m_Index = 0;
    uint32_t m_Argb = 0xFF000000;
};
