#pragma once
// The nearest palette entry to a colour, by squared distance over alpha,
// red, green and blue, lowest index on ties; exact, but fast enough for
// whole images.
//
// Each entry keeps the other entries sorted by their distance from it. A
// search starts from a guess g (the entry nearest to the centre of the
// colour's coarse grid cell) and walks g's list: once an entry lies more
// than twice as far from g as the colour does, no entry further down the
// list can be nearer (triangle inequality), so the walk stops.

#include <cstdint>

namespace quant {

class Nearest {
  public:
    Nearest() = default;
    ~Nearest();
    Nearest(const Nearest&) = delete;
    Nearest& operator=(const Nearest&) = delete;

    // Takes the entries i < n with used[i] set (all when used is null).
    // False when memory is short or no entry is used.
    bool init(const uint32_t* palette, const uint8_t* used, int32_t n);
    int32_t find(uint32_t argb);

  private:
    struct Neighbour {
        uint32_t distance; // squared
        int32_t index;
    };
    int32_t guess(uint32_t argb);

    uint32_t m_Colours[256] = {};
    int32_t m_Entries[256] = {}; // the used entries' indices, ascending
    int32_t m_Count = 0;
    Neighbour* m_Lists = nullptr; // m_Count lists of m_Count, by position in m_Entries
    int16_t* m_Grid = nullptr;    // 4096 cells (4 bits of r, g, b): a position, -1 unknown
};

uint32_t distance2(uint32_t a, uint32_t b);

} // namespace quant
