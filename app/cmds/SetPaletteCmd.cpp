#include "app/cmds/SetPaletteCmd.h"

#include "app/doc/ColourSelection.h"
#include "app/doc/CommandIds.h"
#include "app/doc/TavixDoc.h"
#include "app/doc/TavixImage.h"

#include <optional>
#include <tuple>

using namespace palette_ops;

namespace {
constexpr size_t kMaxColorsText = 255;
} // namespace

std::vector<CDialogField> CSetPaletteDlgData::GetFields() {
    return {{"m_ShapeIndex", CDialogField::Integer, &m_ShapeIndex, 0,
             static_cast<double>(m_ImageCount), "", "Get palette from shape index: (0 = focused)"},
            {"m_AllColors", CDialogField::Choice, &m_AllColors, 0, 1, "No,Yes", "All Colors"},
            {"m_Colors", CDialogField::Text, &m_Colors, 0, 0, "", "Colors to set:"}};
}

CSetPaletteCmd::CSetPaletteCmd() {
    m_Name = "Set Palette";
    FindModule("remap");
    m_bShowProgress = false;
}

bool CSetPaletteCmd::Init(CTavixDoc* doc, int target) {
    m_pDoc = doc;
    m_Target = target;
    CSetPaletteDlgData dialog;
    dialog.m_ImageCount = doc->GetImageCount();
    dialog.m_AllColors = GetProfileInt("CSetPaletteCmd", "m_AllColors", 1) ? 1 : 0;
    dialog.m_Colors = GetProfileString("CSetPaletteCmd", "m_Colors", "");
    // The values last refused: a front end that cannot change them (zytool)
    // would otherwise be asked for ever.
    std::optional<std::tuple<int, int, std::string>> refused;
    for (;;) {
        if (!ZyUi().EditDialog(dialog)) return false;
        const auto values =
            std::make_tuple(dialog.m_ShapeIndex, dialog.m_AllColors, dialog.m_Colors);
        if (refused && *refused == values) return false;
        const CTavixImage* source = dialog.m_ShapeIndex == 0
                                        ? doc->GetFocusImage()
                                        : doc->GetImageAt(dialog.m_ShapeIndex - 1);
        std::string error;
        Flags entries{};
        if (!source)
            error = "There is no shape " + std::to_string(dialog.m_ShapeIndex) +
                    " to get the palette from.";
        else if (source->GetBitCount() > 8)
            error = "Image to get palette from must be 8 bpp or less";
        else if (dialog.m_AllColors)
            entries = allFlags();
        else if (dialog.m_Colors.size() > kMaxColorsText)
            error = "Colors to set: the list is longer than 255 characters.";
        else if (!ParseColourList(dialog.m_Colors, entries, error))
            error = "Colors to set: " + error + ".";
        if (error.empty()) {
            source->GetPalette(m_Palette);
            m_Entries = entries;
            break;
        }
        ZyUi().MessageBox(error, MsgButtons::OK, MsgIcon::Warning);
        refused = values;
    }
    WriteProfileInt("CSetPaletteCmd", "m_AllColors", dialog.m_AllColors);
    WriteProfileString("CSetPaletteCmd", "m_Colors", dialog.m_Colors);
    if (target == All) {
        m_Range = CRange(doc->GetImageCount());
        m_Range.SetAll(1);
    } else
        CopySelection();
    Submit();
    return true;
}

std::unique_ptr<CTavixImage> CSetPaletteCmd::FilterImage(CTavixImage* image) {
    std::unique_ptr<CTavixImage> copy = image->Duplicate();
    if (!copy || (copy->GetBitCount() > 8 && m_Target != Attach)) return copy;
    for (int i = 0; i < 256; ++i)
        if (m_Entries[static_cast<size_t>(i)]) copy->SetPaletteEntry(i, m_Palette[i]);
    return copy;
}

CSetPaletteInfo::CSetPaletteInfo() : CCommandInfo(ID_IMAGE_SET_PALETTE_SELECTED) {}

bool CSetPaletteInfo::IsCommand(unsigned nID) const {
    return nID == ID_IMAGE_SET_PALETTE_SELECTED || nID == ID_IMAGE_SET_PALETTE_ALL ||
           nID == ID_IMAGE_ATTACH_PALETTE;
}

void CSetPaletteInfo::Create(CTavixDoc* doc, unsigned nID) {
    const int target = nID == ID_IMAGE_SET_PALETTE_SELECTED ? CSetPaletteCmd::Selected
                       : nID == ID_IMAGE_SET_PALETTE_ALL    ? CSetPaletteCmd::All
                                                            : CSetPaletteCmd::Attach;
    Start(doc, new CSetPaletteCmd, [doc, target](CCommand* cmd) {
        return static_cast<CSetPaletteCmd*>(cmd)->Init(doc, target);
    });
}

std::vector<std::string> CSetPaletteInfo::GetSettingKeys() const {
    CSetPaletteDlgData data;
    std::vector<std::string> keys = {"CSetPaletteCmd/m_AllColors", "CSetPaletteCmd/m_Colors"};
    for (const std::string& key : DialogKeys(data))
        keys.push_back(key);
    return keys;
}

namespace {
CSetPaletteInfo g_setPaletteInfo;
} // namespace
