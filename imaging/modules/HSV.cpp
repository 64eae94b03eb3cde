// HSV ("HSV Adjust"): adjusts saturation and brightness in the
// hue/saturation/value model.
//
// Values (integers or reals, -100 .. 100 percent, default 0):
// - Saturation: scales saturation by (100 + Saturation) / 100: -100
//   gives grey, 100 doubles it (held to full); greys stay grey.
// - Brightness: adds that percentage of full level to the value
//   (-100 gives black, 100 full brightness).
// - Value: scales the value by (100 + Value) / 100.
// Hue and alpha stay. Indexed images change through their palette.

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/colour.h"
#include "imaging/modules/filter/colour_space.h"
#include "imaging/modules/modules.h"

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, -100, 100, 0, "Saturation"},
    {kParamInteger, -100, 100, 0, "Brightness"},
    {kParamInteger, -100, 100, 0, "Value"},
};

constexpr ModuleDecl kDecl = {.magic = "FHSV",
                              .name = "HSV",
                              .description = "HSV Adjust",
                              .version = "1.02",
                              .params = kParams};

auto ruleOf(const ModuleInstance* instance) {
    double saturation = std::clamp(module_value_number(instance, 0, 0.0), -100.0, 100.0) / 100.0;
    double brightness = std::clamp(module_value_number(instance, 1, 0.0), -100.0, 100.0) / 100.0;
    double value = std::clamp(module_value_number(instance, 2, 0.0), -100.0, 100.0) / 100.0;
    return [=](uint32_t p) {
        filter::Hsx v = filter::to_hsv(filter::rgb_of(p));
        v.s = v.s * (1.0 + saturation);
        v.x = (v.x + brightness) * (1.0 + value);
        return filter::argb_of(filter::from_hsv(v), p >> 24);
    };
}

} // namespace

constexpr ModuleEntry mod_hsv = filter::colour_entry<kDecl, ruleOf>();
