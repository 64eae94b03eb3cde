// Smooth ("Smooth Edges"): softens the jagged, stair-stepped edge of a
// sprite's shape. A pixel belongs to the shape when its alpha is at least
// Threshold and, in an image without transparent pixels, when it is not
// the back colour. Each pixel whose 3x3 neighbourhood holds both shape and
// non-shape pixels becomes a blend of the average shape colour there and
// the back colour, by the share of shape pixels (its coverage); pixels
// inside or away from the shape stay.
//
// Values:
// - Threshold (0 .. 255, default 128): the least alpha of a shape pixel.
// - slot 1, back colour (0xAARRGGBB, beyond the descriptor): by default
//   transparent black when the image has transparent pixels (edges fade
//   out in alpha), else the colour of the top-left pixel.
// Indexed images are worked in colour and mapped back to the nearest
// colour of their palette.

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/plane_filter.h"
#include "imaging/modules/modules.h"

#include <algorithm>

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, 0, 255, 128, "Threshold"},
};

constexpr ModuleDecl kDecl = {.magic = "",
                              .name = "Smooth",
                              .description = "Smooth Edges",
                              .version = "1.00",
                              .secondCount = 1,
                              .params = kParams};

struct Shape {
    filter::Background background;
    uint32_t threshold;
    bool holds(uint32_t p) const { return (p >> 24) >= threshold && !background.is(p); }
};

// Premultiplied blend of `inside` (weight `cover`) and `back`.
uint32_t blend(const double (&inside)[4], uint32_t back, double cover) {
    double a = inside[3] * cover + filter::channel(back, 3) * (1.0 - cover);
    if (a <= 0.0) return 0;
    uint32_t out = filter::clamp_byte(a) << 24;
    for (int c = 0; c < 3; ++c) {
        double premultiplied =
            inside[c] * inside[3] / 255.0 * cover +
            filter::channel(back, c) * filter::channel(back, 3) / 255.0 * (1.0 - cover);
        out |= filter::clamp_byte(premultiplied * 255.0 / a) << (8 * c);
    }
    return out;
}

bool smooth(const ModuleInstance* instance, filter::Plane* plane) {
    filter::Background background = filter::plane_background(*plane, nullptr);
    Shape shape{background,
                static_cast<uint32_t>(std::clamp(module_value_int(instance, kDecl, 0), 0, 255))};
    uint32_t back = module_value_uint(instance, 1, background.byAlpha ? 0u : background.key);
    filter::Plane from;
    if (!filter::plane_make_like(&from, *plane)) return false;
    filter::plane_copy(*plane, &from);
    for (int32_t y = 0; y < plane->height; ++y) {
        for (int32_t x = 0; x < plane->width; ++x) {
            double sum[4] = {};
            int32_t in = 0;
            for (int32_t dy = -1; dy <= 1; ++dy) {
                for (int32_t dx = -1; dx <= 1; ++dx) {
                    uint32_t p = from.clamped(x + dx, y + dy);
                    if (!shape.holds(p)) continue;
                    for (int c = 0; c < 4; ++c)
                        sum[c] += filter::channel(p, c);
                    ++in;
                }
            }
            if (in == 0 || in == 9) continue;
            for (double& s : sum)
                s /= in;
            plane->at(x, y) = blend(sum, back, in / 9.0);
        }
    }
    filter::plane_free(&from);
    return true;
}

} // namespace

constexpr ModuleEntry mod_smooth = filter::plane_entry<kDecl, smooth>();
