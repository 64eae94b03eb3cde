#pragma once
// The remap family: the selected images are mapped to the palette of the
// focused image, each colour to its nearest entry among the colours
// selected in the palette well (all 256 when fewer than two are).
// "Remap Palette" (35063) looks colours up in a table built once per
// command over 15-bit colour keys (5 bits each of red, green and blue, at
// full alpha): fast, but colours that differ only in their low bits or in
// alpha share a key. "Remap Palette (Better)" (35064) searches for every
// colour: slow and exact.
//
// Nearest: the smallest sum of squared differences of alpha, red, green
// and blue; the lowest index wins a tie. True-colour images become 8-bit
// images with 256 colours. Indexed images keep their depth unless an index
// they need does not fit in it, in which case they become 8-bit too. The
// items are enabled while the focused image is indexed.

#include "app/cmds/PaletteOps.h"
#include "app/doc/UndoableCmd.h"

class CRemapPaletteCmd : public CUndoableCmd {
  public:
    CRemapPaletteCmd();
    using CUndoableCmd::Init;
    virtual bool Init(CTavixDoc* doc, bool useTable);
    std::unique_ptr<CTavixImage> FilterImage(CTavixImage* image) override;

    bool UsesTable() const { return !m_Table.empty(); }

  private:
    // The target index of a colour: through the table or by search.
    int Lookup(uint32_t argb) const;

    TavixColour m_Palette[256] = {};
    palette_ops::Flags m_Candidates{};
    std::vector<uint8_t> m_Table; // 32768 entries with the table, else empty
};

class CRemapPaletteInfo : public CCommandInfo {
  public:
    CRemapPaletteInfo();
    bool IsCommand(unsigned nID) const override;
    void OnUpdate(CTavixDoc* doc, CCmdUI* ui) override;
    void Create(CTavixDoc* doc, unsigned nID) override;
};
