// Dot3 ("Dot3 NormalMap"): turns a height map into a DOT3 normal map.
//
// Heights are the luminance of each pixel (through the palette for indexed
// images). Values: height scale, how many pixels high the full range from
// black to white stands (1 makes gentle bumps; a larger scale steeper
// ones); filter method, how slopes are taken: 0 central differences, 1 Sobel
// 3 x 3, 2 Scharr 3 x 3 (smoothest), 3 forward differences (sharpest).
// The result is 32-bit: red holds the normal's x (right), green its y (up
// the picture), blue its z (out of it), each as (n + 1) / 2 of 255; alpha
// is the source's. The record is marked as a DOT3 map.

#include "imaging/galloc.h"
#include "imaging/geometry/raster.h"
#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"
#include "imaging/normalmap/normals.h"

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamReal, 0.0, 100.0, 1.0, "height scale"},
    {kParamInteger, 0, 3, 0, "filter method"},
};

constexpr ModuleDecl kDecl = {.magic = "DOT3",
                              .name = "Dot3",
                              .description = "Dot3 NormalMap",
                              .version = "1.06",
                              .params = kParams};

TavixInfo* query(ModuleInstance* instance, int32_t) {
    TavixInfo* info = geometry::argb_copy_query(instance);
    if (!info) return nullptr;
    info->attributes |= kAttrDot3;
    return info;
}

int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    if (!geometry::check_argb_same_size(kDecl.name, instance, result, pixels, rowbytes)) return 0;
    const ImageEntry& in = instance->images[0];
    return normalmap::make_dot3(in, module_value_real(instance, kDecl, 0),
                                normalmap::slope_from(module_value_int(instance, kDecl, 1)), pixels,
                                rowbytes);
}

} // namespace

constexpr ModuleEntry mod_dot3 = module_entry<kDecl>(query, process);
