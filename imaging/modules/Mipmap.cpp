// Mipmap ("Mipmap"): turns the image into a chain of ever smaller levels, built with other modules.
//
// The descriptor is complete; the pixel work is not written yet, so open
// refuses and no caller ever holds an instance of this module. To add it,
// follow docs/modules.md: open with module_open_instance, then fill in
// query and process.

#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"

namespace mod_mipmap {

namespace {

// Method defaults differ on purpose: the descriptor advertises 1, while a
// caller that passes no Method gets kMethodWhenMissing. Width and Height
// not passed mean the source's own size.
//
// Types, ranges and defaults a generic parameter dialog offers.
constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, 1, 5, 1, "Method"},
    {kParamInteger, 1, 200, 10, "Levels"},
    {kParamInteger, 1, 20, 1, "MinLevels"},
    {kParamInteger, 1, kIntMax, 100, "Width"},
    {kParamInteger, 1, kIntMax, 100, "Height"},
    {kParamInteger, 0, 199, 0, "ClearLastN"},
    {kParamColour, 0, 0xFFFFFFFF, 0, "Background Colour"},
    {kParamInteger, 0, 1, 0, "Transparency Flag"},
    {kParamInteger, 0, 1, 0, "Mipmap Collapse Flag"},
};

constexpr int32_t kMethodWhenMissing = 3;

constexpr ModuleDecl kDecl = {.magic = "MIPM",
                              .name = "Mipmap",
                              .description = "Mipmap",
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

} // namespace mod_mipmap
