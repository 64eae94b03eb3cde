#pragma once
// One decoded frame, as drivers exchange it with the entry points: either
// 8-bit palette indices with their palette, or 32-bit ARGB words
// (0xAARRGGBB), rows top to bottom with no padding.

#include "tavix/core/Host.h"
#include "tavix/records.h"

#include <cstddef>
#include <cstdint>

namespace tavix {

// Largest frame any driver accepts: keeps a hostile header from asking for
// more memory than the host allocator can count.
constexpr int64_t kMaxPixels = int64_t{1} << 28;

// width * height after checking both are positive and within kMaxPixels.
size_t checkedPixelCount(int64_t width, int64_t height);

struct Picture {
    int32_t width = 0;
    int32_t height = 0;
    bool indexed = false;
    Bytes indices; // width * height when indexed
    Words argb;    // width * height otherwise
    TavixColour palette[256] = {};
    int32_t numcolours = 0;

    void makeIndexed(int32_t w, int32_t h); // sizes and zero-fills
    void makeTrueColour(int32_t w, int32_t h);
    uint32_t paletteArgb(int index) const;
    void setPaletteArgb(int index, uint32_t argb);
    // The colour of pixel i whatever the kind (palette looked up).
    uint32_t argbAt(size_t i) const { return indexed ? paletteArgb(indices[i]) : argb[i]; }
};

// A frame's pixels wherever they lie: a picture's own storage, or the rows
// a caller handed in (`pitch` bytes apart, 32-bit rows word-aligned).
// Writers that work from a view can write a caller's frame without first
// copying it into a picture.
struct FrameView {
    int32_t width = 0;
    int32_t height = 0;
    bool indexed = false;
    const uint8_t* base = nullptr;
    ptrdiff_t pitch = 0;
    const TavixColour* palette = nullptr; // 256 entries when indexed
    int32_t numcolours = 0;

    const uint8_t* indices(size_t y) const { return base + static_cast<ptrdiff_t>(y) * pitch; }
    const uint32_t* argb(size_t y) const {
        return reinterpret_cast<const uint32_t*>(base + static_cast<ptrdiff_t>(y) * pitch);
    }
    uint32_t paletteArgb(int index) const {
        const TavixColour& c = palette[index & 255];
        return static_cast<uint32_t>(c.alpha) << 24 | c.red << 16 | c.green << 8 | c.blue;
    }
};

FrameView viewOf(const Picture& picture);

inline uint32_t packArgb(uint32_t a, uint32_t r, uint32_t g, uint32_t b) {
    return a << 24 | r << 16 | g << 8 | b;
}

} // namespace tavix
