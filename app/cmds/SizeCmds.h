#pragma once
// The size families: "Image Size" (CImageSizeCmd, 35029) scales the
// selected images; the canvas family (CCanvasSizeCmd) cuts or grows their
// canvas without scaling: "Canvas Size" (35010) to a rectangle or by
// amounts cut from each side, "Shrink To Fit" (35011) to the used area and
// "Enlarge Canvas" (35012) to a larger size around a 3 x 3 anchor.

#include "app/doc/UndoableCmd.h"
#include "app/doc/UserInterface.h"

#include <string>

// The Image Size dialog's values. The dialog converts the values itself
// when the operation or a unit changes, against the focused image's size.
struct CImageSizeDlgData : CDialogData {
    enum Operation { Absolute = 0, Relative = 1 };
    enum Unit { Pixels = 0, Percent = 1 };
    enum Constraint { NoConstraint = 0, CalculateWidth = 1, CalculateHeight = 2 };
    static constexpr const char* kFilters =
        "Off,Lanczos3,Mitchell,Cubic,Linear,Point,Bell,B-Spline,Quadratic";

    int m_Operation = Absolute;
    double m_Width = 100;
    double m_Height = 100;
    int m_WidthUnit = Percent;
    int m_HeightUnit = Percent;
    int m_Constraint = NoConstraint;
    int m_Filter = 0;         // 0 off, otherwise the "size" filter number plus 1
    double m_Sharpness = 100; // shown 0 .. 100; the command keeps 0 .. 1
    int m_Transparency = 0;   // "Interpolate transparency"
    // The focused image's size, for the conversions and limits; 0 for none.
    int m_CurrentWidth = 0;
    int m_CurrentHeight = 0;

    const char* GetDialogName() const override { return "CImageSizeDlg"; }
    std::vector<CDialogField> GetFields() override;
    std::string Validate() const override;

    // The unit and operation lists of the dialog: each converts the values
    // at once, as the user sees them change.
    void SetWidthUnit(int unit) { ConvertUnit(m_Width, m_WidthUnit, unit, m_CurrentWidth); }
    void SetHeightUnit(int unit) { ConvertUnit(m_Height, m_HeightUnit, unit, m_CurrentHeight); }
    void SetOperation(int operation);
    // The entry the constraint calculates is disabled.
    bool IsWidthEnabled() const { return m_Constraint != CalculateWidth; }
    bool IsHeightEnabled() const { return m_Constraint != CalculateHeight; }
    // Sharpness and transparency only mean something with a filter.
    bool IsFilterChosen() const { return m_Filter != 0; }
    // The lowest value the width or height entry takes in the current
    // operation and unit.
    double Minimum(int unit, int current) const;

  private:
    static void ConvertUnit(double& value, int& unit, int to, int current);
};

class CImageSizeCmd : public CUndoableCmd {
  public:
    CImageSizeCmd();
    // Dialog from the focused image and the run's settings, then the
    // palette-image question; false when either is cancelled.
    bool Init(CTavixDoc* doc) override;
    std::unique_ptr<CTavixImage> FilterImage(CTavixImage* image) override;

    // The size an image of `width` x `height` gets with `settings`.
    static void NewSize(const CImageSizeDlgData& settings, int width, int height, int& w, int& h);
    // `image` resized with `settings` ("size" for deep images when a filter
    // is chosen, "scale" otherwise); the dialog's preview uses it too.
    static std::unique_ptr<CTavixImage> Resize(const CImageSizeDlgData& settings,
                                               const CTavixImage& image);

  private:
    CImageSizeDlgData m_Settings;
};

struct CCanvasSizeDlgData : CDialogData {
    static constexpr const char* kFillMethods = "Fill,Clamp,Wrap,Mirror";
    int m_Operation = 0;   // 0 a rectangle, 1 amounts cut from each side
    int m_Coordinates = 0; // 0 image, 1 worksheet coordinates (operation 0 only)
    int m_Top = 0;
    int m_Left = 0;
    int m_Bottom = 0;
    int m_Right = 0;
    int m_Horizontal = 0;
    int m_Vertical = 0;
    const char* GetDialogName() const override { return "CCanvasSizeDlg"; }
    std::vector<CDialogField> GetFields() override;
};

struct CEnlargeCanvasDlgData : CDialogData {
    enum Units { Absolute = 0, AddPixels = 1, Percent = 2 };
    double m_Width = 0;
    double m_Height = 0;
    int m_Units = Absolute;
    int m_Anchor = 5; // column = anchor % 3, row = anchor / 3
    // The focused image's size; -1 when there is none ("unknown").
    int m_CurrentWidth = -1;
    int m_CurrentHeight = -1;

    const char* GetDialogName() const override { return "CEnlargeCanvasDlg"; }
    std::vector<CDialogField> GetFields() override;
    // Refuses values that would shrink the focused image's canvas.
    std::string Validate() const override;
    // "Current size: %d x %d pixels", or "Current size: unknown".
    std::string CurrentSizeText() const;
    // The new size of a canvas of `width` x `height`.
    void NewSize(int width, int height, int& w, int& h) const;
};

class CCanvasSizeCmd : public CUndoableCmd {
  public:
    enum Operation { Rectangle = 0, Sides = 1, ShrinkToFit = 2, Enlarge = 3 };

    CCanvasSizeCmd();
    using CUndoableCmd::Init;
    // The variant of the ID: its dialog (none for Shrink To Fit), the fill
    // colours, then submit.
    virtual bool Init(CTavixDoc* doc, int operation);
    std::unique_ptr<CTavixImage> FilterImage(CTavixImage* image) override;

  private:
    int m_Operation = Rectangle;
    CCanvasSizeDlgData m_Canvas;
    CEnlargeCanvasDlgData m_Enlarge;
    uint32_t m_FillIndex = 0;
    uint32_t m_FillArgb = 0;
};
