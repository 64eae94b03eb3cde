// Halfsize ("Halfsize Image"): halves the image along one or both axes.
//
// The descriptor is complete; the pixel work is not written yet, so open
// refuses and no caller ever holds an instance of this module. To add it,
// follow docs/modules.md: open with module_open_instance, then fill in
// query and process.

#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"

namespace mod_halfsize {

namespace {

// A direction that is not passed counts as 3 (both axes).
//
// Types, ranges and defaults a generic parameter dialog offers.
constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, 0, 3, 3, "direction"}, {kParamInteger, 0, 2, 0, "vscale"},
    {kParamInteger, 0, 2, 0, "hscale"},    {kParamInteger, 0, 2, 0, "vstep"},
    {kParamInteger, 0, 2, 0, "hstep"},     {kParamInteger, 0, 1, 0, "edge"},
    {kParamInteger, 0, 1, 0, "dot3"},
};

constexpr ModuleDecl kDecl = {.magic = "HALF",
                              .name = "Halfsize",
                              .description = "Halfsize Image",
                              .version = "1.08",
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

} // namespace mod_halfsize
