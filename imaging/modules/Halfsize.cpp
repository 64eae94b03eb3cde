// Halfsize ("Halfsize Image"): divides the image along one or both axes,
// each result pixel made from one block of source pixels.
//
// Values: direction (bit 0 the vertical axis, bit 1 the horizontal one; 3
// when not passed), vscale and hscale (a divisor that replaces the one the
// direction gives; 0 or less keeps the direction's), vstep and hstep, edge
// and dot3. An axis' divisor is its scale when that is positive, else 2
// when the direction includes the axis and 1 otherwise. The result is
// width / hdivisor x height / vdivisor (integer division, so an odd side
// loses its last column or row), at least 1 x 1. Points are divided the
// same way and the record's frame size by the product of the divisors.
//
// The pixel rule, per block of vdivisor rows by hdivisor columns:
// - vstep / hstep: 0 averages the block's rows / columns, 1 takes its first
//   row / column, 2 its last (other values average).
// - 32-bit pixels: each channel is the mean of the chosen pixels, rounded
//   half up. With edge set, the colour channels are weighted by alpha, so
//   transparent pixels lend no colour to the opaque edge of a sprite (a
//   fully transparent block falls back to the plain mean); alpha itself is
//   always the plain mean.
// - dot3 set: the colour is a normal map (each channel is a component in
//   -1 .. 1 as c / 255 x 2 - 1). The chosen normals are summed (with the
//   alpha weights when edge is set) and the sum is scaled back to unit
//   length, since plain averaging would shorten it; a zero sum gives the
//   flat normal 0, 0, 1.
// - Indexed pixels cannot be mixed: a step of 0 takes the first row or
//   column as 1 does.

#include "imaging/galloc.h"
#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"

#include <cmath>
#include <cstring>

namespace {

// Types, ranges and defaults a generic parameter dialog offers.
constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, 0, 3, 3, "direction"}, {kParamInteger, 0, 2, 0, "vscale"},
    {kParamInteger, 0, 2, 0, "hscale"},    {kParamInteger, 0, 2, 0, "vstep"},
    {kParamInteger, 0, 2, 0, "hstep"},     {kParamInteger, 0, 1, 0, "edge"},
    {kParamInteger, 0, 1, 0, "dot3"},
};

constexpr ModuleDecl kDecl = {.magic = "HALF",
                              .name = "Halfsize",
                              .description = "Halfsize Image",
                              .version = "1.08",
                              .params = kParams};

enum Slot : int32_t { kDirection = 0, kVScale, kHScale, kVStep, kHStep, kEdge, kDot3 };
enum Step : int32_t { kAverage = 0, kFirst = 1, kLast = 2 };

struct Rule {
    int32_t vdiv, hdiv;
    int32_t vstep, hstep;
    bool edge, dot3;
};

int32_t divisor(int32_t scale, int32_t direction, int32_t bit) {
    if (scale > 0) return scale;
    return (direction & bit) ? 2 : 1;
}

int32_t step(int32_t v) {
    return v == kFirst || v == kLast ? v : kAverage;
}

Rule readRule(const ModuleInstance* instance) {
    int32_t direction = module_value_int(instance, kDecl, kDirection);
    return Rule{divisor(module_value_int(instance, kVScale, 0), direction, 1),
                divisor(module_value_int(instance, kHScale, 0), direction, 2),
                step(module_value_int(instance, kVStep, 0)),
                step(module_value_int(instance, kHStep, 0)),
                module_value_int(instance, kEdge, 0) != 0,
                module_value_int(instance, kDot3, 0) != 0};
}

int32_t atLeastOne(int32_t v) {
    return v < 1 ? 1 : v;
}

// The span [from, to) of source indices that result index i reads along an
// axis of n samples with divisor d and the given step.
void span(int32_t i, int32_t d, int32_t n, int32_t s, int32_t* from, int32_t* to) {
    int64_t a = int64_t{i} * d;
    int64_t b = a + d < n ? a + d : n;
    if (s == kFirst) b = a + 1;
    if (s == kLast) a = b - 1;
    *from = static_cast<int32_t>(a);
    *to = static_cast<int32_t>(b);
}

inline uint32_t channel(uint32_t p, int c) {
    return (p >> (8 * c)) & 0xFF;
}

uint32_t encodeNormal(double v) {
    double c = std::floor((v + 1.0) * 127.5 + 0.5);
    return c < 0 ? 0 : (c > 255 ? 255 : static_cast<uint32_t>(c));
}

// One result pixel from the block rows [y0, y1) x columns [x0, x1).
uint32_t blockPixel(const ImageEntry& in, const Rule& rule, int32_t x0, int32_t x1, int32_t y0,
                    int32_t y1) {
    uint64_t sum[4] = {0, 0, 0, 0}, weighted[3] = {0, 0, 0}, alphaSum = 0;
    double normal[3] = {0, 0, 0};
    uint64_t n = 0;
    for (int32_t y = y0; y < y1; ++y) {
        const uint8_t* row = module_row(in, y);
        for (int32_t x = x0; x < x1; ++x) {
            uint32_t p = module_load_argb(row + 4 * x);
            uint32_t a = channel(p, 3);
            uint32_t weight = rule.edge ? a : 1;
            for (int c = 0; c < 4; ++c)
                sum[c] += channel(p, c);
            for (int c = 0; c < 3; ++c) {
                weighted[c] += uint64_t{channel(p, c)} * a;
                normal[c] += weight * (channel(p, c) / 255.0 * 2.0 - 1.0);
            }
            alphaSum += a;
            ++n;
        }
    }
    uint32_t out = static_cast<uint32_t>((sum[3] + n / 2) / n) << 24;
    if (rule.dot3) {
        double length =
            std::sqrt(normal[0] * normal[0] + normal[1] * normal[1] + normal[2] * normal[2]);
        if (length <= 0.0) return out | 0x8080FFu; // blue is the z component
        for (int c = 0; c < 3; ++c)
            out |= encodeNormal(normal[c] / length) << (8 * c);
        return out;
    }
    for (int c = 0; c < 3; ++c) {
        uint64_t v = rule.edge && alphaSum > 0 ? (weighted[c] + alphaSum / 2) / alphaSum
                                               : (sum[c] + n / 2) / n;
        out |= static_cast<uint32_t>(v) << (8 * c);
    }
    return out;
}

// The common case, 2 x 2 blocks averaged: channels 0 and 2 of a pixel in
// the two 16-bit halves of one word and channels 1 and 3 in another, so four
// pixels add up without carries and one shift divides all channels, each
// sum rounded half up.
inline uint32_t mean4(uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
    constexpr uint32_t kLanes = 0x00FF00FFu, kHalf = 0x00020002u;
    uint32_t even = (a & kLanes) + (b & kLanes) + (c & kLanes) + (d & kLanes) + kHalf;
    uint32_t odd = ((a >> 8) & kLanes) + ((b >> 8) & kLanes) + ((c >> 8) & kLanes) +
                   ((d >> 8) & kLanes) + kHalf;
    return ((even >> 2) & kLanes) | ((odd >> 2) & kLanes) << 8;
}

void halveBoth(const ImageEntry& in, uint8_t* pixels, int32_t rowbytes, int32_t width,
               int32_t height) {
    for (int32_t y = 0; y < height; ++y) {
        const uint8_t* top = module_row(in, 2 * y);
        const uint8_t* bottom = module_row(in, 2 * y + 1);
        uint8_t* out = module_row(pixels, rowbytes, y);
        for (int32_t x = 0; x < width; ++x)
            module_store_argb(out + 4 * x, mean4(module_load_argb(top + 8 * x),
                                                 module_load_argb(top + 8 * x + 4),
                                                 module_load_argb(bottom + 8 * x),
                                                 module_load_argb(bottom + 8 * x + 4)));
    }
}

void halveGeneral(const ImageEntry& in, const Rule& rule, uint8_t* pixels, int32_t rowbytes,
                  int32_t width, int32_t height) {
    bool indexed = module_pixel_bytes(in.info) == 1;
    for (int32_t y = 0; y < height; ++y) {
        int32_t y0, y1;
        span(y, rule.vdiv, in.info->height, indexed && rule.vstep == kAverage ? kFirst : rule.vstep,
             &y0, &y1);
        uint8_t* out = module_row(pixels, rowbytes, y);
        for (int32_t x = 0; x < width; ++x) {
            int32_t x0, x1;
            span(x, rule.hdiv, in.info->width,
                 indexed && rule.hstep == kAverage ? kFirst : rule.hstep, &x0, &x1);
            if (indexed)
                out[x] = module_row(in, y0)[x0];
            else
                module_store_argb(out + 4 * x, blockPixel(in, rule, x0, x1, y0, y1));
        }
    }
}

TavixInfo* query(ModuleInstance* instance, int32_t) {
    if (!module_instance_ok(instance)) return nullptr;
    TavixInfo* info = module_copy_info(instance->images[0].info);
    if (!info) return nullptr;
    Rule rule = readRule(instance);
    info->width = atLeastOne(info->width / rule.hdiv);
    info->height = atLeastOne(info->height / rule.vdiv);
    info->centerx /= rule.hdiv;
    info->centery /= rule.vdiv;
    info->defaultx /= rule.hdiv;
    info->defaulty /= rule.vdiv;
    for (int32_t i = 0; i < module_hotspot_count(info); ++i) {
        info->hotspots[i].x /= rule.hdiv;
        info->hotspots[i].y /= rule.vdiv;
    }
    info->framesize = static_cast<int32_t>(info->framesize / (int64_t{rule.hdiv} * rule.vdiv));
    return info;
}

// The result must have the size query output gives. Each result pixel
// reads only source pixels at or after its own place, so the result may be
// written over the source.
int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    if (!module_instance_ok(instance)) return 0;
    const ImageEntry& in = instance->images[0];
    Rule rule = readRule(instance);
    int32_t width = atLeastOne(in.info->width / rule.hdiv);
    int32_t height = atLeastOne(in.info->height / rule.vdiv);
    if (!result || !pixels || !in.pixels || result->width != width || result->height != height ||
        module_pixel_bytes(result) != module_pixel_bytes(in.info) ||
        rowbytes < module_row_length(result) || in.rowbytes < module_row_length(in.info)) {
        gprintf("Halfsize - result must be %d x %d of the source's depth\n", width, height);
        return 0;
    }
    auto* out = static_cast<uint8_t*>(pixels);
    bool plain = module_pixel_bytes(in.info) == 4 && rule.vdiv == 2 && rule.hdiv == 2 &&
                 rule.vstep == kAverage && rule.hstep == kAverage && !rule.edge && !rule.dot3 &&
                 in.info->width >= 2 && in.info->height >= 2;
    if (plain)
        halveBoth(in, out, rowbytes, width, height);
    else
        halveGeneral(in, rule, out, rowbytes, width, height);
    return 1;
}

} // namespace

constexpr ModuleEntry mod_halfsize = module_entry<kDecl>(query, process);
