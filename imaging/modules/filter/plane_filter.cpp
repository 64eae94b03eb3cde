#include "imaging/modules/filter/plane_filter.h"

namespace filter {

TavixInfo* plane_query(ModuleInstance* instance, int32_t) {
    if (!module_instance_ok(instance)) return nullptr;
    return module_copy_info(instance->images[0].info);
}

int plane_process(const ModuleDecl& decl, const ModuleInstance* instance, const TavixInfo* result,
                  void* pixels, int32_t rowbytes, PlaneOp op, PlaneKind kind) {
    if (!module_check_same_shape(decl, instance, result, pixels, rowbytes)) return 0;
    const ImageEntry& in = instance->images[0];
    Plane plane;
    bool colours = kind == PlaneKind::Colours;
    bool ok = colours ? plane_load_colours(in, &plane) : plane_load_values(in, &plane);
    ok = ok && op(instance, &plane);
    if (ok && colours)
        ok = plane_store_colours(plane, result, pixels, rowbytes);
    else if (ok)
        plane_store_values(plane, result, pixels, rowbytes);
    plane_free(&plane);
    return ok ? 1 : 0;
}

} // namespace filter
