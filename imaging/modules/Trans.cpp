// Trans ("transposeImage"): swaps rows and columns (mirrors the picture
// about its main diagonal), moving the centre point and hot spots with the
// pixels. The default point moves so that the centre point keeps its place
// on the worksheet. Twice gives the image back.

#include "imaging/galloc.h"
#include "imaging/geometry/quarter.h"
#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"

namespace {

constexpr ModuleDecl kDecl = {
    .magic = "TRAN", .name = "Trans", .description = "transposeImage", .version = "1.00"};

TavixInfo* query(ModuleInstance* instance, int32_t) {
    if (!module_instance_ok(instance)) return nullptr;
    TavixInfo* info = module_copy_info(instance->images[0].info);
    if (info) geometry::turn_record(geometry::Turn::Transpose, info);
    return info;
}

int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    if (!module_check_resized(kDecl, instance, result, pixels, rowbytes)) return 0;
    const ImageEntry& in = instance->images[0];
    if (result->width != in.info->height || result->height != in.info->width) {
        gprintf("Trans - result is not %d x %d\n", in.info->height, in.info->width);
        return 0;
    }
    return geometry::turn_pixels(geometry::Turn::Transpose, in,
                                 geometry::raster_of(result, pixels, rowbytes));
}

} // namespace

constexpr ModuleEntry mod_trans = module_entry<kDecl>(query, process);
