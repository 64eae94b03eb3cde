#include "imaging/geometry/raster.h"

#include "imaging/galloc.h"
#include "imaging/module/authoring.h"
#include "imaging/modules/resample/palette.h"

namespace geometry {

Raster raster_of(const ImageEntry& image) {
    return {static_cast<uint8_t*>(const_cast<void*>(image.pixels)), image.rowbytes,
            image.info->width, image.info->height, module_pixel_bytes(image.info)};
}

Raster raster_of(const TavixInfo* info, void* pixels, int32_t rowbytes) {
    return {static_cast<uint8_t*>(pixels), rowbytes, info->width, info->height,
            module_pixel_bytes(info)};
}

Edge edge_from(int32_t value) {
    return value >= 0 && value <= 3 ? static_cast<Edge>(value) : Edge::Fill;
}

int32_t edge_index(int64_t i, int32_t n, Edge edge) {
    if (n <= 0) return -1;
    if (i >= 0 && i < n) return static_cast<int32_t>(i);
    switch (edge) {
    case Edge::Clamp:
        return i < 0 ? 0 : n - 1;
    case Edge::Wrap: {
        int64_t r = i % n;
        return static_cast<int32_t>(r < 0 ? r + n : r);
    }
    case Edge::Mirror: {
        int64_t period = 2 * static_cast<int64_t>(n);
        int64_t r = i % period;
        if (r < 0) r += period;
        return static_cast<int32_t>(r < n ? r : period - 1 - r);
    }
    default:
        return -1;
    }
}

uint32_t argb_at(const ImageEntry& image, const Raster& raster, int32_t x, int32_t y) {
    uint32_t v = raster.get(x, y);
    return raster.bytes == 1 ? resample::palette_argb(image.info, static_cast<int32_t>(v)) : v;
}

double luminance(uint32_t argb) {
    return 0.299 * channel(argb, 16) + 0.587 * channel(argb, 8) + 0.114 * channel(argb, 0);
}

void make_argb_record(TavixInfo* info) {
    info->bufferbpp = 32;
    info->bpp = 32;
    info->alphabits = info->redbits = info->greenbits = info->bluebits = 8;
}

TavixInfo* argb_copy_query(ModuleInstance* instance) {
    if (!module_instance_ok(instance)) return nullptr;
    TavixInfo* info = module_copy_info(instance->images[0].info);
    if (info) make_argb_record(info);
    return info;
}

bool check_argb_same_size(const char* module, const ModuleInstance* instance,
                          const TavixInfo* result, const void* pixels, int32_t rowbytes) {
    if (!check_result(module, instance, result, pixels, rowbytes, 4)) return false;
    const TavixInfo& in = *instance->images[0].info;
    if (result->width == in.width && result->height == in.height) return true;
    gprintf("%s - result differs from input in size\n", module);
    return false;
}

bool check_result(const char* module, const ModuleInstance* instance, const TavixInfo* result,
                  const void* pixels, int32_t rowbytes, int32_t resultBytes) {
    const char* problem = nullptr;
    if (!module_instance_ok(instance)) {
        problem = "not open";
    } else {
        for (int32_t i = 0; i < instance->imageCount && !problem; ++i) {
            const ImageEntry& in = instance->images[i];
            if (!in.info || !in.pixels || in.rowbytes < module_row_length(in.info))
                problem = "bad input pixels";
        }
        if (problem) {
        } else if (!result || !pixels || !module_info_ok(result))
            problem = "bad result";
        else if (module_pixel_bytes(result) != resultBytes)
            problem = "result has the wrong pixel depth";
        else if (rowbytes < module_row_length(result))
            problem = "result rows too short";
    }
    if (problem) gprintf("%s - %s\n", module, problem);
    return problem == nullptr;
}

void shift_points(TavixInfo* info, int32_t dx, int32_t dy) {
    auto add = [](int32_t a, int32_t b) {
        return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
    };
    info->centerx = add(info->centerx, dx);
    info->centery = add(info->centery, dy);
    int32_t spots = module_hotspot_count(info);
    for (int32_t i = 0; i < spots; ++i) {
        info->hotspots[i].x = add(info->hotspots[i].x, dx);
        info->hotspots[i].y = add(info->hotspots[i].y, dy);
    }
}

} // namespace geometry
