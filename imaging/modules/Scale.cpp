// Scale ("Scale Image"): resizes to a given or relative size by taking, for
// every result pixel, the source pixel under its centre. No colours are
// mixed, so it works on indexed images as well as on 32-bit ones.
//
// Values: Width, Height. With exactly five values and a non-zero fifth, the
// third and fourth are a reference width and height and the size is
// relative: width_in / reference_width x Width, and likewise the height,
// each truncated. A reference of 0 or less leaves its axis at the plain
// Width or Height. The result is at least 1 x 1; its points are scaled by
// the size ratio and truncated toward zero.

#include "imaging/galloc.h"
#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"
#include "imaging/modules/resample/geometry.h"
#include "imaging/modules/resample/nearest.h"

namespace {

// Types, ranges and defaults a generic parameter dialog offers.
constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, 1, 65536, 256, "Width"},
    {kParamInteger, 1, 65536, 256, "Height"},
};

constexpr ModuleDecl kDecl = {.magic = "SCAL",
                              .name = "Scale",
                              .description = "Scale Image",
                              .version = "1.03",
                              .params = kParams};

enum Slot : int32_t { kWidth = 0, kHeight, kReferenceWidth, kReferenceHeight, kRelative };
constexpr int32_t kRelativeCount = 5;

int32_t side(int32_t given, int32_t source, int32_t reference, bool relative) {
    double v = given;
    if (relative && reference > 0) v = static_cast<double>(source) / reference * given;
    int32_t n = resample::truncate_point(v);
    return n < 1 ? 1 : n;
}

void resultSize(const ModuleInstance* instance, int32_t* width, int32_t* height) {
    const TavixInfo* in = instance->images[0].info;
    bool relative =
        instance->valueCount == kRelativeCount && module_value_int(instance, kRelative, 0) != 0;
    *width = side(module_value_int(instance, kDecl, kWidth), in->width,
                  module_value_int(instance, kReferenceWidth, 0), relative);
    *height = side(module_value_int(instance, kDecl, kHeight), in->height,
                   module_value_int(instance, kReferenceHeight, 0), relative);
}

TavixInfo* query(ModuleInstance* instance, int32_t) {
    if (!module_instance_ok(instance)) return nullptr;
    const TavixInfo* in = instance->images[0].info;
    TavixInfo* info = module_copy_info(in);
    if (!info) return nullptr;
    resultSize(instance, &info->width, &info->height);
    resample::scale_points(info, {double(info->width), double(in->width)},
                           {double(info->height), double(in->height)}, false);
    return info;
}

// Fills the result record's size, so a caller may also ask for any other
// size than query output gave.
int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    if (!module_check_resized(kDecl, instance, result, pixels, rowbytes)) return 0;
    const ImageEntry& in = instance->images[0];
    return resample::nearest_resize(in, static_cast<uint8_t*>(pixels), rowbytes, result->width,
                                    result->height)
               ? 1
               : 0;
}

} // namespace

constexpr ModuleEntry mod_scale = module_entry<kDecl>(query, process);
