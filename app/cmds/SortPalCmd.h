#pragma once
// The palette sort family: the palettes of the selected indexed images are
// put in the order a sort string names, and every pixel follows its colour
// to the new index, so the pictures look exactly as before.
//
// A sort string is a list of keys, the first deciding first: A alpha,
// R red, G green, B blue, P popularity (how many pixels of the image use
// the entry), H hue (0 to 360 degrees, greys 0), S saturation and V value
// (HSV). An upper-case letter sorts by that key ascending, a lower-case one
// descending; entries equal in every key keep their order. Blanks are
// ignored; anything else is refused with a message.
//
// "Sort Palette..." (25240) asks the string in CSortPalDlg, starting from
// the saved [CSortPalCmd] m_SortStr, and saves it on OK. 35241 to 35244
// sort by the fixed strings "HSV", "RGB", "P" and "p" without asking;
// the last two are disabled while more than one colour is selected in the
// palette well. With more than one colour selected there, only those
// entries take part: they are sorted among their own places and every
// other entry stays where it is. Only the entries the image's depth can
// address take part (16 for a 4-bit image).

#include "app/cmds/PaletteOps.h"
#include "app/doc/UndoableCmd.h"
#include "app/doc/UserInterface.h"

#include <string>

struct CSortPalDlgData : CDialogData {
    std::string m_SortStr;
    const char* GetDialogName() const override { return "CSortPalDlg"; }
    std::vector<CDialogField> GetFields() override;
};

// Empty when `keys` is a good sort string, else what is wrong with it.
std::string SortStringError(const std::string& keys);

// The new order of a palette: order[new index] = old index. Only the
// entries flagged in `mask` and below `entries` move.
std::array<uint8_t, 256> PaletteSortOrder(const TavixColour palette[256],
                                          const std::array<uint32_t, 256>& usage,
                                          const palette_ops::Flags& mask, int entries,
                                          const std::string& keys);

class CSortPalCmd : public CUndoableCmd {
  public:
    CSortPalCmd();
    // Asks the sort string (25240).
    bool Init(CTavixDoc* doc) override;
    // Sorts by `sortString` without asking.
    bool Init(CTavixDoc* doc, const std::string& sortString);
    std::unique_ptr<CTavixImage> FilterImage(CTavixImage* image) override;

    const std::string& GetSortString() const { return m_SortStr; }

  private:
    std::string m_SortStr;
    palette_ops::Flags m_Mask{};
};

class CSortPalInfo : public CCommandInfo {
  public:
    CSortPalInfo();
    bool IsCommand(unsigned nID) const override;
    void OnUpdate(CTavixDoc* doc, CCmdUI* ui) override;
    void Create(CTavixDoc* doc, unsigned nID) override;
    std::vector<std::string> GetSettingKeys() const override;
};
