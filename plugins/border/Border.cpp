// An example layout plug-in: returns each image with a one-pixel border
// drawn around its edge, opaque magenta in true-colour images and palette
// index 0 in palette images. Build it (CMake target layout_border) and put
// bin/plugins on LD_LIBRARY_PATH, or copy bin/plugins/liblayout.so beside
// the zy program, to enable Tools > VRAM Tools > Custom Properties.

#include "plugins/LayoutPlugin.h"

#include <cstdlib>
#include <cstring>

namespace {

constexpr uint32_t kBorderColour = 0xFFFF00FF;
constexpr uint8_t kBorderIndex = 0;

void setPixel(LayoutImage& image, int x, int y) {
    auto* row = static_cast<uint8_t*>(image.pixels) + static_cast<size_t>(y) * image.rowbytes;
    if (image.info->bufferbpp <= 8)
        row[x] = kBorderIndex;
    else
        memcpy(row + 4 * static_cast<size_t>(x), &kBorderColour, 4);
}

} // namespace

ZY_LAYOUT_EXPORT int EditLayoutImage(const LayoutImage* in, LayoutImage* out) {
    const TavixInfo& info = *in->info;
    if (info.width <= 0 || info.height <= 0 || info.size < static_cast<int32_t>(sizeof(TavixInfo)))
        return 0;
    const int bytes = info.bufferbpp <= 8 ? 1 : 4;
    const int32_t rowbytes = info.width * bytes;
    auto* record = static_cast<TavixInfo*>(malloc(static_cast<size_t>(info.size)));
    auto* pixels = static_cast<uint8_t*>(malloc(static_cast<size_t>(rowbytes) * info.height));
    if (!record || !pixels) {
        free(record);
        free(pixels);
        return 0;
    }
    memcpy(record, &info, static_cast<size_t>(info.size));
    for (int y = 0; y < info.height; ++y)
        memcpy(pixels + static_cast<size_t>(y) * rowbytes,
               static_cast<const uint8_t*>(in->pixels) + static_cast<size_t>(y) * in->rowbytes,
               static_cast<size_t>(rowbytes));
    *out = {record, pixels, rowbytes};
    for (int x = 0; x < info.width; ++x) {
        setPixel(*out, x, 0);
        setPixel(*out, x, info.height - 1);
    }
    for (int y = 0; y < info.height; ++y) {
        setPixel(*out, 0, y);
        setPixel(*out, info.width - 1, y);
    }
    return 1;
}

ZY_LAYOUT_EXPORT void FreeLayoutImage(LayoutImage* out) {
    free(out->info);
    free(out->pixels);
    *out = {};
}
