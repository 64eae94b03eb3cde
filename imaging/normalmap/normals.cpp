#include "imaging/normalmap/normals.h"

#include "imaging/geometry/raster.h"

#include <algorithm>
#include <cmath>

namespace normalmap {

namespace {

using geometry::channel;
using geometry::pack_argb;

uint32_t unit_to_byte(double v) {
    return static_cast<uint32_t>(std::lround(std::clamp((v + 1.0) * 127.5, 0.0, 255.0)));
}

double byte_to_unit(uint32_t b) {
    return b / 127.5 - 1.0;
}

// Calls `write(x, y, nx, ny, nz, sourceArgb)` for every pixel's normal.
template <typename Write>
bool each_normal(const ImageEntry& in, double scale, Slope method, Write write) {
    int32_t w = in.info->width, h = in.info->height;
    Field heights(w, h), dx(w, h), dy(w, h);
    if (!heights.ok() || !dx.ok() || !dy.ok()) return false;
    read_heights(in, heights);
    slopes(heights, method, dx, dy);
    if (!std::isfinite(scale)) scale = 0;
    double perLevel = scale / 255.0;
    geometry::Raster raster = geometry::raster_of(in);
    for (int32_t y = 0; y < h; ++y)
        for (int32_t x = 0; x < w; ++x) {
            // y runs down the picture, the normal's y up it.
            double nx = -dx.at(x, y) * perLevel, ny = dy.at(x, y) * perLevel, nz = 1.0;
            double length = std::sqrt(nx * nx + ny * ny + nz * nz);
            write(x, y, nx / length, ny / length, nz / length, geometry::argb_at(in, raster, x, y));
        }
    return true;
}

} // namespace

Bump bump_from(int32_t value) {
    return value >= 0 && value <= 3 ? static_cast<Bump>(value) : Bump::V8U8;
}

bool make_dot3(const ImageEntry& in, double scale, Slope method, void* pixels, int32_t rowbytes) {
    geometry::Raster out{static_cast<uint8_t*>(pixels), rowbytes, in.info->width, in.info->height,
                         4};
    return each_normal(in, scale, method,
                       [&](int32_t x, int32_t y, double nx, double ny, double nz, uint32_t src) {
                           out.set(x, y,
                                   pack_argb(channel(src, 24), unit_to_byte(nx), unit_to_byte(ny),
                                             unit_to_byte(nz)));
                       });
}

bool make_bump(const ImageEntry& in, Bump layout, double scale, Slope method, void* pixels,
               int32_t rowbytes) {
    geometry::Raster out{static_cast<uint8_t*>(pixels), rowbytes, in.info->width, in.info->height,
                         4};
    return each_normal(
        in, scale, method,
        [&](int32_t x, int32_t y, double nx, double ny, double nz, uint32_t src) {
            uint32_t alpha =
                layout == Bump::X8L8V8U8 || layout == Bump::Q8W8V8U8 ? 255 : channel(src, 24);
            uint32_t third = 0;
            if (layout == Bump::L6V5U5 || layout == Bump::X8L8V8U8)
                third = static_cast<uint32_t>(std::lround(geometry::luminance(src)));
            else if (layout == Bump::Q8W8V8U8)
                third = unit_to_byte(nz);
            out.set(x, y, pack_argb(alpha, unit_to_byte(nx), unit_to_byte(ny), third));
        });
}

bool heights_from_normals(const ImageEntry& in, bool zFromBlue, Integrate method, void* pixels,
                          int32_t rowbytes) {
    int32_t w = in.info->width, h = in.info->height;
    Field heights(w, h), dx(w, h), dy(w, h);
    if (!heights.ok() || !dx.ok() || !dy.ok()) return false;
    geometry::Raster raster = geometry::raster_of(in);
    for (int32_t y = 0; y < h; ++y)
        for (int32_t x = 0; x < w; ++x) {
            uint32_t p = geometry::argb_at(in, raster, x, y);
            double nx = byte_to_unit(channel(p, 16)), ny = byte_to_unit(channel(p, 8));
            double nz = zFromBlue ? byte_to_unit(channel(p, 0))
                                  : std::sqrt(std::max(0.0, 1 - nx * nx - ny * ny));
            // Steep or back-facing normals would give endless slopes.
            nz = std::max(nz, 0.05);
            dx.at(x, y) = static_cast<float>(-nx / nz);
            dy.at(x, y) = static_cast<float>(ny / nz);
        }
    integrate(dx, dy, method, heights);
    write_grey(heights, in, pixels, rowbytes);
    return true;
}

} // namespace normalmap
