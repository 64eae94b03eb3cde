#pragma once
// Pixel access shared by the geometric and normal-map modules: a view of
// one image buffer (8-bit indices or 0xAARRGGBB words), the ways a sample
// outside the image is answered, and colour reading through the palette.

#include "imaging/module/module.h"

#include <cstdint>
#include <cstring>

namespace geometry {

struct Raster {
    uint8_t* base = nullptr;
    int32_t rowbytes = 0;
    int32_t width = 0;
    int32_t height = 0;
    int32_t bytes = 4; // 1 for palette indices

    uint8_t* at(int32_t x, int32_t y) const {
        return base + static_cast<ptrdiff_t>(y) * rowbytes + static_cast<ptrdiff_t>(x) * bytes;
    }
    uint32_t get(int32_t x, int32_t y) const {
        const uint8_t* p = at(x, y);
        if (bytes == 1) return *p;
        uint32_t v;
        memcpy(&v, p, 4);
        return v;
    }
    void set(int32_t x, int32_t y, uint32_t v) const {
        uint8_t* p = at(x, y);
        if (bytes == 1)
            *p = static_cast<uint8_t>(v);
        else
            memcpy(p, &v, 4);
    }
};

// A view of an input image. The pixels are only read through it.
Raster raster_of(const ImageEntry& image);
// A view of a result buffer laid out as `info` says.
Raster raster_of(const TavixInfo* info, void* pixels, int32_t rowbytes);

// How a coordinate outside 0 .. n-1 is answered: the fill colour, the
// nearest edge pixel, the image repeated, or the image repeated mirrored
// (the edge pixel appears twice: -1 reads 0, n reads n-1).
enum class Edge : int32_t { Fill = 0, Clamp = 1, Wrap = 2, Mirror = 3 };

// Any value is taken: 0..3 as listed, anything else as Fill.
Edge edge_from(int32_t value);

// The coordinate inside 0 .. n-1 that `i` reads, or -1 for Fill outside
// (and for an empty axis).
int32_t edge_index(int64_t i, int32_t n, Edge edge);

// The colour of pixel (x, y) as 0xAARRGGBB, through the palette for
// indexed images.
uint32_t argb_at(const ImageEntry& image, const Raster& raster, int32_t x, int32_t y);

inline uint32_t channel(uint32_t argb, int shift) {
    return (argb >> shift) & 0xFFu;
}
inline uint32_t pack_argb(uint32_t a, uint32_t r, uint32_t g, uint32_t b) {
    return (a << 24) | (r << 16) | (g << 8) | b;
}

// Rec. 601 luminance of a colour, 0 .. 255, not rounded.
double luminance(uint32_t argb);

// Makes a result record 32 bits per pixel with eight bits per channel, for
// modules whose result holds colours an indexed image cannot.
void make_argb_record(TavixInfo* info);

// The checks before writing a result of any size: an open instance with
// usable input pixels, a usable result whose pixel size is `resultBytes`
// (1 or 4) and rows that hold a whole row. Prints one line naming the
// module otherwise.
bool check_result(const char* module, const ModuleInstance* instance, const TavixInfo* result,
                  const void* pixels, int32_t rowbytes, int32_t resultBytes);

// Query output of a module whose 32-bit result has its input's size: a
// copy of the first image's record made 32 bits per pixel; null when the
// instance is not open or memory is short.
TavixInfo* argb_copy_query(ModuleInstance* instance);

// check_result for a 32-bit result of the input's size; prints one line
// naming the module when the sizes differ.
bool check_argb_same_size(const char* module, const ModuleInstance* instance,
                          const TavixInfo* result, const void* pixels, int32_t rowbytes);

// Moves the centre point and every hot spot by (dx, dy), wrapping instead
// of overflowing for points read from files.
void shift_points(TavixInfo* info, int32_t dx, int32_t dy);

} // namespace geometry
