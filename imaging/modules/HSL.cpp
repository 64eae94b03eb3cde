// HSL ("HSL Adjust"): adjusts saturation, lightness and hue in the
// hue/saturation/lightness model.
//
// Values (integers or reals):
// - Saturation (-100 .. 100 percent, default 0): scales saturation by
//   (100 + Saturation) / 100: -100 gives grey, 100 doubles it (held to
//   full); greys stay grey.
// - Lightness (-100 .. 100 percent, default 0): negative values move
//   lightness towards black, positive ones towards white (100: white).
// - Mask (32-bit word, default 0xFFFFFFFF): only the bits set in it take
//   the new colour; the others keep the old one (0x00FF0000: red only).
// - slot 3, hue (degrees, default 0; beyond the descriptor): turns the
//   hue round the colour wheel.
// Alpha stays. Indexed images change through their palette.

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/colour.h"
#include "imaging/modules/filter/colour_space.h"
#include "imaging/modules/modules.h"

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, -100, 100, 0, "Saturation"},
    {kParamInteger, -100, 100, 0, "Lightness"},
    {kParamMask, 0, 0xFFFFFFFF, 0xFFFFFFFF, "Mask"},
};

constexpr ModuleDecl kDecl = {.magic = "FHSV",
                              .name = "HSL",
                              .description = "HSL Adjust",
                              .version = "1.03",
                              .params = kParams};

// Moves a 0 .. 1 amount by a percentage: down towards 0 or up towards 1.
double towards(double v, double percent) {
    double k = std::clamp(percent, -100.0, 100.0) / 100.0;
    return k < 0.0 ? v * (1.0 + k) : v + (1.0 - v) * k;
}

// Scales saturation by (100 + percent) / 100: greys stay grey.
double scaled(double v, double percent) {
    return std::clamp(v * (100.0 + std::clamp(percent, -100.0, 100.0)) / 100.0, 0.0, 1.0);
}

auto ruleOf(const ModuleInstance* instance) {
    double saturation = module_value_number(instance, 0, 0.0);
    double lightness = module_value_number(instance, 1, 0.0);
    uint32_t mask = module_value_uint(instance, kDecl, 2);
    double hue = module_value_number(instance, 3, 0.0);
    if (!std::isfinite(hue)) hue = 0.0;
    return [=](uint32_t p) {
        filter::Hsx v = filter::to_hsl(filter::rgb_of(p));
        v.h += hue;
        v.s = scaled(v.s, saturation);
        v.x = towards(v.x, lightness);
        uint32_t changed = filter::argb_of(filter::from_hsl(v), p >> 24);
        return (changed & mask) | (p & ~mask);
    };
}

} // namespace

constexpr ModuleEntry mod_hsl = filter::colour_entry<kDecl, ruleOf>();
