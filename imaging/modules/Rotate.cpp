// Rotate ("Rotate"): turns the image by any angle about its middle.
//
// Values: Angle in radians (positive turns counter-clockwise on screen),
// Colour for what the turned picture does not cover (an index for indexed
// images), Interpolate (1: 32-bit images are sampled bilinearly and their
// edges fade into the fill colour, with a transparent fill into alpha; 0:
// nearest pixel). The result grows to hold the whole turned picture; the
// centre point and hot spots turn with it and the default point moves so
// that the centre point keeps its place on the worksheet. Indexed images
// always take the nearest pixel.

#include "imaging/galloc.h"
#include "imaging/geometry/rotate.h"
#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamReal, -360.0, 360.0, 0.0, "Angle"},
    {kParamColour, 0, 0xFFFFFFFF, 0, "Colour"},
    {kParamInteger, 0, 1, 1, "Interpolate"},
};

constexpr ModuleDecl kDecl = {
    .magic = "", .name = "Rotate", .description = "Rotate", .version = "1.04", .params = kParams};

TavixInfo* query(ModuleInstance* instance, int32_t) {
    if (!module_instance_ok(instance)) return nullptr;
    TavixInfo* info = module_copy_info(instance->images[0].info);
    if (info) geometry::rotate_record(module_value_real(instance, kDecl, 0), info);
    return info;
}

int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    if (!module_check_resized(kDecl, instance, result, pixels, rowbytes)) return 0;
    const ImageEntry& in = instance->images[0];
    double angle = module_value_real(instance, kDecl, 0);
    int32_t width, height;
    geometry::rotated_size(angle, in.info->width, in.info->height, &width, &height);
    if (result->width != width || result->height != height) {
        gprintf("Rotate - result is not %d x %d\n", width, height);
        return 0;
    }
    return geometry::rotate_pixels(angle, in, geometry::raster_of(result, pixels, rowbytes),
                                   module_value_uint(instance, kDecl, 1),
                                   module_value_int(instance, kDecl, 2) != 0);
}

} // namespace

constexpr ModuleEntry mod_rotate = module_entry<kDecl>(query, process);
