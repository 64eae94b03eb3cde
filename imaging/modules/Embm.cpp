// Embm ("Embm NormalMap"): turns a height map into an environment-mapped
// bump map (du, dv).
//
// Heights and slopes as in Dot3. du and dv are the x and y of the surface
// normal (x right, y up the picture), stored as signed values biased by
// 128. Values: embm type, the layout: 0 V8U8 (red du, green dv, blue 0,
// alpha kept), 1 L6V5U5 (blue the source's luminance, alpha kept), 2
// X8L8V8U8 (as 1, alpha opaque), 3 Q8W8V8U8 (blue the normal's z, alpha
// opaque); height scale and filter method as in Dot3. The result is
// 32-bit; a file format with fewer bits per channel reduces it on saving.

#include "imaging/galloc.h"
#include "imaging/geometry/raster.h"
#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"
#include "imaging/normalmap/normals.h"

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, 0, 3, 0, "embm type"},
    {kParamReal, 0.0, 100.0, 1.0, "height scale"},
    {kParamInteger, 0, 3, 0, "filter method"},
};

constexpr ModuleDecl kDecl = {.magic = "EMBM",
                              .name = "Embm",
                              .description = "Embm NormalMap",
                              .version = "1.07",
                              .params = kParams};

TavixInfo* query(ModuleInstance* instance, int32_t) {
    return geometry::argb_copy_query(instance);
}

int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    if (!geometry::check_argb_same_size(kDecl.name, instance, result, pixels, rowbytes)) return 0;
    const ImageEntry& in = instance->images[0];
    return normalmap::make_bump(in, normalmap::bump_from(module_value_int(instance, kDecl, 0)),
                                module_value_real(instance, kDecl, 1),
                                normalmap::slope_from(module_value_int(instance, kDecl, 2)), pixels,
                                rowbytes);
}

} // namespace

constexpr ModuleEntry mod_embm = module_entry<kDecl>(query, process);
