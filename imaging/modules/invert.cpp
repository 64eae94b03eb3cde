// invert ("Invert ARGB"): inverts the channels chosen by the mask, as a
// photographic negative does.
//
// Value: mask (32-bit word, default 0x00FFFFFF): every bit set in it is
// flipped in each colour, so the default inverts red, green and blue and
// keeps alpha; 0xFFFFFFFF inverts alpha too, 0x00FF0000 red alone.
// Indexed images change through their palette.

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/colour.h"
#include "imaging/modules/modules.h"

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamMask, 0, 0xFFFFFFFF, 0x00FFFFFF, "mask"},
};

constexpr ModuleDecl kDecl = {.magic = "FINV",
                              .name = "invert",
                              .description = "Invert ARGB",
                              .version = "1.01",
                              .params = kParams};

auto ruleOf(const ModuleInstance* instance) {
    uint32_t mask = module_value_uint(instance, kDecl, 0);
    return [mask](uint32_t p) { return p ^ mask; };
}

} // namespace

constexpr ModuleEntry mod_invert = filter::colour_entry<kDecl, ruleOf>();
