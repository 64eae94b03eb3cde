#include "app/cmds/RemapPaletteCmd.h"

#include "app/doc/CmdUI.h"
#include "app/doc/ColourSelection.h"
#include "app/doc/CommandIds.h"
#include "app/doc/TavixDoc.h"
#include "app/doc/TavixImage.h"

#include <cstring>

using namespace palette_ops;

namespace {

constexpr int kTableSize = 32768;

// 5 bits to 8, the top bits repeated below.
uint32_t expand5(uint32_t c) {
    return (c * 8) | (c / 4);
}

int tableKey(uint32_t value) {
    return static_cast<int>(((value >> 19) & 0x1F) << 10 | ((value >> 11) & 0x1F) << 5 |
                            ((value >> 3) & 0x1F));
}

} // namespace

CRemapPaletteCmd::CRemapPaletteCmd() {
    m_Name = "Ramap Palette";
    FindModule("remap");
    m_bShowProgress = false;
}

bool CRemapPaletteCmd::Init(CTavixDoc* doc, bool useTable) {
    m_pDoc = doc;
    CopySelection();
    const CTavixImage* focused = doc->GetFocusImage();
    if (!focused) return false;
    focused->GetPalette(m_Palette);
    const CColourSelection& colours = ZyColourSelection();
    m_Candidates = colours.GetCount() < 2 ? allFlags() : colours.GetFlags();
    if (useTable) {
        m_Table.resize(kTableSize);
        for (int key = 0; key < kTableSize; ++key) {
            const uint32_t value = 0xFF000000u | expand5((key >> 10) & 0x1F) << 16 |
                                   expand5((key >> 5) & 0x1F) << 8 | expand5(key & 0x1F);
            m_Table[static_cast<size_t>(key)] =
                static_cast<uint8_t>(nearest(value, m_Palette, m_Candidates));
        }
    }
    Submit();
    return true;
}

int CRemapPaletteCmd::Lookup(uint32_t value) const {
    if (!m_Table.empty()) return m_Table[static_cast<size_t>(tableKey(value))];
    return nearest(value, m_Palette, m_Candidates);
}

std::unique_ptr<CTavixImage> CRemapPaletteCmd::FilterImage(CTavixImage* image) {
    if (image->GetBitCount() > 8) {
        std::unique_ptr<CTavixImage> result = indexedLike(*image, m_Palette);
        for (int y = 0; y < image->GetHeight(); ++y) {
            const uint8_t* from = image->GetRow(y);
            uint8_t* to = result->GetRow(y);
            for (int x = 0; x < image->GetWidth(); ++x) {
                uint32_t value;
                memcpy(&value, from + 4 * x, sizeof value);
                to[x] = static_cast<uint8_t>(Lookup(value));
            }
        }
        return result;
    }
    // An indexed image: each of its entries is looked up once.
    TavixColour own[256];
    image->GetPalette(own);
    uint8_t map[256];
    for (int i = 0; i < 256; ++i)
        map[i] = static_cast<uint8_t>(Lookup(argb(own[i])));
    const std::array<uint32_t, 256> used = usage(*image);
    bool fits = true;
    for (int i = 0; i < 256; ++i)
        if (used[static_cast<size_t>(i)] && map[i] >= image->GetColorCount()) fits = false;
    std::unique_ptr<CTavixImage> result =
        fits ? image->Duplicate() : indexedLike(*image, m_Palette);
    if (!result) return nullptr;
    if (fits) {
        remapIndices(*result, map);
        for (int i = 0; i < 256; ++i)
            result->SetPaletteEntry(i, m_Palette[i]);
        return result;
    }
    for (int y = 0; y < image->GetHeight(); ++y) {
        const uint8_t* from = image->GetRow(y);
        uint8_t* to = result->GetRow(y);
        for (int x = 0; x < image->GetWidth(); ++x)
            to[x] = map[from[x]];
    }
    return result;
}

CRemapPaletteInfo::CRemapPaletteInfo() : CCommandInfo(ID_IMAGE_REMAP_PALETTE) {
    m_bReserved1 = true;
}

bool CRemapPaletteInfo::IsCommand(unsigned nID) const {
    return nID == ID_IMAGE_REMAP_PALETTE || nID == ID_IMAGE_REMAP_PALETTE_BETTER;
}

void CRemapPaletteInfo::OnUpdate(CTavixDoc* doc, CCmdUI* ui) {
    const CTavixImage* focused = doc->GetFocusImage();
    ui->Enable(focused && focused->GetBitCount() <= 8);
}

void CRemapPaletteInfo::Create(CTavixDoc* doc, unsigned nID) {
    const bool useTable = nID == ID_IMAGE_REMAP_PALETTE;
    Start(doc, new CRemapPaletteCmd, [doc, useTable](CCommand* cmd) {
        return static_cast<CRemapPaletteCmd*>(cmd)->Init(doc, useTable);
    });
}

namespace {
CRemapPaletteInfo g_remapPaletteInfo;
} // namespace
