// Rect ("Rect Image"): paints a rectangle.
//
// The descriptor is complete; the pixel work is not written yet, so open
// refuses and no caller ever holds an instance of this module. To add it,
// follow docs/modules.md: open with module_open_instance, then fill in
// query and process.

#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"

namespace mod_rect {

namespace {

// Types, ranges and defaults a generic parameter dialog offers.
constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, 1, 65536, 16, "Width"},
    {kParamInteger, 1, 65536, 16, "Height"},
    {kParamColour, 0, 0xFFFFFFFF, 0xFF000000, "Colour"},
};

constexpr ModuleDecl kDecl = {.magic = "RECT",
                              .name = "Rect",
                              .description = "Rect Image",
                              .version = "1.02",
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

} // namespace mod_rect
