// Chroma ("Chroma Key"): makes the key colour and colours near it fully
// transparent, for sprites drawn on a flat background colour.
//
// Values:
// - Tolerance (0 .. 255 levels, default 16): a colour is keyed out when
//   none of its red, green and blue differs from the key's by more.
// - slot 1, key colour (32-bit 0xAARRGGBB, beyond the descriptor; its
//   alpha is ignored): by default the colour of the top-left pixel.
// Keyed colours keep red, green and blue and get alpha 0. Indexed images
// change through their palette (an entry made transparent).

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/colour.h"
#include "imaging/modules/filter/colour_space.h"
#include "imaging/modules/modules.h"

#include <cstdlib>

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, 0, 255, 16, "Tolerance"},
};

constexpr ModuleDecl kDecl = {.magic = "",
                              .name = "Chroma",
                              .description = "Chroma Key",
                              .version = "1.00",
                              .secondCount = 1,
                              .params = kParams};

auto ruleOf(const ModuleInstance* instance) {
    int tolerance = module_value_int(instance, kDecl, 0);
    uint32_t key = module_value_uint(instance, 1, filter::corner_colour(instance->images[0]));
    return [=](uint32_t p) {
        for (int c = 0; c < 3; ++c) {
            int d = std::abs(static_cast<int>(filter::channel(p, c)) -
                             static_cast<int>(filter::channel(key, c)));
            if (d > tolerance) return p;
        }
        return p & 0x00FFFFFF;
    };
}

} // namespace

constexpr ModuleEntry mod_chroma = filter::colour_entry<kDecl, ruleOf>();
