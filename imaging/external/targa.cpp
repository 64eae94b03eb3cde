#include "imaging/external/targa.h"

#include "imaging/galloc.h"
#include "imaging/gfile.h"
#include "imaging/geometry/raster.h"
#include "imaging/module/authoring.h"
#include "imaging/modules/resample/palette.h"

#include <algorithm>
#include <climits>
#include <cstring>

namespace external {

namespace {

constexpr int32_t kHeaderSize = 18;
constexpr int32_t kMaxSide = 65535;
enum : uint8_t { kMapped = 1, kTrue = 2, kGrey = 3, kRunLength = 8 };
enum : uint8_t { kRightToLeft = 0x10, kTopDown = 0x20 };

void put16(uint8_t* at, int32_t v) {
    at[0] = static_cast<uint8_t>(v & 0xFF);
    at[1] = static_cast<uint8_t>((v >> 8) & 0xFF);
}

int32_t get16(const uint8_t* at) {
    return at[0] | (at[1] << 8);
}

// One pixel or map entry of `bits` bits as 0xAARRGGBB.
uint32_t decode(const uint8_t* at, int32_t bits, bool alpha) {
    switch (bits) {
    case 15:
    case 16: {
        int32_t v = get16(at);
        auto five = [](int32_t c) { return static_cast<uint32_t>((c << 3) | (c >> 2)); };
        uint32_t a = bits == 16 && alpha ? ((v & 0x8000) ? 255u : 0u) : 255u;
        return geometry::pack_argb(a, five((v >> 10) & 31), five((v >> 5) & 31), five(v & 31));
    }
    case 24:
        return geometry::pack_argb(255, at[2], at[1], at[0]);
    case 32:
        return geometry::pack_argb(alpha ? at[3] : 255u, at[2], at[1], at[0]);
    default: // grey
        return geometry::pack_argb(255, at[0], at[0], at[0]);
    }
}

void encode(uint32_t argb, int32_t bits, uint8_t* at) {
    using geometry::channel;
    if (bits == 16) {
        uint32_t v = (channel(argb, 24) >= 128 ? 0x8000u : 0u) | (channel(argb, 16) >> 3) << 10 |
                     (channel(argb, 8) >> 3) << 5 | channel(argb, 0) >> 3;
        put16(at, static_cast<int32_t>(v));
        return;
    }
    at[0] = static_cast<uint8_t>(channel(argb, 0));
    at[1] = static_cast<uint8_t>(channel(argb, 8));
    at[2] = static_cast<uint8_t>(channel(argb, 16));
    if (bits == 32) at[3] = static_cast<uint8_t>(channel(argb, 24));
}

// The whole file in one galloc block.
uint8_t* slurp(const char* path, int32_t* size) {
    intptr_t file = gfopenread(path);
    if (!file) return nullptr;
    int64_t length = gfsize(file);
    uint8_t* data = nullptr;
    if (length > 0 && length <= INT32_MAX)
        data = static_cast<uint8_t*>(galloc(static_cast<int32_t>(length)));
    if (data && gfread(file, data, static_cast<int32_t>(length)) != length) {
        gfree(data);
        data = nullptr;
    }
    gfclose(file);
    *size = static_cast<int32_t>(length);
    return data;
}

} // namespace

int targa_write(const char* path, const ImageEntry& image, int32_t depth) {
    bool indexed = module_pixel_bytes(image.info) == 1;
    if (depth == 8 && !indexed) depth = 24;
    int32_t w = image.info->width, h = image.info->height;
    int32_t bytes = depth == 8 ? 1 : depth / 8;
    int32_t mapBytes = depth == 8 ? 256 * 4 : 0;
    int64_t total = kHeaderSize + mapBytes + static_cast<int64_t>(w) * h * bytes;
    if (w > kMaxSide || h > kMaxSide || total > INT32_MAX) {
        gprintf("Photoshop - %d x %d is too large for a Targa file\n", w, h);
        return 0;
    }
    auto* data = static_cast<uint8_t*>(galloc(static_cast<int32_t>(total)));
    if (!data) return 0;
    memset(data, 0, kHeaderSize);
    data[1] = depth == 8 ? 1 : 0;
    data[2] = depth == 8 ? kMapped : kTrue;
    if (depth == 8) {
        put16(data + 5, 256);
        data[7] = 32;
    }
    put16(data + 12, w);
    put16(data + 14, h);
    data[16] = static_cast<uint8_t>(depth);
    data[17] = static_cast<uint8_t>(kTopDown | (depth == 32 || depth == 8 ? 8
                                                : depth == 16             ? 1
                                                                          : 0));
    uint8_t* at = data + kHeaderSize;
    for (int32_t i = 0; i < 256 && depth == 8; ++i, at += 4)
        encode(resample::palette_argb(image.info, i), 32, at);
    geometry::Raster raster = geometry::raster_of(image);
    for (int32_t y = 0; y < h; ++y)
        for (int32_t x = 0; x < w; ++x, at += bytes) {
            if (depth == 8)
                *at = static_cast<uint8_t>(raster.get(x, y));
            else
                encode(geometry::argb_at(image, raster, x, y), depth, at);
        }
    intptr_t file = gfopenwrite(path);
    bool written = file && gfwrite(file, data, static_cast<int32_t>(total)) == total;
    if (file) written = gfclose(file) && written;
    gfree(data);
    if (!written) gprintf("Photoshop - cannot write the exchange file %s\n", path);
    return written ? 1 : 0;
}

namespace {

// Decodes the pixel stream of a file whose header is valid; false when the
// data runs out.
bool decodePixels(const uint8_t* data, int32_t size, int32_t offset, const uint8_t* header,
                  const uint32_t* map, int32_t mapFirst, int32_t mapLength, TargaPicture* p) {
    int32_t type = header[2] & 7, bits = header[16];
    bool rle = header[2] & kRunLength, alpha = (header[17] & 15) != 0 || bits == 32;
    int32_t bytes = (bits + 7) / 8;
    int64_t count = static_cast<int64_t>(p->width) * p->height;
    int64_t done = 0;
    auto pixelAt = [&](const uint8_t* at, int64_t index) {
        int32_t row = static_cast<int32_t>(index / p->width),
                col = static_cast<int32_t>(index % p->width);
        if (!(header[17] & kTopDown)) row = p->height - 1 - row;
        if (header[17] & kRightToLeft) col = p->width - 1 - col;
        int64_t to = static_cast<int64_t>(row) * p->width + col;
        if (type == kMapped) {
            int32_t i = bytes == 1 ? at[0] : get16(at);
            int32_t entry = i - mapFirst;
            p->argb[to] = entry >= 0 && entry < mapLength ? map[entry] : 0;
            if (p->indices) p->indices[to] = static_cast<uint8_t>(std::clamp(entry, 0, 255));
        } else {
            p->argb[to] = decode(at, type == kGrey ? 8 : bits, alpha);
        }
    };
    while (done < count) {
        int32_t run = 1;
        bool repeat = false;
        if (rle) {
            if (offset >= size) return false;
            uint8_t packet = data[offset++];
            run = (packet & 0x7F) + 1;
            repeat = packet & 0x80;
        }
        for (int32_t k = 0; k < run && done < count; ++k) {
            if (offset + bytes > size) return false;
            pixelAt(data + offset, done++);
            if (!repeat) offset += bytes;
        }
        if (repeat) offset += bytes;
    }
    return true;
}

} // namespace

int targa_read(const char* path, TargaPicture* p) {
    *p = TargaPicture{};
    int32_t size = 0;
    uint8_t* data = slurp(path, &size);
    const char* problem = nullptr;
    if (!data) {
        gprintf("Photoshop - cannot read the exchange file %s back\n", path);
        return 0;
    }
    const uint8_t* h = data;
    int32_t type = size >= kHeaderSize ? h[2] & 7 : 0, bits = size >= kHeaderSize ? h[16] : 0;
    int32_t mapFirst = 0, mapLength = 0, mapBits = 0, offset = kHeaderSize;
    if (size < kHeaderSize) {
        problem = "is too short";
    } else if (type != kMapped && type != kTrue && type != kGrey) {
        problem = "holds no picture the exchange knows (Targa image type)";
    } else if ((type == kMapped && bits != 8 && bits != 16) || (type == kGrey && bits != 8) ||
               (type == kTrue && bits != 15 && bits != 16 && bits != 24 && bits != 32)) {
        problem = "has a pixel depth the exchange does not know";
    } else {
        p->width = get16(h + 12);
        p->height = get16(h + 14);
        mapFirst = get16(h + 3), mapLength = h[1] ? get16(h + 5) : 0, mapBits = h[7];
        offset += h[0];
        if (p->width < 1 || p->height < 1)
            problem = "holds an empty picture";
        else if (h[1] && mapBits != 15 && mapBits != 16 && mapBits != 24 && mapBits != 32)
            problem = "has a colour map the exchange does not know";
        else if (type == kMapped && (mapLength < 1 || mapLength > 65536))
            problem = "has no colour map";
    }
    uint32_t* map = nullptr;
    if (!problem && mapLength > 0) {
        int32_t entryBytes = (mapBits + 7) / 8;
        map = static_cast<uint32_t*>(galloc(mapLength * 4));
        if (!map || offset + static_cast<int64_t>(mapLength) * entryBytes > size)
            problem = "is cut short";
        for (int32_t i = 0; !problem && i < mapLength; ++i, offset += entryBytes)
            map[i] = decode(data + offset, mapBits, (h[17] & 15) != 0 || mapBits == 32);
    }
    int64_t pixels = static_cast<int64_t>(p->width) * p->height;
    if (!problem) {
        p->argb = static_cast<uint32_t*>(galloc(static_cast<int32_t>(pixels * 4)));
        if (type == kMapped && bits == 8 && mapLength <= 256) {
            p->indices = static_cast<uint8_t*>(galloc(static_cast<int32_t>(pixels)));
            p->paletteSize = mapLength;
            for (int32_t i = 0; i < mapLength; ++i)
                p->palette[i] = map[i];
        }
        if (!p->argb || (p->paletteSize && !p->indices))
            problem = "is too large for memory";
        else if (!decodePixels(data, size, offset, h, map, mapFirst, mapLength, p))
            problem = "is cut short";
        p->hasAlpha = (h[17] & 15) != 0 || bits == 32 || (type == kMapped && mapBits == 32);
    }
    if (map) gfree(map);
    gfree(data);
    if (problem) {
        gprintf("Photoshop - the exchange file %s %s\n", path, problem);
        targa_free(p);
        return 0;
    }
    return 1;
}

void targa_free(TargaPicture* p) {
    if (p->argb) gfree(p->argb);
    if (p->indices) gfree(p->indices);
    *p = TargaPicture{};
}

} // namespace external
