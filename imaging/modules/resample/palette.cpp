#include "imaging/modules/resample/palette.h"

#include "imaging/galloc.h"
#include "imaging/module/authoring.h"

#include <climits>
#include <cstring>

namespace resample {

namespace {

int32_t square(int32_t v) {
    return v * v;
}

int32_t channel(uint32_t p, int c) {
    return static_cast<int32_t>((p >> (8 * c)) & 0xFF);
}

} // namespace

uint32_t palette_argb(const TavixInfo* info, int32_t index) {
    return module_load_argb(reinterpret_cast<const uint8_t*>(&info->colours[index & 0xFF]));
}

int32_t palette_size(const TavixInfo* info) {
    if (info->numcolours <= 0 || info->numcolours > 256) return 256;
    return info->numcolours;
}

int32_t palette_nearest(const TavixInfo* info, uint32_t colour) {
    // The image owns entries startcolour .. startcolour + size - 1 only.
    const int32_t start = info->startcolour > 0 && info->startcolour < 256 ? info->startcolour : 0;
    const int32_t end = start + palette_size(info) < 256 ? start + palette_size(info) : 256;
    int32_t best = start, bestDistance = INT_MAX;
    int channels = info->alphabits > 0 ? 4 : 3;
    for (int32_t i = start; i < end; ++i) {
        uint32_t entry = palette_argb(info, i);
        int32_t distance = 0;
        for (int c = 0; c < channels; ++c)
            distance += square(channel(entry, c) - channel(colour, c));
        if (distance < bestDistance) {
            best = i;
            bestDistance = distance;
        }
    }
    return best;
}

bool indexed_to_argb(const ImageEntry& in, TavixInfo** info, uint8_t** pixels) {
    *info = nullptr;
    *pixels = nullptr;
    int64_t bytes = int64_t{in.info->width} * in.info->height * 4;
    if (bytes > INT_MAX) return false;
    TavixInfo* record = module_copy_info(in.info);
    auto* out = record ? static_cast<uint8_t*>(galloc(static_cast<int32_t>(bytes))) : nullptr;
    if (!out) {
        if (record) gfree(record);
        return false;
    }
    record->bufferbpp = 32;
    record->bpp = 32;
    for (int32_t y = 0; y < in.info->height; ++y) {
        const uint8_t* row = module_row(in, y);
        uint8_t* to = out + int64_t{y} * in.info->width * 4;
        for (int32_t x = 0; x < in.info->width; ++x)
            module_store_argb(to + 4 * x, palette_argb(in.info, row[x]));
    }
    *info = record;
    *pixels = out;
    return true;
}

} // namespace resample
