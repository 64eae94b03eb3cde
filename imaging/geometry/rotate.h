#pragma once
// Rotation by any angle about the middle of the image. The result grows
// to hold the whole turned picture; what it does not cover is the fill
// colour.

#include "imaging/geometry/raster.h"

namespace geometry {

// Size of the result of turning `width` x `height` by `radians`
// (positive turns counter-clockwise on screen). At least 1 x 1.
void rotated_size(double radians, int32_t width, int32_t height, int32_t* outWidth,
                  int32_t* outHeight);

// Turns the record: size, centre point and hot spots turn about the middle
// of the image; the default point moves so that the centre point keeps its
// place on the worksheet.
void rotate_record(double radians, TavixInfo* info);

// Writes the turned pixels of `in` into `out` (of the rotated size). Indexed
// images take the nearest pixel and `fill` as an index. With `interpolate`,
// 32-bit images are sampled bilinearly with alpha-weighted colours and the
// fill colour outside, so edges fade into the fill (with a transparent fill,
// into alpha). False when memory is short.
bool rotate_pixels(double radians, const ImageEntry& in, const Raster& out, uint32_t fill,
                   bool interpolate);

} // namespace geometry
