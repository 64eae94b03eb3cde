#include "app/cmds/PaletteEntryCmd.h"

#include "app/cmds/PaletteOps.h"
#include "app/doc/Hints.h"
#include "app/doc/TavixDoc.h"
#include "app/doc/TavixImage.h"
#include "app/doc/UserInterface.h"

CPaletteEntryCmd::CPaletteEntryCmd(int image, int entry, uint32_t argb)
    : m_Image(image), m_Entry(entry), m_New(palette_ops::colour(argb)) {
    m_Name = "Edit Palette Entry";
    m_bCanUndo = true;
}

bool CPaletteEntryCmd::Init(CTavixDoc* doc) {
    m_pDoc = doc;
    const CTavixImage* image = doc ? doc->GetImageAt(m_Image) : nullptr;
    if (!image) {
        ZyUi().MessageBox("There is no image " + std::to_string(m_Image + 1) +
                          " to edit a palette entry of.");
        return false;
    }
    if (image->GetBitCount() > 8) {
        ZyUi().MessageBox("Image " + std::to_string(m_Image + 1) + " has " +
                          std::to_string(image->GetBitCount()) +
                          " bits per pixel and no palette to edit.");
        return false;
    }
    if (m_Entry < 0 || m_Entry > 255) {
        ZyUi().MessageBox("Palette entry " + std::to_string(m_Entry) +
                          " does not exist: entries are 0 to 255.");
        return false;
    }
    TavixColour palette[256];
    image->GetPalette(palette);
    m_Old = palette[m_Entry];
    if (palette_ops::argb(m_Old) == palette_ops::argb(m_New)) return false;
    m_OldMark = image->GetModifiedMark();
    Submit();
    return true;
}

void CPaletteEntryCmd::Put(const TavixColour& colour, uint8_t mark) {
    CTavixImage* image = m_pDoc->GetImageAt(m_Image);
    if (!image) return;
    image->SetPaletteEntry(m_Entry, colour);
    image->SetModifiedMark(mark);
    CModifiedHint hint(m_Image, m_pDoc->GetImageCount());
    m_pDoc->UpdateAllViews(nullptr, 0, &hint);
}

void CPaletteEntryCmd::Do() {
    Put(m_New, m_NewMark);
}

void CPaletteEntryCmd::Undo() {
    Put(m_Old, m_OldMark);
}
