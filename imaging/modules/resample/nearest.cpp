#include "imaging/modules/resample/nearest.h"

#include "imaging/galloc.h"
#include "imaging/module/authoring.h"

#include <climits>
#include <cstring>

namespace resample {

bool nearest_resize(const ImageEntry& in, uint8_t* pixels, int32_t rowbytes, int32_t width,
                    int32_t height) {
    if (int64_t{width} * 4 > INT_MAX) return false;
    auto* columns = static_cast<int32_t*>(galloc(width * 4));
    if (!columns) return false;
    for (int32_t x = 0; x < width; ++x)
        columns[x] = nearest_index(x, width, in.info->width);
    bool indexed = module_pixel_bytes(in.info) == 1;
    for (int32_t y = 0; y < height; ++y) {
        const uint8_t* from = module_row(in, nearest_index(y, height, in.info->height));
        uint8_t* to = module_row(pixels, rowbytes, y);
        if (indexed) {
            for (int32_t x = 0; x < width; ++x)
                to[x] = from[columns[x]];
        } else {
            for (int32_t x = 0; x < width; ++x)
                module_store_argb(to + 4 * x, module_load_argb(from + 4 * columns[x]));
        }
    }
    gfree(columns);
    return true;
}

} // namespace resample
