#include "app/ui/Thumbnail.h"

#include "app/doc/TavixImage.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr int kCheck = 4; // checkerboard square, thumbnail pixels
constexpr uint32_t kLight = 0xFFFFFFFF;
constexpr uint32_t kDark = 0xFFC0C0C0;
constexpr int kMaxSamples = 4; // per axis and thumbnail pixel

uint32_t over(uint32_t s, uint32_t back) {
    const uint32_t a = s >> 24, n = 255 - a;
    auto mix = [&](int shift) {
        return (((s >> shift & 0xFF) * a + (back >> shift & 0xFF) * n + 127) / 255) << shift;
    };
    return 0xFF000000 | mix(16) | mix(8) | mix(0);
}

} // namespace

QImage RenderThumbnail(const CTavixImage& image, int size) {
    const int w = image.GetWidth(), h = image.GetHeight();
    if (w <= 0 || h <= 0 || size <= 0 || !image.GetBits()) return {};
    const double scale = static_cast<double>(size) / std::max(w, h);
    const int tw = std::max(1, static_cast<int>(std::lround(w * scale)));
    const int th = std::max(1, static_cast<int>(std::lround(h * scale)));
    uint32_t palette[256] = {};
    const bool indexed = image.GetBitCount() <= 8;
    if (indexed) {
        TavixColour colours[256];
        image.GetPalette(colours);
        for (int i = 0; i < 256; ++i)
            palette[i] = static_cast<uint32_t>(colours[i].alpha) << 24 |
                         static_cast<uint32_t>(colours[i].red) << 16 |
                         static_cast<uint32_t>(colours[i].green) << 8 | colours[i].blue;
    }
    auto pixel = [&](int x, int y) -> uint32_t {
        const uint8_t* at = image.GetRow(y) + static_cast<ptrdiff_t>(x) * (indexed ? 1 : 4);
        if (indexed) return palette[*at];
        uint32_t word;
        memcpy(&word, at, sizeof word);
        return word;
    };
    QImage out(tw, th, QImage::Format_ARGB32);
    for (int ty = 0; ty < th; ++ty) {
        auto* row = reinterpret_cast<uint32_t*>(out.scanLine(ty));
        const int y0 = ty * h / th, y1 = std::max(y0 + 1, (ty + 1) * h / th);
        const int ny = std::min(kMaxSamples, y1 - y0);
        for (int tx = 0; tx < tw; ++tx) {
            const int x0 = tx * w / tw, x1 = std::max(x0 + 1, (tx + 1) * w / tw);
            const int nx = std::min(kMaxSamples, x1 - x0);
            const uint32_t back = ((tx / kCheck + ty / kCheck) & 1) ? kDark : kLight;
            uint32_t r = 0, g = 0, b = 0;
            for (int sy = 0; sy < ny; ++sy) {
                const int y = y0 + (2 * sy + 1) * (y1 - y0) / (2 * ny);
                for (int sx = 0; sx < nx; ++sx) {
                    const int x = x0 + (2 * sx + 1) * (x1 - x0) / (2 * nx);
                    const uint32_t c = over(pixel(x, y), back);
                    r += c >> 16 & 0xFF;
                    g += c >> 8 & 0xFF;
                    b += c & 0xFF;
                }
            }
            const uint32_t n = static_cast<uint32_t>(nx * ny);
            row[tx] = 0xFF000000 | (r + n / 2) / n << 16 | (g + n / 2) / n << 8 | (b + n / 2) / n;
        }
    }
    return out;
}

uint64_t ThumbnailStamp(const CTavixImage& image) {
    // FNV-1a over the shape of the bitmap and, for indexed images, the
    // colour table.
    uint64_t hash = 1469598103934665603ull;
    auto add = [&hash](const void* data, size_t bytes) {
        const auto* p = static_cast<const uint8_t*>(data);
        for (size_t i = 0; i < bytes; ++i)
            hash = (hash ^ p[i]) * 1099511628211ull;
    };
    const int shape[3] = {image.GetWidth(), image.GetHeight(), image.GetBitCount()};
    add(shape, sizeof shape);
    const uint8_t* bits = image.GetBits();
    add(&bits, sizeof bits);
    if (image.GetBitCount() <= 8 && image.GetColorTable())
        add(image.GetColorTable(), sizeof(CDIBColour) * kDIBColourTableSize);
    return hash;
}
