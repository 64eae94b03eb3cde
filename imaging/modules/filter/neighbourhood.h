#pragma once
// Operations over each pixel's neighbourhood on colour planes, shared by
// the blur, sharpen, median and morphology filters. Outside the image the
// edge pixels repeat (edge clamping), so borders keep their colour instead
// of fading to black.

#include "imaging/modules/filter/plane.h"

#include <cstdint>

namespace filter {

enum class Rank { Minimum, Median, Maximum };

// Each channel of each pixel of `to` becomes the minimum, median or maximum
// of that channel over the 3x3 neighbourhood in `from` (same size).
void rank3x3(const Plane& from, Plane* to, Rank rank);

// Convolves the four channels of `plane` with the same symmetric kernel
// horizontally and vertically: weights[0] is the centre, weights[1 ..
// radius] the taps on either side (they should sum to 1 over both
// sides). Colours are weighted by their alpha, so fully transparent
// pixels lend no colour to their neighbours. False when memory is short.
bool convolve_separable(Plane* plane, const float* weights, int32_t radius);

// A normalised Gaussian of standard deviation `sigma` (pixels) with a
// radius of ceil(3 sigma), capped at kMaxRadius. Returns the radius.
constexpr int32_t kMaxRadius = 256;
int32_t gaussian_weights(double sigma, float* weights /* kMaxRadius + 1 */);

} // namespace filter
