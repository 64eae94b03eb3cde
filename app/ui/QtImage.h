#pragma once
// Images between the document and Qt: a document image as a QImage (for
// PNG on the clipboard and in drags) and a QImage as a new document image.

#include <QImage>

#include <memory>

class CTavixImage;

// A deep copy in ARGB32, palette looked up.
QImage ToQImage(const CTavixImage& image);
// A new 32-bit image with the pixels of `source`; null for an empty one.
std::unique_ptr<CTavixImage> FromQImage(const QImage& source);
