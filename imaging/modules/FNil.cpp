// FNil ("Nil"): the identity filter, entry 0 of the table. An unknown
// module name selects it, so a mistyped name copies the image instead of
// failing. It shares Flip's magic on purpose.

#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"

#include <cstring>

namespace {

constexpr ModuleDecl kDecl = {
    .magic = "FLIP", .name = "FNil", .description = "Nil", .version = "1.01"};

TavixInfo* query(ModuleInstance* instance, int32_t) {
    if (!module_instance_ok(instance)) return nullptr;
    return module_copy_info(instance->images[0].info);
}

int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    if (!module_check_same_shape(kDecl, instance, result, pixels, rowbytes)) return 0;
    const ImageEntry& in = instance->images[0];
    size_t length = static_cast<size_t>(module_row_length(in.info));
    for (int32_t y = 0; y < in.info->height; ++y) {
        const uint8_t* from = module_row(in, y);
        uint8_t* to = module_row(pixels, rowbytes, y);
        // Run in place, source and destination are the same row.
        if (from != to) memcpy(to, from, length);
    }
    return 1;
}

} // namespace

constexpr ModuleEntry mod_fnil = module_entry<kDecl>(query, process);
