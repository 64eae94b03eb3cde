// Size ("Image Size"): the filtered resampler with eight kernels, an
// alpha-aware mode and a key colour for transparent pixels.
//
// Values, by how many are passed: Width, Height, Filter Function, Respect
// Alpha, Chromakey Colour, X Sharpness, Y Sharpness, Scale Ratio X, Scale
// Ratio Y. The sharpness values are accepted and have no effect on the
// pixels. The ratios, when all nine slots are passed, replace the size
// ratio for the record's points only.
//
// Size reads and writes 32-bit pixels; callers convert indexed images
// first. The pixel work is resample_argb() (resample/resampler.h).
//
// What the values mean:
// - Width, Height: the result's size in pixels (at least 1; 0 when not
//   passed, so a caller always passes them).
// - Filter Function (0 .. 7): the kernel, Lanczos3, Mitchell, Cubic,
//   Linear, Point, Bell, B-Spline, Quadratic; any other value is Lanczos3.
// - Respect Alpha (0 or 1): 1 leaves transparent pixels out of the
//   filter, so their colour does not bleed into the edge; with Chromakey
//   Colour 0 these are the pixels of alpha 0, otherwise those equal to it
//   in all 32 bits. A result pixel whose neighbourhood is less than 30%
//   covered by the others becomes the key colour: Chromakey Colour, else
//   the first transparent source pixel, else 0x0000FFFF.
// - Chromakey Colour (0xAARRGGBB, default 0): see Respect Alpha.
// - Scale Ratio X and Y (reals): with all nine slots passed, how the
//   record's points are scaled instead of by the size ratio.
// A result record with 0 alpha bits gets opaque pixels.

#include "imaging/galloc.h"
#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"
#include "imaging/modules/resample/geometry.h"
#include "imaging/modules/resample/resampler.h"

namespace {

// The nine value slots that callers who know the module pass, in order.
// Process reads them by count: a slot not passed takes the default here.
constexpr ModuleParamDecl kSlots[] = {
    {kParamInteger, 1, 0, 0, "Width"},
    {kParamInteger, 1, 0, 0, "Height"},
    {kParamChoice, 0, 7, 0, "Filter Function",
     "Lanczos3,Mitchell,Cubic,Linear,Point,Bell,B-Spline,Quadratic"},
    {kParamInteger, 0, 1, 0, "Respect Alpha"},
    {kParamMask, 0, 0xFFFFFFFF, 0, "Chromakey Colour"},
    {kParamReal, 0.0, 1.0, 1.0, "X Sharpness"},
    {kParamReal, 0.0, 1.0, 1.0, "Y Sharpness"},
    {kParamReal, 1e-7, 999999.0, 1.0, "Scale Ratio X"},
    {kParamReal, 1e-7, 999999.0, 1.0, "Scale Ratio Y"},
};

// The descriptor has seven records. Its seventh was written with each of
// the last three slots in turn, so only "Scale Ratio Y" shows there; a
// generic dialog built from it offers seven parameters ending with that
// one, and existing callers rely on this.
constexpr ModuleParamDecl kRecords[] = {kSlots[0], kSlots[1], kSlots[2], kSlots[3],
                                        kSlots[4], kSlots[5], kSlots[8]};

constexpr ModuleDecl kDecl = {.magic = "",
                              .name = "Size",
                              .description = "Image Size",
                              .version = "1.13",
                              .flags = 2,
                              .params = kRecords};

enum Slot : int32_t {
    kWidth = 0,
    kHeight,
    kFilter,
    kRespectAlpha,
    kChromakey,
    kXSharpness,
    kYSharpness,
    kRatioX,
    kRatioY,
    kSlotCount
};

int32_t atLeastOne(int32_t v) {
    return v < 1 ? 1 : v;
}

bool isArgb(const TavixInfo* info) {
    return info && info->bufferbpp > 8;
}

// Hot spots are truncated toward zero, the centre and default points
// rounded half up: that is how the points were always moved, and shape
// files made with them depend on it.
TavixInfo* query(ModuleInstance* instance, int32_t) {
    if (!module_instance_ok(instance)) return nullptr;
    const TavixInfo* in = instance->images[0].info;
    TavixInfo* info = module_copy_info(in);
    if (!info) return nullptr;
    info->width = atLeastOne(module_value_int(instance, kWidth, 0));
    info->height = atLeastOne(module_value_int(instance, kHeight, 0));
    resample::Ratio x{static_cast<double>(info->width), static_cast<double>(in->width)};
    resample::Ratio y{static_cast<double>(info->height), static_cast<double>(in->height)};
    if (instance->valueCount >= kSlotCount) {
        x = resample::Ratio{module_value_real(instance, kRatioX, kSlots[kRatioX].defaultValue)};
        y = resample::Ratio{module_value_real(instance, kRatioY, kSlots[kRatioY].defaultValue)};
    }
    resample::scale_points(info, x, y, true);
    return info;
}

int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    if (!module_instance_ok(instance)) return 0;
    const ImageEntry& in = instance->images[0];
    if (!isArgb(in.info) || !isArgb(result) || !module_info_ok(result) || !pixels || !in.pixels ||
        in.rowbytes < module_row_length(in.info) || rowbytes < module_row_length(result)) {
        gprintf("Size - needs 32-bit source and result pixels\n");
        return 0;
    }
    resample::ArgbView source{static_cast<const uint8_t*>(in.pixels), in.info->width,
                              in.info->height, in.rowbytes};
    resample::ArgbTarget target{static_cast<uint8_t*>(pixels), result->width, result->height,
                                rowbytes};
    resample::Options options;
    options.filter = module_value_int(instance, kFilter, 0);
    options.respectAlpha = module_value_int(instance, kRespectAlpha, 0) != 0;
    options.key = resample::resolve_key(source, options.respectAlpha,
                                        module_value_uint(instance, kChromakey, 0));
    options.resultHasAlpha = result->alphabits != 0;
    if (!resample::resample_argb(source, target, options)) {
        gprintf("Size - no memory to resample %d x %d to %d x %d\n", source.width, source.height,
                target.width, target.height);
        return 0;
    }
    return 1;
}

} // namespace

constexpr ModuleEntry mod_size = module_entry<kDecl>(query, process);
