#include "imaging/geometry/warp.h"

#include "imaging/geometry/scratch.h"

#include <algorithm>
#include <cmath>

namespace geometry {

namespace {

// Runs `map(x, y, &u, &v)` for every result pixel centre and writes what
// the sampler reads there.
template <typename Map>
bool remap(const ImageEntry& in, const Raster& out, Sampler sampler, Map map) {
    Scratch source(in, out);
    if (!source.ok()) return false;
    Sampler reading{source.raster(), sampler.edgeX, sampler.edgeY, sampler.fill, sampler.smooth};
    for (int32_t y = 0; y < out.height; ++y)
        for (int32_t x = 0; x < out.width; ++x) {
            double u = x + 0.5, v = y + 0.5;
            map(x + 0.5, y + 0.5, &u, &v);
            out.set(x, y, reading.at(u, v));
        }
    return true;
}

} // namespace

bool warp_drag(const ImageEntry& in, const Raster& out, Sampler sampler, double fromX, double fromY,
               double toX, double toY) {
    double dx = toX - fromX, dy = toY - fromY;
    double reach = 2 * std::hypot(dx, dy);
    return remap(in, out, sampler, [&](double x, double y, double* u, double* v) {
        if (!(reach > 0)) return;
        double r = std::hypot(x - toX, y - toY) / reach;
        if (r >= 1) return;
        double pull = (1 - r * r) * (1 - r * r);
        *u = x - dx * pull;
        *v = y - dy * pull;
    });
}

bool warp_wave(const ImageEntry& in, const Raster& out, double vertical, double horizontal) {
    const double turn = 2 * M_PI;
    Sampler sampler{raster_of(in), Edge::Wrap, Edge::Wrap};
    double w = in.info->width, h = in.info->height;
    return remap(in, out, sampler, [&](double x, double y, double* u, double* v) {
        *u = x + horizontal * std::sin(turn * y / h);
        *v = y + vertical * std::sin(turn * x / w);
    });
}

bool warp_lines(const ImageEntry& in, const Raster& out, const LinePair* pairs, int32_t count) {
    // Weight of a line: (length^p / (a + distance))^b.
    const double a = 1, b = 2, p = 0.5;
    Sampler sampler{raster_of(in), Edge::Clamp, Edge::Clamp};
    return remap(in, out, sampler, [&](double x, double y, double* u, double* v) {
        double sumX = 0, sumY = 0, sumW = 0;
        for (int32_t i = 0; i < count; ++i) {
            const LinePair& l = pairs[i];
            double qx = l.toX2 - l.toX1, qy = l.toY2 - l.toY1;
            double len2 = qx * qx + qy * qy;
            if (!(len2 > 0)) continue;
            double len = std::sqrt(len2);
            // Position along (t) and across (s, in pixels) the result line.
            double t = ((x - l.toX1) * qx + (y - l.toY1) * qy) / len2;
            double s = ((x - l.toX1) * -qy + (y - l.toY1) * qx) / len;
            double fx = l.fromX2 - l.fromX1, fy = l.fromY2 - l.fromY1;
            double flen = std::hypot(fx, fy);
            if (!(flen > 0)) continue;
            double sx = l.fromX1 + t * fx + s * -fy / flen;
            double sy = l.fromY1 + t * fy + s * fx / flen;
            double distance = t < 0   ? std::hypot(x - l.toX1, y - l.toY1)
                              : t > 1 ? std::hypot(x - l.toX2, y - l.toY2)
                                      : std::fabs(s);
            double weight = std::pow(std::pow(len, p) / (a + distance), b);
            sumX += (sx - x) * weight;
            sumY += (sy - y) * weight;
            sumW += weight;
        }
        if (sumW > 0 && std::isfinite(sumX) && std::isfinite(sumY)) {
            *u = x + sumX / sumW;
            *v = y + sumY / sumW;
        }
    });
}

bool texture_map(const ImageEntry& in, const Raster& out, const Vertex* vertices, int32_t count) {
    if (count < 3)
        return remap(in, out, Sampler{raster_of(in)}, [](double, double, double*, double*) {});
    Scratch source(in, out);
    if (!source.ok()) return false;
    Sampler sampler{source.raster(), Edge::Clamp, Edge::Clamp};
    for (int32_t y = 0; y < out.height; ++y)
        for (int32_t x = 0; x < out.width; ++x) {
            double px = x + 0.5, py = y + 0.5;
            uint32_t colour = 0;
            for (int32_t i = 1; i + 1 < count; ++i) {
                const Vertex &a = vertices[0], &b = vertices[i], &c = vertices[i + 1];
                double area = (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
                if (!(std::fabs(area) > 1e-12)) continue;
                double wb = ((px - a.x) * (c.y - a.y) - (c.x - a.x) * (py - a.y)) / area;
                double wc = ((b.x - a.x) * (py - a.y) - (px - a.x) * (b.y - a.y)) / area;
                double wa = 1 - wb - wc;
                if (wa < 0 || wb < 0 || wc < 0) continue;
                colour = sampler.at(wa * a.u + wb * b.u + wc * c.u, wa * a.v + wb * b.v + wc * c.v);
                break;
            }
            out.set(x, y, colour);
        }
    return true;
}

} // namespace geometry
