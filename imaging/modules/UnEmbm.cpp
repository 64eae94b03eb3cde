// UnEmbm ("UnEmbm Image"): rebuilds a grey height map from a bump map
// made by Embm (red du, green dv; any layout).
//
// Values: mode, how slopes are integrated, as UnDot3's mode. The normal's
// z is made from du and dv, so the blue channel may hold anything.

#include "imaging/galloc.h"
#include "imaging/geometry/raster.h"
#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"
#include "imaging/normalmap/normals.h"

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, 0, 3, 0, "mode"},
};

constexpr ModuleDecl kDecl = {.magic = "EMBM",
                              .name = "UnEmbm",
                              .description = "UnEmbm Image",
                              .version = "1.01",
                              .params = kParams};

TavixInfo* query(ModuleInstance* instance, int32_t) {
    return geometry::argb_copy_query(instance);
}

int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    if (!geometry::check_argb_same_size(kDecl.name, instance, result, pixels, rowbytes)) return 0;
    const ImageEntry& in = instance->images[0];
    return normalmap::heights_from_normals(
        in, false, normalmap::integrate_from(module_value_int(instance, kDecl, 0)), pixels,
        rowbytes);
}

} // namespace

constexpr ModuleEntry mod_unembm = module_entry<kDecl>(query, process);
