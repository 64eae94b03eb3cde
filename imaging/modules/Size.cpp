// Size ("Image Size"): the filtered resampler with eight kernels, an
// alpha-aware mode and a key colour for transparent pixels.
//
// The descriptor is complete; the pixel work is not written yet, so open
// refuses and no caller ever holds an instance of this module. To add it,
// follow docs/modules.md: open with module_open_instance, then fill in
// query and process.

#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"

namespace mod_size {

namespace {

// The nine value slots that callers who know the module pass, in order.
// Process reads them by count: a slot not passed takes the default here.
constexpr ModuleParamDecl kSlots[] = {
    {kParamInteger, 1, 0, 0, "Width"},
    {kParamInteger, 1, 0, 0, "Height"},
    {kParamChoice, 0, 7, 0, "Filter Function",
     "Lanczos3,Mitchell,Cubic,Linear,Point,Bell,B-Spline,Quadratic"},
    {kParamInteger, 0, 1, 0, "Respect Alpha"},
    {kParamMask, 0, 0xFFFFFFFF, 0, "Chromakey Colour"},
    {kParamReal, 0.0, 1.0, 1.0, "X Sharpness"},
    {kParamReal, 0.0, 1.0, 1.0, "Y Sharpness"},
    {kParamReal, 1e-7, 999999.0, 1.0, "Scale Ratio X"},
    {kParamReal, 1e-7, 999999.0, 1.0, "Scale Ratio Y"},
};

// The descriptor has seven records. Its seventh was written with each of
// the last three slots in turn, so only "Scale Ratio Y" shows there; a
// generic dialog built from it offers seven parameters ending with that
// one, and existing callers rely on this.
constexpr ModuleParamDecl kRecords[] = {kSlots[0], kSlots[1], kSlots[2], kSlots[3],
                                        kSlots[4], kSlots[5], kSlots[8]};

constexpr ModuleDecl kDecl = {.magic = "",
                              .name = "Size",
                              .description = "Image Size",
                              .version = "1.13",
                              .flags = 2,
                              .params = kRecords};

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

} // namespace mod_size
