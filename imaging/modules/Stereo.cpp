// Stereo ("Stereo Image"): makes a red-cyan anaglyph of the picture, using
// its brightness as depth (white nearest), for viewing with red-cyan
// glasses.
//
// Values: focus, the disparity in pixels of black (negative puts black in
// front of the screen); range, how many pixels more white is shifted. Each
// pixel's left-eye view (red) is read half its disparity to the right,
// the right-eye view (green and blue) half to the left; alpha is the more
// opaque of the two. The result is 32-bit.

#include "imaging/galloc.h"
#include "imaging/geometry/raster.h"
#include "imaging/geometry/sampler.h"
#include "imaging/geometry/scratch.h"
#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"

#include <algorithm>

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, -256, 256, 0, "focus"},
    {kParamInteger, 0, 256, 16, "range"},
};

constexpr ModuleDecl kDecl = {.magic = "STAR",
                              .name = "Stereo",
                              .description = "Stereo Image",
                              .version = "1.00",
                              .params = kParams};

TavixInfo* query(ModuleInstance* instance, int32_t) {
    return geometry::argb_copy_query(instance);
}

int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    if (!geometry::check_argb_same_size(kDecl.name, instance, result, pixels, rowbytes)) return 0;
    const ImageEntry& in = instance->images[0];

    geometry::Raster out = geometry::raster_of(result, pixels, rowbytes);
    geometry::Scratch source(in, out);
    if (!source.ok()) return 0;
    // Indexed sources are read through their palette.
    ImageEntry copy{in.info, source.raster().base, source.raster().rowbytes};
    const geometry::Raster& src = source.raster();
    double focus = module_value_int(instance, kDecl, 0),
           range = module_value_int(instance, kDecl, 1);
    auto colour = [&](int32_t x, int32_t y) {
        x = std::clamp(x, 0, src.width - 1);
        return geometry::argb_at(copy, src, x, y);
    };
    for (int32_t y = 0; y < out.height; ++y)
        for (int32_t x = 0; x < out.width; ++x) {
            double depth = geometry::luminance(colour(x, y)) / 255.0;
            double half = std::clamp((focus + range * depth) / 2, -1e6, 1e6);
            auto shift = static_cast<int32_t>(half);
            uint32_t left = colour(x + shift, y), right = colour(x - shift, y);
            uint32_t alpha = std::max(geometry::channel(left, 24), geometry::channel(right, 24));
            out.set(x, y,
                    geometry::pack_argb(alpha, geometry::channel(left, 16),
                                        geometry::channel(right, 8), geometry::channel(right, 0)));
        }
    return 1;
}

} // namespace

constexpr ModuleEntry mod_stereo = module_entry<kDecl>(query, process);
