#pragma once
// Quarter turns and the transpose: indices move, colours never change, so
// indexed and 32-bit images are handled alike.

#include "imaging/geometry/raster.h"

namespace geometry {

// What a quarter-turn family module does to the picture.
enum class Turn : int32_t { None = 0, Clockwise = 1, Half = 2, Counter = 3, Transpose = 4 };

// Turn for an angle code: 1 clockwise, 2 half, 3 counter-clockwise, -1 back
// (counter-clockwise); any integer counts in quarter turns clockwise.
Turn turn_from_code(int32_t code);

// Width and height of the result.
void turned_size(Turn turn, int32_t width, int32_t height, int32_t* outWidth, int32_t* outHeight);

// A point of the picture (points lie between pixels: 0 is the left edge, W
// the right) in a frame of `width` x `height`, after the turn.
void turn_point(Turn turn, int32_t width, int32_t height, int32_t* x, int32_t* y);

// Turns the result record's size, centre point and hot spots. The default
// point (where the image sits on the worksheet) moves so that the centre
// point stays at the same place on the worksheet. With `frameWidth` and
// `frameHeight` above 0 the centre is turned in that frame instead of the
// image's own.
void turn_record(Turn turn, TavixInfo* info, int32_t frameWidth = 0, int32_t frameHeight = 0);

// Writes the turned pixels of `in` into `out` (laid out with the turned
// size). `out` may be the input buffer itself. False when a scratch copy
// was needed and memory is short.
bool turn_pixels(Turn turn, const ImageEntry& in, const Raster& out);

} // namespace geometry
