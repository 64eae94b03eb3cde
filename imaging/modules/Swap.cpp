// Swap ("Swap Colours"): exchanges two colours: every pixel (or palette
// entry) of exactly Colour1 becomes Colour2 and every one of Colour2
// becomes Colour1. Colours are whole 0xAARRGGBB words, alpha included.
//
// Values: Colour1, Colour2 (default 0). Indexed images change through
// their palette.

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/colour.h"
#include "imaging/modules/filter/colour_space.h"
#include "imaging/modules/modules.h"

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamColour, 0, 0xFFFFFFFF, 0, "Colour1"},
    {kParamColour, 0, 0xFFFFFFFF, 0, "Colour2"},
};

constexpr ModuleDecl kDecl = {.magic = "SWAP",
                              .name = "Swap",
                              .description = "Swap Colours",
                              .version = "1.00",
                              .params = kParams};

auto ruleOf(const ModuleInstance* instance) {
    uint32_t one = module_value_uint(instance, kDecl, 0),
             two = module_value_uint(instance, kDecl, 1);
    return [=](uint32_t p) { return p == one ? two : (p == two ? one : p); };
}

} // namespace

constexpr ModuleEntry mod_swap = filter::colour_entry<kDecl, ruleOf>();
