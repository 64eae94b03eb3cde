#include "app/cmds/SizeCmds.h"

#include "app/cmds/ImageCmdSupport.h"
#include "app/cmds/ListEdit.h"
#include "app/doc/CommandIds.h"
#include "app/doc/TavixDoc.h"
#include "app/doc/TavixImage.h"
#include "imaging/module/module.h"

#include <cstdio>

namespace {

constexpr int kMaxEntry = 10000;

// The resize settings of the program's run: every Image Size dialog starts
// with what the last one was confirmed with. They are not saved.
CImageSizeDlgData& runSettings() {
    static CImageSizeDlgData settings;
    return settings;
}

int truncated(double value) {
    return static_cast<int>(value);
}

} // namespace

// ---- Image Size ------------------------------------------------------------

std::vector<CDialogField> CImageSizeDlgData::GetFields() {
    return {
        {"m_Operation", CDialogField::Choice, &m_Operation, 0, 1, "Absolute,Relative", "Operation"},
        {"m_Width", CDialogField::Real, &m_Width, -kMaxEntry, kMaxEntry, "", "Width"},
        {"m_WidthUnit", CDialogField::Choice, &m_WidthUnit, 0, 1, "Pixels,Percent", "Width unit"},
        {"m_Height", CDialogField::Real, &m_Height, -kMaxEntry, kMaxEntry, "", "Height"},
        {"m_HeightUnit", CDialogField::Choice, &m_HeightUnit, 0, 1, "Pixels,Percent",
         "Height unit"},
        {"m_Constraint", CDialogField::Choice, &m_Constraint, 0, 2,
         "No constraints,Calculate width,Calculate height", "Constraint"},
        {"m_Filter", CDialogField::Choice, &m_Filter, 0, 8, kFilters, "Interpolation"},
        {"m_Sharpness", CDialogField::Real, &m_Sharpness, 0, 100, "", "Sharpness"},
        {"m_Transparency", CDialogField::Integer, &m_Transparency, 0, 1, "",
         "Interpolate transparency"},
    };
}

double CImageSizeDlgData::Minimum(int unit, int current) const {
    if (m_Operation == Absolute) return 1;
    return unit == Percent ? -99 : 1 - current;
}

std::string CImageSizeDlgData::Validate() const {
    char text[160];
    const struct {
        const char* name;
        double value;
        int unit;
        int current;
        bool enabled;
    } entries[] = {{"width", m_Width, m_WidthUnit, m_CurrentWidth, IsWidthEnabled()},
                   {"height", m_Height, m_HeightUnit, m_CurrentHeight, IsHeightEnabled()}};
    for (const auto& entry : entries) {
        const double low = Minimum(entry.unit, entry.current);
        if (entry.enabled && (entry.value < low || entry.value > kMaxEntry)) {
            snprintf(text, sizeof text, "Please enter a %s between %g and %d.", entry.name, low,
                     kMaxEntry);
            return text;
        }
    }
    return {};
}

void CImageSizeDlgData::ConvertUnit(double& value, int& unit, int to, int current) {
    if (unit == to) return;
    if (current > 0) {
        if (to == Percent)
            value = value / current * 100.0;
        else
            value = truncated(current * value / 100.0);
    }
    unit = to;
}

void CImageSizeDlgData::SetOperation(int operation) {
    if (operation == m_Operation) return;
    const double sign = operation == Relative ? -1.0 : 1.0;
    m_Width += sign * (m_WidthUnit == Percent ? 100.0 : m_CurrentWidth);
    m_Height += sign * (m_HeightUnit == Percent ? 100.0 : m_CurrentHeight);
    m_Operation = operation;
}

CImageSizeCmd::CImageSizeCmd() {
    m_Name = "Resize";
    FindModule("scale");
    // The module is chosen per image (scale or size), so the runner's
    // format check against one module would be wrong.
    m_bCheckFormat = false;
}

bool CImageSizeCmd::Init(CTavixDoc* doc) {
    CImageSizeDlgData dialog = runSettings();
    const CTavixImage* focus = doc->GetFocusImage();
    dialog.m_CurrentWidth = focus ? focus->GetInfo()->width : 0;
    dialog.m_CurrentHeight = focus ? focus->GetInfo()->height : 0;
    OfferPreview(dialog, doc, [](const CDialogData& data, const CTavixImage& image) {
        return Resize(static_cast<const CImageSizeDlgData&>(data), image);
    });
    if (!ZyUi().EditDialog(dialog)) return false;
    runSettings() = dialog;
    m_Settings = dialog;
    if (dialog.IsFilterChosen()) {
        CRange selection;
        doc->GetSelectionMask(selection);
        bool palette = false;
        for (int position : MarkedPositions(selection))
            if (const CTavixImage* image = doc->GetImageAt(position))
                palette = palette || image->GetBpp() == 8;
        if (palette &&
            ZyUi().MessageBox("Interpolation can only be performed on images without "
                              "palettes.\nTurn off interpolation for palette based images?",
                              MsgButtons::OKCancel, MsgIcon::Question) != MsgAnswer::OK)
            return false;
    }
    return CUndoableCmd::Init(doc);
}

void CImageSizeCmd::NewSize(const CImageSizeDlgData& s, int width, int height, int& w, int& h) {
    using D = CImageSizeDlgData;
    if (s.m_Operation == D::Relative) {
        w = s.m_WidthUnit == D::Percent ? width + truncated(width * s.m_Width / 100.0)
                                        : width + truncated(s.m_Width);
        h = s.m_HeightUnit == D::Percent ? height + truncated(height * s.m_Height / 100.0)
                                         : height + truncated(s.m_Height);
    } else {
        w = truncated(s.m_WidthUnit == D::Percent ? width * s.m_Width / 100.0 : s.m_Width);
        h = truncated(s.m_HeightUnit == D::Percent ? height * s.m_Height / 100.0 : s.m_Height);
    }
    if (s.m_Constraint == D::CalculateWidth) {
        const double ratio =
            s.m_HeightUnit == D::Percent ? s.m_Height / 100.0 : s.m_Height / height;
        w = truncated(width * ratio);
    } else if (s.m_Constraint == D::CalculateHeight) {
        const double ratio = s.m_WidthUnit == D::Percent ? s.m_Width / 100.0 : s.m_Width / width;
        h = truncated(height * ratio);
    }
    if (w < 1) w = 1;
    if (h < 1) h = 1;
}

std::unique_ptr<CTavixImage> CImageSizeCmd::FilterImage(CTavixImage* image) {
    return Resize(m_Settings, *image);
}

std::unique_ptr<CTavixImage> CImageSizeCmd::Resize(const CImageSizeDlgData& settings,
                                                   const CTavixImage& image) {
    int w = 0, h = 0;
    NewSize(settings, image.GetInfo()->width, image.GetInfo()->height, w, h);
    if (settings.IsFilterChosen() && image.GetInfo()->bufferbpp > 8) {
        const double sharpness = settings.m_Sharpness / 100.0;
        // The key colour slot sits between the alpha switch and the two
        // sharpness values; 0 lets the resampler find the key itself.
        const ModuleValue values[] = {ModuleValue::ofInt(w),
                                      ModuleValue::ofInt(h),
                                      ModuleValue::ofInt(settings.m_Filter - 1),
                                      ModuleValue::ofInt(settings.m_Transparency ? 0 : 1),
                                      ModuleValue::ofUint(0),
                                      ModuleValue::ofReal(sharpness),
                                      ModuleValue::ofReal(sharpness)};
        return image.RunModule(module_find("size"), values, 7);
    }
    const ModuleValue values[] = {ModuleValue::ofInt(w), ModuleValue::ofInt(h)};
    return image.RunModule(module_find("scale"), values, 2);
}

// ---- Canvas ----------------------------------------------------------------

std::vector<CDialogField> CCanvasSizeDlgData::GetFields() {
    constexpr double kMax = 65536;
    return {
        {"m_Operation", CDialogField::Choice, &m_Operation, 0, 1,
         "Crop To Rectangle,Cut From Sides", "Operation"},
        {"m_Coordinates", CDialogField::Choice, &m_Coordinates, 0, 1,
         "Image Coordinates,Worksheet Coordinates", "Coordinates"},
        {"m_Top", CDialogField::Integer, &m_Top, -kMax, kMax, "", "Top"},
        {"m_Left", CDialogField::Integer, &m_Left, -kMax, kMax, "", "Left"},
        {"m_Bottom", CDialogField::Integer, &m_Bottom, -kMax, kMax, "", "Bottom"},
        {"m_Right", CDialogField::Integer, &m_Right, -kMax, kMax, "", "Right"},
        {"m_Horizontal", CDialogField::Choice, &m_Horizontal, 0, 3, kFillMethods, "Horizontal"},
        {"m_Vertical", CDialogField::Choice, &m_Vertical, 0, 3, kFillMethods, "Vertical"},
    };
}

std::vector<CDialogField> CEnlargeCanvasDlgData::GetFields() {
    return {{"m_Width", CDialogField::Real, &m_Width, 0, 30000, "", "Width"},
            {"m_Height", CDialogField::Real, &m_Height, 0, 30000, "", "Height"},
            {"m_Units", CDialogField::Choice, &m_Units, 0, 2, "Pixels,Add Pixels,Percent", "Units"},
            {"m_Anchor", CDialogField::Integer, &m_Anchor, 0, 8, "", "Anchor"}};
}

void CEnlargeCanvasDlgData::NewSize(int width, int height, int& w, int& h) const {
    switch (m_Units) {
    case AddPixels:
        w = width + truncated(m_Width);
        h = height + truncated(m_Height);
        break;
    case Percent:
        w = truncated(width * m_Width / 100.0 + 0.5);
        h = truncated(height * m_Height / 100.0 + 0.5);
        break;
    default:
        w = truncated(m_Width);
        h = truncated(m_Height);
        break;
    }
}

std::string CEnlargeCanvasDlgData::Validate() const {
    if (m_CurrentWidth < 0) return {};
    int w = 0, h = 0;
    NewSize(m_CurrentWidth, m_CurrentHeight, w, h);
    if (w < m_CurrentWidth || h < m_CurrentHeight)
        return "Your input values cannot be used, because they will shrink the image canvas "
               "instead of expand it.";
    return {};
}

std::string CEnlargeCanvasDlgData::CurrentSizeText() const {
    if (m_CurrentWidth < 0) return "Current size: unknown";
    char text[64];
    snprintf(text, sizeof text, "Current size: %d x %d pixels", m_CurrentWidth, m_CurrentHeight);
    return text;
}

CCanvasSizeCmd::CCanvasSizeCmd() {
    m_Name = "Crop";
    FindModule("crop");
}

bool CCanvasSizeCmd::Init(CTavixDoc* doc, int operation) {
    m_Operation = operation;
    const CTavixImage* focus = doc->GetFocusImage();
    if (operation == ShrinkToFit) {
        FindModule("shrink");
    } else if (operation == Enlarge) {
        CEnlargeCanvasDlgData dialog;
        if (focus) {
            dialog.m_CurrentWidth = focus->GetInfo()->width;
            dialog.m_CurrentHeight = focus->GetInfo()->height;
            dialog.m_Width = dialog.m_CurrentWidth;
            dialog.m_Height = dialog.m_CurrentHeight;
        }
        if (!ZyUi().EditDialog(dialog)) return false;
        m_Enlarge = dialog;
    } else {
        CCanvasSizeDlgData dialog;
        dialog.m_Bottom = focus ? focus->GetInfo()->height : 0;
        dialog.m_Right = focus ? focus->GetInfo()->width : 0;
        if (!ZyUi().EditDialog(dialog)) return false;
        m_Canvas = dialog;
        m_Operation = dialog.m_Operation;
    }
    const CFillColours fill = CFillColours::Current();
    m_FillIndex = fill.m_Index;
    m_FillArgb = fill.m_Argb;
    return CUndoableCmd::Init(doc);
}

std::unique_ptr<CTavixImage> CCanvasSizeCmd::FilterImage(CTavixImage* image) {
    if (m_Operation == ShrinkToFit) return RunFilter(image, nullptr, 0);
    const int width = image->GetInfo()->width;
    const int height = image->GetInfo()->height;
    const CPoint position = image->GetDefaultPoint();
    int x = 0, y = 0, w = width, h = height;
    int horizontal = m_Canvas.m_Horizontal, vertical = m_Canvas.m_Vertical;
    CPoint placed;
    switch (m_Operation) {
    case Enlarge: {
        m_Enlarge.NewSize(width, height, w, h);
        const int column = m_Enlarge.m_Anchor % 3;
        const int row = m_Enlarge.m_Anchor / 3;
        x = column == 0 ? 0 : column == 1 ? -((w - width) / 2) : width - w;
        y = row == 0 ? 0 : row == 1 ? -((h - height) / 2) : height - h;
        horizontal = vertical = 0;
        placed = {position.x + x, position.y + y};
        break;
    }
    case Sides:
        x = m_Canvas.m_Left;
        y = m_Canvas.m_Top;
        w = width - m_Canvas.m_Right - m_Canvas.m_Left;
        h = height - m_Canvas.m_Bottom - m_Canvas.m_Top;
        placed = {position.x + x, position.y + y};
        break;
    default:
        w = m_Canvas.m_Right - m_Canvas.m_Left;
        h = m_Canvas.m_Bottom - m_Canvas.m_Top;
        if (m_Canvas.m_Coordinates == 1) {
            x = m_Canvas.m_Left - position.x;
            y = m_Canvas.m_Top - position.y;
            placed = {m_Canvas.m_Left, m_Canvas.m_Top};
        } else {
            x = m_Canvas.m_Left;
            y = m_Canvas.m_Top;
            placed = {position.x + x, position.y + y};
        }
        break;
    }
    if (w < 1) w = 1;
    if (h < 1) h = 1;
    const uint32_t fill = image->GetInfo()->bufferbpp <= 8 ? m_FillIndex : m_FillArgb;
    const ModuleValue values[] = {ModuleValue::ofInt(x),       ModuleValue::ofInt(y),
                                  ModuleValue::ofInt(w),       ModuleValue::ofInt(h),
                                  ModuleValue::ofUint(fill),   ModuleValue::ofInt(horizontal),
                                  ModuleValue::ofInt(vertical)};
    std::unique_ptr<CTavixImage> result = RunFilter(image, values, 7);
    // The kept part of the picture stays where it was on the worksheet.
    if (result) result->SetDefaultPoint(placed);
    return result;
}

// ---- Descriptors -----------------------------------------------------------

namespace {

CIdListInfo g_imageSizeInfo(
    {ZyIds::ImageSize},
    [](CTavixDoc* doc, unsigned) {
        CCommandInfo::Start(doc, new CImageSizeCmd,
                            [doc](CCommand* cmd) { return cmd->Init(doc); });
    },
    KeysOf<CImageSizeDlgData>());

int canvasOperation(unsigned nID) {
    if (nID == ZyIds::ShrinkToFit) return CCanvasSizeCmd::ShrinkToFit;
    if (nID == ZyIds::EnlargeCanvas) return CCanvasSizeCmd::Enlarge;
    return CCanvasSizeCmd::Rectangle;
}

CIdListInfo g_canvasInfo(
    {ZyIds::CanvasSize, ZyIds::ShrinkToFit, ZyIds::EnlargeCanvas},
    [](CTavixDoc* doc, unsigned nID) {
        const int operation = canvasOperation(nID);
        CCommandInfo::Start(doc, new CCanvasSizeCmd, [doc, operation](CCommand* cmd) {
            return static_cast<CCanvasSizeCmd*>(cmd)->Init(doc, operation);
        });
    },
    KeysOf<CEnlargeCanvasDlgData>(KeysOf<CCanvasSizeDlgData>(
        {"CCurrentColours/m_Background", "CCurrentColours/m_BackgroundIndex"})));

} // namespace
