// The GameCube's tiled texture layouts. Tiles run left to right, top to
// bottom; texels inside a tile likewise. Images are padded to whole tiles
// and the padding is written as zeros.

#include "tavix/core/Errors.h"
#include "tavix/drivers/shape/Dxt.h"
#include "tavix/drivers/shape/Format.h"

namespace tavix::shape {
namespace {

struct Tile {
    int width, height;
};

Tile tileOf(Layout layout) {
    switch (layout) {
    case Layout::GcC8:
        return {8, 4};
    case Layout::GcC4:
        return {8, 8};
    default:
        return {4, 4};
    }
}

// Calls fn(ordinal, x, y) for every texel slot of the tiled stream in
// stream order; (x, y) may lie in the padding.
template <typename Fn> void walk(Layout layout, int32_t width, int32_t height, Fn fn) {
    const Tile tile = tileOf(layout);
    const int across = (width + tile.width - 1) / tile.width;
    const int down = (height + tile.height - 1) / tile.height;
    size_t ordinal = 0;
    for (int ty = 0; ty < down; ++ty)
        for (int tx = 0; tx < across; ++tx)
            for (int y = 0; y < tile.height; ++y)
                for (int x = 0; x < tile.width; ++x)
                    fn(ordinal++, tx * tile.width + x, ty * tile.height + y);
}

uint32_t expand5(uint32_t v) {
    return v << 3 | v >> 2;
}
uint32_t expand6(uint32_t v) {
    return v << 2 | v >> 4;
}
uint32_t quant(uint32_t value, int bits) {
    return (value * ((1u << bits) - 1) + 127) / 255;
}

} // namespace

void decodeTiled(Layout layout, const uint8_t* src, int32_t width, int32_t height, Picture& out) {
    if (layout == Layout::GcCmpr) {
        out.makeTrueColour(width, height);
        dxt::decodeCmpr(src, width, height, out.argb.data());
        return;
    }
    if (layout == Layout::GcC8 || layout == Layout::GcC4)
        out.makeIndexed(width, height);
    else
        out.makeTrueColour(width, height);
    walk(layout, width, height, [&](size_t n, int x, int y) {
        if (x >= width || y >= height) return;
        const size_t at = static_cast<size_t>(y) * width + x;
        switch (layout) {
        case Layout::GcC8:
            out.indices[at] = src[n];
            break;
        case Layout::GcC4:
            out.indices[at] = (n & 1) ? src[n / 2] & 15 : src[n / 2] >> 4;
            break;
        case Layout::GcRgb565: {
            uint32_t v = get16(src + 2 * n, true);
            out.argb[at] = packArgb(255, expand5(v >> 11), expand6((v >> 5) & 63), expand5(v & 31));
            break;
        }
        default: { // GcRgba8: 64-byte tiles, alpha/red pairs then green/blue pairs
            const uint8_t* tile = src + (n / 16) * 64;
            const size_t i = n % 16;
            out.argb[at] =
                packArgb(tile[2 * i], tile[2 * i + 1], tile[32 + 2 * i], tile[33 + 2 * i]);
            break;
        }
        }
    });
}

void encodeTiled(Layout layout, const Picture& in, int quality, Bytes& out) {
    const int32_t width = in.width, height = in.height;
    if (layout == Layout::GcCmpr) {
        Words words(static_cast<size_t>(width) * height);
        for (size_t i = 0; i < words.size(); ++i)
            words[i] = in.argbAt(i);
        Bytes tiles = dxt::encodeCmpr(words.data(), width, height, quality);
        out.insert(out.end(), tiles.begin(), tiles.end());
        return;
    }
    const bool indexed = layout == Layout::GcC8 || layout == Layout::GcC4;
    if (indexed && !in.indexed) fail("an indexed record needs palette indices");
    const size_t start = out.size();
    out.resize(start + levelBytes(layout, width, height), 0);
    uint8_t* dst = out.data() + start;
    walk(layout, width, height, [&](size_t n, int x, int y) {
        if (x >= width || y >= height) return;
        const size_t at = static_cast<size_t>(y) * width + x;
        switch (layout) {
        case Layout::GcC8:
            dst[n] = in.indices[at];
            break;
        case Layout::GcC4: {
            const uint8_t v = in.indices[at];
            if (v > 15) fail("index %u does not fit a 4-bit record", v);
            dst[n / 2] |= (n & 1) ? v : v << 4;
            break;
        }
        case Layout::GcRgb565: {
            const uint32_t c = in.argbAt(at);
            const uint32_t v =
                quant((c >> 16) & 255, 5) << 11 | quant((c >> 8) & 255, 6) << 5 | quant(c & 255, 5);
            dst[2 * n] = static_cast<uint8_t>(v >> 8);
            dst[2 * n + 1] = static_cast<uint8_t>(v);
            break;
        }
        default: {
            const uint32_t c = in.argbAt(at);
            uint8_t* tile = dst + (n / 16) * 64;
            const size_t i = n % 16;
            tile[2 * i] = static_cast<uint8_t>(c >> 24);
            tile[2 * i + 1] = static_cast<uint8_t>(c >> 16);
            tile[32 + 2 * i] = static_cast<uint8_t>(c >> 8);
            tile[33 + 2 * i] = static_cast<uint8_t>(c);
            break;
        }
        }
    });
}

} // namespace tavix::shape
