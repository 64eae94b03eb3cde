#include "tavix/drivers/shape/Dxt.h"

#include "tavix/core/Picture.h"

#include <cstring>
#include <squish.h>

namespace tavix::dxt {
namespace {

size_t blocksAcross(size_t n) {
    return (n + 3) / 4;
}

uint32_t expand565(uint16_t c, uint32_t& r, uint32_t& g, uint32_t& b) {
    r = (c >> 11) & 31;
    g = (c >> 5) & 63;
    b = c & 31;
    r = r << 3 | r >> 2;
    g = g << 2 | g >> 4;
    b = b << 3 | b >> 2;
    return packArgb(255, r, g, b);
}

// The four colours of a colour block. `threeAllowed` is DXT1's rule that
// c0 <= c1 selects three colours and transparent black.
void palette4(uint16_t c0, uint16_t c1, bool threeAllowed, uint32_t out[4]) {
    uint32_t r0, g0, b0, r1, g1, b1;
    out[0] = expand565(c0, r0, g0, b0);
    out[1] = expand565(c1, r1, g1, b1);
    if (c0 > c1 || !threeAllowed) {
        out[2] = packArgb(255, (2 * r0 + r1) / 3, (2 * g0 + g1) / 3, (2 * b0 + b1) / 3);
        out[3] = packArgb(255, (r0 + 2 * r1) / 3, (g0 + 2 * g1) / 3, (b0 + 2 * b1) / 3);
    } else {
        out[2] = packArgb(255, (r0 + r1) / 2, (g0 + g1) / 2, (b0 + b1) / 2);
        out[3] = 0;
    }
}

uint16_t le16(const uint8_t* p) {
    return static_cast<uint16_t>(p[0] | p[1] << 8);
}

// One 4x4 block of colours into `texels` (16 words, raster order).
void colourBlock(const uint8_t* block, bool threeAllowed, uint32_t texels[16]) {
    uint32_t colours[4];
    palette4(le16(block), le16(block + 2), threeAllowed, colours);
    uint32_t bits =
        block[4] | block[5] << 8 | block[6] << 16 | static_cast<uint32_t>(block[7]) << 24;
    for (int i = 0; i < 16; ++i)
        texels[i] = colours[(bits >> (2 * i)) & 3];
}

void setAlpha(uint32_t& texel, uint32_t alpha) {
    texel = (texel & 0x00FFFFFF) | alpha << 24;
}

void alphaDxt3(const uint8_t* block, uint32_t texels[16]) {
    for (int i = 0; i < 16; ++i) {
        uint32_t a4 = (block[i / 2] >> (4 * (i & 1))) & 15;
        setAlpha(texels[i], a4 * 17);
    }
}

void alphaDxt5(const uint8_t* block, uint32_t texels[16]) {
    uint32_t a0 = block[0], a1 = block[1];
    uint32_t values[8] = {a0, a1};
    if (a0 > a1) {
        for (int i = 1; i < 7; ++i)
            values[i + 1] = ((7 - i) * a0 + i * a1) / 7;
    } else {
        for (int i = 1; i < 5; ++i)
            values[i + 1] = ((5 - i) * a0 + i * a1) / 5;
        values[6] = 0;
        values[7] = 255;
    }
    uint64_t bits = 0;
    for (int i = 0; i < 6; ++i)
        bits |= static_cast<uint64_t>(block[2 + i]) << (8 * i);
    for (int i = 0; i < 16; ++i)
        setAlpha(texels[i], values[(bits >> (3 * i)) & 7]);
}

void storeBlock(const uint32_t texels[16], int bx, int by, int width, int height, uint32_t* argb) {
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 4; ++x) {
            int px = bx * 4 + x, py = by * 4 + y;
            if (px < width && py < height)
                argb[static_cast<size_t>(py) * width + px] = texels[y * 4 + x];
        }
}

int squishFlags(Kind kind, int quality) {
    int flags = kind == Kind::Dxt1   ? squish::kDxt1
                : kind == Kind::Dxt3 ? squish::kDxt3
                                     : squish::kDxt5;
    flags |= quality < 50 ? squish::kColourRangeFit : squish::kColourClusterFit;
    return flags;
}

// GameCube CMPR keeps one byte of indices per row, leftmost texel in the
// top bits, and big-endian colours; otherwise it is a DXT1 block.
void cmprBlockToDxt1(const uint8_t* gc, uint8_t* pc) {
    pc[0] = gc[1];
    pc[1] = gc[0];
    pc[2] = gc[3];
    pc[3] = gc[2];
    for (int y = 0; y < 4; ++y) {
        uint8_t row = gc[4 + y], out = 0;
        for (int x = 0; x < 4; ++x)
            out |= ((row >> (6 - 2 * x)) & 3) << (2 * x);
        pc[4 + y] = out;
    }
}

void dxt1BlockToCmpr(const uint8_t* pc, uint8_t* gc) {
    gc[0] = pc[1];
    gc[1] = pc[0];
    gc[2] = pc[3];
    gc[3] = pc[2];
    for (int y = 0; y < 4; ++y) {
        uint8_t row = pc[4 + y], out = 0;
        for (int x = 0; x < 4; ++x)
            out |= ((row >> (2 * x)) & 3) << (6 - 2 * x);
        gc[4 + y] = out;
    }
}

} // namespace

size_t byteSize(Kind kind, size_t width, size_t height) {
    return blocksAcross(width) * blocksAcross(height) * (kind == Kind::Dxt1 ? 8 : 16);
}

size_t cmprByteSize(size_t width, size_t height) {
    return ((width + 7) / 8) * ((height + 7) / 8) * 32;
}

void decode(Kind kind, const uint8_t* blocks, int width, int height, uint32_t* argb) {
    const int across = static_cast<int>(blocksAcross(width));
    const int down = static_cast<int>(blocksAcross(height));
    const size_t step = kind == Kind::Dxt1 ? 8 : 16;
    uint32_t texels[16];
    for (int by = 0; by < down; ++by)
        for (int bx = 0; bx < across; ++bx) {
            const uint8_t* block = blocks + (static_cast<size_t>(by) * across + bx) * step;
            if (kind == Kind::Dxt1) {
                colourBlock(block, true, texels);
            } else {
                colourBlock(block + 8, false, texels);
                if (kind == Kind::Dxt3)
                    alphaDxt3(block, texels);
                else
                    alphaDxt5(block, texels);
            }
            storeBlock(texels, bx, by, width, height, argb);
        }
}

void decodeCmpr(const uint8_t* tiles, int width, int height, uint32_t* argb) {
    const int tilesAcross = (width + 7) / 8, tilesDown = (height + 7) / 8;
    uint32_t texels[16];
    uint8_t block[8];
    for (int ty = 0; ty < tilesDown; ++ty)
        for (int tx = 0; tx < tilesAcross; ++tx)
            for (int sub = 0; sub < 4; ++sub) {
                const uint8_t* gc =
                    tiles + ((static_cast<size_t>(ty) * tilesAcross + tx) * 4 + sub) * 8;
                cmprBlockToDxt1(gc, block);
                colourBlock(block, true, texels);
                storeBlock(texels, tx * 2 + (sub & 1), ty * 2 + (sub >> 1), width, height, argb);
            }
}

Bytes encode(Kind kind, const uint32_t* argb, int width, int height, int quality) {
    // libsquish wants R, G, B, A bytes (its BGRA source flag is not
    // honoured by every build).
    const size_t n = static_cast<size_t>(width) * height;
    Bytes rgba(4 * n);
    for (size_t i = 0; i < n; ++i) {
        rgba[4 * i] = static_cast<uint8_t>(argb[i] >> 16);
        rgba[4 * i + 1] = static_cast<uint8_t>(argb[i] >> 8);
        rgba[4 * i + 2] = static_cast<uint8_t>(argb[i]);
        rgba[4 * i + 3] = static_cast<uint8_t>(argb[i] >> 24);
    }
    Bytes out(byteSize(kind, width, height), 0);
    squish::CompressImage(rgba.data(), width, height, out.data(), squishFlags(kind, quality));
    return out;
}

Bytes encodeCmpr(const uint32_t* argb, int width, int height, int quality) {
    Bytes raster = encode(Kind::Dxt1, argb, width, height, quality);
    return dxt1ToCmpr(raster.data(), width, height);
}

namespace {
// Calls fn(raster block offset, tile block offset) for every DXT1 block
// of the image.
template <typename Fn> void pairBlocks(int width, int height, Fn fn) {
    const int across = static_cast<int>(blocksAcross(width));
    const int down = static_cast<int>(blocksAcross(height));
    const int tilesAcross = (width + 7) / 8;
    for (int by = 0; by < down; ++by)
        for (int bx = 0; bx < across; ++bx) {
            const size_t tile = static_cast<size_t>(by / 2) * tilesAcross + bx / 2;
            const int sub = (by % 2) * 2 + bx % 2;
            fn((static_cast<size_t>(by) * across + bx) * 8, (tile * 4 + sub) * 8);
        }
}
} // namespace

Bytes dxt1ToCmpr(const uint8_t* blocks, int width, int height) {
    Bytes out(cmprByteSize(width, height), 0);
    pairBlocks(width, height,
               [&](size_t pc, size_t gc) { dxt1BlockToCmpr(blocks + pc, &out[gc]); });
    return out;
}

Bytes cmprToDxt1(const uint8_t* tiles, int width, int height) {
    Bytes out(byteSize(Kind::Dxt1, width, height), 0);
    pairBlocks(width, height, [&](size_t pc, size_t gc) { cmprBlockToDxt1(tiles + gc, &out[pc]); });
    return out;
}

} // namespace tavix::dxt
