#include "imaging/modules/filter/colour.h"

#include <cstring>

namespace filter {

void copy_rows(const ImageEntry& in, void* pixels, int32_t rowbytes) {
    size_t length = static_cast<size_t>(module_row_length(in.info));
    for (int32_t y = 0; y < in.info->height; ++y) {
        const uint8_t* from = module_row(in, y);
        uint8_t* to = module_row(pixels, rowbytes, y);
        if (from != to) memmove(to, from, length);
    }
}

} // namespace filter
