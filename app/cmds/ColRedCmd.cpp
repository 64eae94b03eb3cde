#include "app/cmds/ColRedCmd.h"

#include "app/doc/CommandIds.h"
#include "app/doc/ProgressDlg.h"
#include "app/doc/TavixDoc.h"
#include "app/doc/TavixImage.h"
#include "imaging/galloc.h"
#include "imaging/module/authoring.h"
#include "imaging/quant/indexed.h"
#include "imaging/quant/quant.h"
#include "imaging/quant/remap.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <unordered_set>

using namespace ZyIds;

namespace {

constexpr const char* kSection = "CColRedCmd";
int g_lastType = 1;

// Frees a library result on every way out.
struct OwnedResult {
    ModuleResult r{};
    ~OwnedResult() { module_result_free(&r); }
};

// Looks a quantizer up by name without changing the library's current one.
int quantizerIndex(const char* name) {
    const int previous = quant_current();
    const int index = quant_find(name);
    quant_select(previous);
    return index;
}

uint32_t loadWord(const uint8_t* p) {
    uint32_t v;
    memcpy(&v, p, 4);
    return v;
}

// "Wu,Tw,Wu777,...": the names of quantizers 1 .. 11, the wizard's list.
const char* methodChoices() {
    static const std::string names = [] {
        std::string text;
        for (int i = 1; i < kQuantCount; ++i)
            text += std::string(i > 1 ? "," : "") + quant_name(i);
        return text;
    }();
    return names.c_str();
}

// The first of `images` with a pixel that is not opaque; null when none.
const CTavixImage* firstTransparent(const std::vector<CTavixImage*>& images) {
    for (const CTavixImage* image : images) {
        const TavixInfo& info = *image->GetInfo();
        for (int y = 0; y < info.height; ++y) {
            const uint8_t* row = image->GetRow(y);
            for (int x = 0; x < info.width; ++x) {
                const uint32_t argb =
                    info.bufferbpp <= 8
                        ? module_load_argb(reinterpret_cast<const uint8_t*>(&info.colours[row[x]]))
                        : loadWord(row + 4 * x);
                if (argb >> 24 != 0xFF) return image;
            }
        }
    }
    return nullptr;
}

} // namespace

bool ColRedIsNullQuantizer(int index) {
    const int previous = quant_current();
    quant_select(index);
    GPtr<QuantDescriptor> descriptor(quant_describe());
    quant_select(previous);
    return !descriptor || (descriptor->flags & kQuantFlagNull) != 0;
}

int ColRedMaxColours(int depthChoice) {
    return depthChoice == 1 ? 16 : depthChoice == 2 ? 2 : 256;
}

int ColRedLastType() {
    return g_lastType;
}

std::vector<CDialogField> CColRedWizData::GetFields() {
    return {
        {"m_Type", CDialogField::Choice, &m_Type, 0, 1, "Palette,TrueColor", "Reduction type"},
        {"m_Depth", CDialogField::Choice, &m_Depth, 0, 2, "8-bit,4-bit,1-bit", "Depth"},
        {"m_PalDither", CDialogField::Choice, &m_PalDither, 0, 3, "None,Floyd,Burkes,Stucki",
         "Dither (palette)"},
        {"m_Method", CDialogField::Choice, &m_Method, 0, kQuantCount - 2, methodChoices(),
         "Method"},
        {"m_Colours", CDialogField::Integer, &m_Colours, 1, 256, "", "Colors"},
        {"m_Start", CDialogField::Integer, &m_Start, 0, 255, "", "Start color"},
        {"m_Operation", CDialogField::Choice, &m_Operation, 0, 2, "Shared,Unique,Existing",
         "Palette"},
        {"m_ExactFirst", CDialogField::Integer, &m_ExactFirst, 0, 1, "", "Exact first"},
        {"m_TrueDither", CDialogField::Choice, &m_TrueDither, 0, 3, "None,Floyd,Burkes,Stucki",
         "Dither (true color)"},
        {"m_ABits", CDialogField::Integer, &m_ABits, 0, 8, "", "Alpha bits"},
        {"m_RBits", CDialogField::Integer, &m_RBits, 0, 8, "", "Red bits"},
        {"m_GBits", CDialogField::Integer, &m_GBits, 0, 8, "", "Green bits"},
        {"m_BBits", CDialogField::Integer, &m_BBits, 0, 8, "", "Blue bits"},
    };
}

CColRedCmd::CColRedCmd() {
    m_Name = "Color Reduction";
    FindModule("remap");
    // The command checks depths itself: both kinds of image can go either way.
    m_bCheckFormat = false;
    m_ColRedType = std::clamp(GetProfileInt(kSection, "m_ColRedType", 1), 0, 1);
    m_Dither = std::clamp(GetProfileInt(kSection, "m_Dither", 0), 0, 3);
    m_Method = GetProfileInt(kSection, "m_Method", quantizerIndex("Wu"));
    if (m_Method < 0 || m_Method >= kQuantCount) m_Method = quantizerIndex("Wu");
    m_Bpp = 0;
    if (m_ColRedType == 0) {
        m_Bpp = GetProfileInt(kSection, "m_Bpp", 8);
        if (m_Bpp != 8 && m_Bpp != 4 && m_Bpp != 1) m_Bpp = 8;
    }
    m_ExactFirst = GetProfileInt(kSection, "m_ExactFirst", 0) != 0;
    m_ABits = std::clamp(GetProfileInt(kSection, "m_ABits", 8), 0, 8);
    m_RBits = std::clamp(GetProfileInt(kSection, "m_RBits", 8), 0, 8);
    m_GBits = std::clamp(GetProfileInt(kSection, "m_GBits", 8), 0, 8);
    m_BBits = std::clamp(GetProfileInt(kSection, "m_BBits", 8), 0, 8);
    m_Operation = std::clamp(GetProfileInt(kSection, "m_Operation", 0), 0, 2);
}

CColRedCmd::~CColRedCmd() = default;

bool CColRedCmd::Init(CTavixDoc* doc, unsigned nID) {
    m_pDoc = doc;
    auto palette = [this](int count, int depth) {
        m_ColRedType = 0;
        m_StartColour = 0;
        m_ColourCount = count;
        m_Bpp = depth;
    };
    auto trueColour = [this](int a, int r, int g, int b) {
        m_ColRedType = 1;
        m_ABits = a;
        m_RBits = r;
        m_GBits = g;
        m_BBits = b;
    };
    switch (nID) {
    case Indexed4:
        palette(16, 4);
        break;
    case Indexed8:
        palette(256, 8);
        break;
    case Rgb555:
        trueColour(1, 5, 5, 5);
        break;
    case Rgb565:
        trueColour(0, 5, 6, 5);
        break;
    case Rgb32:
        trueColour(8, 8, 8, 8);
        break;
    case Rgb24:
        trueColour(0, 8, 8, 8);
        break;
    case Rgb555Opaque:
        trueColour(0, 5, 5, 5);
        break;
    case ChangeColorDepth:
        // The saved choices as they stand (the toolbar's lists write them).
        if (m_ColRedType == 1) {
            m_Bpp = m_RBits + m_GBits + m_BBits;
        } else {
            m_StartColour = 0;
            m_ColourCount = m_Bpp == 8 ? 256 : 16;
        }
        break;
    case ColorDepthWizard:
        if (!RunWizard()) return false;
        break;
    default:
        return false;
    }
    if (!CheckValues()) return false;
    CopySelection();
    if (!KeepAlpha(nID == ColorDepthWizard)) return false;
    Submit();
    return true;
}

bool CColRedCmd::KeepAlpha(bool methodChosen) {
    if (m_ColRedType != 0 || m_Operation == 2 || quant_keeps_alpha(m_Method)) return true;
    std::vector<CTavixImage*> images;
    for (int i = 0; i < m_Range.GetSize(); ++i)
        if (m_Range.IsSelected(i) && m_pDoc->GetImageAt(i)) images.push_back(m_pDoc->GetImageAt(i));
    const CTavixImage* clear = firstTransparent(images);
    if (!clear) return true;
    const std::string what = "The image '" + clear->GetName() +
                             "' has transparent pixels and the " + quant_name(m_Method) +
                             " method works on colour alone";
    if (methodChosen) {
        ZyUi().MessageBox(what + ": choose Tw, 4D Wu or Exact to keep them.", MsgButtons::OK,
                          MsgIcon::Error);
        return false;
    }
    // A menu item names no method: take the one that keeps alpha.
    m_Method = quantizerIndex("Tw");
    ZyUi().SetStatusText(what + ": using Tw, which keeps them.");
    return true;
}

bool CColRedCmd::RunWizard() {
    CColRedWizData wizard;
    wizard.m_Type = m_ColRedType;
    wizard.m_Depth = m_Bpp == 4 ? 1 : m_Bpp == 1 ? 2 : 0;
    wizard.m_PalDither = m_Dither;
    wizard.m_Method = std::max(0, m_Method - 1);
    wizard.m_Colours = ColRedMaxColours(wizard.m_Depth);
    wizard.m_Start = 0;
    wizard.m_Operation = m_Operation;
    wizard.m_ExactFirst = m_ExactFirst;
    wizard.m_TrueDither = m_Dither;
    wizard.m_ABits = m_ABits;
    wizard.m_RBits = m_RBits;
    wizard.m_GBits = m_GBits;
    wizard.m_BBits = m_BBits;
    if (!ZyUi().EditDialog(wizard)) return false;

    m_ColRedType = std::clamp(wizard.m_Type, 0, 1);
    g_lastType = m_ColRedType;
    if (m_ColRedType == 1) {
        m_Dither = std::clamp(wizard.m_TrueDither, 0, 3);
        m_ABits = std::clamp(wizard.m_ABits, 0, 8);
        m_RBits = std::clamp(wizard.m_RBits, 0, 8);
        m_GBits = std::clamp(wizard.m_GBits, 0, 8);
        m_BBits = std::clamp(wizard.m_BBits, 0, 8);
    } else {
        m_Dither = std::clamp(wizard.m_PalDither, 0, 3);
        m_Method = std::clamp(wizard.m_Method + 1, 1, kQuantCount - 1);
        m_StartColour = std::clamp(wizard.m_Start, 0, 255);
        m_ColourCount = wizard.m_Colours;
        m_Operation = std::clamp(wizard.m_Operation, 0, 2);
        m_ExactFirst = wizard.m_ExactFirst != 0;
        static constexpr int kDepths[] = {8, 4, 1};
        if (wizard.m_Depth >= 0 && wizard.m_Depth <= 2) m_Bpp = kDepths[wizard.m_Depth];
    }
    WriteProfileInt(kSection, "m_Dither", m_Dither);
    WriteProfileInt(kSection, "m_Method", m_Method);
    WriteProfileInt(kSection, "m_Operation", m_Operation);
    WriteProfileInt(kSection, "m_ExactFirst", m_ExactFirst);
    WriteProfileInt(kSection, "m_ABits", m_ABits);
    WriteProfileInt(kSection, "m_RBits", m_RBits);
    WriteProfileInt(kSection, "m_GBits", m_GBits);
    WriteProfileInt(kSection, "m_BBits", m_BBits);
    return true;
}

bool CColRedCmd::CheckValues() {
    if (m_ColRedType == 1) {
        if (m_RBits + m_GBits + m_BBits == 0) {
            ZyUi().MessageBox("A true-color format needs at least one bit of red, green or blue.",
                              MsgButtons::OK, MsgIcon::Error);
            return false;
        }
        return true;
    }
    // An index the depth cannot hold would be lost when the image is
    // written, so the count is held to what the depth addresses.
    const int depthColours = m_Bpp >= 8 ? 256 : 1 << m_Bpp;
    m_StartColour = std::clamp(m_StartColour, 0, 255);
    m_ColourCount = std::clamp(m_ColourCount, 1, std::min(depthColours, 256 - m_StartColour));
    if (ColRedIsNullQuantizer(m_Method) && !(m_ExactFirst && m_Operation != 2)) {
        char text[160];
        snprintf(text, sizeof text,
                 "The %s quantizer makes no palette: choose another method in the Color Remap "
                 "Wizard.",
                 quant_name(m_Method));
        ZyUi().MessageBox(text, MsgButtons::OK, MsgIcon::Error);
        return false;
    }
    return true;
}

int CColRedCmd::CountColours(const std::vector<CTavixImage*>& images, int limit) const {
    // One indexed image counts its indices; otherwise colours are compared,
    // since the same index means different colours in different palettes.
    const bool byIndex = images.size() == 1 && images[0]->GetInfo()->bufferbpp <= 8;
    std::unordered_set<uint32_t> seen;
    for (const CTavixImage* image : images) {
        const TavixInfo& info = *image->GetInfo();
        for (int y = 0; y < info.height; ++y) {
            const uint8_t* row = image->GetRow(y);
            for (int x = 0; x < info.width; ++x) {
                uint32_t key;
                if (byIndex)
                    key = row[x];
                else if (info.bufferbpp <= 8)
                    key = module_load_argb(reinterpret_cast<const uint8_t*>(&info.colours[row[x]]));
                else
                    key = loadWord(row + 4 * x);
                seen.insert(key);
                if (static_cast<int>(seen.size()) > limit) return static_cast<int>(seen.size());
            }
        }
    }
    return static_cast<int>(seen.size());
}

bool CColRedCmd::BuildPalette(const std::vector<CTavixImage*>& images, bool showProgress) {
    int method = m_Method;
    if (m_ExactFirst && CountColours(images, m_ColourCount) <= m_ColourCount)
        method = quantizerIndex("Exact");
    m_UsedMethod = method;

    const int previous = quant_current();
    quant_select(method);
    char text[96];
    snprintf(text, sizeof text, "Building palette with %s method", quant_name(method));
    ZyUi().SetStatusText(text);
    CProgressDlg progress("Building Palette");
    if (showProgress) {
        progress.Create();
        progress.SetRange(0, static_cast<int>(images.size()));
        progress.SetStatus(text);
    }
    QuantInstance* q = quant_begin();
    bool ok = q != nullptr;
    for (size_t i = 0; ok && i < images.size(); ++i) {
        if (showProgress && progress.CheckCancelButton()) {
            m_Cancelled = true;
            ok = false;
            break;
        }
        // The quantizer sees the colours the channel bits can hold.
        OwnedResult wide;
        ok = quant_expand(images[i]->GetEntry(), &wide.r) &&
             quant_reduce_bits(wide.r.info, wide.r.pixels, wide.r.rowbytes, m_ABits, m_RBits,
                               m_GBits, m_BBits, 0, wide.r.pixels, wide.r.rowbytes) &&
             quant_add_image(q, wide.r.info, wide.r.pixels, wide.r.rowbytes) == 1;
        if (showProgress) progress.StepIt();
    }
    int32_t made = 0;
    uint32_t* colours = nullptr;
    if (ok)
        colours = quant_make_palette(q, m_ColourCount, nullptr, &made);
    else
        quant_abandon(q);
    quant_select(previous);
    if (showProgress) progress.DestroyWindow();

    const int bits[4] = {m_ABits, m_RBits, m_GBits, m_BBits};
    for (int i = 0; i < 256; ++i) {
        const int k = i - m_StartColour;
        m_Used[i] = colours && k >= 0 && k < m_ColourCount && k < made;
        uint32_t colour = 0;
        if (m_Used[i])
            for (int c = 0; c < 4; ++c) {
                const int shift = 24 - 8 * c;
                colour |= uint32_t{quant_reduce_channel(static_cast<uint8_t>(colours[k] >> shift),
                                                        bits[c])}
                          << shift;
            }
        m_Palette[i] = colour;
    }
    if (colours) gfree(colours);
    return colours && made > 0;
}

void CColRedCmd::Do() {
    m_PaletteFailed = false;
    m_Cancelled = false;
    if (m_ColRedType == 0) {
        CTavixImage* focus = m_pDoc->GetFocusImage();
        // An existing palette can only come from a palette image.
        if (m_Operation == 2 && (!focus || focus->GetInfo()->bufferbpp > 8)) m_Operation = 0;
        if (m_Operation == 0) {
            std::vector<CTavixImage*> images;
            for (int i = 0; i < m_Range.GetSize(); ++i)
                if (m_Range.IsSelected(i) && m_pDoc->GetImageAt(i))
                    images.push_back(m_pDoc->GetImageAt(i));
            if (!images.empty() && !BuildPalette(images, images.size() > 1)) {
                // Cancelled or failed: nothing in the document has changed.
                m_Range.SetAll(0);
                if (m_Cancelled) return;
                char text[160];
                snprintf(text, sizeof text,
                         "The %s method made no palette for the selected images (not enough "
                         "memory?); nothing was changed.",
                         quant_name(m_UsedMethod));
                ZyUi().MessageBox(text, MsgButtons::OK, MsgIcon::Error);
                return;
            }
        } else if (m_Operation == 2) {
            const TavixInfo& info = *focus->GetInfo();
            for (int i = 0; i < 256; ++i) {
                m_Palette[i] = module_load_argb(reinterpret_cast<const uint8_t*>(&info.colours[i]));
                m_Used[i] = i >= m_StartColour && i < m_StartColour + m_ColourCount;
            }
        }
    }
    CUndoableCmd::Do();
    if (m_PaletteFailed) {
        char text[160];
        snprintf(text, sizeof text,
                 "The %s method made no palette for an image; the images before it were "
                 "reduced.",
                 quant_name(m_UsedMethod));
        ZyUi().MessageBox(text, MsgButtons::OK, MsgIcon::Error);
    }
}

std::unique_ptr<CTavixImage> CColRedCmd::FilterImage(CTavixImage* image) {
    std::unique_ptr<CTavixImage> result =
        m_ColRedType == 0 ? ToPalette(image) : ToTrueColour(image);
    if (result) result->m_OnWorksheet = image->m_OnWorksheet;
    return result;
}

std::unique_ptr<CTavixImage> CColRedCmd::ToPalette(CTavixImage* image) {
    if (m_Operation == 1 && !BuildPalette({image}, false)) {
        m_PaletteFailed = true;
        return nullptr;
    }
    QuantIndexedSettings s;
    s.start = m_StartColour;
    s.count = m_ColourCount;
    s.dither = m_Dither;
    OwnedResult made;
    if (!quant_make_indexed(image->GetEntry(), m_Palette, m_Used, s, &made.r)) return nullptr;
    auto result = std::make_unique<CTavixImage>();
    result->SetInformation(*made.r.info);
    result->LoadPixelRows({made.r.info, made.r.pixels, made.r.rowbytes});
    TavixInfo* info = result->GetInfoForWrite();
    info->bpp = m_Bpp;
    info->startcolour = m_StartColour;
    // The format's palette size, whatever the quantizer made.
    info->numcolours = m_Bpp > 4 ? 256 : 16;
    info->alphabits = m_ABits;
    info->redbits = m_RBits;
    info->greenbits = m_GBits;
    info->bluebits = m_BBits;
    return result;
}

std::unique_ptr<CTavixImage> CColRedCmd::ToTrueColour(CTavixImage* image) const {
    OwnedResult wide;
    if (!quant_expand(image->GetEntry(), &wide.r) ||
        !quant_reduce_bits(wide.r.info, wide.r.pixels, wide.r.rowbytes, m_ABits, m_RBits, m_GBits,
                           m_BBits, m_Dither, wide.r.pixels, wide.r.rowbytes))
        return nullptr;
    auto result = std::make_unique<CTavixImage>();
    result->SetInformation(*wide.r.info);
    result->LoadPixelRows({wide.r.info, wide.r.pixels, wide.r.rowbytes});
    TavixInfo* info = result->GetInfoForWrite();
    info->bpp = quant_layout_depth(m_ABits, m_RBits, m_GBits, m_BBits);
    info->alphabits = m_ABits;
    info->redbits = m_RBits;
    info->greenbits = m_GBits;
    info->bluebits = m_BBits;
    info->numcolours = 0;
    return result;
}

CColRedInfo::CColRedInfo() : CCommandInfo(ColorDepthWizard) {}

bool CColRedInfo::IsCommand(unsigned nID) const {
    return nID == ColorDepthWizard || (nID >= Indexed4 && nID <= Rgb32) || nID == Rgb24 ||
           nID == Rgb555Opaque || nID == ChangeColorDepth;
}

void CColRedInfo::Create(CTavixDoc* doc, unsigned nID) {
    Start(doc, new CColRedCmd,
          [doc, nID](CCommand* cmd) { return static_cast<CColRedCmd*>(cmd)->Init(doc, nID); });
}

std::vector<std::string> CColRedInfo::GetSettingKeys() const {
    std::vector<std::string> keys;
    for (const char* key : {"m_ColRedType", "m_Dither", "m_Method", "m_Bpp", "m_ExactFirst",
                            "m_ABits", "m_RBits", "m_GBits", "m_BBits", "m_Operation"})
        keys.push_back(std::string(kSection) + "/" + key);
    CColRedWizData wizard;
    for (const std::string& key : DialogKeys(wizard))
        keys.push_back(key);
    return keys;
}

namespace {
CColRedInfo g_colRedInfo;
} // namespace
