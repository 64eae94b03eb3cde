// Rect ("Rect Image"): paints a rectangle of one colour over the image.
//
// Values: Width, Height, Colour, and two slots beyond the descriptor: the
// rectangle's left and top (0 when not passed), so a caller can paint
// anywhere; Mipmap paints whole levels from 0, 0. The rectangle is clipped
// to the image. On 32-bit pixels Colour is an 0xAARRGGBB word; on indexed
// pixels its lowest byte is the palette index to paint.

#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"

#include <algorithm>
#include <cstring>

namespace {

// Types, ranges and defaults a generic parameter dialog offers.
constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, 1, 65536, 16, "Width"},
    {kParamInteger, 1, 65536, 16, "Height"},
    {kParamColour, 0, 0xFFFFFFFF, 0xFF000000, "Colour"},
};

constexpr ModuleDecl kDecl = {.magic = "RECT",
                              .name = "Rect",
                              .description = "Rect Image",
                              .version = "1.02",
                              .params = kParams};

enum Slot : int32_t { kWidth = 0, kHeight, kColour, kLeft, kTop };

// [start, start + length) clipped to [0, limit), as a half-open range.
void clip(int32_t start, int32_t length, int32_t limit, int32_t* from, int32_t* to) {
    int64_t a = std::max<int64_t>(start, 0);
    int64_t b = std::min<int64_t>(int64_t{start} + std::max(length, 0), limit);
    *from = static_cast<int32_t>(a);
    *to = static_cast<int32_t>(std::max(a, b));
}

void copyRows(const ImageEntry& in, uint8_t* pixels, int32_t rowbytes) {
    if (in.pixels == pixels && in.rowbytes == rowbytes) return;
    size_t length = static_cast<size_t>(module_row_length(in.info));
    for (int32_t y = 0; y < in.info->height; ++y)
        memmove(module_row(pixels, rowbytes, y), module_row(in, y), length);
}

TavixInfo* query(ModuleInstance* instance, int32_t) {
    if (!module_instance_ok(instance)) return nullptr;
    return module_copy_info(instance->images[0].info);
}

int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    if (!module_check_same_shape(kDecl, instance, result, pixels, rowbytes)) return 0;
    const ImageEntry& in = instance->images[0];
    auto* out = static_cast<uint8_t*>(pixels);
    copyRows(in, out, rowbytes);
    int32_t x0, x1, y0, y1;
    clip(module_value_int(instance, kLeft, 0), module_value_int(instance, kDecl, kWidth),
         in.info->width, &x0, &x1);
    clip(module_value_int(instance, kTop, 0), module_value_int(instance, kDecl, kHeight),
         in.info->height, &y0, &y1);
    uint32_t colour = module_value_uint(instance, kDecl, kColour);
    bool indexed = module_pixel_bytes(in.info) == 1;
    for (int32_t y = y0; y < y1; ++y) {
        uint8_t* row = module_row(out, rowbytes, y);
        if (indexed) {
            memset(row + x0, static_cast<int>(colour & 0xFF), static_cast<size_t>(x1 - x0));
            continue;
        }
        for (int32_t x = x0; x < x1; ++x)
            module_store_argb(row + 4 * x, colour);
    }
    return 1;
}

} // namespace

constexpr ModuleEntry mod_rect = module_entry<kDecl>(query, process);
