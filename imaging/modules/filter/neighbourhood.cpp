#include "imaging/modules/filter/neighbourhood.h"

#include "imaging/galloc.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>

namespace filter {

namespace {

inline void order(uint8_t& a, uint8_t& b) {
    uint8_t lo = std::min(a, b);
    b = std::max(a, b);
    a = lo;
}

// The median of nine by the classic 19-exchange network.
uint8_t median9(uint8_t* p) {
    order(p[1], p[2]), order(p[4], p[5]), order(p[7], p[8]);
    order(p[0], p[1]), order(p[3], p[4]), order(p[6], p[7]);
    order(p[1], p[2]), order(p[4], p[5]), order(p[7], p[8]);
    order(p[0], p[3]), order(p[5], p[8]), order(p[4], p[7]);
    order(p[3], p[6]), order(p[1], p[4]), order(p[2], p[5]);
    order(p[4], p[7]), order(p[4], p[2]), order(p[6], p[4]);
    order(p[4], p[2]);
    return p[4];
}

uint8_t rankOf(uint8_t* values, Rank rank) {
    switch (rank) {
    case Rank::Minimum:
        return *std::min_element(values, values + 9);
    case Rank::Maximum:
        return *std::max_element(values, values + 9);
    default:
        return median9(values);
    }
}

float* allocFloats(int64_t count) {
    int64_t bytes = count * static_cast<int64_t>(sizeof(float));
    if (bytes > INT32_MAX) {
        gprintf("filter - working image of %lld values is too large\n",
                static_cast<long long>(count));
        return nullptr;
    }
    return static_cast<float*>(galloc(static_cast<int32_t>(bytes)));
}

// One row of ARGB words as alpha-weighted floats: b, g, r, a per pixel,
// the colours multiplied by alpha / 255.
void toPremultiplied(const uint32_t* from, int32_t width, float* to) {
    for (int32_t x = 0; x < width; ++x) {
        uint32_t p = from[x];
        float a = static_cast<float>(p >> 24);
        float k = a / 255.0f;
        to[4 * x + 0] = static_cast<float>(p & 0xFF) * k;
        to[4 * x + 1] = static_cast<float>((p >> 8) & 0xFF) * k;
        to[4 * x + 2] = static_cast<float>((p >> 16) & 0xFF) * k;
        to[4 * x + 3] = a;
    }
}

uint32_t fromPremultiplied(const float* v) {
    float a = v[3];
    if (a < 0.5f) return 0;
    float k = 255.0f / a;
    return make_argb(clamp_byte(a), clamp_byte(v[2] * k), clamp_byte(v[1] * k),
                     clamp_byte(v[0] * k));
}

// Horizontal pass of one row (4 floats per pixel) with edge clamping.
void blurRow(const float* in, float* out, int32_t width, const float* w, int32_t radius) {
    for (int32_t x = 0; x < width; ++x) {
        float s[4];
        for (int c = 0; c < 4; ++c)
            s[c] = in[4 * x + c] * w[0];
        for (int32_t k = 1; k <= radius; ++k) {
            int32_t l = std::max(x - k, 0), r = std::min(x + k, width - 1);
            for (int c = 0; c < 4; ++c)
                s[c] += (in[4 * l + c] + in[4 * r + c]) * w[k];
        }
        memcpy(out + 4 * x, s, sizeof s);
    }
}

} // namespace

void rank3x3(const Plane& from, Plane* to, Rank rank) {
    uint8_t values[9];
    for (int32_t y = 0; y < from.height; ++y) {
        for (int32_t x = 0; x < from.width; ++x) {
            uint32_t words[9];
            int n = 0;
            for (int32_t dy = -1; dy <= 1; ++dy)
                for (int32_t dx = -1; dx <= 1; ++dx)
                    words[n++] = from.clamped(x + dx, y + dy);
            uint32_t out = 0;
            for (int c = 0; c < 4; ++c) {
                for (int i = 0; i < 9; ++i)
                    values[i] = static_cast<uint8_t>(channel(words[i], c));
                out |= uint32_t{rankOf(values, rank)} << (8 * c);
            }
            to->at(x, y) = out;
        }
    }
}

int32_t gaussian_weights(double sigma, float* weights) {
    if (!(sigma > 0.0)) sigma = 0.0;
    int32_t radius = static_cast<int32_t>(std::ceil(3.0 * std::min(sigma, 1000.0)));
    radius = std::min(radius, kMaxRadius);
    if (radius == 0) {
        weights[0] = 1.0f;
        return 0;
    }
    double sum = 0.0;
    double w[kMaxRadius + 1];
    for (int32_t k = 0; k <= radius; ++k) {
        w[k] = std::exp(-(static_cast<double>(k) * k) / (2.0 * sigma * sigma));
        sum += k == 0 ? w[k] : 2.0 * w[k];
    }
    for (int32_t k = 0; k <= radius; ++k)
        weights[k] = static_cast<float>(w[k] / sum);
    return radius;
}

bool convolve_separable(Plane* plane, const float* weights, int32_t radius) {
    int32_t width = plane->width, height = plane->height;
    float* across = allocFloats(plane->count() * 4);
    float* line = allocFloats(static_cast<int64_t>(width) * 4);
    float* sum = allocFloats(static_cast<int64_t>(width) * 4);
    bool ok = across && line && sum;
    if (ok) {
        for (int32_t y = 0; y < height; ++y) {
            toPremultiplied(plane->row(y), width, line);
            blurRow(line, across + static_cast<int64_t>(y) * width * 4, width, weights, radius);
        }
        int64_t stride = static_cast<int64_t>(width) * 4;
        for (int32_t y = 0; y < height; ++y) {
            const float* centre = across + y * stride;
            for (int64_t i = 0; i < stride; ++i)
                sum[i] = centre[i] * weights[0];
            for (int32_t k = 1; k <= radius; ++k) {
                const float* up = across + std::max(y - k, 0) * stride;
                const float* down = across + std::min(y + k, height - 1) * stride;
                float w = weights[k];
                for (int64_t i = 0; i < stride; ++i)
                    sum[i] += (up[i] + down[i]) * w;
            }
            uint32_t* out = plane->row(y);
            for (int32_t x = 0; x < width; ++x)
                out[x] = fromPremultiplied(sum + 4 * x);
        }
    }
    if (across) gfree(across);
    if (line) gfree(line);
    if (sum) gfree(sum);
    return ok;
}

} // namespace filter
