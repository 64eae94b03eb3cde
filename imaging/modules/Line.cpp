// Line ("Line Image"): draws a straight one-pixel line.
//
// Values:
// - Colour (default 0xFF000000, opaque black): an 0xAARRGGBB word, or a
//   palette index for indexed images (the low byte).
// - slots 1 .. 4 (beyond the descriptor): the end points x0, y0, x1, y1 in
//   pixels; by default the diagonal from the top-left pixel to the
//   bottom-right one. Points may lie outside the image: the part of the
//   line inside it is drawn.

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/plane_filter.h"
#include "imaging/modules/modules.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamColour, 0, 0xFFFFFFFF, 0xFF000000, "Colour"},
};

constexpr ModuleDecl kDecl = {.magic = "LINE",
                              .name = "Line",
                              .description = "Line Image",
                              .version = "1.01",
                              .params = kParams};

// Clips the segment to the box [0, w - 1] x [0, h - 1] (Liang-Barsky);
// false when nothing of it is inside.
bool clip(double& x0, double& y0, double& x1, double& y1, double w, double h) {
    double t0 = 0.0, t1 = 1.0, dx = x1 - x0, dy = y1 - y0;
    const double p[4] = {-dx, dx, -dy, dy};
    const double q[4] = {x0, w - 1 - x0, y0, h - 1 - y0};
    for (int i = 0; i < 4; ++i) {
        if (p[i] == 0.0) {
            if (q[i] < 0.0) return false;
            continue;
        }
        double t = q[i] / p[i];
        if (p[i] < 0.0)
            t0 = std::max(t0, t);
        else
            t1 = std::min(t1, t);
    }
    if (t0 > t1) return false;
    // Far-away end points lose precision here; hold the result to the box.
    double ax = std::clamp(x0 + t0 * dx, 0.0, w - 1), ay = std::clamp(y0 + t0 * dy, 0.0, h - 1);
    x1 = std::clamp(x0 + t1 * dx, 0.0, w - 1), y1 = std::clamp(y0 + t1 * dy, 0.0, h - 1);
    x0 = ax, y0 = ay;
    return true;
}

bool line(const ModuleInstance* instance, filter::Plane* plane) {
    uint32_t colour =
        filter::value_of_colour(instance->images[0], module_value_uint(instance, kDecl, 0));
    double x0 = module_value_number(instance, 1, 0.0), y0 = module_value_number(instance, 2, 0.0);
    double x1 = module_value_number(instance, 3, plane->width - 1.0);
    double y1 = module_value_number(instance, 4, plane->height - 1.0);
    if (!std::isfinite(x0 + y0 + x1 + y1) || !clip(x0, y0, x1, y1, plane->width, plane->height))
        return true;
    // One step per pixel along the longer axis; the clipped line is at
    // most the image's larger side long.
    int32_t steps =
        static_cast<int32_t>(std::ceil(std::max(std::fabs(x1 - x0), std::fabs(y1 - y0))));
    for (int32_t i = 0; i <= steps; ++i) {
        double t = steps == 0 ? 0.0 : static_cast<double>(i) / steps;
        auto x = static_cast<int32_t>(std::floor(x0 + (x1 - x0) * t + 0.5));
        auto y = static_cast<int32_t>(std::floor(y0 + (y1 - y0) * t + 0.5));
        if (x >= 0 && y >= 0 && x < plane->width && y < plane->height) plane->at(x, y) = colour;
    }
    return true;
}

} // namespace

constexpr ModuleEntry mod_line = filter::plane_entry<kDecl, line, filter::PlaneKind::Values>();
