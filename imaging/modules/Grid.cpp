// Grid ("Draw Grid"): draws a grid of one-pixel lines, e.g. to mark the
// cells of a font or tile sheet: every column whose x is a multiple of
// Width and every row whose y is a multiple of Height, from the top-left
// corner.
//
// Values:
// - Width and Height (pixels, 1 .. 65536, default 8): the cell size;
//   values below 1 are taken as 1.
// - Colour (default 0xFF000000, opaque black): an 0xAARRGGBB word, or a
//   palette index for indexed images (the low byte).

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/plane_filter.h"
#include "imaging/modules/modules.h"

#include <algorithm>

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, 1, 65536, 8, "Width"},
    {kParamInteger, 1, 65536, 8, "Height"},
    {kParamColour, 0, 0xFFFFFFFF, 0xFF000000, "Colour"},
};

constexpr ModuleDecl kDecl = {.magic = "RECT",
                              .name = "Grid",
                              .description = "Draw Grid",
                              .version = "1.00",
                              .params = kParams};

bool grid(const ModuleInstance* instance, filter::Plane* plane) {
    int32_t width = std::max(1, module_value_int(instance, kDecl, 0));
    int32_t height = std::max(1, module_value_int(instance, kDecl, 1));
    uint32_t colour =
        filter::value_of_colour(instance->images[0], module_value_uint(instance, kDecl, 2));
    for (int32_t y = 0; y < plane->height; ++y)
        for (int32_t x = 0; x < plane->width; ++x)
            if (x % width == 0 || y % height == 0) plane->at(x, y) = colour;
    return true;
}

} // namespace

constexpr ModuleEntry mod_grid = filter::plane_entry<kDecl, grid, filter::PlaneKind::Values>();
