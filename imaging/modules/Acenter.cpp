// Acenter ("Auto Center"): places the centre point from the image content.
//
// The descriptor is complete; the pixel work is not written yet, so open
// refuses and no caller ever holds an instance of this module. To add it,
// follow docs/modules.md: open with module_open_instance, then fill in
// query and process.

#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"

namespace mod_acenter {

namespace {

constexpr ModuleDecl kDecl = {
    .magic = "ACNT", .name = "Acenter", .description = "Auto Center", .version = "1.00"};

} // namespace

ModuleDescriptor* describe() {
    return module_build_descriptor(kDecl);
}

int open(ModuleInstance** out, int32_t, const ImageEntry*, int32_t, const ModuleValue*) {
    return module_unavailable(kDecl, out);
}

TavixInfo* query(ModuleInstance*, int32_t) {
    return nullptr;
}

int process(ModuleInstance*, const TavixInfo*, void*, int32_t) {
    return 0;
}

int close(ModuleInstance* instance) {
    return module_close_instance(instance);
}

} // namespace mod_acenter
