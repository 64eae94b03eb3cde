#pragma once
// Palettes of indexed images: their entries, the nearest entry to a colour,
// and expanding indices to 32-bit pixels.

#include "imaging/module/module.h"

#include <cstdint>

namespace resample {

// The palette entry `index` of a record as an 0xAARRGGBB word.
uint32_t palette_argb(const TavixInfo* info, int32_t index);

// Number of palette entries a record really holds: numcolours held to
// 1 .. 256, or 256 when it says none.
int32_t palette_size(const TavixInfo* info);

// The index of the palette entry nearest to `colour` among the entries
// the image owns, startcolour .. startcolour + palette_size - 1 (squared distance of
// red, green and blue, and of alpha when the record has alpha bits; the
// lowest index on ties).
int32_t palette_nearest(const TavixInfo* info, uint32_t colour);

// A 32-bit copy of an indexed image: a new record (bufferbpp and bpp 32,
// the palette kept in it) and unpadded pixels, both from galloc. False,
// with nothing allocated, when memory is short.
bool indexed_to_argb(const ImageEntry& in, TavixInfo** info, uint8_t** pixels);

} // namespace resample
