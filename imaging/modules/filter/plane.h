#pragma once
// A working copy of one image as 32-bit words, for the filters that look
// at neighbours, draw or search: every filter loads its input into a plane,
// works there, and stores the plane into the result. Because the input is
// copied first, a filter written this way is safe to run in place.
//
// Two kinds of words:
// - colour planes hold 0xAARRGGBB; an indexed image is expanded through
//   its palette on load and mapped back to the nearest palette entry on
//   store, so a colour operation works on 8-bit images unchanged;
// - value planes hold what the image holds (palette indices or ARGB
//   words), for operations that compare and copy pixels without mixing
//   them (flood fill, creep, drawing with a colour given by index).

#include "imaging/module/module.h"

#include <cstdint>

namespace filter {

struct Plane {
    int32_t width = 0;
    int32_t height = 0;
    uint32_t* words = nullptr; // width x height, from galloc

    uint32_t& at(int32_t x, int32_t y) { return words[static_cast<int64_t>(y) * width + x]; }
    uint32_t at(int32_t x, int32_t y) const { return words[static_cast<int64_t>(y) * width + x]; }
    // The word at (x, y) with coordinates held to the image: the edge
    // pixels repeat outward.
    uint32_t clamped(int32_t x, int32_t y) const {
        x = x < 0 ? 0 : (x >= width ? width - 1 : x);
        y = y < 0 ? 0 : (y >= height ? height - 1 : y);
        return at(x, y);
    }
    uint32_t* row(int32_t y) { return words + static_cast<int64_t>(y) * width; }
    const uint32_t* row(int32_t y) const { return words + static_cast<int64_t>(y) * width; }
    int64_t count() const { return static_cast<int64_t>(width) * height; }
};

// An empty plane of the given size (words zero). False when memory is short.
bool plane_make(Plane* plane, int32_t width, int32_t height);
// A plane of the same size as `like`.
bool plane_make_like(Plane* plane, const Plane& like);
void plane_free(Plane* plane);
// Copies the words of `from` into `to` (same size).
void plane_copy(const Plane& from, Plane* to);

// The input as colours (indexed pixels expanded through the palette).
bool plane_load_colours(const ImageEntry& in, Plane* plane);
// The input as stored values (indices stay indices).
bool plane_load_values(const ImageEntry& in, Plane* plane);

// Writes a colour plane into a result of the same size: 32-bit results
// take the words, indexed results the nearest entry of their own palette
// (the record's palette). False when memory is short.
bool plane_store_colours(const Plane& plane, const TavixInfo* result, void* pixels,
                         int32_t rowbytes);
// Writes a value plane: indexed results take the low byte of each word.
void plane_store_values(const Plane& plane, const TavixInfo* result, void* pixels,
                        int32_t rowbytes);

// Whether a pixel is background: a transparent colour, or, in an image
// with no transparent pixel at all, the colour of its top-left pixel (the
// key colour of a sprite drawn on a flat ground). Works on value planes
// (indices looked up in `info`'s palette) and colour planes alike.
struct Background {
    const TavixInfo* info = nullptr; // palette of an indexed value plane, else null
    bool byAlpha = true;
    uint32_t key = 0;
    uint32_t colour(uint32_t value) const;
    bool is(uint32_t value) const { return byAlpha ? (colour(value) >> 24) == 0 : value == key; }
};
// `info` is the image's record when `plane` holds indices, else null.
Background plane_background(const Plane& plane, const TavixInfo* info);

// Channel c (0 blue, 1 green, 2 red, 3 alpha) of an ARGB word.
inline uint32_t channel(uint32_t argb, int c) {
    return (argb >> (8 * c)) & 0xFF;
}

// A 0..255 value from a real, rounded to nearest and held to the range.
inline uint32_t clamp_byte(double v) {
    if (!(v > 0.0)) return 0; // also NaN
    if (v >= 255.0) return 255;
    return static_cast<uint32_t>(v + 0.5);
}

// A whole number from a real held to lo .. hi (NaN gives lo), for
// positions and counts that callers pass as reals.
inline int32_t clamp_int(double v, int32_t lo, int32_t hi) {
    if (!(v > lo)) return lo;
    if (v >= hi) return hi;
    return static_cast<int32_t>(v);
}

inline uint32_t make_argb(uint32_t a, uint32_t r, uint32_t g, uint32_t b) {
    return (a << 24) | (r << 16) | (g << 8) | b;
}

} // namespace filter
