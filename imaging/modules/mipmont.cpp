// mipmont ("Mipmont Image"): lays a power-of-two texture and its smaller
// mip levels out side by side in one image, for checking a chain at a
// glance.
//
// Value: IsVbt. 0 puts the base at the left and the levels in a column to
// its right, each below the one before; 1 puts the levels in a row below
// the base, each right of the one before. Levels halve each side that is
// still above 1 pixel (Halfsize, averaging 2 x 2 blocks) down to 1 x 1.
// Space the levels do not cover is zero (transparent black, or index 0).
// The base keeps its place, so the record's points stay as they are.
//
// A base whose sides are not both powers of two gets the error message
// and passes through unchanged: the result is a copy of it and process
// still succeeds, so a batch over many textures carries on.

#include "imaging/galloc.h"
#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"
#include "imaging/modules/resample/run.h"

#include <cstring>

namespace {

// Types, ranges and defaults a generic parameter dialog offers.
constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, 0, 1, 0, "IsVbt"},
};

// Printed for a base texture whose sides are not powers of two.
constexpr char kNotPowerOfTwo[] =
    "ERROR: Base texture is not a power of 2 image will not be mipmont.\n";

constexpr ModuleDecl kDecl = {.magic = "MONT",
                              .name = "mipmont",
                              .description = "Mipmont Image",
                              .version = "1.00",
                              .params = kParams};

bool powerOfTwo(int32_t v) {
    return v > 0 && (v & (v - 1)) == 0;
}

bool isMontable(const TavixInfo* info) {
    return powerOfTwo(info->width) && powerOfTwo(info->height);
}

int32_t half(int32_t v) {
    return v > 1 ? v / 2 : 1;
}

// Where level i (1 and up) goes, and the size of the whole layout.
struct Layout {
    bool below; // IsVbt
    int32_t width, height;

    Layout(const TavixInfo* base, bool vbt) : below(vbt) {
        int32_t w = base->width, h = base->height, run = 0;
        int32_t firstW = half(w), firstH = half(h);
        while (w > 1 || h > 1) {
            w = half(w);
            h = half(h);
            run += below ? w : h;
        }
        width = below ? (run > base->width ? run : base->width) : base->width + firstW;
        height = below ? base->height + firstH : (run > base->height ? run : base->height);
        if (base->width == 1 && base->height == 1) width = height = 1;
    }
};

void blit(const ImageEntry& from, uint8_t* pixels, int32_t rowbytes, int32_t left, int32_t top) {
    int32_t size = module_pixel_bytes(from.info);
    for (int32_t y = 0; y < from.info->height; ++y)
        memcpy(module_row(pixels, rowbytes, top + y) + static_cast<ptrdiff_t>(left) * size,
               module_row(from, y), static_cast<size_t>(module_row_length(from.info)));
}

// Makes each level from the one before with Halfsize and lays it out.
bool montage(const ImageEntry& base, bool below, uint8_t* pixels, int32_t rowbytes) {
    ImageEntry level = base;
    ModuleResult previous{};
    int32_t x = below ? 0 : base.info->width, y = below ? base.info->height : 0;
    bool ok = true;
    while (ok && (level.info->width > 1 || level.info->height > 1)) {
        int32_t direction = (level.info->height > 1 ? 1 : 0) | (level.info->width > 1 ? 2 : 0);
        const ModuleValue values[] = {ModuleValue::ofInt(direction)};
        ModuleResult made{};
        ok = resample::run_named("Halfsize", level, values, 1, &made);
        module_result_free(&previous);
        if (!ok) break;
        previous = made;
        level = ImageEntry{made.info, made.pixels, made.rowbytes};
        blit(level, pixels, rowbytes, x, y);
        if (below)
            x += level.info->width;
        else
            y += level.info->height;
    }
    module_result_free(&previous);
    return ok;
}

TavixInfo* query(ModuleInstance* instance, int32_t) {
    if (!module_instance_ok(instance)) return nullptr;
    TavixInfo* info = module_copy_info(instance->images[0].info);
    if (!info || !isMontable(info)) return info;
    Layout layout(info, module_value_int(instance, kDecl, 0) != 0);
    info->width = layout.width;
    info->height = layout.height;
    return info;
}

int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    if (!module_instance_ok(instance)) return 0;
    const ImageEntry& base = instance->images[0];
    bool vbt = module_value_int(instance, kDecl, 0) != 0;
    bool montable = isMontable(base.info);
    int32_t width = base.info->width, height = base.info->height;
    if (montable) {
        Layout layout(base.info, vbt);
        width = layout.width;
        height = layout.height;
    }
    if (!result || !pixels || !base.pixels || result->width != width || result->height != height ||
        module_pixel_bytes(result) != module_pixel_bytes(base.info) ||
        rowbytes < module_row_length(result) || base.rowbytes < module_row_length(base.info)) {
        gprintf("mipmont - result must be %d x %d of the source's depth\n", width, height);
        return 0;
    }
    auto* out = static_cast<uint8_t*>(pixels);
    if (!montable) gprintf("%s", kNotPowerOfTwo);
    if (out != base.pixels) {
        for (int32_t y = 0; y < height; ++y)
            memset(module_row(out, rowbytes, y), 0, static_cast<size_t>(module_row_length(result)));
        blit(base, out, rowbytes, 0, 0);
    }
    return !montable || montage(base, vbt, out, rowbytes) ? 1 : 0;
}

} // namespace

constexpr ModuleEntry mod_mipmont = module_entry<kDecl>(query, process);
