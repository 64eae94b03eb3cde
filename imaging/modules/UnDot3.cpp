// UnDot3 ("UnDot3 NormalMap to height"): rebuilds a grey height map from a
// DOT3 normal map (red x, green y up the picture, blue z).
//
// Values: mode, how slopes are integrated: 0 smoothest (row and column
// integrals averaged, then relaxed towards the heights that fit every
// slope best), 1 the average of integrating along rows and along columns,
// 2 along rows only, 3 along columns only. The heights are stretched to
// the full grey range (a flat map gives mid grey); alpha is kept. The
// result is 32-bit and no longer marked as a DOT3 map.

#include "imaging/galloc.h"
#include "imaging/geometry/raster.h"
#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"
#include "imaging/normalmap/normals.h"

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, 0, 3, 0, "mode"},
};

constexpr ModuleDecl kDecl = {.magic = "UDOT",
                              .name = "UnDot3",
                              .description = "UnDot3 NormalMap to height",
                              .version = "1.00",
                              .params = kParams};

TavixInfo* query(ModuleInstance* instance, int32_t) {
    TavixInfo* info = geometry::argb_copy_query(instance);
    if (!info) return nullptr;
    info->attributes &= ~static_cast<uint32_t>(kAttrDot3);
    return info;
}

int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    if (!geometry::check_argb_same_size(kDecl.name, instance, result, pixels, rowbytes)) return 0;
    const ImageEntry& in = instance->images[0];
    return normalmap::heights_from_normals(
        in, true, normalmap::integrate_from(module_value_int(instance, kDecl, 0)), pixels,
        rowbytes);
}

} // namespace

constexpr ModuleEntry mod_undot3 = module_entry<kDecl>(query, process);
