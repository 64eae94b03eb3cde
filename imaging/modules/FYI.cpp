// FYI ("FYI Adjust Luma/Chroma/Alpha"): adjusts a colour's brightness and
// colourfulness separately, in the luma/chroma model of video (full-range
// BT.601 YCbCr), and its opacity.
//
// Values (reals):
// - Luminance Scale (0 .. 10, default 1) and Luminance Offset (-255 ..
//   255 levels, default 0): luma becomes luma x scale + offset.
// - Chrominance Scale (0 .. 10, default 1) and Chrominance Offset (-255 ..
//   255 levels, default 0): each colour difference (Cb, Cr, measured from
//   neutral grey) becomes difference x scale + offset; scale 0 gives grey.
// - Alpha Scale (0 .. 10, default 1): alpha is multiplied by it.
// Results are held to 0 .. 255. Indexed images change through their
// palette.

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/colour.h"
#include "imaging/modules/filter/colour_space.h"
#include "imaging/modules/modules.h"

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamReal, 0.0, 10.0, 1.0, "Luminance Scale"},
    {kParamReal, -255.0, 255.0, 0.0, "Luminance Offset"},
    {kParamReal, 0.0, 10.0, 1.0, "Chrominance Scale"},
    {kParamReal, -255.0, 255.0, 0.0, "Chrominance Offset"},
    {kParamReal, 0.0, 10.0, 1.0, "Alpha Scale"},
};

constexpr ModuleDecl kDecl = {.magic = "FYIQ",
                              .name = "FYI",
                              .description = "FYI Adjust Luma/Chroma/Alpha",
                              .version = "1.00",
                              .params = kParams};

auto ruleOf(const ModuleInstance* instance) {
    double ys = module_value_real(instance, kDecl, 0), yo = module_value_real(instance, kDecl, 1);
    double cs = module_value_real(instance, kDecl, 2), co = module_value_real(instance, kDecl, 3);
    double as = module_value_real(instance, kDecl, 4);
    return [=](uint32_t p) {
        filter::Ycc v = filter::to_ycc(filter::rgb_of(p));
        v.y = v.y * ys + yo / 255.0;
        v.cb = (v.cb - filter::kChromaCentre) * cs + co / 255.0 + filter::kChromaCentre;
        v.cr = (v.cr - filter::kChromaCentre) * cs + co / 255.0 + filter::kChromaCentre;
        return filter::argb_of(filter::from_ycc(v), filter::clamp_byte((p >> 24) * as));
    };
}

} // namespace

constexpr ModuleEntry mod_fyi = filter::colour_entry<kDecl, ruleOf>();
