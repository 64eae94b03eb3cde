#pragma once
// The eight filter kernels of the resampler, in "Filter Function" order.
//
// Every kernel takes and returns single-precision values and uses pi as the
// float 3.1415927 and 1/3 as 0.33333334, so a list of weights comes out the
// same on every machine that does IEEE float arithmetic.

#include <cstdint>

namespace resample {

enum Filter : int32_t {
    kLanczos3 = 0,
    kMitchell = 1,
    kCubic = 2,
    kLinear = 3,
    kPoint = 4,
    kBell = 5,
    kBSpline = 6,
    kQuadratic = 7,
};

using KernelFn = float (*)(float x);

struct Kernel {
    KernelFn fn;
    float support; // radius beyond which the kernel is 0
};

// The kernel of a "Filter Function" value; any value outside 0 .. 7 selects
// Lanczos3.
Kernel kernel(int32_t filter);

} // namespace resample
