// Rot ("Rotate"): turns the image by quarter turns, moving the centre
// point and hot spots with the pixels.
//
// Values: Rot, the angle code: 1 clockwise, 2 half a turn, 3 or -1
// counter-clockwise, 0 none; any integer counts quarter turns clockwise.
// The default point (the image's place on the worksheet) moves so that the
// centre point keeps its place. Indexed images move their indices.

#include "imaging/galloc.h"
#include "imaging/geometry/quarter.h"
#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"

namespace {

// Callers may pass four slots: the angle choice, then a width, a height
// and a switch; with the switch set the result's centre point is computed
// against that width and height instead of the image's own.
//
constexpr ModuleParamDecl kParams[] = {
    {kParamChoice, 0, 3, 1, "Rot", "0,90,180,-90"},
};

constexpr ModuleDecl kDecl = {
    .magic = "FROT", .name = "Rot", .description = "Rotate", .version = "1.00", .params = kParams};

geometry::Turn turn(const ModuleInstance* instance) {
    return geometry::turn_from_code(module_value_int(instance, kDecl, 0));
}

TavixInfo* query(ModuleInstance* instance, int32_t) {
    if (!module_instance_ok(instance)) return nullptr;
    TavixInfo* info = module_copy_info(instance->images[0].info);
    if (!info) return nullptr;
    bool framed = instance->valueCount >= 4 && module_value_int(instance, 3, 0) != 0;
    geometry::turn_record(turn(instance), info, framed ? module_value_int(instance, 1, 0) : 0,
                          framed ? module_value_int(instance, 2, 0) : 0);
    return info;
}

int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    if (!module_check_resized(kDecl, instance, result, pixels, rowbytes)) return 0;
    const ImageEntry& in = instance->images[0];
    int32_t width, height;
    geometry::turned_size(turn(instance), in.info->width, in.info->height, &width, &height);
    if (result->width != width || result->height != height) {
        gprintf("Rot - result is not %d x %d\n", width, height);
        return 0;
    }
    return geometry::turn_pixels(turn(instance), in, geometry::raster_of(result, pixels, rowbytes));
}

} // namespace

constexpr ModuleEntry mod_rot = module_entry<kDecl>(query, process);
