// Shrink ("Shrink To Fit"): crops the canvas to the smallest rectangle that
// holds the content.
//
// Value: method. 0 (transparent): content is every pixel that is not fully
// transparent - alpha 0 in a 32-bit pixel, or a palette entry of alpha 0
// for an indexed one; an image whose record has no alpha bits has no
// transparency and keeps its size. 1 (upperleft): content is every pixel
// that differs from the upper-left one (the whole word, or the index).
// Other values count as 0. An image with no content at all shrinks to its
// upper-left pixel.
//
// The centre point and the hot spots are relative to the image, so they
// move by the cropped left and top; the default point is the image's place
// in its frame, so it moves the other way and the content stays where it
// was on screen.

#include "imaging/galloc.h"
#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"

#include <cstring>

namespace {

// Types, ranges and defaults a generic parameter dialog offers.
constexpr ModuleParamDecl kParams[] = {
    {kParamChoice, 0, 1, 0, "method", "transparent,upperleft"},
};

constexpr ModuleDecl kDecl = {.magic = "SHNK",
                              .name = "Shrink",
                              .description = "Shrink To Fit",
                              .version = "1.02",
                              .params = kParams};

enum Method : int32_t { kTransparent = 0, kUpperLeft = 1 };

struct Box {
    int32_t left, top, width, height;
};

uint32_t pixelAt(const ImageEntry& in, int32_t x, int32_t y) {
    const uint8_t* row = module_row(in, y);
    return module_pixel_bytes(in.info) == 1 ? row[x] : module_load_argb(row + 4 * x);
}

bool isContent(const ImageEntry& in, int32_t method, uint32_t corner, uint32_t p) {
    if (method == kUpperLeft) return p != corner;
    if (in.info->alphabits == 0) return true;
    if (module_pixel_bytes(in.info) == 1) return in.info->colours[p].alpha != 0;
    return (p >> 24) != 0;
}

Box contentBox(const ModuleInstance* instance) {
    const ImageEntry& in = instance->images[0];
    int32_t method = module_value_int(instance, kDecl, 0) == kUpperLeft ? kUpperLeft : kTransparent;
    uint32_t corner = pixelAt(in, 0, 0);
    int32_t left = in.info->width, right = -1, top = in.info->height, bottom = -1;
    for (int32_t y = 0; y < in.info->height; ++y)
        for (int32_t x = 0; x < in.info->width; ++x) {
            if (!isContent(in, method, corner, pixelAt(in, x, y))) continue;
            if (x < left) left = x;
            if (x > right) right = x;
            if (y < top) top = y;
            bottom = y;
        }
    if (right < 0) return Box{0, 0, 1, 1};
    return Box{left, top, right - left + 1, bottom - top + 1};
}

bool inputUsable(const ImageEntry& in) {
    return in.pixels && in.rowbytes >= module_row_length(in.info);
}

TavixInfo* query(ModuleInstance* instance, int32_t) {
    if (!module_instance_ok(instance) || !inputUsable(instance->images[0])) return nullptr;
    TavixInfo* info = module_copy_info(instance->images[0].info);
    if (!info) return nullptr;
    Box box = contentBox(instance);
    info->width = box.width;
    info->height = box.height;
    info->centerx -= box.left;
    info->centery -= box.top;
    info->defaultx += box.left;
    info->defaulty += box.top;
    for (int32_t i = 0; i < module_hotspot_count(info); ++i) {
        info->hotspots[i].x -= box.left;
        info->hotspots[i].y -= box.top;
    }
    return info;
}

// Rows are copied from the top and each moves toward the start of the
// buffer, so the result may be written over the source.
int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    if (!module_instance_ok(instance)) return 0;
    const ImageEntry& in = instance->images[0];
    if (!inputUsable(in)) {
        gprintf("Shrink - bad source pixels\n");
        return 0;
    }
    Box box = contentBox(instance);
    if (!result || !pixels || result->width != box.width || result->height != box.height ||
        module_pixel_bytes(result) != module_pixel_bytes(in.info) ||
        rowbytes < module_row_length(result)) {
        gprintf("Shrink - result must be %d x %d of the source's depth\n", box.width, box.height);
        return 0;
    }
    int32_t size = module_pixel_bytes(in.info);
    for (int32_t y = 0; y < box.height; ++y)
        memmove(module_row(pixels, rowbytes, y), module_row(in, box.top + y) + box.left * size,
                static_cast<size_t>(box.width) * size);
    return 1;
}

} // namespace

constexpr ModuleEntry mod_shrink = module_entry<kDecl>(query, process);
