#pragma once
// The colour selection: which of the 256 palette entries the user has
// picked in the palette well. There is one for the whole program, as there
// is one palette well; the palette commands read it when they start (swap
// takes the lowest and highest picked entries, move takes them all as its
// sources, remap and sort restrict themselves to them).
//
// The well edits it and repaints on its notifications; zytool fills it
// from its --colors option.

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

class CColourSelection {
  public:
    static constexpr int kSize = 256;

    bool IsSelected(int index) const;
    // How many entries are selected.
    int GetCount() const { return m_Count; }
    // Indexes outside 0..255 are ignored.
    void Select(int index, bool selected = true);
    void Toggle(int index);
    // Every entry from `first` to `last` (either order, clamped).
    void SelectRange(int first, int last, bool selected = true);
    void Clear();
    // One flag byte per entry, non-zero = selected.
    const std::array<uint8_t, kSize>& GetFlags() const { return m_Flags; }
    void SetFlags(const std::array<uint8_t, kSize>& flags);
    // The selected entries, ascending.
    std::vector<int> GetIndices() const;

    // "3,10-12": the selection as a colour list (see ParseColourList).
    std::string ToText() const;
    // Replaces the selection with the entries `text` names; false, with the
    // selection unchanged, when the text is not a colour list.
    bool FromText(const std::string& text);

    // Called after every change (from the thread that made it).
    int AddListener(std::function<void()> listener);
    void RemoveListener(int id);

  private:
    void Changed();

    std::array<uint8_t, kSize> m_Flags{};
    int m_Count = 0;
    int m_NextListener = 1;
    std::vector<std::pair<int, std::function<void()>>> m_Listeners;
};

// The program's colour selection.
CColourSelection& ZyColourSelection();

// A colour list names palette entries: indexes and ranges "a-b" (either
// order) separated by commas or blanks, each 0 to 255, for example
// "0-15, 32, 40-47". An empty list names none. Sets the named flags in
// `flags` (others untouched) and gives true; gives false for anything
// else, and then `error` says what is wrong.
bool ParseColourList(const std::string& text, std::array<uint8_t, 256>& flags, std::string& error);
