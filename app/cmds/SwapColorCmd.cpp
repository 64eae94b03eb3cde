#include "app/cmds/SwapColorCmd.h"

#include "app/cmds/PaletteOps.h"
#include "app/doc/ColourSelection.h"
#include "app/doc/CommandIds.h"
#include "app/doc/TavixImage.h"

#include <utility>

std::vector<CDialogField> CSwapColorDlgData::GetFields() {
    return {{"m_Index1", CDialogField::Integer, &m_Index1, 0, 255, "", "&Swap:"},
            {"m_Index2", CDialogField::Integer, &m_Index2, 0, 255, "", "&With:"}};
}

CSwapColorCmd::CSwapColorCmd() {
    m_Name = "Swap Colors";
    FindModule("xcolour");
    m_bShowProgress = false;
    m_Index1 = GetProfileInt("CSwapColorCmd", "m_Index1", 0);
    m_Index2 = GetProfileInt("CSwapColorCmd", "m_Index2", 255);
}

bool CSwapColorCmd::Init(CTavixDoc* doc, bool swapPixels) {
    m_pDoc = doc;
    const CColourSelection& colours = ZyColourSelection();
    for (int i = 0; i <= 255; ++i)
        if (colours.IsSelected(i)) {
            m_Index1 = i;
            break;
        }
    for (int i = 255; i >= 1; --i)
        if (colours.IsSelected(i)) {
            m_Index2 = i;
            break;
        }
    if (colours.GetCount() != 2) {
        CSwapColorDlgData dialog;
        dialog.m_Index1 = m_Index1;
        dialog.m_Index2 = m_Index2;
        if (!ZyUi().EditDialog(dialog)) return false;
        m_Index1 = dialog.m_Index1;
        m_Index2 = dialog.m_Index2;
    }
    CopySelection();
    m_bSwapPixels = swapPixels;
    // Both values go to m_Index1, the second overwriting the first, and
    // m_Index2 is never written: the next dialog opens with the last
    // "With" index as its "Swap" index. Settings files carry the pair
    // this way, so it stays.
    WriteProfileInt("CSwapColorCmd", "m_Index1", m_Index1);
    WriteProfileInt("CSwapColorCmd", "m_Index1", m_Index2);
    Submit();
    return true;
}

std::unique_ptr<CTavixImage> CSwapColorCmd::FilterImage(CTavixImage* image) {
    std::unique_ptr<CTavixImage> copy = image->Duplicate();
    if (!copy || copy->GetBitCount() > 8) return copy;
    if (m_bSwapPixels) {
        uint8_t map[256];
        for (int i = 0; i < 256; ++i)
            map[i] = static_cast<uint8_t>(i);
        map[m_Index1] = static_cast<uint8_t>(m_Index2);
        map[m_Index2] = static_cast<uint8_t>(m_Index1);
        palette_ops::remapIndices(*copy, map);
    }
    TavixColour palette[256];
    copy->GetPalette(palette);
    std::swap(palette[m_Index1], palette[m_Index2]);
    copy->SetPaletteEntry(m_Index1, palette[m_Index1]);
    copy->SetPaletteEntry(m_Index2, palette[m_Index2]);
    return copy;
}

CSwapColorInfo::CSwapColorInfo() : CCommandInfo(ID_PALETTE_SWAP_COLORS) {
    m_bReserved1 = true;
}

bool CSwapColorInfo::IsCommand(unsigned nID) const {
    return nID == ID_PALETTE_EXCHANGE_COLORS || nID == ID_PALETTE_SWAP_COLORS;
}

void CSwapColorInfo::Create(CTavixDoc* doc, unsigned nID) {
    const bool swapPixels = nID == ID_PALETTE_SWAP_COLORS;
    Start(doc, new CSwapColorCmd, [doc, swapPixels](CCommand* cmd) {
        return static_cast<CSwapColorCmd*>(cmd)->Init(doc, swapPixels);
    });
}

std::vector<std::string> CSwapColorInfo::GetSettingKeys() const {
    CSwapColorDlgData data;
    std::vector<std::string> keys = {"CSwapColorCmd/m_Index1", "CSwapColorCmd/m_Index2"};
    for (const std::string& key : DialogKeys(data))
        keys.push_back(key);
    return keys;
}

namespace {
CSwapColorInfo g_swapColorInfo;
} // namespace
