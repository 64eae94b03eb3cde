#pragma once
// Mapping 32-bit images onto a palette, with or without error diffusion,
// and reducing the bits of each channel of a 32-bit image.

#include "imaging/quant/diffuse.h"
#include "imaging/quant/quant.h"

#include <cstdint>

// Maps the 32-bit pixels of `info` onto the used entries of `palette` (256
// 0xAARRGGBB words; an entry takes part when used[i] is set, every entry
// when used is null) and writes one index per pixel into `out`.
//
// With a map, a pixel takes entry mapOffset + the map's index for its
// colour, or the nearest used entry when that one is not used; without a
// map, always the nearest used entry (alpha counts in the distance).
// dither: quant::kDitherNone, kDitherFloyd, kDitherBurkes, kDitherStucki.
// 1 on success; 0 for a record that is not 32 bits, no used entry, or
// memory short.
int quant_remap(const TavixInfo* info, const void* pixels, int32_t rowbytes,
                const uint32_t* palette, const uint8_t* used, int32_t dither,
                const QuantInverseMap* map, int32_t mapOffset, uint8_t* out, int32_t outRowbytes);

// Reduces every channel of a 32-bit image to the given bits (0 .. 8 each)
// and writes 32-bit pixels into `out`: each channel becomes the nearest
// value that the reduced channel expands back to by bit replication (5-bit
// 0x1F -> 0xFF). Alpha with 0 bits becomes 255; a colour channel with 0
// bits becomes 0. Dithering spreads the red, green and blue error. `out`
// may be the input. 1 on success; 0 for a bad record or bits.
int quant_reduce_bits(const TavixInfo* info, const void* pixels, int32_t rowbytes, int32_t abits,
                      int32_t rbits, int32_t gbits, int32_t bbits, int32_t dither, void* out,
                      int32_t outRowbytes);

// The value an 8-bit channel value becomes at `bits` bits (expanded again).
uint8_t quant_reduce_channel(uint8_t value, int32_t bits);

// The nominal depth of a true-colour layout: red + green + blue bits, or
// all four when they reach 24 or alpha has 4 bits or more (1555 and 0555
// give 15, 565 and 4444 16, 888 24, 8888 32).
int32_t quant_layout_depth(int32_t abits, int32_t rbits, int32_t gbits, int32_t bbits);
