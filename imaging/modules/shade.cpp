// shade ("Shade ARGB"): re-tints an image so that one colour becomes
// another and every shade of it the matching shade of the new one.
//
// Values (32-bit words, default 0): argbnew, argbold. Each channel
// (alpha, red, green, blue) is multiplied by new / old of that channel,
// so argbold itself becomes argbnew, half its level half the new level.
// A channel whose old level is 0 stays as it is; the defaults change
// nothing. Indexed images change through their palette.

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/colour.h"
#include "imaging/modules/filter/colour_space.h"
#include "imaging/modules/modules.h"

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamMask, 0, 0xFFFFFFFF, 0, "argbnew"},
    {kParamMask, 0, 0xFFFFFFFF, 0, "argbold"},
};

constexpr ModuleDecl kDecl = {.magic = "SHAD",
                              .name = "shade",
                              .description = "Shade ARGB",
                              .version = "1.00",
                              .params = kParams};

auto ruleOf(const ModuleInstance* instance) {
    uint32_t wanted = module_value_uint(instance, kDecl, 0);
    uint32_t old = module_value_uint(instance, kDecl, 1);
    filter::ChannelTables tables{};
    for (int c = 0; c < 4; ++c) {
        double from = filter::channel(old, c), to = filter::channel(wanted, c);
        if (from == 0.0)
            tables.identity(c);
        else
            tables.fill(c, [=](int v) { return v * to / from; });
    }
    return tables;
}

} // namespace

constexpr ModuleEntry mod_shade = filter::colour_entry<kDecl, ruleOf>();
