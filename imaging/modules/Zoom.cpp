// Zoom ("Bicubic Zoom"): resizes by bicubic interpolation.
//
// Values: Width, Height, Edge Extend (0 Solid: samples beyond the image
// read Solid Colour; 1 Boundary: they read the nearest edge pixel), Solid
// Colour, Kernel Width. The kernel is the cubic convolution kernel with
// a = -0.5 (Keys), stretched so that it reaches Kernel Width source pixels
// either side of a sample: 2 is the classic 4 x 4 bicubic, more blurs,
// less sharpens toward nearest neighbour. Kernel Width is held to 0.5 .. 8.
// Result samples sit at their pixel centres, (i + 0.5) x in / out - 0.5 in
// source pixels, and the weights of each sample are normalised to sum 1.
// All four channels are interpolated alike and rounded to nearest.
//
// Indexed images cannot be interpolated; they take the nearest pixel. The
// result's points are scaled by the size ratio and truncated toward zero.

#include "imaging/galloc.h"
#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"
#include "imaging/modules/resample/geometry.h"
#include "imaging/modules/resample/nearest.h"

#include <climits>
#include <cmath>
#include <cstring>

namespace {

// Types, ranges and defaults a generic parameter dialog offers.
constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, 1, 65536, 256, "Width"},
    {kParamInteger, 1, 65536, 256, "Height"},
    {kParamChoice, 0, 1, 0, "Edge Extend", "Solid,Boundary"},
    {kParamColour, 0, 0xFFFFFFFF, 0, "Solid Colour"},
    {kParamReal, 0.5, 8.0, 2.0, "Kernel Width"},
};

constexpr ModuleDecl kDecl = {.magic = "ZOOM",
                              .name = "Zoom",
                              .description = "Bicubic Zoom",
                              .version = "1.06",
                              .params = kParams};

enum Slot : int32_t { kWidth = 0, kHeight, kEdge, kSolid, kKernelWidth };
enum Edge : int32_t { kSolidEdge = 0, kBoundaryEdge = 1 };
constexpr int32_t kOutside = -1; // a tap that reads the solid colour

float keys(float x) {
    constexpr float a = -0.5f;
    float t = std::fabs(x);
    if (t < 1.0f) return ((a + 2.0f) * t - (a + 3.0f)) * t * t + 1.0f;
    if (t < 2.0f) return ((a * t - 5.0f * a) * t + 8.0f * a) * t - 4.0f * a;
    return 0.0f;
}

// The taps of every result index along one axis, in one galloc block:
// list i is taps first[i] .. first[i + 1] - 1.
struct Taps {
    void* block = nullptr;
    int32_t* first = nullptr;
    int32_t* index = nullptr;
    float* weight = nullptr;
    int32_t longest = 0;

    bool take(int32_t lists, int32_t perList) {
        int64_t taps = int64_t{lists} * perList;
        int64_t bytes = (int64_t{lists} + 1) * 4 + taps * 8;
        if (bytes > INT_MAX) return false;
        block = galloc(static_cast<int32_t>(bytes));
        if (!block) return false;
        first = static_cast<int32_t*>(block);
        index = first + lists + 1;
        weight = reinterpret_cast<float*>(index + taps);
        return true;
    }
    ~Taps() {
        if (block) gfree(block);
    }
};

int32_t clampTo(int64_t j, int32_t n) {
    return static_cast<int32_t>(j < 0 ? 0 : (j >= n ? n - 1 : j));
}

bool buildTaps(Taps& taps, int32_t nIn, int32_t nOut, float reach, bool boundary) {
    if (!taps.take(nOut, static_cast<int32_t>(2.0f * reach) + 2)) return false;
    float ratio = static_cast<float>(nIn) / static_cast<float>(nOut);
    int32_t at = 0;
    for (int32_t i = 0; i < nOut; ++i) {
        taps.first[i] = at;
        float centre = (static_cast<float>(i) + 0.5f) * ratio - 0.5f;
        auto left = static_cast<int64_t>(std::ceil(centre - reach));
        auto right = static_cast<int64_t>(std::floor(centre + reach));
        float sum = 0.0f;
        int32_t n = 0;
        for (int64_t j = left; j <= right; ++j) {
            float w = keys((centre - static_cast<float>(j)) * 2.0f / reach);
            if (w == 0.0f) continue;
            bool inside = j >= 0 && j < nIn;
            taps.index[at + n] = inside || boundary ? clampTo(j, nIn) : kOutside;
            taps.weight[at + n] = w;
            sum += w;
            ++n;
        }
        if (sum == 0.0f) { // only the narrowest kernel, exactly between two pixels
            taps.index[at] = clampTo(static_cast<int64_t>(std::floor(centre + 0.5f)), nIn);
            taps.weight[at] = sum = 1.0f;
            n = 1;
        }
        for (int32_t t = 0; t < n; ++t)
            taps.weight[at + t] /= sum;
        at += n;
        if (n > taps.longest) taps.longest = n;
    }
    taps.first[nOut] = at;
    return true;
}

struct Pixel {
    float c[4];
};

Pixel unpack(uint32_t p) {
    return Pixel{
        {float(p & 0xFF), float((p >> 8) & 0xFF), float((p >> 16) & 0xFF), float(p >> 24)}};
}

uint32_t pack(const Pixel& p) {
    uint32_t out = 0;
    for (int c = 0; c < 4; ++c) {
        float v = std::nearbyint(p.c[c]);
        uint32_t b = !(v >= 0.0f) ? 0 : (v >= 255.0f ? 255 : static_cast<uint32_t>(v));
        out |= b << (8 * c);
    }
    return out;
}

// One source row filtered across into `out` (result width pixels).
void filterRow(const ImageEntry& in, int32_t y, const Taps& across, const Pixel& solid, Pixel* out,
               int32_t width) {
    const uint8_t* row = module_row(in, y);
    for (int32_t x = 0; x < width; ++x) {
        Pixel sum{{0, 0, 0, 0}};
        for (int32_t t = across.first[x]; t < across.first[x + 1]; ++t) {
            int32_t j = across.index[t];
            Pixel p = j == kOutside ? solid : unpack(module_load_argb(row + 4 * j));
            for (int c = 0; c < 4; ++c)
                sum.c[c] += across.weight[t] * p.c[c];
        }
        out[x] = sum;
    }
}

// The result row by row. Each source row is filtered across the first time
// a result row needs it and kept in one of `slots` cached rows (the longest
// list): result rows move down monotonically, so no row is filtered twice.
struct RowCache {
    void* block = nullptr;
    Pixel* rows = nullptr;
    int32_t* held = nullptr;      // source row in each slot, -1 for none
    const Pixel** list = nullptr; // per tap of the current result row; null: solid
    int32_t slots = 0;

    bool take(int32_t n, int32_t width) {
        int64_t bytes = int64_t{n} * width * int64_t{sizeof(Pixel)} + int64_t{n} * 4 +
                        int64_t{n} * int64_t{sizeof(Pixel*)} + 16;
        if (bytes > INT_MAX) return false;
        block = galloc(static_cast<int32_t>(bytes));
        if (!block) return false;
        rows = static_cast<Pixel*>(block);
        list = reinterpret_cast<const Pixel**>(rows + int64_t{n} * width);
        held = reinterpret_cast<int32_t*>(list + n);
        for (int32_t i = 0; i < n; ++i)
            held[i] = -1;
        slots = n;
        return true;
    }
    ~RowCache() {
        if (block) gfree(block);
    }
};

bool zoomArgb(const ImageEntry& in, const ModuleInstance* instance, uint8_t* pixels,
              int32_t rowbytes, int32_t width, int32_t height) {
    float reach = static_cast<float>(module_value_real(instance, kDecl, kKernelWidth));
    if (!(reach >= 0.5f)) reach = reach > 0.0f ? 0.5f : 2.0f; // also NaN
    if (reach > 8.0f) reach = 8.0f;
    bool boundary = module_value_int(instance, kDecl, kEdge) == kBoundaryEdge;
    Pixel solid = unpack(module_value_uint(instance, kDecl, kSolid));
    Taps across, down;
    RowCache cache;
    if (!buildTaps(across, in.info->width, width, reach, boundary) ||
        !buildTaps(down, in.info->height, height, reach, boundary) ||
        !cache.take(down.longest, width))
        return false;
    for (int32_t y = 0; y < height; ++y) {
        int32_t first = down.first[y], n = down.first[y + 1] - first;
        for (int32_t t = 0; t < n; ++t) {
            int32_t j = down.index[first + t];
            cache.list[t] = nullptr;
            if (j == kOutside) continue;
            int32_t slot = j % cache.slots;
            Pixel* at = cache.rows + static_cast<ptrdiff_t>(slot) * width;
            if (cache.held[slot] != j) {
                filterRow(in, j, across, solid, at, width);
                cache.held[slot] = j;
            }
            cache.list[t] = at;
        }
        uint8_t* out = module_row(pixels, rowbytes, y);
        for (int32_t x = 0; x < width; ++x) {
            Pixel sum{{0, 0, 0, 0}};
            for (int32_t t = 0; t < n; ++t) {
                const Pixel& p = cache.list[t] ? cache.list[t][x] : solid;
                for (int c = 0; c < 4; ++c)
                    sum.c[c] += down.weight[first + t] * p.c[c];
            }
            module_store_argb(out + 4 * x, pack(sum));
        }
    }
    return true;
}

// A result written over its own source would overwrite rows the cache has
// yet to read: such a source is copied first.
bool zoomArgbSafe(const ImageEntry& in, const ModuleInstance* instance, uint8_t* pixels,
                  int32_t rowbytes, int32_t width, int32_t height) {
    if (in.pixels != pixels) return zoomArgb(in, instance, pixels, rowbytes, width, height);
    int64_t bytes = int64_t{in.rowbytes} * in.info->height;
    if (bytes > INT_MAX) return false;
    void* copy = galloc(static_cast<int32_t>(bytes));
    if (!copy) return false;
    memcpy(copy, in.pixels, static_cast<size_t>(bytes));
    ImageEntry source{in.info, copy, in.rowbytes};
    bool ok = zoomArgb(source, instance, pixels, rowbytes, width, height);
    gfree(copy);
    return ok;
}

int32_t atLeastOne(int32_t v) {
    return v < 1 ? 1 : v;
}

TavixInfo* query(ModuleInstance* instance, int32_t) {
    if (!module_instance_ok(instance)) return nullptr;
    const TavixInfo* in = instance->images[0].info;
    TavixInfo* info = module_copy_info(in);
    if (!info) return nullptr;
    info->width = atLeastOne(module_value_int(instance, kDecl, kWidth));
    info->height = atLeastOne(module_value_int(instance, kDecl, kHeight));
    resample::scale_points(info, {double(info->width), double(in->width)},
                           {double(info->height), double(in->height)}, false);
    return info;
}

// Fills the result record's size.
int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    if (!module_check_resized(kDecl, instance, result, pixels, rowbytes)) return 0;
    const ImageEntry& in = instance->images[0];
    auto* out = static_cast<uint8_t*>(pixels);
    bool ok = module_pixel_bytes(in.info) == 1
                  ? resample::nearest_resize(in, out, rowbytes, result->width, result->height)
                  : zoomArgbSafe(in, instance, out, rowbytes, result->width, result->height);
    return ok ? 1 : 0;
}

} // namespace

constexpr ModuleEntry mod_zoom = module_entry<kDecl>(query, process);
