#pragma once
// The named palette family (35301, "Named Palette"): adds to the end of
// the document an image named "!pal" that holds the palette the selected
// images share. Loaders that look palettes up by name find it there. The
// entry is a 16 x 16 pixel 8-bit image whose pixel (x, y) is index
// 16 y + x, so it shows the palette as a swatch grid; its 256 colours are
// the shared palette. All selected images must be indexed and have the same
// 256 record palette entries; otherwise a message says so and nothing
// changes. It cannot be undone.

#include "app/doc/Command.h"
#include "tavix/records.h"

class CNamedPaletteCmd : public CCommand {
  public:
    CNamedPaletteCmd();
    bool Init(CTavixDoc* doc) override;
    void Do() override;

  private:
    TavixColour m_Palette[256] = {};
};

class CNamedPaletteInfo : public CCommandInfo {
  public:
    CNamedPaletteInfo();
};
