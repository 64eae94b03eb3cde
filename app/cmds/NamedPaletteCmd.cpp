#include "app/cmds/NamedPaletteCmd.h"

#include "app/cmds/ListEdit.h"
#include "app/doc/CRange.h"
#include "app/doc/CommandIds.h"
#include "app/doc/Hints.h"
#include "app/doc/TavixDoc.h"
#include "app/doc/TavixImage.h"

#include <cstring>

CNamedPaletteCmd::CNamedPaletteCmd() {
    m_Name = "Named Palette";
}

bool CNamedPaletteCmd::Init(CTavixDoc* doc) {
    m_pDoc = doc;
    CRange selection;
    doc->GetSelectionMask(selection);
    bool first = true;
    bool same = selection.Count() > 0;
    for (int i : MarkedPositions(selection)) {
        const CTavixImage* image = doc->GetImageAt(i);
        if (!image || image->GetBitCount() > 8) {
            same = false;
            break;
        }
        TavixColour palette[256];
        image->GetPalette(palette);
        if (first)
            memcpy(m_Palette, palette, sizeof m_Palette);
        else if (memcmp(m_Palette, palette, sizeof m_Palette) != 0)
            same = false;
        first = false;
    }
    if (!same) {
        ZyUi().MessageBox("Cannot insert named palette if palettes of selected images are not the "
                          "same or all images are not palette based.",
                          MsgButtons::OK, MsgIcon::Warning);
        return false;
    }
    Submit();
    return true;
}

void CNamedPaletteCmd::Do() {
    auto image = std::make_unique<CTavixImage>();
    image->Create(16, 16, 8);
    image->SetName("!pal");
    for (int i = 0; i < 256; ++i) {
        image->SetPaletteEntry(i, m_Palette[i]);
        image->GetRow(i / 16)[i % 16] = static_cast<uint8_t>(i);
    }
    const int position = InsertImageAt(m_pDoc, m_pDoc->GetImageCount(), std::move(image));
    CInsertHint hint(position, 1);
    m_pDoc->UpdateAllViews(nullptr, 0, &hint);
}

CNamedPaletteInfo::CNamedPaletteInfo()
    : CCommandInfo(ID_IMAGE_NAMED_PALETTE, [] { return new CNamedPaletteCmd; }) {}

namespace {
CNamedPaletteInfo g_namedPaletteInfo;
} // namespace
