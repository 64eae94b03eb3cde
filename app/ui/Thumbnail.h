#pragma once
// Small pictures of document images for the shape list: the image scaled
// so that its longer side is `size` pixels (up or down, the aspect kept),
// transparent parts over a grey checkerboard. Shrinking averages at most
// 4 x 4 samples per thumbnail pixel, so a thumbnail costs about the same
// for a 16-pixel sprite as for a 2048-pixel texture page.

#include <QImage>

#include <cstdint>

class CTavixImage;

// The thumbnail of `image`; a null QImage for an empty image.
QImage RenderThumbnail(const CTavixImage& image, int size);

// A cheap fingerprint of what a thumbnail depends on besides the pixel
// values themselves (size, depth, pixel memory, palette), so that a cached
// thumbnail of a changed record is not shown again.
uint64_t ThumbnailStamp(const CTavixImage& image);
