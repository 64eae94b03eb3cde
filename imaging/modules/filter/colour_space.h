#pragma once
// Conversions between RGB and the colour models the tone filters adjust
// in: luma (BT.601 weights), hue/saturation/lightness, hue/saturation/value
// and YCbCr. Channels are reals in 0 .. 1; hue is in degrees, 0 .. 360.

#include "imaging/modules/filter/plane.h"

#include <algorithm>
#include <cmath>

namespace filter {

// BT.601 luma weights, the ones video and most paint programs use for grey.
constexpr double kLumaRed = 0.299, kLumaGreen = 0.587, kLumaBlue = 0.114;

struct Rgb {
    double r, g, b;
};
struct Hsx {
    double h, s, x; // x: lightness (HSL) or value (HSV)
};

inline Rgb rgb_of(uint32_t argb) {
    return {channel(argb, 2) / 255.0, channel(argb, 1) / 255.0, channel(argb, 0) / 255.0};
}
// Back to a word with the given alpha (0 .. 255).
inline uint32_t argb_of(Rgb c, uint32_t alpha) {
    return make_argb(alpha, clamp_byte(c.r * 255.0), clamp_byte(c.g * 255.0),
                     clamp_byte(c.b * 255.0));
}

inline double luma(Rgb c) {
    return kLumaRed * c.r + kLumaGreen * c.g + kLumaBlue * c.b;
}

inline double hue_of(Rgb c, double hi, double lo) {
    double d = hi - lo;
    if (d <= 0.0) return 0.0;
    double h;
    if (hi == c.r)
        h = (c.g - c.b) / d;
    else if (hi == c.g)
        h = 2.0 + (c.b - c.r) / d;
    else
        h = 4.0 + (c.r - c.g) / d;
    h *= 60.0;
    return h < 0.0 ? h + 360.0 : h;
}

// The RGB of a hue at full saturation and value, scaled into lo .. hi.
inline Rgb from_hue(double h, double lo, double hi) {
    h = std::fmod(h, 360.0);
    if (h < 0.0) h += 360.0;
    double f = h / 60.0;
    int sector = static_cast<int>(f) % 6;
    double t = f - std::floor(f);
    double span = hi - lo, up = lo + span * t, down = hi - span * t;
    switch (sector) {
    case 0:
        return {hi, up, lo};
    case 1:
        return {down, hi, lo};
    case 2:
        return {lo, hi, up};
    case 3:
        return {lo, down, hi};
    case 4:
        return {up, lo, hi};
    default:
        return {hi, lo, down};
    }
}

inline Hsx to_hsl(Rgb c) {
    double hi = std::max({c.r, c.g, c.b}), lo = std::min({c.r, c.g, c.b});
    double l = (hi + lo) / 2.0, d = hi - lo;
    double s = d <= 0.0 ? 0.0 : d / (1.0 - std::fabs(2.0 * l - 1.0));
    return {hue_of(c, hi, lo), std::min(s, 1.0), l};
}

inline Rgb from_hsl(Hsx v) {
    double s = std::clamp(v.s, 0.0, 1.0), l = std::clamp(v.x, 0.0, 1.0);
    double span = (1.0 - std::fabs(2.0 * l - 1.0)) * s;
    return from_hue(v.h, l - span / 2.0, l + span / 2.0);
}

inline Hsx to_hsv(Rgb c) {
    double hi = std::max({c.r, c.g, c.b}), lo = std::min({c.r, c.g, c.b});
    return {hue_of(c, hi, lo), hi <= 0.0 ? 0.0 : (hi - lo) / hi, hi};
}

inline Rgb from_hsv(Hsx v) {
    double s = std::clamp(v.s, 0.0, 1.0), x = std::clamp(v.x, 0.0, 1.0);
    return from_hue(v.h, x * (1.0 - s), x);
}

// Full-range BT.601 YCbCr; Cb and Cr centred on level 128, so that grey
// survives the trip there and back exactly in 8-bit levels.
constexpr double kChromaCentre = 128.0 / 255.0;
struct Ycc {
    double y, cb, cr;
};
inline Ycc to_ycc(Rgb c) {
    double y = luma(c);
    return {y, kChromaCentre + (c.b - y) / 1.772, kChromaCentre + (c.r - y) / 1.402};
}
inline Rgb from_ycc(Ycc v) {
    double cb = v.cb - kChromaCentre, cr = v.cr - kChromaCentre;
    double r = v.y + 1.402 * cr, b = v.y + 1.772 * cb;
    double g = (v.y - kLumaRed * r - kLumaBlue * b) / kLumaGreen;
    return {r, g, b};
}

} // namespace filter
