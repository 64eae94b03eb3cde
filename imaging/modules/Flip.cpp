// Flip ("Flip"): mirrors the pixels and the shape's points together.
//
// Values: Direction (bit 0 left-right, bit 1 top-bottom). Callers that lay
// the image out in a frame pass three more: frame width, frame height and
// a switch; with the switch set the image's position (its default point)
// is mirrored inside that frame as well.

#include "imaging/galloc.h"
#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"

#include <algorithm>
#include <climits>
#include <cstring>

namespace {

enum : int32_t { kNone = 0, kHorizontal = 1, kVertical = 2, kBoth = 3 };

constexpr ModuleParamDecl kParams[] = {
    {kParamChoice, 0, 3, kHorizontal, "Direction", "None,Horizontal,Vertical,Both"},
};

constexpr ModuleDecl kDecl = {
    .magic = "FLIP", .name = "Flip", .description = "Flip", .version = "1.04", .params = kParams};

int32_t direction(const ModuleInstance* instance) {
    return module_value_int(instance, kDecl, 0) & kBoth;
}

// edge - v for points read from files, which may hold any value: wraps
// around instead of overflowing.
int32_t mirror(int32_t edge, int32_t v) {
    return static_cast<int32_t>(static_cast<uint32_t>(edge) - static_cast<uint32_t>(v));
}

// Points mirror about the image edge (width - x), not about the last pixel
// (width - 1 - x): a point marks a place between pixels, so 0 becomes the
// far edge.
void mirrorPoints(TavixInfo* info, int32_t dir) {
    int32_t spots = module_hotspot_count(info);
    if (dir & kHorizontal) {
        info->centerx = mirror(info->width, info->centerx);
        for (int32_t i = 0; i < spots; ++i)
            info->hotspots[i].x = mirror(info->width, info->hotspots[i].x);
    }
    if (dir & kVertical) {
        info->centery = mirror(info->height, info->centery);
        for (int32_t i = 0; i < spots; ++i)
            info->hotspots[i].y = mirror(info->height, info->hotspots[i].y);
    }
}

void mirrorInFrame(TavixInfo* info, int32_t dir, int32_t frameWidth, int32_t frameHeight) {
    if (dir & kHorizontal) info->defaultx = mirror(mirror(frameWidth, info->width), info->defaultx);
    if (dir & kVertical) info->defaulty = mirror(mirror(frameHeight, info->height), info->defaulty);
}

// Reverses the order of `width` pixels of `size` bytes; `from` may be `to`.
void reverseRow(const uint8_t* from, uint8_t* to, int32_t width, int32_t size) {
    if (from == to) {
        for (int32_t l = 0, r = width - 1; l < r; ++l, --r)
            std::swap_ranges(to + l * size, to + (l + 1) * size, to + r * size);
        return;
    }
    for (int32_t x = 0; x < width; ++x)
        memcpy(to + x * size, from + (width - 1 - x) * size, size);
}

void mirrorRows(const ImageEntry& in, uint8_t* pixels, int32_t rowbytes) {
    for (int32_t y = 0; y < in.info->height; ++y)
        reverseRow(module_row(in, y), module_row(pixels, rowbytes, y), in.info->width,
                   module_pixel_bytes(in.info));
}

// Copies the rows of `in` into `pixels` bottom row first.
void reverseRowOrder(const ImageEntry& in, uint8_t* pixels, int32_t rowbytes) {
    int32_t height = in.info->height;
    size_t length = static_cast<size_t>(module_row_length(in.info));
    if (in.pixels == pixels && in.rowbytes == rowbytes) {
        for (int32_t top = 0, bottom = height - 1; top < bottom; ++top, --bottom) {
            uint8_t* upper = module_row(pixels, rowbytes, top);
            std::swap_ranges(upper, upper + length, module_row(pixels, rowbytes, bottom));
        }
        return;
    }
    for (int32_t y = 0; y < height; ++y)
        memcpy(module_row(pixels, rowbytes, y), module_row(in, height - 1 - y), length);
}

// Both axes: mirror each row into a scratch image, then reorder its rows
// into the result. Going through the scratch image also makes this safe
// when the result is the input itself.
int mirrorBoth(const ImageEntry& in, uint8_t* pixels, int32_t rowbytes) {
    int64_t bytes = static_cast<int64_t>(in.info->height) * rowbytes;
    if (bytes > INT32_MAX) {
        gprintf("Flip - scratch image of %lld bytes is too large\n", static_cast<long long>(bytes));
        return 0;
    }
    auto* scratch = static_cast<uint8_t*>(galloc(static_cast<int32_t>(bytes)));
    if (!scratch) return 0;
    mirrorRows(in, scratch, rowbytes);
    ImageEntry mirrored{in.info, scratch, rowbytes};
    reverseRowOrder(mirrored, pixels, rowbytes);
    gfree(scratch);
    return 1;
}

TavixInfo* query(ModuleInstance* instance, int32_t) {
    if (!module_instance_ok(instance)) return nullptr;
    TavixInfo* info = module_copy_info(instance->images[0].info);
    if (!info) return nullptr;
    int32_t dir = direction(instance);
    mirrorPoints(info, dir);
    if (instance->valueCount == 4 && module_value_int(instance, 3, 0) != 0)
        mirrorInFrame(info, dir, module_value_int(instance, 1, 0),
                      module_value_int(instance, 2, 0));
    return info;
}

// Direction None writes nothing: a caller asking for it fills the result
// itself (run in place, the image simply stays as it is).
int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    if (!module_check_same_shape(kDecl, instance, result, pixels, rowbytes)) return 0;
    const ImageEntry& in = instance->images[0];
    auto* out = static_cast<uint8_t*>(pixels);
    switch (direction(instance)) {
    case kHorizontal:
        mirrorRows(in, out, rowbytes);
        return 1;
    case kVertical:
        reverseRowOrder(in, out, rowbytes);
        return 1;
    case kBoth:
        return mirrorBoth(in, out, rowbytes);
    default:
        return 1;
    }
}

} // namespace

constexpr ModuleEntry mod_flip = module_entry<kDecl>(query, process);
