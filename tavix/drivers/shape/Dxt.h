#pragma once
// Block-compressed textures: DXT1/3/5 blocks in raster order (PC and Xbox
// shapes) and the GameCube's CMPR layout (DXT1-like blocks, big-endian
// colours, grouped in 8x8 tiles). Decoding is our own; encoding goes
// through libsquish for quality.

#include "tavix/core/Host.h"

#include <cstddef>
#include <cstdint>

namespace tavix::dxt {

enum class Kind { Dxt1, Dxt3, Dxt5 };

// Bytes of a w x h level: every started 4x4 block counts whole.
size_t byteSize(Kind kind, size_t width, size_t height);
// CMPR rounds both sides up to 8.
size_t cmprByteSize(size_t width, size_t height);

// `argb` receives width * height words, rows top to bottom.
void decode(Kind kind, const uint8_t* blocks, int width, int height, uint32_t* argb);
void decodeCmpr(const uint8_t* tiles, int width, int height, uint32_t* argb);

// `quality` below 50 trades quality for speed (range fit instead of
// cluster fit).
Bytes encode(Kind kind, const uint32_t* argb, int width, int height, int quality);
Bytes encodeCmpr(const uint32_t* argb, int width, int height, int quality);

// Lossless moves between DXT1 raster blocks and CMPR tiles of the same
// image (padding blocks of CMPR are dropped or written as zeros).
Bytes dxt1ToCmpr(const uint8_t* blocks, int width, int height);
Bytes cmprToDxt1(const uint8_t* tiles, int width, int height);

} // namespace tavix::dxt
