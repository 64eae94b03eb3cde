#pragma once
// Reading a picture at a point between pixels: bilinear for 32-bit images
// (colours weighted by alpha so a transparent neighbour's colour does not
// bleed in), nearest pixel for indexed ones, with an edge rule per axis for
// points outside.

#include "imaging/geometry/raster.h"

namespace geometry {

struct Sampler {
    const Raster& source;
    Edge edgeX = Edge::Fill, edgeY = Edge::Fill;
    uint32_t fill = 0;  // an index for indexed images
    bool smooth = true; // bilinear on 32-bit images

    // The colour at (u, v) in pixel coordinates, where pixel (0, 0) covers
    // 0 .. 1 in both directions.
    uint32_t at(double u, double v) const;
};

} // namespace geometry
