// Blur ("Gausian Blur"): a Gaussian blur, run as two one-dimensional
// passes (across, then down).
//
// Value (the descriptor lists none; the Blur command passes it): slot 0,
// amount, the standard deviation (sigma) of the Gaussian in pixels, as a
// real or an integer; default 1.5 (the plain Blur command; "by a lot"
// passes 3.0). The kernel reaches 3 sigma to each side, at most 256
// pixels; an amount of 0 or less leaves the image as it is.
//
// Colours are weighted by alpha, so a sprite's transparent surround lends
// it no dark fringe; edges repeat outward. Indexed images are blurred in
// colour and mapped back to the nearest colour of their palette.

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/neighbourhood.h"
#include "imaging/modules/filter/plane_filter.h"
#include "imaging/modules/modules.h"

namespace {

constexpr ModuleDecl kDecl = {
    .magic = "BLUR", .name = "Blur", .description = "Gausian Blur", .version = "1.00"};

constexpr double kDefaultSigma = 1.5;

bool blur(const ModuleInstance* instance, filter::Plane* plane) {
    float weights[filter::kMaxRadius + 1];
    int32_t radius =
        filter::gaussian_weights(module_value_number(instance, 0, kDefaultSigma), weights);
    return radius == 0 || filter::convolve_separable(plane, weights, radius);
}

} // namespace

constexpr ModuleEntry mod_blur = filter::plane_entry<kDecl, blur>();
