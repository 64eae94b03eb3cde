// safe ("Safe ARGB"): makes colours safe for television: red, green and
// blue are brought into the broadcast-legal levels 16 .. 235.
//
// Value: method (one choice, "grey", default 0): a colour's luma is first
// held to 16 .. 235, then a colour still outside the range is moved
// towards its own grey (its saturation lowered) just far enough to fit,
// so hues survive where clipping each channel would shift them. Alpha
// stays. Indexed images change through their palette.

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/colour.h"
#include "imaging/modules/filter/colour_space.h"
#include "imaging/modules/modules.h"

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamChoice, 0, 0, 0, "method", "grey"},
};

constexpr ModuleDecl kDecl = {.magic = "SAFE",
                              .name = "safe",
                              .description = "Safe ARGB",
                              .version = "1.02",
                              .params = kParams};

constexpr double kLow = 16.0, kHigh = 235.0;

uint32_t makeSafe(uint32_t p) {
    double c[3] = {static_cast<double>(filter::channel(p, 2)),
                   static_cast<double>(filter::channel(p, 1)),
                   static_cast<double>(filter::channel(p, 0))};
    double grey =
        std::clamp(filter::kLumaRed * c[0] + filter::kLumaGreen * c[1] + filter::kLumaBlue * c[2],
                   kLow, kHigh);
    // The largest share t of each channel's distance from grey that fits.
    double t = 1.0;
    for (double v : c) {
        if (v > kHigh) t = std::min(t, (kHigh - grey) / (v - grey));
        if (v < kLow) t = std::min(t, (grey - kLow) / (grey - v));
    }
    for (double& v : c)
        v = std::clamp(grey + (v - grey) * t, kLow, kHigh);
    return filter::make_argb(p >> 24, filter::clamp_byte(c[0]), filter::clamp_byte(c[1]),
                             filter::clamp_byte(c[2]));
}

auto ruleOf(const ModuleInstance*) {
    return makeSafe;
}

} // namespace

constexpr ModuleEntry mod_safe = filter::colour_entry<kDecl, ruleOf>();
