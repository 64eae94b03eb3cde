// Deinterlace ("Deinterlace"): drops one field of an interlaced picture
// and rebuilds its lines from the other.
//
// Values: Scan Line, the field to drop: Odd (rows 1, 3, 5 ... counting the
// top row as 0) or Even (rows 0, 2, 4 ...). On 32-bit images each dropped
// row becomes the average of the rows above and below (the one neighbour at
// the top or bottom edge); indexed images repeat the row above, since
// indices cannot be averaged. A one-row image stays as it is.

#include "imaging/geometry/canvas.h"
#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamChoice, 0, 1, 0, "Scan Line", "Odd,Even"},
};

constexpr ModuleDecl kDecl = {.magic = "DINT",
                              .name = "Deinterlace",
                              .description = "Deinterlace",
                              .version = "1.00",
                              .params = kParams};

TavixInfo* query(ModuleInstance* instance, int32_t) {
    if (!module_instance_ok(instance)) return nullptr;
    return module_copy_info(instance->images[0].info);
}

int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    if (!module_check_same_shape(kDecl, instance, result, pixels, rowbytes)) return 0;
    return geometry::deinterlace_pixels(module_value_int(instance, kDecl, 0) != 0 ? 1 : 0,
                                        instance->images[0],
                                        geometry::raster_of(result, pixels, rowbytes));
}

} // namespace

constexpr ModuleEntry mod_deinterlace = module_entry<kDecl>(query, process);
