// Doubled ("Doubled ARGB"): shows what a colour looks like at a smaller
// bit depth: each channel keeps only its top bits, which are then repeated
// downward to fill eight bits again (bit doubling, as hardware widens
// 5-bit or 4-bit channels), so white stays white and black black.
//
// Values (integers 0 .. 8, default 8): abits, rbits, gbits, bbits, the
// bits kept of alpha, red, green and blue. 8 keeps a channel as it is;
// 0 drops it: alpha becomes opaque (a format without alpha), a colour
// channel 0. Indexed images change through their palette.

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/colour.h"
#include "imaging/modules/filter/colour_space.h"
#include "imaging/modules/modules.h"

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, 0, 8, 8, "abits"},
    {kParamInteger, 0, 8, 8, "rbits"},
    {kParamInteger, 0, 8, 8, "gbits"},
    {kParamInteger, 0, 8, 8, "bbits"},
};

constexpr ModuleDecl kDecl = {.magic = "DUBD",
                              .name = "Doubled",
                              .description = "Doubled ARGB",
                              .version = "1.00",
                              .params = kParams};

// The level `v` reduced to its top `bits` bits and widened again.
int widen(int v, int bits) {
    int top = v >> (8 - bits);
    int out = 0;
    for (int shift = 8 - bits; shift > -bits; shift -= bits)
        out |= shift >= 0 ? top << shift : top >> -shift;
    return out & 0xFF;
}

auto ruleOf(const ModuleInstance* instance) {
    filter::ChannelTables tables{};
    const int channelOfSlot[4] = {3, 2, 1, 0};
    for (int slot = 0; slot < 4; ++slot) {
        int bits = std::clamp(module_value_int(instance, kDecl, slot), 0, 8);
        int c = channelOfSlot[slot];
        if (bits == 0)
            tables.fill(c, [c](int) { return c == 3 ? 255 : 0; });
        else
            tables.fill(c, [bits](int v) { return widen(v, bits); });
    }
    return tables;
}

} // namespace

constexpr ModuleEntry mod_doubled = filter::colour_entry<kDecl, ruleOf>();
