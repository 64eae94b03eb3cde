#pragma once
// Nearest-neighbour resizing, for indexed pixels (where colours cannot be
// mixed) and for the plain Scale module.

#include "imaging/module/module.h"

#include <cstdint>

namespace resample {

// Source index feeding result index i of n when the source has m samples:
// the one under the result sample's centre, floor((i + 0.5) x m / n),
// computed exactly in integers.
inline int32_t nearest_index(int32_t i, int32_t n, int32_t m) {
    return static_cast<int32_t>((2 * int64_t{i} + 1) * m / (2 * int64_t{n}));
}

// Writes `width` x `height` pixels of the input's depth into `pixels`.
// False only when the column map cannot be allocated.
bool nearest_resize(const ImageEntry& in, uint8_t* pixels, int32_t rowbytes, int32_t width,
                    int32_t height);

} // namespace resample
