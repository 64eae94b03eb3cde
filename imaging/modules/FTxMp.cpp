// FTxMp ("Facial Texture Map"): lays a face (the second image) into a
// head or body texture (the first), so that it blends in.
//
// - Placement: the face's centre point lands on the texture's centre point
//   (with both at 0, 0 the top-left corners meet). Two optional values, x
//   and y, move the face further right and down by that many pixels.
// - Colour match: the face's red, green and blue are scaled so that its
//   mean colour (over its opaque pixels) equals the mean colour of the
//   texture it covers; each gain is held to 0.5 .. 2.
// - Feathering: the face's opacity falls smoothly to nothing over its outer
//   eighth (of its shorter side, at least one pixel), so no seam shows.
// - The face is then laid over the texture with its alpha. The result has
//   the texture's size and record and is 32-bit; either image may be
//   indexed.

#include "imaging/galloc.h"
#include "imaging/geometry/raster.h"
#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr ModuleDecl kDecl = {.magic = "TXMP",
                              .name = "FTxMp",
                              .description = "Facial Texture Map",
                              .version = "1.00",
                              .flags = 2,
                              .images = 2,
                              .secondCount = 2};

int open(ModuleInstance** out, int32_t imageCount, const ImageEntry* images, int32_t valueCount,
         const ModuleValue* values) {
    return module_open_instance(kDecl, out, imageCount, images, valueCount, values, 2);
}

TavixInfo* query(ModuleInstance* instance, int32_t) {
    if (!module_instance_ok(instance) || instance->imageCount < 2) return nullptr;
    TavixInfo* info = module_copy_info(instance->images[0].info);
    if (info) geometry::make_argb_record(info);
    return info;
}

struct Placement {
    int64_t left, top; // of the face in texture pixels
    double gain[3];
    double feather;
};

Placement place(const ModuleInstance* instance, const geometry::Raster& base,
                const geometry::Raster& face) {
    const ImageEntry &b = instance->images[0], &f = instance->images[1];
    Placement p{};
    p.left = int64_t(b.info->centerx) - f.info->centerx + module_value_int(instance, 0, 0);
    p.top = int64_t(b.info->centery) - f.info->centery + module_value_int(instance, 1, 0);
    double sumFace[3] = {0, 0, 0}, sumBase[3] = {0, 0, 0}, weight = 0;
    for (int32_t y = 0; y < face.height; ++y)
        for (int32_t x = 0; x < face.width; ++x) {
            int64_t bx = p.left + x, by = p.top + y;
            if (bx < 0 || by < 0 || bx >= base.width || by >= base.height) continue;
            uint32_t fc = geometry::argb_at(f, face, x, y);
            uint32_t bc =
                geometry::argb_at(b, base, static_cast<int32_t>(bx), static_cast<int32_t>(by));
            double w = geometry::channel(fc, 24) / 255.0;
            for (int k = 0; k < 3; ++k) {
                sumFace[k] += w * geometry::channel(fc, 16 - 8 * k);
                sumBase[k] += w * geometry::channel(bc, 16 - 8 * k);
            }
            weight += w;
        }
    for (int k = 0; k < 3; ++k)
        p.gain[k] =
            weight > 0 && sumFace[k] > 0 ? std::clamp(sumBase[k] / sumFace[k], 0.5, 2.0) : 1.0;
    p.feather = std::max(1.0, std::min(face.width, face.height) / 8.0);
    return p;
}

int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    if (!geometry::check_result(kDecl.name, instance, result, pixels, rowbytes, 4)) return 0;
    if (instance->imageCount < 2) return 0;
    const ImageEntry &b = instance->images[0], &f = instance->images[1];
    if (result->width != b.info->width || result->height != b.info->height) {
        gprintf("FTxMp - result differs from the texture in size\n");
        return 0;
    }
    geometry::Raster out = geometry::raster_of(result, pixels, rowbytes);
    geometry::Raster base = geometry::raster_of(b), face = geometry::raster_of(f);
    if (out.base == base.base || out.base == face.base) {
        gprintf("FTxMp - cannot run in place\n");
        return 0;
    }
    Placement p = place(instance, base, face);
    for (int32_t y = 0; y < out.height; ++y)
        for (int32_t x = 0; x < out.width; ++x) {
            uint32_t bc = geometry::argb_at(b, base, x, y);
            int64_t fx = x - p.left, fy = y - p.top;
            if (fx < 0 || fy < 0 || fx >= face.width || fy >= face.height) {
                out.set(x, y, bc);
                continue;
            }
            uint32_t fc =
                geometry::argb_at(f, face, static_cast<int32_t>(fx), static_cast<int32_t>(fy));
            double edge =
                std::min({fx + 0.5, fy + 0.5, face.width - fx - 0.5, face.height - fy - 0.5});
            double t = std::clamp(edge / p.feather, 0.0, 1.0);
            double fa = geometry::channel(fc, 24) / 255.0 * t * t * (3 - 2 * t);
            double ba = geometry::channel(bc, 24) / 255.0, a = fa + ba * (1 - fa);
            uint32_t c[3] = {0, 0, 0};
            for (int k = 0; k < 3 && a > 0; ++k) {
                int shift = 16 - 8 * k;
                double top = std::min(255.0, geometry::channel(fc, shift) * p.gain[k]);
                double v = (top * fa + geometry::channel(bc, shift) * ba * (1 - fa)) / a;
                c[k] = static_cast<uint32_t>(std::lround(std::clamp(v, 0.0, 255.0)));
            }
            out.set(
                x, y,
                geometry::pack_argb(static_cast<uint32_t>(std::lround(a * 255)), c[0], c[1], c[2]));
        }
    return 1;
}

} // namespace

constexpr ModuleEntry mod_ftxmp = {.describe = module_describer<kDecl>,
                                   .open = open,
                                   .query = query,
                                   .process = process,
                                   .close = module_close_instance};
