// Pixel ("Pixel Expression"): evaluates one expression per channel for every pixel.
//
// The descriptor is complete; the pixel work is not written yet, so open
// refuses and no caller ever holds an instance of this module. To add it,
// follow docs/modules.md: open with module_open_instance, then fill in
// query and process.

#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"

namespace mod_pixel {

namespace {

// Types, ranges and defaults a generic parameter dialog offers.
constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, kIntMin, kIntMax, 0, "Expression Handle"},
    {kParamInteger, kIntMin, kIntMax, 0, "Alpha Expression"},
    {kParamInteger, kIntMin, kIntMax, 0, "Red Expression"},
    {kParamInteger, kIntMin, kIntMax, 0, "Green Expression"},
    {kParamInteger, kIntMin, kIntMax, 0, "Blue Expression"},
    {kParamInteger, kIntMin, kIntMax, 0, "Index Expression"},
    {kParamInteger, kIntMin, kIntMax, 0, "X Expression"},
    {kParamInteger, kIntMin, kIntMax, 0, "Y Expression"},
};

constexpr ModuleDecl kDecl = {.magic = "PIXL",
                              .name = "Pixel",
                              .description = "Pixel Expression",
                              .version = "1.12",
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

} // namespace mod_pixel
