#pragma once
// Editing one palette entry of one indexed image by hand ("Edit Palette
// Entry"): the colour editor starts one such command for each committed
// change of the entry it edits. The pixels keep their indices, so every
// pixel using the entry takes the new colour. It has no menu item.
//
// Undo puts the old colour back, and the image's modified mark as it was,
// so that Undo and Redo restore the record exactly.

#include "app/doc/Command.h"
#include "tavix/records.h"

#include <cstdint>

class CPaletteEntryCmd : public CCommand {
  public:
    // Entry `entry` of the image at position `image` becomes `argb`
    // (0xAARRGGBB).
    CPaletteEntryCmd(int image, int entry, uint32_t argb);

    // Refuses, with a message naming the reason, an image position that is
    // not in the document, an image deeper than 8 bits and an entry
    // outside 0..255. A colour equal to the entry's own is no change and
    // is not submitted.
    bool Init(CTavixDoc* doc) override;
    void Do() override;
    void Undo() override;

    int GetImage() const { return m_Image; }
    int GetEntry() const { return m_Entry; }

  private:
    void Put(const TavixColour& colour, uint8_t mark);

    int m_Image;
    int m_Entry;
    TavixColour m_New{};
    TavixColour m_Old{};
    uint8_t m_OldMark = 0;
    uint8_t m_NewMark = 1;
};
