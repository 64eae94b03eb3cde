// Gamma ("Gamma Correct"): applies a gamma curve to each channel on its
// own, level' = 255 x (level / 255) ^ (1 / gamma), as ImageMagick's
// "-gamma" does: a gamma above 1 lightens the mid tones, below 1 darkens
// them, 1 leaves the channel as it is.
//
// Values (reals, 0.01 .. 10, default 1): AlphaGamma, RedGamma,
// GreenGamma, BlueGamma. A gamma of 0 or below (or not a number) leaves
// its channel alone. Indexed images change through their palette.

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/colour.h"
#include "imaging/modules/filter/colour_space.h"
#include "imaging/modules/modules.h"

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamReal, 0.01, 10.0, 1.0, "AlphaGamma"},
    {kParamReal, 0.01, 10.0, 1.0, "RedGamma"},
    {kParamReal, 0.01, 10.0, 1.0, "GreenGamma"},
    {kParamReal, 0.01, 10.0, 1.0, "BlueGamma"},
};

constexpr ModuleDecl kDecl = {.magic = "GAMA",
                              .name = "Gamma",
                              .description = "Gamma Correct",
                              .version = "1.00",
                              .params = kParams};

auto ruleOf(const ModuleInstance* instance) {
    filter::ChannelTables tables{};
    // Slot order alpha, red, green, blue; table order blue, green, red, alpha.
    const int channelOfSlot[4] = {3, 2, 1, 0};
    for (int slot = 0; slot < 4; ++slot) {
        double gamma = module_value_real(instance, kDecl, slot);
        int c = channelOfSlot[slot];
        if (!(gamma > 0.0) || !std::isfinite(gamma))
            tables.identity(c);
        else
            tables.fill(c, [gamma](int v) { return 255.0 * std::pow(v / 255.0, 1.0 / gamma); });
    }
    return tables;
}

} // namespace

constexpr ModuleEntry mod_gamma = filter::colour_entry<kDecl, ruleOf>();
