// Rot ("Rotate"): turns the image by a multiple of 90 degrees.
//
// The descriptor is complete; the pixel work is not written yet, so open
// refuses and no caller ever holds an instance of this module. To add it,
// follow docs/modules.md: open with module_open_instance, then fill in
// query and process.

#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"

namespace mod_rot {

namespace {

// Callers may pass four slots: the angle choice, then a width, a height
// and a switch; with the switch set the result's centre point is computed
// against that width and height instead of the image's own.
//
// Types, ranges and defaults a generic parameter dialog offers.
constexpr ModuleParamDecl kParams[] = {
    {kParamChoice, 0, 3, 1, "Rot", "0,90,180,-90"},
};

constexpr ModuleDecl kDecl = {
    .magic = "FROT", .name = "Rot", .description = "Rotate", .version = "1.00", .params = kParams};

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

} // namespace mod_rot
