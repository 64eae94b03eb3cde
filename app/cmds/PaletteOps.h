#pragma once
// Pixel and palette helpers that the palette commands share: colour words,
// the distance between two colours, the nearest palette entry, and an
// indexed copy of an image with a new palette.

#include "tavix/records.h"

#include <array>
#include <cstdint>
#include <memory>

class CTavixImage;

namespace palette_ops {

using Flags = std::array<uint8_t, 256>;

inline uint32_t argb(const TavixColour& c) {
    return static_cast<uint32_t>(c.alpha) << 24 | static_cast<uint32_t>(c.red) << 16 |
           static_cast<uint32_t>(c.green) << 8 | c.blue;
}

inline TavixColour colour(uint32_t argb) {
    return TavixColour{static_cast<uint8_t>(argb), static_cast<uint8_t>(argb >> 8),
                       static_cast<uint8_t>(argb >> 16), static_cast<uint8_t>(argb >> 24)};
}

// The sum of the squared differences of the four bytes.
int distance(uint32_t a, uint32_t b);

// The candidate entry of `palette` nearest to `argb`: candidates are tried
// in index order and only a strictly smaller distance replaces the best, so
// the lowest index wins a tie; an exact match ends the search. -1 when
// there is no candidate.
int nearest(uint32_t argb, const TavixColour palette[256], const Flags& candidates);

// Every flag set.
Flags allFlags();

// The stored index bytes of an image of 8 bits or fewer, rewritten through
// `map` (old index -> new index).
void remapIndices(CTavixImage& image, const uint8_t map[256]);

// How many pixels use each index (images of 8 bits or fewer).
std::array<uint32_t, 256> usage(const CTavixImage& image);

// An 8-bit image with `source`'s record (name, points, comment ...),
// 256 colours from `palette` starting at 0, and zero pixels.
std::unique_ptr<CTavixImage> indexedLike(const CTavixImage& source, const TavixColour palette[256]);

} // namespace palette_ops
