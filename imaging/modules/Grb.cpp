// Grb ("Grb"): mirrors the pixels alone. Unlike Flip, the centre point,
// default point and hot spots stay as they are, for pictures whose points
// belong to the frame rather than to the drawing.
//
// Values: Direction (None, Horizontal, Vertical, Both; bit 0 mirrors
// left-right, bit 1 top-bottom).

#include "imaging/geometry/canvas.h"
#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamChoice, 0, 3, 1, "Direction", "None,Horizontal,Vertical,Both"},
};

constexpr ModuleDecl kDecl = {
    .magic = "GURB", .name = "Grb", .description = "Grb", .version = "1.00", .params = kParams};

TavixInfo* query(ModuleInstance* instance, int32_t) {
    if (!module_instance_ok(instance)) return nullptr;
    return module_copy_info(instance->images[0].info);
}

int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    if (!module_check_same_shape(kDecl, instance, result, pixels, rowbytes)) return 0;
    return geometry::mirror_pixels(module_value_int(instance, kDecl, 0) & 3, instance->images[0],
                                   geometry::raster_of(result, pixels, rowbytes));
}

} // namespace

constexpr ModuleEntry mod_grb = module_entry<kDecl>(query, process);
