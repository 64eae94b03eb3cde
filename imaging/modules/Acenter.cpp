// Acenter ("Auto Center"): puts the centre point in the middle of the
// sprite's content, the smallest rectangle that holds every pixel that is
// not background. Background is the transparent colours, or, in an image
// without any transparent pixel, the colour of the top-left pixel. The
// centre is measured in pixel edges, as every point of a shape: content
// from x 2 to 5 has its centre at x 4. An image that is all background
// keeps its centre. Pixels, the default point and hot spots stay. No
// values.

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/colour.h"
#include "imaging/modules/filter/plane.h"
#include "imaging/galloc.h"
#include "imaging/modules/modules.h"

#include <algorithm>

namespace {

constexpr ModuleDecl kDecl = {
    .magic = "ACNT", .name = "Acenter", .description = "Auto Center", .version = "1.00"};

// Sets the record's centre from the content of `in`; false when memory is short.
bool centre(const ImageEntry& in, TavixInfo* info) {
    filter::Plane plane;
    if (!in.pixels) return true;
    if (!filter::plane_load_values(in, &plane)) return false;
    filter::Background background =
        filter::plane_background(plane, in.info->bufferbpp <= 8 ? in.info : nullptr);
    int32_t left = plane.width, right = -1, top = plane.height, bottom = -1;
    for (int32_t y = 0; y < plane.height; ++y) {
        for (int32_t x = 0; x < plane.width; ++x) {
            if (background.is(plane.at(x, y))) continue;
            left = std::min(left, x), right = std::max(right, x);
            top = std::min(top, y), bottom = std::max(bottom, y);
        }
    }
    if (right >= 0) {
        info->centerx = (left + right + 1) / 2;
        info->centery = (top + bottom + 1) / 2;
    }
    filter::plane_free(&plane);
    return true;
}

TavixInfo* query(ModuleInstance* instance, int32_t) {
    if (!module_instance_ok(instance)) return nullptr;
    TavixInfo* info = module_copy_info(instance->images[0].info);
    if (info && !centre(instance->images[0], info)) {
        gfree(info);
        return nullptr;
    }
    return info;
}

int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    if (!module_check_same_shape(kDecl, instance, result, pixels, rowbytes)) return 0;
    filter::copy_rows(instance->images[0], pixels, rowbytes);
    return 1;
}

} // namespace

constexpr ModuleEntry mod_acenter = module_entry<kDecl>(query, process);
