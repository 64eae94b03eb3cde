#include "imaging/geometry/rotate.h"

#include "imaging/geometry/sampler.h"
#include "imaging/geometry/scratch.h"
#include "imaging/module/authoring.h"

#include <algorithm>
#include <cmath>

namespace geometry {

namespace {

// Sine and cosine with the values that should be exact made so: a quarter
// turn must map pixel centres onto pixel centres.
void sincos(double radians, double* s, double* c) {
    if (!std::isfinite(radians)) radians = 0;
    *s = std::sin(radians);
    *c = std::cos(radians);
    auto snap = [](double v) {
        for (double exact : {-1.0, 0.0, 1.0})
            if (std::fabs(v - exact) < 1e-9) return exact;
        return v;
    };
    *s = snap(*s);
    *c = snap(*c);
}

int32_t span(double extent) {
    double rounded = std::ceil(extent - 1e-6);
    return static_cast<int32_t>(std::clamp(rounded, 1.0, 1e6));
}

} // namespace

void rotated_size(double radians, int32_t width, int32_t height, int32_t* outWidth,
                  int32_t* outHeight) {
    double s, c;
    sincos(radians, &s, &c);
    *outWidth = span(std::fabs(width * c) + std::fabs(height * s));
    *outHeight = span(std::fabs(width * s) + std::fabs(height * c));
}

void rotate_record(double radians, TavixInfo* info) {
    double s, c;
    sincos(radians, &s, &c);
    int32_t width, height;
    rotated_size(radians, info->width, info->height, &width, &height);
    double mx = info->width / 2.0, my = info->height / 2.0;
    auto turn = [&](int32_t* x, int32_t* y) {
        double dx = *x - mx, dy = *y - my;
        double nx = c * dx + s * dy + width / 2.0, ny = -s * dx + c * dy + height / 2.0;
        *x = static_cast<int32_t>(std::clamp(std::lround(nx), -2147483647L, 2147483647L));
        *y = static_cast<int32_t>(std::clamp(std::lround(ny), -2147483647L, 2147483647L));
    };
    int32_t oldCx = info->centerx, oldCy = info->centery;
    turn(&info->centerx, &info->centery);
    int32_t spots = module_hotspot_count(info);
    for (int32_t i = 0; i < spots; ++i)
        turn(&info->hotspots[i].x, &info->hotspots[i].y);
    info->defaultx =
        static_cast<int32_t>(static_cast<uint32_t>(info->defaultx) + static_cast<uint32_t>(oldCx) -
                             static_cast<uint32_t>(info->centerx));
    info->defaulty =
        static_cast<int32_t>(static_cast<uint32_t>(info->defaulty) + static_cast<uint32_t>(oldCy) -
                             static_cast<uint32_t>(info->centery));
    info->width = width;
    info->height = height;
}

bool rotate_pixels(double radians, const ImageEntry& in, const Raster& out, uint32_t fill,
                   bool interpolate) {
    Scratch source(in, out);
    if (!source.ok()) return false;
    const Raster& src = source.raster();
    double s, c;
    sincos(radians, &s, &c);
    if (src.bytes == 1) fill &= 0xFFu;
    Sampler sampler{src, Edge::Fill, Edge::Fill, fill, interpolate};
    double mx = src.width / 2.0, my = src.height / 2.0;
    for (int32_t y = 0; y < out.height; ++y)
        for (int32_t x = 0; x < out.width; ++x) {
            double dx = x + 0.5 - out.width / 2.0, dy = y + 0.5 - out.height / 2.0;
            // The inverse of the turn in rotate_record.
            out.set(x, y, sampler.at(c * dx - s * dy + mx, s * dx + c * dy + my));
        }
    return true;
}

} // namespace geometry
