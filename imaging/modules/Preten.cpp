// Preten ("Preattenuate ARGB"): multiplies red, green and blue by alpha
// (pre-multiplied alpha, as blending hardware wants it), or divides alpha
// out again.
//
// Value: method (default 0): 0 "preattenuate": level x alpha / 255;
// 1 "unattenuate": level x 255 / alpha, held to 255 (a fully transparent
// colour keeps its levels: nothing can be recovered from it). Both round
// to nearest; alpha stays. Indexed images change through their palette.

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/colour.h"
#include "imaging/modules/filter/colour_space.h"
#include "imaging/modules/modules.h"

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamChoice, 0, 1, 0, "method", "preattenuate,unattenuate"},
};

constexpr ModuleDecl kDecl = {.magic = "ATEN",
                              .name = "Preten",
                              .description = "Preattenuate ARGB",
                              .version = "1.00",
                              .params = kParams};

uint32_t attenuate(uint32_t p) {
    uint32_t a = p >> 24;
    uint32_t out = p & 0xFF000000;
    for (int c = 0; c < 3; ++c)
        out |= ((filter::channel(p, c) * a + 127) / 255) << (8 * c);
    return out;
}

uint32_t unattenuate(uint32_t p) {
    uint32_t a = p >> 24;
    if (a == 0) return p;
    uint32_t out = p & 0xFF000000;
    for (int c = 0; c < 3; ++c)
        out |= std::min<uint32_t>(255, (filter::channel(p, c) * 255 + a / 2) / a) << (8 * c);
    return out;
}

auto ruleOf(const ModuleInstance* instance) {
    return module_value_int(instance, kDecl, 0) == 1 ? unattenuate : attenuate;
}

} // namespace

constexpr ModuleEntry mod_preten = filter::colour_entry<kDecl, ruleOf>();
