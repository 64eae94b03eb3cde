// Wrap ("Wrap Image"): scrolls the picture with wrap-around, as for
// checking that a texture tiles.
//
// Values: X and Y, the shift right and down in pixels; any value of the
// full signed range is taken (negative scrolls left or up). The centre
// point and hot spots stay where they are: they mark places of the sprite,
// not of the scrolled texture.

#include "imaging/geometry/canvas.h"
#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"

namespace {

// X and Y take the full signed 32-bit range: any offset wraps around.
//
constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, kIntMin, kIntMax, 0, "X"},
    {kParamInteger, kIntMin, kIntMax, 0, "Y"},
};

constexpr ModuleDecl kDecl = {.magic = "WRAP",
                              .name = "Wrap",
                              .description = "Wrap Image",
                              .version = "1.01",
                              .params = kParams};

TavixInfo* query(ModuleInstance* instance, int32_t) {
    if (!module_instance_ok(instance)) return nullptr;
    return module_copy_info(instance->images[0].info);
}

int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    if (!module_check_same_shape(kDecl, instance, result, pixels, rowbytes)) return 0;
    return geometry::wrap_pixels(module_value_int(instance, kDecl, 0),
                                 module_value_int(instance, kDecl, 1), instance->images[0],
                                 geometry::raster_of(result, pixels, rowbytes));
}

} // namespace

constexpr ModuleEntry mod_wrap = module_entry<kDecl>(query, process);
