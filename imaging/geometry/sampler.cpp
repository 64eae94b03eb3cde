#include "imaging/geometry/sampler.h"

#include <algorithm>
#include <cmath>

namespace geometry {

namespace {

// A coordinate far outside any image stays far outside, without overflow.
int64_t cell(double v) {
    return static_cast<int64_t>(std::floor(std::clamp(v, -1e12, 1e12)));
}

} // namespace

uint32_t Sampler::at(double u, double v) const {
    if (!std::isfinite(u) || !std::isfinite(v)) return source.bytes == 1 ? fill & 0xFFu : fill;
    auto tap = [&](int64_t x, int64_t y) {
        int32_t sx = edge_index(x, source.width, edgeX), sy = edge_index(y, source.height, edgeY);
        if (sx < 0 || sy < 0) return source.bytes == 1 ? fill & 0xFFu : fill;
        return source.get(sx, sy);
    };
    if (!smooth || source.bytes == 1) return tap(cell(u), cell(v));
    double cu = u - 0.5, cv = v - 0.5;
    int64_t x0 = cell(cu), y0 = cell(cv);
    double fx = std::clamp(cu - static_cast<double>(x0), 0.0, 1.0);
    double fy = std::clamp(cv - static_cast<double>(y0), 0.0, 1.0);
    double sum[4] = {0, 0, 0, 0}; // alpha, alpha-weighted red, green, blue
    double plain[3] = {0, 0, 0};
    for (int k = 0; k < 4; ++k) {
        double w = ((k & 1) ? fx : 1 - fx) * ((k >> 1) ? fy : 1 - fy);
        if (w == 0) continue;
        uint32_t p = tap(x0 + (k & 1), y0 + (k >> 1));
        double a = channel(p, 24);
        sum[0] += w * a;
        for (int c = 0; c < 3; ++c) {
            double value = channel(p, 16 - 8 * c);
            sum[c + 1] += w * a * value;
            plain[c] += w * value;
        }
    }
    uint32_t out[4];
    out[0] = static_cast<uint32_t>(std::lround(std::clamp(sum[0], 0.0, 255.0)));
    for (int c = 0; c < 3; ++c) {
        double value = sum[0] > 0 ? sum[c + 1] / sum[0] : plain[c];
        out[c + 1] = static_cast<uint32_t>(std::lround(std::clamp(value, 0.0, 255.0)));
    }
    return pack_argb(out[0], out[1], out[2], out[3]);
}

} // namespace geometry
