// Outline ("Outline Image"): draws an outline around the content of a
// sprite: every background pixel within Width pixels across and Height
// pixels down of a content pixel takes the colour. Background is the
// transparent colours, or, in an image without any transparent pixel, the
// colour of the top-left pixel.
//
// Values:
// - Width and Height (pixels, 1 .. 256, default 1): the thickness of the
//   outline across and down; 0 draws nothing in that direction.
// - Colour (default 0xFF000000, opaque black): an 0xAARRGGBB word, or a
//   palette index for indexed images (the low byte).

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/plane_filter.h"
#include "imaging/modules/modules.h"

#include "imaging/galloc.h"

#include <algorithm>

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, 1, 256, 1, "Width"},
    {kParamInteger, 1, 256, 1, "Height"},
    {kParamColour, 0, 0xFFFFFFFF, 0xFF000000, "Colour"},
};

constexpr ModuleDecl kDecl = {.magic = "OUTL",
                              .name = "Outline",
                              .description = "Outline Image",
                              .version = "1.01",
                              .params = kParams};

constexpr int32_t kMaxThickness = 256;

// Marks with 1 every pixel that has a content pixel at most `reach` pixels
// away along the line of `count` words (starting at `first`, `stride`
// words apart). `content` holds 1 for content; `mark` receives the result.
void spread(const uint8_t* content, uint8_t* mark, int32_t count, int64_t first, int64_t stride,
            int32_t reach) {
    // Distance to the nearest content at or before, then at or after.
    int32_t last = -1 - reach;
    for (int32_t i = 0; i < count; ++i) {
        if (content[first + i * stride]) last = i;
        mark[first + i * stride] = i - last <= reach;
    }
    last = count + reach;
    for (int32_t i = count - 1; i >= 0; --i) {
        if (content[first + i * stride]) last = i;
        if (last - i <= reach) mark[first + i * stride] = 1;
    }
}

bool outline(const ModuleInstance* instance, filter::Plane* plane) {
    const ImageEntry& in = instance->images[0];
    int32_t across = std::clamp(module_value_int(instance, kDecl, 0), 0, kMaxThickness);
    int32_t down = std::clamp(module_value_int(instance, kDecl, 1), 0, kMaxThickness);
    uint32_t colour = filter::value_of_colour(in, module_value_uint(instance, kDecl, 2));
    filter::Background background =
        filter::plane_background(*plane, in.info->bufferbpp <= 8 ? in.info : nullptr);
    int64_t n = plane->count();
    auto* content = static_cast<uint8_t*>(galloc(static_cast<int32_t>(n)));
    auto* wide = static_cast<uint8_t*>(galloc(static_cast<int32_t>(n)));
    auto* grown = static_cast<uint8_t*>(galloc(static_cast<int32_t>(n)));
    bool ok = content && wide && grown;
    if (ok) {
        for (int64_t i = 0; i < n; ++i)
            content[i] = !background.is(plane->words[i]);
        for (int32_t y = 0; y < plane->height; ++y)
            spread(content, wide, plane->width, static_cast<int64_t>(y) * plane->width, 1, across);
        for (int32_t x = 0; x < plane->width; ++x)
            spread(wide, grown, plane->height, x, plane->width, down);
        for (int64_t i = 0; i < n; ++i)
            if (grown[i] && !content[i]) plane->words[i] = colour;
    }
    for (uint8_t* block : {content, wide, grown})
        if (block) gfree(block);
    return ok;
}

} // namespace

constexpr ModuleEntry mod_outline =
    filter::plane_entry<kDecl, outline, filter::PlaneKind::Values>();
