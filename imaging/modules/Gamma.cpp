// Gamma ("Gamma Correct"): applies a gamma curve per channel.
//
// The descriptor is complete; the pixel work is not written yet, so open
// refuses and no caller ever holds an instance of this module. To add it,
// follow docs/modules.md: open with module_open_instance, then fill in
// query and process.

#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"

namespace mod_gamma {

namespace {

// Types, ranges and defaults a generic parameter dialog offers.
constexpr ModuleParamDecl kParams[] = {
    {kParamReal, 0.01, 10.0, 1.0, "AlphaGamma"},
    {kParamReal, 0.01, 10.0, 1.0, "RedGamma"},
    {kParamReal, 0.01, 10.0, 1.0, "GreenGamma"},
    {kParamReal, 0.01, 10.0, 1.0, "BlueGamma"},
};

constexpr ModuleDecl kDecl = {.magic = "GAMA",
                              .name = "Gamma",
                              .description = "Gamma Correct",
                              .version = "1.00",
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

} // namespace mod_gamma
