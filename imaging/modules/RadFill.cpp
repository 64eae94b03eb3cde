// RadFill ("Radius Fill"): replaces every colour that lies within a box
// around a reference colour in hue, saturation and value by the fill
// colour, e.g. to recolour all shades of a sprite's shirt at once.
//
// Values:
// - Hue+ and Hue- (degrees, 0 .. 360, default 0): how far a colour's hue
//   may lie above and below the reference hue (round the colour wheel).
// - Sat+ and Sat- (0 .. 255, default 0): the same for saturation.
// - Val+ and Val- (0 .. 255, default 0): the same for value (brightness).
// - Fill Color (0xAARRGGBB, default 0): what matching colours become.
// - slot 7, reference colour (0xAARRGGBB, beyond the descriptor): by
//   default the colour of the top-left pixel, so that with every range 0
//   the default run turns the background colour transparent.
// Indexed images change through their palette.

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/colour.h"
#include "imaging/modules/filter/colour_space.h"
#include "imaging/modules/modules.h"

#include <cmath>

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, 0, 360, 0, "Hue+"},
    {kParamInteger, 0, 360, 0, "Hue-"},
    {kParamInteger, 0, 255, 0, "Sat+"},
    {kParamInteger, 0, 255, 0, "Sat-"},
    {kParamInteger, 0, 255, 0, "Val+"},
    {kParamInteger, 0, 255, 0, "Val-"},
    {kParamColour, 0, 0xFFFFFFFF, 0, "Fill Color"},
};

constexpr ModuleDecl kDecl = {.magic = "RFIL",
                              .name = "RadFill",
                              .description = "Radius Fill",
                              .version = "1.02",
                              .params = kParams};

struct Box {
    double low, high;
    bool holds(double v) const { return v >= low - 1e-9 && v <= high + 1e-9; }
};

auto ruleOf(const ModuleInstance* instance) {
    double range[6];
    for (int i = 0; i < 6; ++i)
        range[i] = std::max(0.0, module_value_number(instance, i, 0.0));
    uint32_t fill = module_value_uint(instance, kDecl, 6);
    uint32_t reference = module_value_uint(instance, 7, filter::corner_colour(instance->images[0]));
    filter::Hsx ref = filter::to_hsv(filter::rgb_of(reference));
    Box sat{ref.s * 255.0 - range[3], ref.s * 255.0 + range[2]};
    Box val{ref.x * 255.0 - range[5], ref.x * 255.0 + range[4]};
    double up = range[0], down = range[1];
    return [=](uint32_t p) {
        filter::Hsx v = filter::to_hsv(filter::rgb_of(p));
        // Hue distance measured both ways round the wheel.
        double above = std::fmod(v.h - ref.h + 720.0, 360.0);
        bool hueOk = above <= up + 1e-9 || 360.0 - above <= down + 1e-9 || up + down >= 360.0;
        return hueOk && sat.holds(v.s * 255.0) && val.holds(v.x * 255.0) ? fill : p;
    };
}

} // namespace

constexpr ModuleEntry mod_radfill = filter::colour_entry<kDecl, ruleOf>();
