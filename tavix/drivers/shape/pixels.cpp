// Pixel and palette layouts of the linear (non-tiled) records.

#include "tavix/core/Errors.h"
#include "tavix/drivers/shape/Dxt.h"
#include "tavix/drivers/shape/Format.h"

#include <bit>
#include <cstring>
#include <utility>

namespace tavix::shape {
namespace {

constexpr size_t kMaxPayload = size_t{1} << 31;

size_t roundUp(size_t n, size_t to) {
    return (n + to - 1) / to * to;
}

// 8-bit channel to `bits` bits, rounded; the inverse of bit replication.
uint32_t quant(uint32_t value, int bits) {
    uint32_t top = (1u << bits) - 1;
    return (value * top + 127) / 255;
}
uint32_t expand5(uint32_t v) {
    return v << 3 | v >> 2;
}
uint32_t expand6(uint32_t v) {
    return v << 2 | v >> 4;
}

uint32_t channel(uint32_t argb, int shift) {
    return (argb >> shift) & 255;
}

uint32_t from1555(uint32_t v) {
    return packArgb(v & 0x8000 ? 255 : 0, expand5((v >> 10) & 31), expand5((v >> 5) & 31),
                    expand5(v & 31));
}
uint32_t to1555(uint32_t c) {
    return (channel(c, 24) >= 128 ? 0x8000 : 0) | quant(channel(c, 16), 5) << 10 |
           quant(channel(c, 8), 5) << 5 | quant(channel(c, 0), 5);
}
uint32_t from565(uint32_t v) {
    return packArgb(255, expand5((v >> 11) & 31), expand6((v >> 5) & 63), expand5(v & 31));
}
uint32_t to565(uint32_t c) {
    return quant(channel(c, 16), 5) << 11 | quant(channel(c, 8), 6) << 5 | quant(channel(c, 0), 5);
}
uint32_t from4444(uint32_t v) {
    return packArgb(((v >> 12) & 15) * 17, ((v >> 8) & 15) * 17, ((v >> 4) & 15) * 17,
                    (v & 15) * 17);
}
uint32_t to4444(uint32_t c) {
    return quant(channel(c, 24), 4) << 12 | quant(channel(c, 16), 4) << 8 |
           quant(channel(c, 8), 4) << 4 | quant(channel(c, 0), 4);
}
// The PS2's 16-bit colour: red in the low bits, alpha on top.
uint32_t fromPs2_5551(uint32_t v) {
    return packArgb(v & 0x8000 ? 255 : 0, expand5(v & 31), expand5((v >> 5) & 31),
                    expand5((v >> 10) & 31));
}
uint32_t toPs2_5551(uint32_t c) {
    return (channel(c, 24) >= 128 ? 0x8000 : 0) | quant(channel(c, 0), 5) << 10 |
           quant(channel(c, 8), 5) << 5 | quant(channel(c, 16), 5);
}

dxt::Kind dxtKind(Layout layout) {
    return layout == Layout::Dxt1   ? dxt::Kind::Dxt1
           : layout == Layout::Dxt3 ? dxt::Kind::Dxt3
                                    : dxt::Kind::Dxt5;
}

Words argbOf(const Picture& in) {
    Words words(static_cast<size_t>(in.width) * in.height);
    for (size_t i = 0; i < words.size(); ++i)
        words[i] = in.argbAt(i);
    return words;
}

bool isTiled(Layout layout) {
    switch (layout) {
    case Layout::GcC8:
    case Layout::GcC4:
    case Layout::GcRgba8:
    case Layout::GcRgb565:
    case Layout::GcCmpr:
        return true;
    default:
        return false;
    }
}

void swapPs2Groups(TavixColour* colours, int count) {
    if (count != 256) return;
    for (int group = 0; group < 256; group += 32)
        for (int i = 8; i < 16; ++i)
            std::swap(colours[group + i], colours[group + i + 8]);
}

uint32_t colourArgb(const TavixColour& c) {
    return packArgb(c.alpha, c.red, c.green, c.blue);
}
TavixColour argbColour(uint32_t v) {
    return {static_cast<uint8_t>(v), static_cast<uint8_t>(v >> 8), static_cast<uint8_t>(v >> 16),
            static_cast<uint8_t>(v >> 24)};
}

} // namespace

size_t levelBytes(Layout layout, size_t w, size_t h) {
    switch (layout) {
    case Layout::Idx8:
        return w * h;
    case Layout::Idx4Hi:
    case Layout::Idx4Lo:
        return (w * h + 1) / 2;
    case Layout::Argb8888:
    case Layout::Ps2Rgba8888:
        return 4 * w * h;
    case Layout::Rgb888:
        return 3 * w * h;
    case Layout::Argb1555:
    case Layout::Rgb565:
    case Layout::Argb4444:
        return 2 * w * h;
    case Layout::Dxt1:
    case Layout::Dxt3:
    case Layout::Dxt5:
        return dxt::byteSize(dxtKind(layout), w, h);
    case Layout::GcC8:
        return roundUp(w, 8) * roundUp(h, 4);
    case Layout::GcC4:
        return roundUp(w, 8) * roundUp(h, 8) / 2;
    case Layout::GcRgba8:
        return roundUp(w, 4) * roundUp(h, 4) * 4;
    case Layout::GcRgb565:
        return roundUp(w, 4) * roundUp(h, 4) * 2;
    case Layout::GcCmpr:
        return dxt::cmprByteSize(w, h);
    }
    return 0;
}

size_t payloadBytes(Layout layout, size_t width, size_t height, int mips) {
    checkedPixelCount(static_cast<int64_t>(width), static_cast<int64_t>(height));
    size_t total = 0;
    for (int level = 0; level <= mips; ++level) {
        size_t w = static_cast<size_t>(levelSide(static_cast<int32_t>(width), level));
        size_t h = static_cast<size_t>(levelSide(static_cast<int32_t>(height), level));
        total += levelBytes(layout, w, h);
    }
    if (total > kMaxPayload) fail("pixel data of %zu bytes is too large", total);
    return total;
}

void decodeLevel(const Variant& variant, Layout layout, const uint8_t* src, int32_t width,
                 int32_t height, Picture& out) {
    if (isTiled(layout)) return decodeTiled(layout, src, width, height, out);
    const bool big = variant.bigEndian;
    if (isIndexed(layout)) {
        out.makeIndexed(width, height);
        const size_t n = out.indices.size();
        if (layout == Layout::Idx8) {
            memcpy(out.indices.data(), src, n);
            return;
        }
        const bool highFirst = layout == Layout::Idx4Hi;
        for (size_t i = 0; i < n; ++i) {
            const uint8_t b = src[i / 2];
            const bool high = (i & 1) ? !highFirst : highFirst;
            out.indices[i] = high ? b >> 4 : b & 15;
        }
        return;
    }
    out.makeTrueColour(width, height);
    Words& px = out.argb;
    const size_t n = px.size();
    switch (layout) {
    case Layout::Argb8888:
        if (!big && std::endian::native == std::endian::little)
            memcpy(px.data(), src, 4 * n); // stored B, G, R, A is the word 0xAARRGGBB
        else
            for (size_t i = 0; i < n; ++i)
                px[i] = get32(src + 4 * i, big);
        break;
    case Layout::Rgb888:
        for (size_t i = 0; i < n; ++i)
            px[i] = packArgb(255, src[3 * i + 2], src[3 * i + 1], src[3 * i]);
        break;
    case Layout::Argb1555:
        for (size_t i = 0; i < n; ++i)
            px[i] = from1555(get16(src + 2 * i, big));
        break;
    case Layout::Rgb565:
        for (size_t i = 0; i < n; ++i)
            px[i] = from565(get16(src + 2 * i, big));
        break;
    case Layout::Argb4444:
        for (size_t i = 0; i < n; ++i)
            px[i] = from4444(get16(src + 2 * i, big));
        break;
    case Layout::Ps2Rgba8888:
        for (size_t i = 0; i < n; ++i) {
            const uint8_t* p = src + 4 * i;
            px[i] = packArgb(ps2AlphaIn(p[3]), p[0], p[1], p[2]);
        }
        break;
    default:
        dxt::decode(dxtKind(layout), src, width, height, px.data());
        break;
    }
}

void encodeLevel(const Variant& variant, Layout layout, const Picture& in, int quality,
                 Bytes& out) {
    if (isTiled(layout)) return encodeTiled(layout, in, quality, out);
    const bool big = variant.bigEndian;
    const size_t n = static_cast<size_t>(in.width) * in.height;
    if (isIndexed(layout)) {
        if (!in.indexed) fail("an indexed record needs palette indices");
        if (layout == Layout::Idx8) {
            out.insert(out.end(), in.indices.begin(), in.indices.end());
            return;
        }
        const bool highFirst = layout == Layout::Idx4Hi;
        const size_t start = out.size();
        out.resize(start + (n + 1) / 2, 0);
        for (size_t i = 0; i < n; ++i) {
            const uint8_t v = in.indices[i];
            if (v > 15) fail("index %u does not fit a 4-bit record", v);
            const bool high = (i & 1) ? !highFirst : highFirst;
            out[start + i / 2] |= high ? v << 4 : v;
        }
        return;
    }
    if (layout == Layout::Dxt1 || layout == Layout::Dxt3 || layout == Layout::Dxt5) {
        Words words = argbOf(in);
        Bytes blocks = dxt::encode(dxtKind(layout), words.data(), in.width, in.height, quality);
        out.insert(out.end(), blocks.begin(), blocks.end());
        return;
    }
    if (layout == Layout::Argb8888 && !big && !in.indexed &&
        std::endian::native == std::endian::little) {
        // The words as they lie in memory are the stored bytes.
        const auto* words = reinterpret_cast<const uint8_t*>(in.argb.data());
        out.insert(out.end(), words, words + 4 * n);
        return;
    }
    size_t step = 0;
    switch (layout) {
    case Layout::Argb8888:
    case Layout::Ps2Rgba8888:
        step = 4;
        break;
    case Layout::Rgb888:
        step = 3;
        break;
    case Layout::Argb1555:
    case Layout::Rgb565:
    case Layout::Argb4444:
        step = 2;
        break;
    default:
        fail("layout %d cannot be written", static_cast<int>(layout));
    }
    const size_t start = out.size();
    out.resize(start + step * n);
    uint8_t* to = out.data() + start;
    uint32_t colours[256];
    if (in.indexed)
        for (int i = 0; i < 256; ++i)
            colours[i] = in.paletteArgb(i);
    // The layout is chosen once, outside the loop over the pixels.
    auto each = [&](auto&& store) {
        if (in.indexed)
            for (size_t i = 0; i < n; ++i, to += step)
                store(colours[in.indices[i]]);
        else
            for (size_t i = 0; i < n; ++i, to += step)
                store(in.argb[i]);
    };
    auto store16 = [&](uint32_t v) {
        to[big ? 0 : 1] = static_cast<uint8_t>(v >> 8);
        to[big ? 1 : 0] = static_cast<uint8_t>(v);
    };
    switch (layout) {
    case Layout::Argb8888:
        each([&](uint32_t c) { set32(to, c, big); });
        break;
    case Layout::Rgb888:
        each([&](uint32_t c) {
            to[0] = static_cast<uint8_t>(c);
            to[1] = static_cast<uint8_t>(c >> 8);
            to[2] = static_cast<uint8_t>(c >> 16);
        });
        break;
    case Layout::Argb1555:
        each([&](uint32_t c) { store16(to1555(c)); });
        break;
    case Layout::Rgb565:
        each([&](uint32_t c) { store16(to565(c)); });
        break;
    case Layout::Argb4444:
        each([&](uint32_t c) { store16(to4444(c)); });
        break;
    default: // Ps2Rgba8888
        each([&](uint32_t c) {
            to[0] = static_cast<uint8_t>(c >> 16);
            to[1] = static_cast<uint8_t>(c >> 8);
            to[2] = static_cast<uint8_t>(c);
            to[3] = static_cast<uint8_t>(ps2AlphaOut(c >> 24));
        });
        break;
    }
}

void decodePalette(const Variant& variant, PaletteLayout layout, const uint8_t* src, int count,
                   TavixColour out[256]) {
    const bool big = variant.bigEndian;
    const size_t step = entryBytes(layout);
    for (int i = 0; i < count; ++i) {
        const uint8_t* p = src + step * i;
        uint32_t c = 0;
        switch (layout) {
        case PaletteLayout::Argb8888:
            c = get32(p, big);
            break;
        case PaletteLayout::Rgb888:
            c = packArgb(255, p[0], p[1], p[2]);
            break;
        case PaletteLayout::Rgb666:
            c = packArgb(255, expand6(p[0] & 63), expand6(p[1] & 63), expand6(p[2] & 63));
            break;
        case PaletteLayout::Argb1555:
            c = from1555(get16(p, big));
            break;
        case PaletteLayout::Rgb565:
            c = from565(get16(p, big));
            break;
        case PaletteLayout::Ps2Rgba8888:
            c = packArgb(ps2AlphaIn(p[3]), p[0], p[1], p[2]);
            break;
        case PaletteLayout::Ps2Rgba5551:
            c = fromPs2_5551(get16(p, false));
            break;
        }
        out[i] = argbColour(c);
    }
    if (variant.ps2Swap) swapPs2Groups(out, count);
}

void encodePalette(const Variant& variant, PaletteLayout layout, const TavixColour* colours,
                   int count, Bytes& out) {
    TavixColour stored[256];
    memcpy(stored, colours, sizeof(TavixColour) * count);
    if (variant.ps2Swap) swapPs2Groups(stored, count);
    const bool big = variant.bigEndian;
    for (int i = 0; i < count; ++i) {
        const uint32_t c = colourArgb(stored[i]);
        const uint8_t r = stored[i].red, g = stored[i].green, b = stored[i].blue;
        switch (layout) {
        case PaletteLayout::Argb8888:
            put32(out, c, big);
            break;
        case PaletteLayout::Rgb888:
            out.insert(out.end(), {r, g, b});
            break;
        case PaletteLayout::Rgb666:
            out.insert(out.end(),
                       {static_cast<uint8_t>(quant(r, 6)), static_cast<uint8_t>(quant(g, 6)),
                        static_cast<uint8_t>(quant(b, 6))});
            break;
        case PaletteLayout::Argb1555:
            put16(out, to1555(c), big);
            break;
        case PaletteLayout::Rgb565:
            put16(out, to565(c), big);
            break;
        case PaletteLayout::Ps2Rgba8888:
            out.insert(out.end(), {r, g, b, static_cast<uint8_t>(ps2AlphaOut(stored[i].alpha))});
            break;
        case PaletteLayout::Ps2Rgba5551:
            put16(out, toPs2_5551(c), false);
            break;
        }
    }
}

bool paletteFits(const Variant& variant, PaletteLayout layout, const TavixColour* colours,
                 int count) {
    Bytes stored;
    encodePalette(variant, layout, colours, count, stored);
    TavixColour back[256];
    decodePalette(variant, layout, stored.data(), count, back);
    return memcmp(back, colours, sizeof(TavixColour) * count) == 0;
}

} // namespace tavix::shape
