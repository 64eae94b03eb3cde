#pragma once
// Canvas operations that move pixels without resampling: crop or extend
// with an edge rule, scroll with wrap-around, mirror, and rebuilding one
// field of an interlaced picture.

#include "imaging/geometry/raster.h"

namespace geometry {

// A window of the source: its top-left corner in source pixels (may lie
// outside), its size, and what fills the parts outside the source.
struct CropWindow {
    int32_t x = 0, y = 0;
    int32_t width = 1, height = 1;
    uint32_t fill = 0; // an index for indexed images
    Edge edgeX = Edge::Fill, edgeY = Edge::Fill;
};

// The record of the window: its size, the centre point and hot spots moved
// by the offsets, and the default point moved the other way so the kept
// part of the picture stays where it was on the worksheet.
void crop_record(const CropWindow& window, TavixInfo* info);
bool crop_pixels(const CropWindow& window, const ImageEntry& in, const Raster& out);

// Scrolls the picture by (dx, dy) pixels with wrap-around; any offset is
// taken.
bool wrap_pixels(int64_t dx, int64_t dy, const ImageEntry& in, const Raster& out);

// Mirrors the pixels alone: bit 0 left-right, bit 1 top-bottom.
bool mirror_pixels(int32_t direction, const ImageEntry& in, const Raster& out);

// Drops every other row (the odd rows 1, 3, 5 ... for `field` 0, the even
// rows 0, 2, 4 ... for 1) and rebuilds each from the kept rows above and
// below: the average for 32-bit images, the row above (or below at the top)
// for indexed ones, whose indices cannot be averaged.
bool deinterlace_pixels(int32_t field, const ImageEntry& in, const Raster& out);

} // namespace geometry
