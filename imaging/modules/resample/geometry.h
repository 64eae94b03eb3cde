#pragma once
// How the resizing modules move a record's points along with its pixels.

#include "tavix/records.h"

#include <cstdint>

namespace resample {

// An axis' scale factor, kept as a fraction when it is one so that a point
// that lands on a whole number gets exactly that number.
struct Ratio {
    double numerator;
    double denominator = 1.0;

    double apply(int32_t v) const { return static_cast<double>(v) * numerator / denominator; }
};

// Truncation toward zero, saturated to the 32-bit range.
int32_t truncate_point(double v);

// Integer part plus 1 when the fractional part is at least 0.5. A negative
// value has a fractional part below zero, so it is simply truncated.
int32_t round_point(double v);

// Multiplies every hot spot by the ratios, truncating toward zero, and the
// centre and default points too, truncating them when `roundCentre` is
// false and rounding them with round_point() when it is true.
void scale_points(TavixInfo* info, Ratio x, Ratio y, bool roundCentre);

} // namespace resample
