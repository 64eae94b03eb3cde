#include "app/cmds/AdjustCmds.h"

#include "app/cmds/ImageCmdSupport.h"
#include "app/doc/CommandIds.h"
#include "app/doc/CurrentColours.h"
#include "app/doc/TavixDoc.h"
#include "app/doc/TavixImage.h"
#include "imaging/module/module.h"

#include <cstring>

namespace {

// The dialog values last confirmed while the program runs.
template <typename Data> Data& lastValues() {
    static Data data;
    return data;
}

// Shows `Data`'s dialog starting with the last values, with a preview of
// the focused image; on OK keeps them.
template <typename Data> bool askValues(Data& out, CTavixDoc* doc, CDialogData::PreviewFn preview) {
    Data dialog = lastValues<Data>();
    OfferPreview(dialog, doc, std::move(preview));
    if (!ZyUi().EditDialog(dialog)) return false;
    lastValues<Data>() = dialog;
    out = dialog;
    return true;
}

uint32_t colourFor(const CTavixImage& image, uint32_t index, uint32_t argb) {
    return image.GetInfo()->bufferbpp <= 8 ? index : argb;
}

constexpr int kForegroundNumber = 0;

uint32_t currentColourFor(const CTavixImage& image, int number) {
    const CCurrentColour colour = ZyUi().GetCurrentColour(number);
    return colourFor(image, static_cast<uint32_t>(colour.m_Index & 0xFF), colour.m_Argb);
}

CDialogData::PreviewFn amountPreview(const char* module) {
    return ModulePreview<CAmountDlgData>(module, [](const CAmountDlgData& d, const CTavixImage&) {
        return std::vector<ModuleValue>{ModuleValue::ofReal(d.m_Amount)};
    });
}

} // namespace

// ---- Blur and sharpen ------------------------------------------------------

bool CAmountCmd::Init(CTavixDoc* doc, double amount) {
    m_Amount = amount;
    return CUndoableCmd::Init(doc);
}

std::unique_ptr<CTavixImage> CAmountCmd::FilterImage(CTavixImage* image) {
    const ModuleValue amount = ModuleValue::ofReal(m_Amount);
    return RunFilter(image, &amount, 1);
}

CBlurCmd::CBlurCmd() {
    m_Name = "Blur";
    FindModule("blur");
}

bool CBlurCmd::Init(CTavixDoc* doc) {
    CAmountDlgData dialog("CBlurDlg", 0.1, 4.0);
    dialog.m_Amount = 1.5;
    OfferPreview(dialog, doc, amountPreview("blur"));
    if (!ZyUi().EditDialog(dialog)) return false;
    return CAmountCmd::Init(doc, dialog.m_Amount);
}

CSharpenCmd::CSharpenCmd() {
    m_Name = "Sharpen";
    FindModule("sharpen");
}

bool CSharpenCmd::Init(CTavixDoc* doc) {
    CAmountDlgData dialog("CSharpenDlg", 0.1, 256.0);
    dialog.m_Amount = 8.0;
    OfferPreview(dialog, doc, amountPreview("sharpen"));
    if (!ZyUi().EditDialog(dialog)) return false;
    return CAmountCmd::Init(doc, dialog.m_Amount);
}

// ---- Contrast and brightness -----------------------------------------------

std::vector<CDialogField> CCBDlgData::GetFields() {
    return {{"m_Contrast", CDialogField::Real, &m_Contrast, -100, 100, "", "Contrast"},
            {"m_Brightness", CDialogField::Real, &m_Brightness, -255, 255, "", "Brightness"}};
}

CCBCmd::CCBCmd() {
    m_Name = "Contrast/Brightness";
    FindModule("contrast");
}

bool CCBCmd::Init(CTavixDoc* doc) {
    auto preview = ModulePreview<CCBDlgData>(
        "contrast", [](const CCBDlgData& d, const CTavixImage&) { return Values(d); });
    return askValues(m_Values, doc, preview) && CUndoableCmd::Init(doc);
}

std::vector<ModuleValue> CCBCmd::Values(const CCBDlgData& data) {
    return {ModuleValue::ofReal(data.m_Brightness), ModuleValue::ofReal(data.m_Contrast)};
}

std::unique_ptr<CTavixImage> CCBCmd::FilterImage(CTavixImage* image) {
    const std::vector<ModuleValue> values = Values(m_Values);
    return RunFilter(image, values.data(), static_cast<int>(values.size()));
}

// ---- Hue and saturation ----------------------------------------------------

std::vector<CDialogField> CHSDlgData::GetFields() {
    return {{"m_Hue", CDialogField::Real, &m_Hue, -180, 180, "", "Hue"},
            {"m_Saturation", CDialogField::Real, &m_Saturation, -100, 100, "", "Saturation"},
            {"m_Lightness", CDialogField::Real, &m_Lightness, -100, 100, "", "Lightness"}};
}

CHSCmd::CHSCmd() {
    m_Name = "Hue/Saturation";
    FindModule("hsl");
}

bool CHSCmd::Init(CTavixDoc* doc) {
    auto preview = ModulePreview<CHSDlgData>(
        "hsl", [](const CHSDlgData& d, const CTavixImage&) { return Values(d); });
    return askValues(m_Values, doc, preview) && CUndoableCmd::Init(doc);
}

std::vector<ModuleValue> CHSCmd::Values(const CHSDlgData& data) {
    return {ModuleValue::ofReal(data.m_Saturation), ModuleValue::ofReal(data.m_Lightness),
            ModuleValue::ofUint(0xFFFFFFFF), ModuleValue::ofReal(data.m_Hue)};
}

std::unique_ptr<CTavixImage> CHSCmd::FilterImage(CTavixImage* image) {
    const std::vector<ModuleValue> values = Values(m_Values);
    std::unique_ptr<CTavixImage> result =
        RunFilter(image, values.data(), static_cast<int>(values.size()));
    return result ? result->Duplicate() : nullptr;
}

// ---- Colour balance --------------------------------------------------------

std::vector<CDialogField> CColorBalanceDlgData::GetFields() {
    return {{"m_Red", CDialogField::Real, &m_Red, -100, 100, "", "Cyan/Red"},
            {"m_Green", CDialogField::Real, &m_Green, -100, 100, "", "Magenta/Green"},
            {"m_Blue", CDialogField::Real, &m_Blue, -100, 100, "", "Yellow/Blue"},
            {"m_PreserveLuminance", CDialogField::Integer, &m_PreserveLuminance, 0, 1, "",
             "Preserve Luminance"}};
}

CColorBalanceCmd::CColorBalanceCmd() {
    m_Name = "Color Balance";
    FindModule("fnil");
}

bool CColorBalanceCmd::Init(CTavixDoc* doc) {
    m_pDoc = doc;
    return false;
}

std::unique_ptr<CTavixImage> CColorBalanceCmd::FilterImage(CTavixImage* image) {
    const ModuleValue values[] = {
        ModuleValue::ofReal(m_Values.m_Red), ModuleValue::ofReal(m_Values.m_Green),
        ModuleValue::ofReal(m_Values.m_Blue), ModuleValue::ofReal(m_Values.m_PreserveLuminance)};
    return RunFilter(image, values, 4);
}

// ---- Grey scale ------------------------------------------------------------

std::vector<CDialogField> CGreyScaleDlgData::GetFields() {
    return {{"m_Levels", CDialogField::Integer, &m_Levels, 1, 256, "", "Levels"},
            {"m_Average", CDialogField::Integer, &m_Average, 0, 1, "", "Average channels"}};
}

CGreyScaleCmd::CGreyScaleCmd() {
    m_Name = "Grey Scale";
    FindModule("grey");
}

bool CGreyScaleCmd::Init(CTavixDoc* doc) {
    auto preview = ModulePreview<CGreyScaleDlgData>(
        "grey", [](const CGreyScaleDlgData& d, const CTavixImage&) { return Values(d); });
    return askValues(m_Values, doc, preview) && CUndoableCmd::Init(doc);
}

std::vector<ModuleValue> CGreyScaleCmd::Values(const CGreyScaleDlgData& data) {
    return {ModuleValue::ofInt(data.m_Levels), ModuleValue::ofInt(data.m_Average)};
}

std::unique_ptr<CTavixImage> CGreyScaleCmd::FilterImage(CTavixImage* image) {
    const std::vector<ModuleValue> values = Values(m_Values);
    return RunFilter(image, values.data(), static_cast<int>(values.size()));
}

// ---- Invert and attenuation ------------------------------------------------

CInvertCmd::CInvertCmd() {
    m_Name = "Invert";
    FindModule("invert");
    m_bShowProgress = false;
}

CAttenuateCmd::CAttenuateCmd() {
    m_Name = "Attenuation";
    FindModule("preten");
    m_bShowProgress = false;
}

bool CAttenuateCmd::Init(CTavixDoc* doc, int direction) {
    m_Direction = direction;
    return CUndoableCmd::Init(doc);
}

std::unique_ptr<CTavixImage> CAttenuateCmd::FilterImage(CTavixImage* image) {
    const ModuleValue direction = ModuleValue::ofInt(m_Direction);
    return RunFilter(image, &direction, 1);
}

// ---- Creep and clean edges -------------------------------------------------

std::vector<CDialogField> CCreepDlgData::GetFields() {
    return {{"m_Amount", CDialogField::Integer, &m_Amount, 1, 255, "", "Amount"}};
}

CCreepCmd::CCreepCmd() {
    m_Name = "Creep";
    FindModule("creep");
}

bool CCreepCmd::Init(CTavixDoc* doc) {
    auto preview =
        ModulePreview<CCreepDlgData>("creep", [](const CCreepDlgData& d, const CTavixImage& image) {
            return Values(d, currentColourFor(image, kForegroundNumber));
        });
    if (!askValues(m_Values, doc, preview)) return false;
    const CCurrentColour colour = ZyUi().GetCurrentColour(kForegroundNumber);
    m_Index = static_cast<uint32_t>(colour.m_Index & 0xFF);
    m_Argb = colour.m_Argb;
    return CUndoableCmd::Init(doc);
}

std::vector<ModuleValue> CCreepCmd::Values(const CCreepDlgData& data, uint32_t colour) {
    return {ModuleValue::ofUint(colour), ModuleValue::ofInt(data.m_Amount)};
}

std::unique_ptr<CTavixImage> CCreepCmd::FilterImage(CTavixImage* image) {
    const std::vector<ModuleValue> values = Values(m_Values, colourFor(*image, m_Index, m_Argb));
    return RunFilter(image, values.data(), static_cast<int>(values.size()));
}

std::vector<CDialogField> CCleanEdgeDlgData::GetFields() {
    return {{"m_NumPixels", CDialogField::Integer, &m_NumPixels, 0, 10, "", "Number of pixels"},
            {"m_Operation", CDialogField::Choice, &m_Operation, 0, 2, "Spikes and Pits,Spikes,Pits",
             "Operation"}};
}

CCleanEdgeCmd::CCleanEdgeCmd() {
    m_Name = "Clean Edges";
    FindModule("edge");
}

bool CCleanEdgeCmd::Init(CTavixDoc* doc) {
    auto preview = ModulePreview<CCleanEdgeDlgData>(
        "edge", [](const CCleanEdgeDlgData& d, const CTavixImage& image) {
            return Values(d, currentColourFor(image, CCurrentColours::kFillNumber));
        });
    if (!askValues(m_Values, doc, preview)) return false;
    const CFillColours back = CFillColours::Current();
    m_Index = back.m_Index;
    m_Argb = back.m_Argb;
    return CUndoableCmd::Init(doc);
}

std::vector<ModuleValue> CCleanEdgeCmd::Values(const CCleanEdgeDlgData& data, uint32_t colour) {
    return {ModuleValue::ofUint(colour), ModuleValue::ofInt(data.m_NumPixels),
            ModuleValue::ofInt(data.m_Operation)};
}

std::unique_ptr<CTavixImage> CCleanEdgeCmd::FilterImage(CTavixImage* image) {
    const std::vector<ModuleValue> values = Values(m_Values, colourFor(*image, m_Index, m_Argb));
    return RunFilter(image, values.data(), static_cast<int>(values.size()));
}

// ---- Outline ---------------------------------------------------------------

COutlineCmd::COutlineCmd() {
    m_Name = "Outline";
    FindModule("fnil");
}

bool COutlineCmd::Init(CTavixDoc* doc) {
    const CCurrentColour colour = ZyUi().GetCurrentColour(kForegroundNumber);
    m_Index = static_cast<uint32_t>(colour.m_Index & 0xFF);
    m_Argb = colour.m_Argb;
    return CUndoableCmd::Init(doc);
}

std::unique_ptr<CTavixImage> COutlineCmd::FilterImage(CTavixImage* image) {
    std::unique_ptr<CTavixImage> copy = image->Duplicate();
    if (!copy) return nullptr;
    const int width = image->GetInfo()->width;
    const int height = image->GetInfo()->height;
    if (width < 1 || height < 1) return copy;
    const bool indexed = image->GetInfo()->bufferbpp <= 8;

    // Background: transparent pixels, or the top-left colour when none is.
    bool anyTransparent = false;
    for (int y = 0; y < height && !anyTransparent; ++y)
        for (int x = 0; x < width && !anyTransparent; ++x)
            anyTransparent = (image->GetPixelValue(x, y) >> 24) == 0;
    const uint32_t key =
        indexed ? static_cast<uint32_t>(image->GetIndex(0, 0)) : image->GetPixelValue(0, 0);
    auto background = [&](int x, int y) {
        if (anyTransparent) return (image->GetPixelValue(x, y) >> 24) == 0;
        return (indexed ? static_cast<uint32_t>(image->GetIndex(x, y))
                        : image->GetPixelValue(x, y)) == key;
    };
    auto content = [&](int x, int y) {
        return x >= 0 && y >= 0 && x < width && y < height && !background(x, y);
    };

    // Decided on the source, drawn on the copy, so that the outline does
    // not feed itself.
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            if (!background(x, y)) continue;
            if (!content(x - 1, y) && !content(x + 1, y) && !content(x, y - 1) &&
                !content(x, y + 1))
                continue;
            uint8_t* pixel = copy->GetPixelAddress(x, y);
            if (indexed)
                *pixel = static_cast<uint8_t>(m_Index);
            else
                memcpy(pixel, &m_Argb, sizeof m_Argb);
        }
    return copy;
}

// ---- Descriptors -----------------------------------------------------------

namespace {

template <typename Cmd> void startPlain(CTavixDoc* doc, unsigned) {
    CCommandInfo::Start(doc, new Cmd, [doc](CCommand* cmd) { return cmd->Init(doc); });
}

// A fixed amount for the plain items, the dialog for the "exact amount" one.
template <typename Cmd>
CIdListInfo::Starter amountStarter(unsigned dialogId, unsigned moreId, double plain, double more) {
    return [=](CTavixDoc* doc, unsigned nID) {
        if (nID == dialogId) return startPlain<Cmd>(doc, nID);
        const double amount = nID == moreId ? more : plain;
        CCommandInfo::Start(doc, new Cmd, [doc, amount](CCommand* cmd) {
            return static_cast<Cmd*>(cmd)->Init(doc, amount);
        });
    };
}

CIdListInfo g_blurInfo({ZyIds::Blur, ZyIds::BlurMore, ZyIds::BlurAmount},
                       amountStarter<CBlurCmd>(ZyIds::BlurAmount, ZyIds::BlurMore, 1.5, 3.0),
                       {"CBlurDlg/m_Amount"});
CIdListInfo g_sharpenInfo({ZyIds::Sharpen, ZyIds::SharpenMore, ZyIds::SharpenAmount},
                          amountStarter<CSharpenCmd>(ZyIds::SharpenAmount, ZyIds::SharpenMore, 8.0,
                                                     5.0),
                          {"CSharpenDlg/m_Amount"});
CIdListInfo g_cbInfo({ZyIds::ContrastBrightness}, startPlain<CCBCmd>, KeysOf<CCBDlgData>());
CIdListInfo g_hsInfo({ZyIds::HueSaturation}, startPlain<CHSCmd>, KeysOf<CHSDlgData>());
CIdListInfo g_colorBalanceInfo({ZyIds::ColorBalance}, startPlain<CColorBalanceCmd>);
CIdListInfo g_greyInfo({ZyIds::Grayscale}, startPlain<CGreyScaleCmd>, KeysOf<CGreyScaleDlgData>());
CIdListInfo g_invertInfo({ZyIds::Invert}, startPlain<CInvertCmd>);
CIdListInfo g_attenuateInfo({ZyIds::PreAttenuate, ZyIds::UnAttenuate},
                            [](CTavixDoc* doc, unsigned nID) {
                                const int direction = nID == ZyIds::UnAttenuate ? 1 : 0;
                                CCommandInfo::Start(doc, new CAttenuateCmd, [=](CCommand* cmd) {
                                    return static_cast<CAttenuateCmd*>(cmd)->Init(doc, direction);
                                });
                            });
CIdListInfo g_creepInfo({ZyIds::Creep}, startPlain<CCreepCmd>,
                        KeysOf<CCreepDlgData>({"CCurrentColours/m_Foreground",
                                               "CCurrentColours/m_ForegroundIndex"}));
CIdListInfo g_cleanEdgeInfo({ZyIds::CleanEdges}, startPlain<CCleanEdgeCmd>,
                            KeysOf<CCleanEdgeDlgData>({"CCurrentColours/m_Background",
                                                       "CCurrentColours/m_BackgroundIndex"}));
CIdListInfo g_outlineInfo({ZyIds::Outline}, startPlain<COutlineCmd>,
                          {"CCurrentColours/m_Foreground", "CCurrentColours/m_ForegroundIndex"});

} // namespace
