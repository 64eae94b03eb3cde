// CSMap ("Color Space Remap"): moves colours between RGB and the YCbCr
// colour space of video (full-range BT.601), for tools and texture
// compressors that work on luma and chroma planes.
//
// Value (beyond the descriptor, which lists none): slot 0, direction
// (default 0): 0 turns RGB into YCbCr, stored as red = Cr, green = Y,
// blue = Cb (neutral chroma at 128); 1 turns such an image back into RGB.
// Alpha stays. Indexed images change through their palette.

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/colour.h"
#include "imaging/modules/filter/colour_space.h"
#include "imaging/modules/modules.h"

namespace {

constexpr ModuleDecl kDecl = {
    .magic = "HMAP", .name = "CSMap", .description = "Color Space Remap", .version = "1.00"};

uint32_t toYcc(uint32_t p) {
    filter::Ycc v = filter::to_ycc(filter::rgb_of(p));
    return filter::argb_of({v.cr, v.y, v.cb}, p >> 24);
}

uint32_t fromYcc(uint32_t p) {
    filter::Rgb stored = filter::rgb_of(p);
    return filter::argb_of(filter::from_ycc({stored.g, stored.b, stored.r}), p >> 24);
}

auto ruleOf(const ModuleInstance* instance) {
    return module_value_number(instance, 0, 0.0) == 1.0 ? fromYcc : toYcc;
}

} // namespace

constexpr ModuleEntry mod_csmap = filter::colour_entry<kDecl, ruleOf>();
