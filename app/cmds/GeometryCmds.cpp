#include "app/cmds/GeometryCmds.h"

#include "app/cmds/ImageCmdSupport.h"
#include "app/doc/CommandIds.h"
#include "app/doc/TavixDoc.h"
#include "app/doc/TavixImage.h"
#include "imaging/module/module.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace {

// Puts `result` where `source` sits on the worksheet.
void keepPosition(const CTavixImage& source, CTavixImage& result) {
    result.SetDefaultPoint(source.GetDefaultPoint());
}

std::unique_ptr<CTavixImage> turn(int module, const CTavixImage& image, int code) {
    const ModuleValue value = ModuleValue::ofInt(code);
    return image.RunModule(module, &value, 1);
}

} // namespace

// ---- Quarter turns and the Rotate toggle ----------------------------------

CRotateCmd::CRotateCmd() {
    m_Name = "Rotate";
    FindModule("rot");
    m_bShowProgress = false;
}

bool CRotateCmd::Init(CTavixDoc* doc, int code, bool toggle) {
    m_pDoc = doc;
    m_Code = code;
    m_bToggle = toggle;
    m_bKeepsFlag = toggle && FormatKeepsAttributeBits(doc);
    CopySelection();
    Submit();
    return true;
}

std::unique_ptr<CTavixImage> CRotateCmd::FilterImage(CTavixImage* image) {
    if (!m_bKeepsFlag) {
        std::unique_ptr<CTavixImage> result = turn(m_Module, *image, m_Code);
        if (result) keepPosition(*image, *result);
        return result;
    }
    const TavixInfo* before = image->GetInfo();
    const bool rotated = (before->attributes & kAttrRotated) != 0;
    std::unique_ptr<CTavixImage> result = turn(m_Module, *image, rotated ? Back : Clockwise);
    if (!result) return nullptr;
    // The turn is only a way of storing the image: the worksheet keeps
    // showing it where it was, with the points the artist set.
    TavixInfo* after = result->GetInfoForWrite();
    after->defaultx = before->defaultx;
    after->defaulty = before->defaulty;
    after->centerx = before->centerx;
    after->centery = before->centery;
    after->attributes = before->attributes ^ kAttrRotated;
    return result;
}

// ---- Transpose -------------------------------------------------------------

CTransposeCmd::CTransposeCmd() {
    m_Name = "Transpose";
    m_bShowProgress = false;
}

bool CTransposeCmd::Init(CTavixDoc* doc) {
    m_pDoc = doc;
    m_bKeepsFlag = FormatKeepsAttributeBits(doc);
    CopySelection();
    Submit();
    return true;
}

std::unique_ptr<CTavixImage> CTransposeCmd::FilterImage(CTavixImage* image) {
    std::unique_ptr<CTavixImage> turned = turn(module_find("rot"), *image, CRotateCmd::Clockwise);
    if (!turned) return nullptr;
    const ModuleValue horizontal = ModuleValue::ofInt(1);
    std::unique_ptr<CTavixImage> result = turned->RunModule(module_find("flip"), &horizontal, 1);
    turned.reset();
    // Like the quarter turns, the transposed image stays where it was.
    if (result) keepPosition(*image, *result);
    if (result && m_bKeepsFlag) result->GetInfoForWrite()->attributes ^= kAttrTransposed;
    return result;
}

// ---- Column swap -----------------------------------------------------------

CRowswapCmd::CRowswapCmd() {
    m_Name = "Column Swap";
    FindModule("rect");
    m_bShowProgress = false;
}

std::unique_ptr<CTavixImage> CRowswapCmd::FilterImage(CTavixImage* image) {
    std::unique_ptr<CTavixImage> copy = image->Duplicate();
    if (!copy || copy->GetInfo()->bufferbpp > 8) return copy;
    const int width = copy->GetInfo()->width;
    for (int y = 0; y < copy->GetInfo()->height; ++y) {
        uint8_t* row = copy->GetRow(y);
        for (int x = 0; x + 1 < width; x += 2)
            std::swap(row[x], row[x + 1]);
    }
    return copy;
}

// ---- De-interlace ----------------------------------------------------------

std::vector<CDialogField> CDeInterlaceDlgData::GetFields() {
    return {{"m_Field", CDialogField::Choice, &m_Field, 0, 1, "Odd,Even", "Eliminate"}};
}

CDeInterlaceCmd::CDeInterlaceCmd() {
    m_Name = "De-Interlace";
    FindModule("deinterlace");
}

bool CDeInterlaceCmd::Init(CTavixDoc* doc) {
    CDeInterlaceDlgData dialog;
    dialog.m_Field = m_Field;
    OfferPreview(dialog, doc,
                 ModulePreview<CDeInterlaceDlgData>(
                     "deinterlace", [](const CDeInterlaceDlgData& d, const CTavixImage&) {
                         return std::vector<ModuleValue>{ModuleValue::ofInt(d.m_Field)};
                     }));
    if (!ZyUi().EditDialog(dialog)) return false;
    m_Field = dialog.m_Field;
    return CUndoableCmd::Init(doc);
}

std::unique_ptr<CTavixImage> CDeInterlaceCmd::FilterImage(CTavixImage* image) {
    const ModuleValue field = ModuleValue::ofInt(m_Field);
    return RunFilter(image, &field, 1);
}

// ---- Rotation by any angle -------------------------------------------------

std::vector<CDialogField> CRotateArbitraryDlgData::GetFields() {
    return {{"m_Angle", CDialogField::Real, &m_Angle, -360, 360, "", "Rotate angle"},
            {"m_ClockWise", CDialogField::Choice, &m_ClockWise, 0, 1, "Counter Clockwise,Clockwise",
             "Direction"},
            {"m_Interplolate", CDialogField::Integer, &m_Interplolate, 0, 1, "",
             "Interpolate Transparency"}};
}

CRotateArbitraryCmd::CRotateArbitraryCmd() {
    m_Name = "Arbitrary Rotate";
    FindModule("rotate");
    m_AngleString = GetProfileString("CRotateArbitraryCmd", "m_AngleString", "0");
    m_ClockWise = GetProfileInt("CRotateArbitraryCmd", "m_ClockWise", 1);
    m_Interplolate = GetProfileInt("CRotateArbitraryCmd", "m_Interplolate", 1);
}

bool CRotateArbitraryCmd::Init(CTavixDoc* doc) {
    CRotateArbitraryDlgData dialog;
    dialog.m_Angle = strtod(m_AngleString.c_str(), nullptr);
    dialog.m_ClockWise = m_ClockWise != 0;
    dialog.m_Interplolate = m_Interplolate != 0;
    OfferPreview(dialog, doc,
                 ModulePreview<CRotateArbitraryDlgData>(
                     "rotate", [](const CRotateArbitraryDlgData& d, const CTavixImage& image) {
                         const double radians =
                             (d.m_ClockWise ? -d.m_Angle : d.m_Angle) * kDegreeFactor;
                         const CFillColours fill = CFillColours::Current();
                         return std::vector<ModuleValue>{ModuleValue::ofReal(radians),
                                                         ModuleValue::ofUint(fill.ForImage(image)),
                                                         ModuleValue::ofInt(d.m_Interplolate)};
                     }));
    if (!ZyUi().EditDialog(dialog)) return false;
    char text[64];
    snprintf(text, sizeof text, "%f", dialog.m_Angle);
    m_AngleString = text;
    m_ClockWise = dialog.m_ClockWise;
    m_Interplolate = dialog.m_Interplolate;
    WriteProfileString("CRotateArbitraryCmd", "m_AngleString", m_AngleString);
    WriteProfileInt("CRotateArbitraryCmd", "m_ClockWise", m_ClockWise);
    WriteProfileInt("CRotateArbitraryCmd", "m_Interplolate", m_Interplolate);
    const CFillColours fill = CFillColours::Current();
    m_FillIndex = fill.m_Index;
    m_FillArgb = fill.m_Argb;
    m_Radians = dialog.m_Angle * kDegreeFactor;
    if (m_ClockWise) m_Radians = -m_Radians;
    return CUndoableCmd::Init(doc);
}

std::unique_ptr<CTavixImage> CRotateArbitraryCmd::FilterImage(CTavixImage* image) {
    const uint32_t fill = image->GetInfo()->bufferbpp <= 8 ? m_FillIndex : m_FillArgb;
    const ModuleValue values[] = {ModuleValue::ofReal(m_Radians), ModuleValue::ofUint(fill),
                                  ModuleValue::ofInt(m_Interplolate)};
    std::unique_ptr<CTavixImage> result = RunFilter(image, values, 3);
    if (result) keepPosition(*image, *result);
    return result;
}

// ---- Descriptors -----------------------------------------------------------

namespace {

int rotateCode(unsigned nID) {
    switch (nID) {
    case ZyIds::Rotate180:
        return CRotateCmd::Half;
    case ZyIds::Rotate90CCW:
        return CRotateCmd::CounterClockwise;
    default:
        return CRotateCmd::Clockwise;
    }
}

CIdListInfo g_rotateInfo({ZyIds::Rotate90CW, ZyIds::Rotate180, ZyIds::Rotate90CCW,
                          ZyIds::RotateToggle},
                         [](CTavixDoc* doc, unsigned nID) {
                             const int code = rotateCode(nID);
                             const bool toggle = nID == ZyIds::RotateToggle;
                             CCommandInfo::Start(doc, new CRotateCmd, [=](CCommand* cmd) {
                                 return static_cast<CRotateCmd*>(cmd)->Init(doc, code, toggle);
                             });
                         });

template <typename Cmd> void startPlain(CTavixDoc* doc, unsigned) {
    CCommandInfo::Start(doc, new Cmd, [doc](CCommand* cmd) { return cmd->Init(doc); });
}

CIdListInfo g_transposeInfo({ZyIds::Transpose}, startPlain<CTransposeCmd>);
CIdListInfo g_deInterlaceInfo({ZyIds::DeInterlace}, startPlain<CDeInterlaceCmd>,
                              KeysOf<CDeInterlaceDlgData>());
CIdListInfo
    g_rotateArbitraryInfo({ZyIds::ArbitraryRotate}, startPlain<CRotateArbitraryCmd>,
                          KeysOf<CRotateArbitraryDlgData>({"CRotateArbitraryCmd/m_AngleString",
                                                           "CRotateArbitraryCmd/m_ClockWise",
                                                           "CRotateArbitraryCmd/m_Interplolate",
                                                           "CCurrentColours/m_Background",
                                                           "CCurrentColours/m_BackgroundIndex"}));

// Column swap is offered even in an empty document (the family's further
// rule instead of needs-images); with nothing selected it does nothing.
class CRowswapInfo : public CIdListInfo {
  public:
    CRowswapInfo() : CIdListInfo({ZyIds::ColumnSwap}, startPlain<CRowswapCmd>) {
        m_bNeedsImages = false;
        m_bReserved1 = true;
    }
};
CRowswapInfo g_rowswapInfo;

} // namespace
