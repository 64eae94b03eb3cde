#pragma once
// Normal maps and bump maps from heights, and heights back from them.
//
// Heights are the luminance of the source (0 .. 255); `scale` says how many
// pixels high the full range stands. A normal is (-dh/dx, -dh/dy, 1)
// normalised with x to the right, y up the picture and z out of it; it is
// stored as (n + 1) / 2 of 255 per channel, red x, green y, blue z. Every
// result is 32-bit and keeps the source's alpha.

#include "imaging/normalmap/field.h"

namespace normalmap {

// Layouts of an environment bump map (du, dv signed, stored biased by 128).
enum class Bump : int32_t {
    V8U8 = 0,     // red du, green dv, blue 0
    L6V5U5 = 1,   // red du, green dv, blue the source's luminance
    X8L8V8U8 = 2, // as L6V5U5, alpha opaque
    Q8W8V8U8 = 3, // red du, green dv, blue w (the normal's z), alpha opaque
};
Bump bump_from(int32_t value);

// Writes the DOT3 normal map of `in`. False when memory is short.
bool make_dot3(const ImageEntry& in, double scale, Slope method, void* pixels, int32_t rowbytes);

// Writes the bump map of `in`: du and dv are the normal's x and y.
bool make_bump(const ImageEntry& in, Bump layout, double scale, Slope method, void* pixels,
               int32_t rowbytes);

// Rebuilds grey heights from a normal map (z read from blue) or a bump map
// (z made from du and dv). False when memory is short.
bool heights_from_normals(const ImageEntry& in, bool zFromBlue, Integrate method, void* pixels,
                          int32_t rowbytes);

} // namespace normalmap
