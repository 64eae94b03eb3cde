#include "imaging/geometry/canvas.h"

#include "imaging/geometry/scratch.h"

namespace geometry {

void crop_record(const CropWindow& window, TavixInfo* info) {
    auto negate = [](int32_t v) { return static_cast<int32_t>(0u - static_cast<uint32_t>(v)); };
    shift_points(info, negate(window.x), negate(window.y));
    info->defaultx = static_cast<int32_t>(static_cast<uint32_t>(info->defaultx) +
                                          static_cast<uint32_t>(window.x));
    info->defaulty = static_cast<int32_t>(static_cast<uint32_t>(info->defaulty) +
                                          static_cast<uint32_t>(window.y));
    info->width = window.width;
    info->height = window.height;
}

bool crop_pixels(const CropWindow& window, const ImageEntry& in, const Raster& out) {
    Scratch source(in, out);
    if (!source.ok()) return false;
    const Raster& src = source.raster();
    uint32_t fill = src.bytes == 1 ? window.fill & 0xFFu : window.fill;
    for (int32_t y = 0; y < out.height; ++y) {
        int32_t sy = edge_index(static_cast<int64_t>(window.y) + y, src.height, window.edgeY);
        for (int32_t x = 0; x < out.width; ++x) {
            int32_t sx = edge_index(static_cast<int64_t>(window.x) + x, src.width, window.edgeX);
            out.set(x, y, sx < 0 || sy < 0 ? fill : src.get(sx, sy));
        }
    }
    return true;
}

bool wrap_pixels(int64_t dx, int64_t dy, const ImageEntry& in, const Raster& out) {
    Scratch source(in, out);
    if (!source.ok()) return false;
    const Raster& src = source.raster();
    for (int32_t y = 0; y < out.height; ++y) {
        int32_t sy = edge_index(y - dy, src.height, Edge::Wrap);
        for (int32_t x = 0; x < out.width; ++x)
            out.set(x, y, src.get(edge_index(x - dx, src.width, Edge::Wrap), sy));
    }
    return true;
}

bool mirror_pixels(int32_t direction, const ImageEntry& in, const Raster& out) {
    Scratch source(in, out);
    if (!source.ok()) return false;
    const Raster& src = source.raster();
    for (int32_t y = 0; y < out.height; ++y) {
        int32_t sy = (direction & 2) ? src.height - 1 - y : y;
        for (int32_t x = 0; x < out.width; ++x)
            out.set(x, y, src.get((direction & 1) ? src.width - 1 - x : x, sy));
    }
    return true;
}

bool deinterlace_pixels(int32_t field, const ImageEntry& in, const Raster& out) {
    Scratch source(in, out);
    if (!source.ok()) return false;
    const Raster& src = source.raster();
    int32_t dropped = field == 0 ? 1 : 0;
    for (int32_t y = 0; y < out.height; ++y) {
        bool rebuild = (y & 1) == dropped && src.height > 1;
        int32_t above = y - 1 >= 0 ? y - 1 : y + 1;
        int32_t below = y + 1 < src.height ? y + 1 : y - 1;
        for (int32_t x = 0; x < out.width; ++x) {
            if (!rebuild) {
                out.set(x, y, src.get(x, y));
            } else if (src.bytes == 1) {
                out.set(x, y, src.get(x, above));
            } else {
                uint32_t a = src.get(x, above), b = src.get(x, below), mixed = 0;
                for (int shift = 0; shift < 32; shift += 8)
                    mixed |= ((channel(a, shift) + channel(b, shift) + 1) / 2) << shift;
                out.set(x, y, mixed);
            }
        }
    }
    return true;
}

} // namespace geometry
