// Warp ("Warp Image along control lines"): warps by a wave or along pairs of control lines.
//
// The descriptor is complete; the pixel work is not written yet, so open
// refuses and no caller ever holds an instance of this module. To add it,
// follow docs/modules.md: open with module_open_instance, then fill in
// query and process.

#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"

namespace mod_warp {

namespace {

// Types, ranges and defaults a generic parameter dialog offers.
constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, 0, 2, 0, "Type:Def/Wave/ContLines"},
    {kParamInteger, kIntMin, kIntMax, 0, "Clamp X/VertWave/NA"},
    {kParamInteger, kIntMin, kIntMax, 0, "Clamp Y/HorzWave/NA"},
    {kParamColour, 0, 0xFFFFFFFF, 0, "FillColour/NA/NA"},
    {kParamInteger, kIntMin, kIntMax, 0, "ToPointX/NA/numlinepairs"},
    {kParamInteger, kIntMin, kIntMax, 0, "ToPointY/NA/X1.1"},
    {kParamInteger, kIntMin, kIntMax, 0, "FromPointX/NA/Y1.1"},
    {kParamInteger, kIntMin, kIntMax, 0, "FromPointY/NA/X1.2"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/Y1.2"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/X1.3"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/Y1.3"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/X1.4"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/Y1.4"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/X2.1"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/Y2.1"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/X2.2"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/Y2.2"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/X2.3"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/Y2.3"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/X2.4"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/Y2.4"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/X3.1"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/Y3.1"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/X3.2"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/Y3.2"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/X3.3"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/Y3.3"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/X3.4"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/Y3.4"},
};

constexpr ModuleDecl kDecl = {.magic = "WARP",
                              .name = "Warp",
                              .description = "Warp Image along control lines",
                              .version = "1.01",
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

} // namespace mod_warp
