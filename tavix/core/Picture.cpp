#include "tavix/core/Picture.h"

#include "tavix/core/Errors.h"

namespace tavix {

size_t checkedPixelCount(int64_t width, int64_t height) {
    if (width <= 0 || height <= 0)
        fail("bad image size %lld x %lld", (long long)width, (long long)height);
    if (width > kMaxPixels || height > kMaxPixels || width * height > kMaxPixels)
        fail("image size %lld x %lld is too large", (long long)width, (long long)height);
    return static_cast<size_t>(width * height);
}

void Picture::makeIndexed(int32_t w, int32_t h) {
    size_t n = checkedPixelCount(w, h);
    width = w;
    height = h;
    indexed = true;
    indices.assign(n, 0);
    argb.clear();
}

void Picture::makeTrueColour(int32_t w, int32_t h) {
    size_t n = checkedPixelCount(w, h);
    width = w;
    height = h;
    indexed = false;
    argb.assign(n, 0);
    indices.clear();
}

uint32_t Picture::paletteArgb(int index) const {
    const TavixColour& c = palette[index & 255];
    return packArgb(c.alpha, c.red, c.green, c.blue);
}

void Picture::setPaletteArgb(int index, uint32_t value) {
    TavixColour& c = palette[index & 255];
    c.alpha = static_cast<uint8_t>(value >> 24);
    c.red = static_cast<uint8_t>(value >> 16);
    c.green = static_cast<uint8_t>(value >> 8);
    c.blue = static_cast<uint8_t>(value);
}

FrameView viewOf(const Picture& picture) {
    FrameView view;
    view.width = picture.width;
    view.height = picture.height;
    view.indexed = picture.indexed;
    view.base = picture.indexed ? picture.indices.data()
                                : reinterpret_cast<const uint8_t*>(picture.argb.data());
    view.pitch = static_cast<ptrdiff_t>(picture.width) * (picture.indexed ? 1 : 4);
    view.palette = picture.palette;
    view.numcolours = picture.numcolours;
    return view;
}

} // namespace tavix
