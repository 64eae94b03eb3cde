// DropS ("Drop Shadow"): casts a lit shadow of the image.
//
// The descriptor is complete; the pixel work is not written yet, so open
// refuses and no caller ever holds an instance of this module. To add it,
// follow docs/modules.md: open with module_open_instance, then fill in
// query and process.

#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"

namespace mod_drops {

namespace {

// Types, ranges and defaults a generic parameter dialog offers.
constexpr ModuleParamDecl kParams[] = {
    {kParamReal, -10000.0, 10000.0, 0.0, "TexPlaneOffest"},
    {kParamReal, -10000.0, 10000.0, 0.0, "ShadowPlaneOffset"},
    {kParamReal, -10000.0, 10000.0, 0.0, "LightLocx"},
    {kParamReal, -10000.0, 10000.0, 0.0, "LightLocy"},
    {kParamReal, -10000.0, 10000.0, 100.0, "LightLocz"},
    {kParamReal, -10000.0, 10000.0, 0.0, "CamLookx"},
    {kParamReal, -10000.0, 10000.0, 0.0, "CamLooky"},
    {kParamReal, -10000.0, 10000.0, 0.0, "CamLookz"},
    {kParamInteger, 0, 2, 0, "LightType"},
    {kParamReal, -1.0, 1.0, 0.0, "LightDirx"},
    {kParamReal, -1.0, 1.0, 0.0, "LightDiry"},
    {kParamReal, 0.0, 10.0, 0.0, "Falloff"},
    {kParamReal, 0.0, 10.0, 1.0, "FadePower"},
    {kParamReal, 0.0, 10000.0, 100.0, "FadeDist"},
    {kParamReal, -10000.0, 10000.0, 0.0, "ArAxis1x"},
    {kParamReal, -10000.0, 10000.0, 0.0, "ArAxis1y"},
    {kParamReal, -10000.0, 10000.0, 0.0, "ArAxis1z"},
    {kParamReal, -10000.0, 10000.0, 0.0, "ArAxis2x"},
    {kParamReal, -10000.0, 10000.0, 0.0, "ArAxis2y"},
    {kParamReal, -10000.0, 10000.0, 0.0, "ArAxis2z"},
    {kParamInteger, 1, 16, 1, "AreaNumLightW"},
    {kParamInteger, 1, 16, 1, "AreaNumLightH"},
    {kParamInteger, 0, 255, 0, "ShadowColourR"},
    {kParamInteger, 0, 255, 0, "ShadowColourG"},
    {kParamInteger, 0, 255, 0, "ShadowColourB"},
    {kParamReal, -10000.0, 10000.0, 0.0, "CamLocX"},
    {kParamReal, -10000.0, 10000.0, 0.0, "CamLocY"},
    {kParamReal, -10000.0, 10000.0, 100.0, "CamLocZ"},
    {kParamReal, 0.0, 1.0, 0.5, "LightCoefficient"},
    {kParamInteger, 1, 16, 1, "NumPasses"},
    {kParamInteger, 1, 8, 1, "MulSuperSample"},
};

constexpr ModuleDecl kDecl = {.magic = "DROP",
                              .name = "DropS",
                              .description = "Drop Shadow",
                              .version = "1.05",
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

} // namespace mod_drops
