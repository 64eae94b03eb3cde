#pragma once
// Warps: every result pixel reads the source at a moved point.

#include "imaging/geometry/sampler.h"

namespace geometry {

// Drags the source point `from` to `to`; the pull fades smoothly to nothing
// at twice the drag's length from `to`. Outside the source the sampler's
// edge rules answer.
bool warp_drag(const ImageEntry& in, const Raster& out, Sampler sampler, double fromX, double fromY,
               double toX, double toY);

// Waves of one period across the picture, so a tiling texture still tiles:
// columns move up and down by `vertical` pixels along x, rows left and
// right by `horizontal` pixels along y.
bool warp_wave(const ImageEntry& in, const Raster& out, double vertical, double horizontal);

// One pair of control lines: where a line lies in the result and where it
// lies in the source.
struct LinePair {
    double toX1, toY1, toX2, toY2;
    double fromX1, fromY1, fromX2, fromY2;
};

// Field warp along control lines (each result pixel keeps its position
// relative to every line, weighted by the line's length and nearness).
// Points outside the source take the nearest edge pixel. No lines: a copy.
bool warp_lines(const ImageEntry& in, const Raster& out, const LinePair* pairs, int32_t count);

// A polygon of vertices (x, y in the result; u, v in the source, pixels)
// drawn as a fan of triangles from the first vertex, each mapped linearly.
// What the polygon does not cover is transparent (index 0). Fewer than
// three vertices: a copy.
struct Vertex {
    double x, y, u, v;
};
bool texture_map(const ImageEntry& in, const Raster& out, const Vertex* vertices, int32_t count);

} // namespace geometry
