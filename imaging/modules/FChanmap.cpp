// FChanmap ("Chanmap"): rearranges the channels of each colour.
//
// Value (beyond the descriptor, which lists none): slot 0, the map, a
// 32-bit word whose bytes, from the top, say where alpha, red, green and
// blue take their level from: 0 blue, 1 green, 2 red, 3 alpha, 4 nothing
// (level 0), 5 full (level 255); any other byte means nothing. The
// default 0x03000102 swaps red and blue (RGB to BGR); 0x03020100 changes
// nothing; 0x05030303 shows the alpha channel as an opaque grey picture.
// Indexed images change through their palette.

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/colour.h"
#include "imaging/modules/filter/colour_space.h"
#include "imaging/modules/modules.h"

namespace {

constexpr ModuleDecl kDecl = {
    .magic = "FLIP", .name = "FChanmap", .description = "Chanmap", .version = "1.01"};

constexpr uint32_t kSwapRedBlue = 0x03000102;

auto ruleOf(const ModuleInstance* instance) {
    uint32_t map = module_value_uint(instance, 0, kSwapRedBlue);
    return [map](uint32_t p) {
        uint32_t out = 0;
        for (int c = 0; c < 4; ++c) {
            uint32_t from = filter::channel(map, c);
            uint32_t level =
                from < 4 ? filter::channel(p, static_cast<int>(from)) : (from == 5 ? 255u : 0u);
            out |= level << (8 * c);
        }
        return out;
    };
}

} // namespace

constexpr ModuleEntry mod_fchanmap = filter::colour_entry<kDecl, ruleOf>();
