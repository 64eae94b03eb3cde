#include "imaging/quant/remap.h"

#include "imaging/quant/internal.h"
#include "imaging/quant/nearest.h"

#include <cstring>

using quant::Diffuser;

namespace {

bool usable32(const TavixInfo* info, const void* pixels, int32_t rowbytes, const void* out,
              int32_t outRowbytes, int32_t outPixelBytes) {
    return info && pixels && out && info->bufferbpp == 32 && info->width > 0 && info->height > 0 &&
           rowbytes >= info->width * 4 && outRowbytes >= info->width * outPixelBytes;
}

uint32_t load(const void* pixels, int32_t rowbytes, int32_t x, int32_t y) {
    uint32_t v;
    memcpy(&v, static_cast<const uint8_t*>(pixels) + static_cast<ptrdiff_t>(y) * rowbytes + 4 * x,
           4);
    return v;
}

} // namespace

int quant_remap(const TavixInfo* info, const void* pixels, int32_t rowbytes,
                const uint32_t* palette, const uint8_t* used, int32_t dither,
                const QuantInverseMap* map, int32_t mapOffset, uint8_t* out, int32_t outRowbytes) {
    if (!usable32(info, pixels, rowbytes, out, outRowbytes, 1) || !palette) return 0;
    quant::Nearest nearest;
    if (!nearest.init(palette, used, 256)) return 0;
    Diffuser diffuser(dither, info->width);
    if (!diffuser.ok()) return 0;
    for (int32_t y = 0; y < info->height; ++y) {
        const bool reverse = diffuser.beginRow(y);
        uint8_t* row = out + static_cast<ptrdiff_t>(y) * outRowbytes;
        for (int32_t i = 0; i < info->width; ++i) {
            const int32_t x = reverse ? info->width - 1 - i : i;
            const uint32_t wanted = diffuser.adjust(x, load(pixels, rowbytes, x, y));
            int32_t index = -1;
            if (map) {
                index = mapOffset + quant_map_lookup(map, wanted);
                if (index > 255 || (used && !used[index])) index = -1;
            }
            if (index < 0) index = nearest.find(wanted);
            row[x] = static_cast<uint8_t>(index);
            diffuser.spread(x, wanted, palette[index]);
        }
    }
    return 1;
}

uint8_t quant_reduce_channel(uint8_t value, int32_t bits) {
    if (bits >= 8) return value;
    if (bits <= 0) return 0;
    const int32_t levels = (1 << bits) - 1;
    // The nearest level, then expanded by repeating its bits.
    int32_t best = 0, bestDistance = 256;
    for (int32_t q = (value * levels) / 255; q <= levels && q <= (value * levels) / 255 + 1; ++q) {
        int32_t expanded = 0;
        for (int32_t shift = 8 - bits; shift > -bits; shift -= bits)
            expanded |= shift >= 0 ? q << shift : q >> -shift;
        const int32_t d = expanded > value ? expanded - value : value - expanded;
        if (d < bestDistance) {
            bestDistance = d;
            best = expanded;
        }
    }
    return static_cast<uint8_t>(best);
}

int quant_reduce_bits(const TavixInfo* info, const void* pixels, int32_t rowbytes, int32_t abits,
                      int32_t rbits, int32_t gbits, int32_t bbits, int32_t dither, void* out,
                      int32_t outRowbytes) {
    const int32_t bits[4] = {abits, rbits, gbits, bbits};
    for (int32_t b : bits)
        if (b < 0 || b > 8) return 0;
    if (!usable32(info, pixels, rowbytes, out, outRowbytes, 4)) return 0;
    uint8_t table[4][256];
    for (int c = 0; c < 4; ++c)
        for (int v = 0; v < 256; ++v)
            table[c][v] = quant_reduce_channel(static_cast<uint8_t>(v), bits[c]);
    if (abits == 0) memset(table[0], 255, 256);
    Diffuser diffuser(dither, info->width);
    if (!diffuser.ok()) return 0;
    for (int32_t y = 0; y < info->height; ++y) {
        const bool reverse = diffuser.beginRow(y);
        uint8_t* row = static_cast<uint8_t*>(out) + static_cast<ptrdiff_t>(y) * outRowbytes;
        for (int32_t i = 0; i < info->width; ++i) {
            const int32_t x = reverse ? info->width - 1 - i : i;
            const uint32_t wanted = diffuser.adjust(x, load(pixels, rowbytes, x, y));
            uint32_t got = 0;
            for (int c = 0; c < 4; ++c) {
                const int shift = 24 - 8 * c;
                got |= static_cast<uint32_t>(table[c][(wanted >> shift) & 0xFF]) << shift;
            }
            memcpy(row + 4 * x, &got, 4);
            diffuser.spread(x, wanted, got);
        }
    }
    return 1;
}

int32_t quant_layout_depth(int32_t abits, int32_t rbits, int32_t gbits, int32_t bbits) {
    const int32_t colour = rbits + gbits + bbits;
    return colour >= 24 || abits >= 4 ? abits + colour : colour;
}
