// grey ("Grey Scale ARGB"): turns every colour into its grey level and
// keeps alpha.
//
// Values (the descriptor lists none; the Grey Scale command passes both):
// - slot 0, levels (1 .. 256, default 256): how many grey levels remain,
//   spread evenly from black to white; 1 and 2 both give black and white.
// - slot 1, switch (default 0): 0 weighs red, green and blue as BT.601
//   luma does (0.299, 0.587, 0.114; ImageMagick's "-grayscale
//   Rec601Luma"), 1 takes their plain average.
// Indexed images change through their palette.

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/colour.h"
#include "imaging/modules/filter/colour_space.h"
#include "imaging/modules/modules.h"

namespace {

constexpr ModuleDecl kDecl = {
    .magic = "GREY", .name = "grey", .description = "Grey Scale ARGB", .version = "1.06"};

// Rounds a grey level to the nearest of `levels` evenly spread levels.
double quantise(double grey, double levels) {
    if (levels >= 256.0) return grey;
    double steps = levels < 2.0 ? 1.0 : levels - 1.0;
    return std::floor(grey * steps / 255.0 + 0.5) * 255.0 / steps;
}

auto ruleOf(const ModuleInstance* instance) {
    double levels = std::floor(module_value_number(instance, 0, 256.0));
    bool average = module_value_number(instance, 1, 0.0) != 0.0;
    return [levels, average](uint32_t p) {
        double r = filter::channel(p, 2), g = filter::channel(p, 1), b = filter::channel(p, 0);
        double grey = average
                          ? (r + g + b) / 3.0
                          : filter::kLumaRed * r + filter::kLumaGreen * g + filter::kLumaBlue * b;
        uint32_t v = filter::clamp_byte(quantise(filter::clamp_byte(grey), levels));
        return filter::make_argb(p >> 24, v, v, v);
    };
}

} // namespace

constexpr ModuleEntry mod_grey = filter::colour_entry<kDecl, ruleOf>();
