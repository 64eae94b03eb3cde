#pragma once
// What the quantizers share: the instance head, the descriptor filler,
// pixel walking, and the Wu box-splitting engine that the Wu family, Tw,
// Lloyd and MQ build on.

#include "imaging/quant/quant.h"

#include <cstdint>
#include <cstring>

// Every instance starts with this head; `destroy` frees the whole
// instance, so an instance can be abandoned whatever quantizer made it.
struct QuantInstance {
    uint32_t magic;
    uint32_t version; // 4
    void (*destroy)(QuantInstance* instance);
};

namespace quant {

struct Decl {
    const char* magic;
    const char* name;
    const char* description;
    const char* version;
    uint32_t flags = 0;
};

uint32_t magic_of(const char* code);
QuantDescriptor* build_descriptor(const Decl& decl);

// A zero-filled instance of `bytes` bytes with its head filled, or null.
QuantInstance* new_instance(const Decl& decl, int32_t bytes, void (*destroy)(QuantInstance*));

// Calls `fn(argb)` for every pixel of a 32-bit image; false (nothing
// called) for any other depth or an unusable record.
template <class Fn>
bool each_pixel(const TavixInfo* info, const void* pixels, int32_t rowbytes, Fn&& fn) {
    if (!info || !pixels || info->bufferbpp != 32 || info->width <= 0 || info->height <= 0 ||
        rowbytes < info->width * 4)
        return false;
    for (int32_t y = 0; y < info->height; ++y) {
        const uint8_t* row =
            static_cast<const uint8_t*>(pixels) + static_cast<ptrdiff_t>(y) * rowbytes;
        for (int32_t x = 0; x < info->width; ++x) {
            uint32_t v;
            memcpy(&v, row + 4 * x, 4);
            fn(v);
        }
    }
    return true;
}

inline int32_t channel(uint32_t argb, int shift) {
    return static_cast<int32_t>((argb >> shift) & 0xFF);
}

// ---- The Wu engine ----------------------------------------------------------
//
// A histogram over a cube of (2^bits + 1) cells per axis, axes red, green,
// blue and, for the 4D quantizer, alpha. Cell 0 of each axis stays empty so
// that after accumulate() every box total is a sum over its 2^dims corners.

constexpr int kWuMaxDims = 4;

struct WuCube {
    int32_t dims = 3;
    int32_t bits[kWuMaxDims] = {};
    int32_t side[kWuMaxDims] = {};
    int32_t stride[kWuMaxDims] = {};
    int32_t cells = 0;
    uint32_t* weight = nullptr;     // pixel count per cell
    uint32_t* sum[kWuMaxDims] = {}; // channel sums (red, green, blue, alpha)
    float* square = nullptr;        // sum of squared channel values
};

// Allocates the zeroed arrays through galloc; false (nothing held) when
// memory is short.
bool wu_alloc(WuCube* cube, int32_t dims, const int32_t* bits);
void wu_free(WuCube* cube);
void wu_add(WuCube* cube, uint32_t argb);
// Turns the cell arrays into their running sums along every axis.
void wu_accumulate(WuCube* cube);

// A box of cells: lo exclusive, hi inclusive on each axis.
struct WuBox {
    int32_t lo[kWuMaxDims];
    int32_t hi[kWuMaxDims];
    int32_t volume;
};

// The totals of a box.
struct WuMoments {
    double weight;
    double sum[kWuMaxDims];
    double square;
};
WuMoments wu_moments(const WuCube* cube, const WuBox& box);
// Squared error of a box around its mean (square sum less sum^2 / count).
double wu_variance(const WuCube* cube, const WuBox& box);

enum class WuChoice {
    LargestVariance, // the classic rule: cut next the box of largest variance
    LargestGain,     // cut next the box whose best cut lowers the error most
};

// Splits the whole cube into at most k boxes (k >= 1) and returns how many
// were made. `boxes` holds room for k.
int32_t wu_split(const WuCube* cube, int32_t k, WuBox* boxes, WuChoice choice);
// Mean colour of each box, alpha 255 for a 3-axis cube; a box with no
// pixel gives 0.
void wu_palette(const WuCube* cube, const WuBox* boxes, int32_t n, uint32_t* palette);
// The inverse map of a 3-axis cube: each cell gets the index of its box.
QuantInverseMap* wu_inverse_map(const WuCube* cube, const WuBox* boxes, int32_t n);

// The whole Wu method on a filled cube (not yet accumulated): palette of
// at most k colours, optional map, count. Frees nothing.
uint32_t* wu_make(WuCube* cube, int32_t k, QuantInverseMap** map, int32_t* count, WuChoice choice);

// An instance that fills one cube (the Wu family, Lloyd, MQ).
struct WuInstance {
    QuantInstance head;
    WuCube cube;
};
QuantInstance* begin_cube(const Decl& decl, int32_t dims, const int32_t* bits);
void destroy_cube(QuantInstance* instance);

// ---- Refinement ---------------------------------------------------------

// A weighted colour sample: the mean colour of a histogram cell and its
// pixel count.
struct Sample {
    float r, g, b;
    uint32_t weight;
};

// The non-empty cells of a filled, not accumulated 3-axis cube as
// samples (galloc); null when memory is short.
Sample* wu_samples(const WuCube* cube, int32_t* count);

// Lloyd (k-means) iterations over weighted samples, starting from
// `palette` (n colours, alpha 255), until no centre moves by a quarter
// level or `rounds` pass. The palette is rewritten with the rounded
// centres. Returns false when memory is short (the palette is kept).
bool lloyd_refine(const Sample* samples, int32_t sampleCount, uint32_t* palette, int32_t n,
                  int32_t rounds);

// A galloc palette of `n` words copied from `colours`, or null.
uint32_t* copy_palette(const uint32_t* colours, int32_t n);

} // namespace quant
