// Fill ("Fill Image"): a flood fill, as a paint program's bucket: the area
// of similar colour around a start pixel (pixels joined through their
// four direct neighbours) takes the colour.
//
// Values:
// - Colour (default 0): an 0xAARRGGBB word, or a palette index for
//   indexed images (the low byte).
// - Tolerance (0 .. 255 levels, default 0): a pixel belongs to the area
//   when none of its channels (alpha, red, green, blue; for indexed
//   images those of its palette colour) differs from the start pixel's by
//   more; 0 takes exactly the start pixel's colour.
// - slots 2 and 3 (beyond the descriptor): the start pixel's x and y,
//   default 0, 0 (the top-left corner), held to the image.

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/plane_filter.h"
#include "imaging/modules/modules.h"

#include "imaging/galloc.h"
#include "imaging/modules/resample/palette.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamColour, 0, 0xFFFFFFFF, 0, "Colour"},
    {kParamInteger, 0, 255, 0, "Tolerance"},
};

constexpr ModuleDecl kDecl = {.magic = "FILL",
                              .name = "Fill",
                              .description = "Fill Image",
                              .version = "1.04",
                              .params = kParams};

bool near(uint32_t a, uint32_t b, int32_t tolerance) {
    for (int c = 0; c < 4; ++c)
        if (std::abs(static_cast<int32_t>(filter::channel(a, c)) -
                     static_cast<int32_t>(filter::channel(b, c))) > tolerance)
            return false;
    return true;
}

bool fill(const ModuleInstance* instance, filter::Plane* plane) {
    const ImageEntry& in = instance->images[0];
    const TavixInfo* palette = in.info->bufferbpp <= 8 ? in.info : nullptr;
    auto colourOf = [palette](uint32_t v) {
        return palette ? resample::palette_argb(palette, static_cast<int32_t>(v & 0xFF)) : v;
    };
    uint32_t colour = filter::value_of_colour(in, module_value_uint(instance, kDecl, 0));
    int32_t tolerance = module_value_int(instance, kDecl, 1);
    int32_t sx = filter::clamp_int(module_value_number(instance, 2, 0.0), 0, plane->width - 1);
    int32_t sy = filter::clamp_int(module_value_number(instance, 3, 0.0), 0, plane->height - 1);
    uint32_t start = colourOf(plane->at(sx, sy));
    int64_t n = plane->count();
    auto* seen = static_cast<uint8_t*>(galloc(static_cast<int32_t>(n)));
    auto* stack = static_cast<int32_t*>(galloc(static_cast<int32_t>(n * 4)));
    bool ok = seen && stack;
    if (ok) {
        memset(seen, 0, static_cast<size_t>(n));
        int64_t top = 0;
        stack[top++] = sy * plane->width + sx;
        seen[stack[0]] = 1;
        // Each pixel is pushed at most once, so the stack never overflows.
        while (top > 0) {
            int32_t i = stack[--top];
            int32_t x = i % plane->width, y = i / plane->width;
            const int32_t nx[4] = {x - 1, x + 1, x, x}, ny[4] = {y, y, y - 1, y + 1};
            for (int k = 0; k < 4; ++k) {
                if (nx[k] < 0 || ny[k] < 0 || nx[k] >= plane->width || ny[k] >= plane->height)
                    continue;
                int32_t j = ny[k] * plane->width + nx[k];
                if (seen[j] || !near(colourOf(plane->words[j]), start, tolerance)) continue;
                seen[j] = 1;
                stack[top++] = j;
            }
            plane->words[i] = colour;
        }
    }
    if (seen) gfree(seen);
    if (stack) gfree(stack);
    return ok;
}

} // namespace

constexpr ModuleEntry mod_fill = filter::plane_entry<kDecl, fill, filter::PlaneKind::Values>();
