// Screen ("Screen Mask"): lays a screen of lines over the image, like the
// dark lines of an interlaced television picture: every second row (or
// column) is painted in the screen colour, starting with the second.
//
// Values:
// - screen colour (default 0): an 0xAARRGGBB word, or a palette index
//   for indexed images (the low byte).
// - orientation (default 0): 0 paints rows, 1 columns.

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/plane_filter.h"
#include "imaging/modules/modules.h"

#include <algorithm>

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamColour, 0, 0xFFFFFFFF, 0, "screen colour"},
    {kParamInteger, 0, 1, 0, "orientation"},
};

constexpr ModuleDecl kDecl = {.magic = "SCRN",
                              .name = "Screen",
                              .description = "Screen Mask",
                              .version = "1.00",
                              .params = kParams};

bool screen(const ModuleInstance* instance, filter::Plane* plane) {
    uint32_t colour =
        filter::value_of_colour(instance->images[0], module_value_uint(instance, kDecl, 0));
    bool columns = module_value_int(instance, kDecl, 1) == 1;
    for (int32_t y = 0; y < plane->height; ++y)
        for (int32_t x = 0; x < plane->width; ++x)
            if ((columns ? x : y) % 2 == 1) plane->at(x, y) = colour;
    return true;
}

} // namespace

constexpr ModuleEntry mod_screen = filter::plane_entry<kDecl, screen, filter::PlaneKind::Values>();
