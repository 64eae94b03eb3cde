// Creep ("Creep Image"): grows every area of the given colour outward by
// Amount pixels: in each step, every pixel that touches a pixel of that
// colour (the eight around it) takes it.
//
// Values:
// - Colour (default 0): an 0xAARRGGBB word, or a palette index for
//   indexed images (the low byte); the Creep command passes the one
//   matching the image.
// - Amount (pixels, 1 .. 255, default 1): how far the colour grows.

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/plane_filter.h"
#include "imaging/modules/modules.h"

#include <algorithm>

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamColour, 0, 0xFFFFFFFF, 0, "Colour"},
    {kParamInteger, 1, 255, 1, "Amount"},
};

constexpr ModuleDecl kDecl = {.magic = "CREP",
                              .name = "Creep",
                              .description = "Creep Image",
                              .version = "1.00",
                              .params = kParams};

bool creep(const ModuleInstance* instance, filter::Plane* plane) {
    uint32_t colour =
        filter::value_of_colour(instance->images[0], module_value_uint(instance, kDecl, 0));
    // Beyond the image's larger side nothing more can change.
    int32_t steps =
        std::clamp(module_value_int(instance, kDecl, 1), 0, std::max(plane->width, plane->height));
    filter::Plane from;
    if (!filter::plane_make_like(&from, *plane)) return false;
    for (int32_t step = 0; step < steps; ++step) {
        filter::plane_copy(*plane, &from);
        bool grew = false;
        for (int32_t y = 0; y < plane->height; ++y) {
            for (int32_t x = 0; x < plane->width; ++x) {
                if (from.at(x, y) == colour) continue;
                bool touches = false;
                for (int32_t dy = -1; dy <= 1 && !touches; ++dy)
                    for (int32_t dx = -1; dx <= 1 && !touches; ++dx)
                        touches = from.clamped(x + dx, y + dy) == colour;
                if (touches) plane->at(x, y) = colour, grew = true;
            }
        }
        if (!grew) break;
    }
    filter::plane_free(&from);
    return true;
}

} // namespace

constexpr ModuleEntry mod_creep = filter::plane_entry<kDecl, creep, filter::PlaneKind::Values>();
