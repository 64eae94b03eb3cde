// Zoom ("Bicubic Zoom"): resizes with a bicubic kernel.
//
// The descriptor is complete; the pixel work is not written yet, so open
// refuses and no caller ever holds an instance of this module. To add it,
// follow docs/modules.md: open with module_open_instance, then fill in
// query and process.

#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"

namespace mod_zoom {

namespace {

// Types, ranges and defaults a generic parameter dialog offers.
constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, 1, 65536, 256, "Width"},
    {kParamInteger, 1, 65536, 256, "Height"},
    {kParamChoice, 0, 1, 0, "Edge Extend", "Solid,Boundary"},
    {kParamColour, 0, 0xFFFFFFFF, 0, "Solid Colour"},
    {kParamReal, 0.5, 8.0, 2.0, "Kernel Width"},
};

constexpr ModuleDecl kDecl = {.magic = "ZOOM",
                              .name = "Zoom",
                              .description = "Bicubic Zoom",
                              .version = "1.06",
                              .params = kParams};

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

} // namespace mod_zoom
