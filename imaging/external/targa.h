#pragma once
// The Targa exchange file handed to an outside image editor: written at a
// chosen depth, read back in any of the common Targa forms an editor may
// save (colour-mapped, true-colour or grey, plain or run-length coded,
// 8 to 32 bits, either row order).

#include "imaging/module/module.h"

#include <cstdint>

namespace external {

// Writes `image` to `path` at `depth` bits: 8 (colour-mapped with the
// image's palette; indexed images only), 16 (5 bits per colour and one of
// alpha), 24 or 32. 1 on success; 0 with a line printed otherwise.
int targa_write(const char* path, const ImageEntry& image, int32_t depth);

// A picture read back: ARGB pixels (width x height, no padding), and, for
// a colour-mapped file of 8-bit indices, the indices and its palette.
struct TargaPicture {
    int32_t width = 0, height = 0;
    bool hasAlpha = false;
    uint32_t* argb = nullptr;   // galloc
    uint8_t* indices = nullptr; // galloc, colour-mapped files only
    uint32_t palette[256] = {};
    int32_t paletteSize = 0;
};

// Reads `path`. 1 on success (free with targa_free); 0 with a line printed
// naming what is wrong with the file.
int targa_read(const char* path, TargaPicture* picture);
void targa_free(TargaPicture* picture);

} // namespace external
