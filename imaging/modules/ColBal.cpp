// ColBal ("Color Balance"): shifts the balance of the colours towards
// green or magenta and towards blue or yellow.
//
// Values:
// - Green (-100 .. 100, default 0): percent of full level added to green
//   (negative values take it away, turning colours magenta).
// - Blue (-100 .. 100, default 0): the same for blue (negative: yellow).
// - Preserve Luminance (0 or 1, default 1): 1 moves red, green and blue
//   together afterwards so that each colour keeps its BT.601 luma.
// Integers or reals. Alpha stays. Indexed images change through their
// palette.

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/colour.h"
#include "imaging/modules/filter/colour_space.h"
#include "imaging/modules/modules.h"

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, -100, 100, 0, "Green"},
    {kParamInteger, -100, 100, 0, "Blue"},
    {kParamInteger, 0, 1, 1, "Preserve Luminance"},
};

constexpr ModuleDecl kDecl = {.magic = "HSL",
                              .name = "ColBal",
                              .description = "Color Balance",
                              .version = "1.00",
                              .params = kParams};

auto ruleOf(const ModuleInstance* instance) {
    double green = module_value_number(instance, 0, 0.0) * 255.0 / 100.0;
    double blue = module_value_number(instance, 1, 0.0) * 255.0 / 100.0;
    bool preserve = module_value_number(instance, 2, 1.0) != 0.0;
    return [=](uint32_t p) {
        double r = filter::channel(p, 2), g = filter::channel(p, 1), b = filter::channel(p, 0);
        double before = filter::kLumaRed * r + filter::kLumaGreen * g + filter::kLumaBlue * b;
        double g2 = std::clamp(g + green, 0.0, 255.0), b2 = std::clamp(b + blue, 0.0, 255.0);
        double r2 = r;
        if (preserve) {
            double shift =
                before - (filter::kLumaRed * r2 + filter::kLumaGreen * g2 + filter::kLumaBlue * b2);
            r2 += shift, g2 += shift, b2 += shift;
        }
        return filter::make_argb(p >> 24, filter::clamp_byte(r2), filter::clamp_byte(g2),
                                 filter::clamp_byte(b2));
    };
}

} // namespace

constexpr ModuleEntry mod_colbal = filter::colour_entry<kDecl, ruleOf>();
