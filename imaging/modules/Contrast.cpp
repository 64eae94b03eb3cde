// Contrast ("Contrast"): changes brightness and contrast of red, green and
// blue; alpha stays.
//
// Values:
// - Brightness (slot 0, -255 .. 255 levels, default 0): added to every
//   channel after the contrast change.
// - slot 1, contrast (percent, -100 .. 100, default 0; beyond the
//   descriptor): stretches the levels away from mid grey (128) by
//   (100 + contrast) / 100; -100 makes everything mid grey, 100 doubles
//   the distance from it.
// Both may be passed as integers or reals. Indexed images change through
// their palette.

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/colour.h"
#include "imaging/modules/filter/colour_space.h"
#include "imaging/modules/modules.h"

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, -255, 255, 0, "Brightness"},
};

constexpr ModuleDecl kDecl = {.magic = "CONT",
                              .name = "Contrast",
                              .description = "Contrast",
                              .version = "1.00",
                              .params = kParams};

auto ruleOf(const ModuleInstance* instance) {
    double brightness = module_value_number(instance, 0, 0.0);
    double contrast = module_value_number(instance, 1, 0.0);
    double factor = std::max(0.0, (100.0 + contrast) / 100.0);
    filter::ChannelTables tables{};
    for (int c = 0; c < 3; ++c)
        tables.fill(c, [=](int v) { return (v - 128.0) * factor + 128.0 + brightness; });
    tables.identity(3);
    return tables;
}

} // namespace

constexpr ModuleEntry mod_contrast = filter::colour_entry<kDecl, ruleOf>();
