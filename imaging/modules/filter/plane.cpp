#include "imaging/modules/filter/plane.h"

#include "imaging/galloc.h"
#include "imaging/module/authoring.h"
#include "imaging/modules/resample/palette.h"

#include <climits>
#include <cstring>

namespace filter {

namespace {

// Remembers the palette entry found for recent colours: sprites use few
// colours, so most pixels skip the search over the palette.
class NearestCache {
  public:
    explicit NearestCache(const TavixInfo* palette) : m_palette(palette) {
        for (auto& slot : m_slots)
            slot.used = false;
    }
    uint8_t index(uint32_t argb) {
        Slot& slot = m_slots[(argb * 2654435761u) >> (32 - kBits)];
        if (!slot.used || slot.colour != argb) {
            slot = {argb, static_cast<uint8_t>(resample::palette_nearest(m_palette, argb)), true};
        }
        return slot.index;
    }

  private:
    static constexpr int kBits = 12;
    struct Slot {
        uint32_t colour;
        uint8_t index;
        bool used;
    };
    const TavixInfo* m_palette;
    Slot m_slots[1 << kBits];
};

bool load(const ImageEntry& in, Plane* plane, bool expand) {
    if (!plane_make(plane, in.info->width, in.info->height)) return false;
    bool indexed = in.info->bufferbpp <= 8;
    uint32_t palette[256];
    for (int32_t i = 0; i < 256; ++i)
        palette[i] = expand ? resample::palette_argb(in.info, i) : static_cast<uint32_t>(i);
    for (int32_t y = 0; y < plane->height; ++y) {
        const uint8_t* from = module_row(in, y);
        uint32_t* to = plane->row(y);
        if (indexed) {
            for (int32_t x = 0; x < plane->width; ++x)
                to[x] = palette[from[x]];
        } else {
            memcpy(to, from, static_cast<size_t>(plane->width) * 4);
        }
    }
    return true;
}

} // namespace

bool plane_make(Plane* plane, int32_t width, int32_t height) {
    *plane = Plane{};
    int64_t bytes = static_cast<int64_t>(width) * height * 4;
    if (width <= 0 || height <= 0 || bytes > INT32_MAX) {
        gprintf("filter - working image of %d x %d is too large\n", width, height);
        return false;
    }
    auto* words = static_cast<uint32_t*>(galloc(static_cast<int32_t>(bytes)));
    if (!words) return false;
    memset(words, 0, static_cast<size_t>(bytes));
    *plane = Plane{width, height, words};
    return true;
}

bool plane_make_like(Plane* plane, const Plane& like) {
    return plane_make(plane, like.width, like.height);
}

void plane_free(Plane* plane) {
    if (plane->words) gfree(plane->words);
    *plane = Plane{};
}

void plane_copy(const Plane& from, Plane* to) {
    memcpy(to->words, from.words, static_cast<size_t>(from.count()) * 4);
}

bool plane_load_colours(const ImageEntry& in, Plane* plane) {
    return load(in, plane, true);
}

bool plane_load_values(const ImageEntry& in, Plane* plane) {
    return load(in, plane, false);
}

bool plane_store_colours(const Plane& plane, const TavixInfo* result, void* pixels,
                         int32_t rowbytes) {
    if (result->bufferbpp > 8) {
        for (int32_t y = 0; y < plane.height; ++y)
            memcpy(module_row(pixels, rowbytes, y), plane.row(y),
                   static_cast<size_t>(plane.width) * 4);
        return true;
    }
    auto* cache = static_cast<NearestCache*>(galloc(sizeof(NearestCache)));
    if (!cache) return false;
    new (cache) NearestCache(result);
    for (int32_t y = 0; y < plane.height; ++y) {
        uint8_t* to = module_row(pixels, rowbytes, y);
        const uint32_t* from = plane.row(y);
        for (int32_t x = 0; x < plane.width; ++x)
            to[x] = cache->index(from[x]);
    }
    gfree(cache);
    return true;
}

void plane_store_values(const Plane& plane, const TavixInfo* result, void* pixels,
                        int32_t rowbytes) {
    if (result->bufferbpp > 8) {
        plane_store_colours(plane, result, pixels, rowbytes);
        return;
    }
    for (int32_t y = 0; y < plane.height; ++y) {
        uint8_t* to = module_row(pixels, rowbytes, y);
        const uint32_t* from = plane.row(y);
        for (int32_t x = 0; x < plane.width; ++x)
            to[x] = static_cast<uint8_t>(from[x]);
    }
}

uint32_t Background::colour(uint32_t value) const {
    return info ? resample::palette_argb(info, static_cast<int32_t>(value & 0xFF)) : value;
}

Background plane_background(const Plane& plane, const TavixInfo* info) {
    Background background{info, true, 0};
    for (int64_t i = 0; i < plane.count(); ++i)
        if ((background.colour(plane.words[i]) >> 24) == 0) return background;
    background.byAlpha = false;
    background.key = plane.at(0, 0);
    return background;
}

} // namespace filter
