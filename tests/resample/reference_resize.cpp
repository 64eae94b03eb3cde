#include "reference_resize.h"

#include <cmath>

namespace ref {

namespace {

const float kPi = 3.1415927f;
const float kThird = 0.33333334f;

float mitchell(float t) {
    const float b = kThird, c = kThird;
    float tt = t * t;
    if (t < 1.0f)
        return ((12.0f - 9.0f * b - 6.0f * c) * tt * t + (-18.0f + 12.0f * b + 6.0f * c) * tt +
                (6.0f - 2.0f * b)) /
               6.0f;
    if (t < 2.0f)
        return ((-b - 6.0f * c) * tt * t + (6.0f * b + 30.0f * c) * tt +
                (-12.0f * b - 48.0f * c) * t + (8.0f * b + 24.0f * c)) /
               6.0f;
    return 0.0f;
}

int32_t clampIndex(int32_t j, int32_t n) {
    return j < 0 ? 0 : (j >= n ? n - 1 : j);
}

bool transparent(uint32_t p, uint32_t key) {
    return key == 0 ? (p >> 24) == 0 : p == key;
}

uint32_t toByte(float v) {
    if (!(v >= 0.0f)) return 0;
    if (v >= 255.0f) return 255;
    return uint32_t(std::nearbyint(v));
}

float channel(uint32_t p, int c) {
    return float((p >> (8 * c)) & 0xFF);
}

// One output pixel from `in` (any accessor) through one list.
template <typename Read>
uint32_t apply(const std::vector<Tap>& list, Read in, bool respect, uint32_t key, bool alpha) {
    float sum[4] = {0, 0, 0, 0};
    float used = 0.0f;
    for (const Tap& tap : list) {
        uint32_t p = in(tap.index);
        if (alpha && respect && transparent(p, key)) continue;
        for (int c = 0; c < 4; ++c)
            sum[c] += tap.weight * channel(p, c);
        used += tap.weight;
    }
    if (!alpha) return 0xFF000000u | toByte(sum[2]) << 16 | toByte(sum[1]) << 8 | toByte(sum[0]);
    if (respect && used < 0.3f) return key;
    uint32_t out = 0;
    for (int c = 0; c < 4; ++c)
        out |= toByte(sum[c] / used) << (8 * c);
    return out;
}

} // namespace

float support(int32_t filter) {
    const float s[] = {3.0f, 2.0f, 1.0f, 1.0f, 0.5f, 1.5f, 2.0f, 1.5f};
    return filter >= 0 && filter < 8 ? s[filter] : 3.0f;
}

float kernel(int32_t filter, float x) {
    float t = std::fabs(x);
    switch (filter) {
    case 1:
        return mitchell(t);
    case 2:
        return t < 1.0f ? (2.0f * t - 3.0f) * (t * t) + 1.0f : 0.0f;
    case 3:
        return t < 1.0f ? 1.0f - t : 0.0f;
    case 4:
        return x > -0.5f && x <= 0.5f ? 1.0f : 0.0f;
    case 5:
        if (t < 0.5f) return 0.75f - t * t;
        return t < 1.5f ? 0.5f * (t - 1.5f) * (t - 1.5f) : 0.0f;
    case 6:
        if (t < 1.0f) return 0.5f * t * t * t - t * t + 2.0f / 3.0f;
        return t < 2.0f ? (2.0f - t) * (2.0f - t) * (2.0f - t) / 6.0f : 0.0f;
    case 7:
        if (t <= 0.5f) return 0.9f - 1.6f * t * t;
        return t <= 1.5f ? 0.8f * t * t - 2.1f * t + 1.35f : 0.0f;
    default:
        if (t == 0.0f) return 1.0f;
        if (t >= 3.0f) return 0.0f;
        return 3.0f * std::sin(kPi * t) * std::sin(kPi * t / 3.0f) / ((kPi * t) * (kPi * t));
    }
}

std::vector<std::vector<Tap>> lists(int32_t nIn, int32_t nOut, int32_t filter) {
    std::vector<std::vector<Tap>> out(static_cast<size_t>(nOut));
    float s = support(filter);
    float r = float(nIn) / float(nOut);
    for (int32_t i = 0; i < nOut; ++i) {
        float centre, width, fscale = 1.0f;
        if (r > 1.0f) {
            width = r * s;
            if (width > float(nIn - 1)) width = float(nIn - 1);
            fscale = s / width;
            centre = (float(i) + 0.5f) * r;
        } else {
            width = s;
            centre = float(i) * r;
            if (r != 1.0f) centre -= 0.5f;
        }
        int32_t left = int32_t(std::ceil(centre - width));
        int32_t right = int32_t(std::floor(centre + width));
        float sum = 0.0f;
        for (int32_t j = left; j <= right; ++j) {
            float w = r > 1.0f ? kernel(filter, (centre - float(j)) * fscale) * fscale
                               : kernel(filter, centre - float(j));
            out[size_t(i)].push_back(Tap{clampIndex(j, nIn), w});
            sum += w;
        }
        float inverse = 1.0f / sum;
        for (Tap& tap : out[size_t(i)])
            tap.weight *= inverse;
    }
    return out;
}

uint32_t key(const Image& source, bool respectAlpha, uint32_t chromakey) {
    if (!respectAlpha || chromakey != 0) return chromakey;
    for (uint32_t p : source.px)
        if ((p >> 24) == 0) return p;
    return 0x0000FFFFu;
}

Image resize(const Image& source, int32_t width, int32_t height, int32_t filter, bool respectAlpha,
             uint32_t chromakey, bool resultHasAlpha) {
    uint32_t k = key(source, respectAlpha, chromakey);
    // Horizontal: source rows into an image as wide as the result, with alpha.
    Image mid{width, source.height, std::vector<uint32_t>(size_t(width) * source.height)};
    auto across = lists(source.width, width, filter);
    for (int32_t y = 0; y < source.height; ++y)
        for (int32_t x = 0; x < width; ++x)
            mid.px[size_t(y) * width + x] = apply(
                across[size_t(x)], [&](int32_t j) { return source.at(j, y); }, respectAlpha, k,
                true);
    // Vertical: each column gathered into a buffer, then filtered.
    Image out{width, height, std::vector<uint32_t>(size_t(width) * height)};
    auto down = lists(source.height, height, filter);
    std::vector<uint32_t> column(size_t(source.height));
    for (int32_t x = 0; x < width; ++x) {
        for (int32_t y = 0; y < source.height; ++y)
            column[size_t(y)] = mid.at(x, y);
        for (int32_t y = 0; y < height; ++y)
            out.px[size_t(y) * width + x] = apply(
                down[size_t(y)], [&](int32_t j) { return column[size_t(j)]; }, respectAlpha, k,
                resultHasAlpha);
    }
    return out;
}

} // namespace ref
