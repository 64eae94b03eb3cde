// Blend ("Composite Blend"): lays the second image over the first; the compositing operator.
//
// The descriptor is complete; the pixel work is not written yet, so open
// refuses and no caller ever holds an instance of this module. To add it,
// follow docs/modules.md: open with module_open_instance, then fill in
// query and process.

#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"

namespace mod_blend {

namespace {

// The first image entry is the background, the second the foreground.
// "Foreground Percentage" scales the first image and "Background
// Percentage" the second; the names stay as callers know them.
//
// Types, ranges and defaults a generic parameter dialog offers.
constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, 0, 10, 0, "Method",
     "Alpha,Paste,Sub,Add,Remove,psnr,prealpha,multiple,screen,overlay,tmask"},
    {kParamColour, 0, 0xFFFFFFFF, 0, "Colour"},
    {kParamReal, -200.0, 200.0, 100.0, "Foreground Percentage"},
    {kParamReal, -200.0, 200.0, 100.0, "Background Percentage"},
    {kParamMask, 0, 0xFFFFFFFF, 0xFFFFFFFF, "Mask"},
    {kParamInteger, 0, 2, 0, "Palette Method", "Combine,Background,Foreground"},
};

constexpr ModuleDecl kDecl = {.magic = "BLND",
                              .name = "Blend",
                              .description = "Composite Blend",
                              .version = "1.23",
                              .flags = 2,
                              .images = 2,
                              .secondCount = 2,
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

} // namespace mod_blend
