// ACopy ("Alpha Copy"): copies between the colour and the alpha channel.
//
// Value: method (default 0): 0 "rgb" makes alpha the grey level (BT.601
// luma) of the colour, so a white-on-black picture becomes its own mask;
// 1 "alpha" makes red, green and blue the alpha level and the colour
// opaque, to look at or paint the mask. Indexed images change through
// their palette.

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/colour.h"
#include "imaging/modules/filter/colour_space.h"
#include "imaging/modules/modules.h"

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamChoice, 0, 1, 0, "method", "rgb,alpha"},
};

constexpr ModuleDecl kDecl = {.magic = "ACPY",
                              .name = "ACopy",
                              .description = "Alpha Copy",
                              .version = "1.02",
                              .params = kParams};

uint32_t greyToAlpha(uint32_t p) {
    double grey = filter::kLumaRed * filter::channel(p, 2) +
                  filter::kLumaGreen * filter::channel(p, 1) +
                  filter::kLumaBlue * filter::channel(p, 0);
    return (p & 0x00FFFFFF) | filter::clamp_byte(grey) << 24;
}

uint32_t alphaToGrey(uint32_t p) {
    uint32_t a = p >> 24;
    return filter::make_argb(255, a, a, a);
}

auto ruleOf(const ModuleInstance* instance) {
    return module_value_int(instance, kDecl, 0) == 1 ? alphaToGrey : greyToAlpha;
}

} // namespace

constexpr ModuleEntry mod_acopy = filter::colour_entry<kDecl, ruleOf>();
