#pragma once
// Whole images to indexed images: one palette built from several images
// with a quantizer, and an image mapped onto such a palette into a new
// 8-bit result. The Remap module, Mipmap and the editor's colour reduction
// all reduce images through these.

#include "imaging/module/module.h"

#include <cstdint>

struct QuantIndexedSettings {
    int32_t method = 1;  // quantizer index (1: Wu)
    int32_t start = 0;   // first palette entry to fill
    int32_t count = 256; // how many entries to fill
    int32_t dither = 0;  // quant::Dither
    // Bits of alpha, red, green and blue that palette colours are held to
    // (8: as made).
    int32_t bits[4] = {8, 8, 8, 8};
};

// Builds one palette for `n` images (32-bit, or indexed, which are
// expanded through their palettes first) with quantizer s.method: entries
// s.start .. s.start + made - 1 of `palette` receive the colours made, and
// `used` is set for exactly those; other entries are left as they are.
// Returns the number made, 0 when the quantizer made nothing (the null
// quantizer, memory short).
int32_t quant_build_palette(const QuantIndexedSettings& s, const ImageEntry* images, int32_t n,
                            uint32_t palette[256], uint8_t used[256]);

// Maps one image onto the used entries of `palette` with s.dither into a
// new 8-bit result (unpadded rows): the record is a copy of the input's
// with bufferbpp and bpp 8, the palette, startcolour s.start and
// numcolours s.count. False when memory is short or no entry is used.
bool quant_make_indexed(const ImageEntry& in, const uint32_t palette[256], const uint8_t used[256],
                        const QuantIndexedSettings& s, ModuleResult* out);

// A 32-bit copy (galloc record and unpadded pixels) of an image of any
// depth; indexed pixels are expanded through the record's palette.
bool quant_expand(const ImageEntry& in, ModuleResult* out);
