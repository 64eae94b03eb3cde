#pragma once
// Indexed images and 32-bit ones, both ways: expanding indices through the
// palette, and mapping 32-bit pixels back onto a palette by nearest colour.

#include "imaging/module/module.h"

#include <cstdint>

namespace resample {

// The palette entry `index` of a record as an 0xAARRGGBB word.
uint32_t palette_argb(const TavixInfo* info, int32_t index);

// Number of palette entries a record really holds: numcolours held to
// 1 .. 256, or 256 when it says none.
int32_t palette_size(const TavixInfo* info);

// The index of the palette entry nearest to `colour` (squared distance of
// red, green and blue, and of alpha when the record has alpha bits; the
// lowest index on ties).
int32_t palette_nearest(const TavixInfo* info, uint32_t colour);

// A 32-bit copy of an indexed image: a new record (bufferbpp and bpp 32,
// the palette kept in it) and unpadded pixels, both from galloc. False,
// with nothing allocated, when memory is short.
bool indexed_to_argb(const ImageEntry& in, TavixInfo** info, uint8_t** pixels);

// Maps the unpadded 32-bit pixels of `width` x `height` onto the palette of
// `palette` into new unpadded indexed pixels (galloc). Null when memory is
// short.
uint8_t* argb_to_indexed(const uint8_t* pixels, int32_t width, int32_t height,
                         const TavixInfo* palette);

} // namespace resample
