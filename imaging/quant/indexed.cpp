#include "imaging/quant/indexed.h"

#include "imaging/galloc.h"
#include "imaging/module/authoring.h"
#include "imaging/quant/quant.h"
#include "imaging/quant/remap.h"

#include <algorithm>
#include <cstring>

namespace {

uint32_t entryOf(const TavixInfo* info, int32_t i) {
    return module_load_argb(reinterpret_cast<const uint8_t*>(&info->colours[i & 0xFF]));
}

// A colour held to the palette's channel bits.
uint32_t heldTo(uint32_t argb, const int32_t bits[4]) {
    uint32_t out = 0;
    for (int c = 0; c < 4; ++c) {
        const int shift = 24 - 8 * c;
        const auto v = static_cast<uint8_t>(argb >> shift);
        out |= static_cast<uint32_t>(bits[c] >= 8 ? v : quant_reduce_channel(v, bits[c])) << shift;
    }
    return out;
}

} // namespace

bool quant_expand(const ImageEntry& in, ModuleResult* out) {
    *out = ModuleResult{};
    if (!module_info_ok(in.info) || !in.pixels) return false;
    const int32_t w = in.info->width, h = in.info->height;
    out->info = module_copy_info(in.info);
    if (!out->info) return false;
    out->rowbytes = w * 4;
    out->pixels = static_cast<uint8_t*>(galloc(out->rowbytes * h));
    if (!out->pixels) {
        module_result_free(out);
        return false;
    }
    const bool indexed = in.info->bufferbpp <= 8;
    for (int32_t y = 0; y < h; ++y) {
        const uint8_t* row = module_row(in, y);
        uint8_t* to = out->pixels + static_cast<ptrdiff_t>(y) * out->rowbytes;
        if (indexed)
            for (int32_t x = 0; x < w; ++x)
                module_store_argb(to + 4 * x, entryOf(in.info, row[x]));
        else
            memcpy(to, row, static_cast<size_t>(out->rowbytes));
    }
    out->info->bufferbpp = out->info->bpp = 32;
    return true;
}

int32_t quant_build_palette(const QuantIndexedSettings& s, const ImageEntry* images, int32_t n,
                            uint32_t palette[256], uint8_t used[256]) {
    const int32_t start = std::clamp(s.start, 0, 255);
    const int32_t count = std::clamp(s.count, 1, 256 - start);
    const int32_t previous = quant_current();
    quant_select(s.method);
    QuantInstance* q = quant_begin();
    bool ok = q != nullptr;
    for (int32_t i = 0; ok && i < n; ++i) {
        if (images[i].info->bufferbpp == 32) {
            ok = quant_add_image(q, images[i].info, images[i].pixels, images[i].rowbytes) == 1;
            continue;
        }
        ModuleResult wide{};
        ok = quant_expand(images[i], &wide) &&
             quant_add_image(q, wide.info, wide.pixels, wide.rowbytes) == 1;
        module_result_free(&wide);
    }
    int32_t made = 0;
    uint32_t* colours = nullptr;
    if (ok)
        colours = quant_make_palette(q, count, nullptr, &made);
    else
        quant_abandon(q);
    for (int32_t i = 0; colours && i < made; ++i) {
        palette[start + i] = heldTo(colours[i], s.bits);
        used[start + i] = 1;
    }
    if (colours) gfree(colours);
    quant_select(previous);
    return colours ? made : 0;
}

bool quant_make_indexed(const ImageEntry& in, const uint32_t palette[256], const uint8_t used[256],
                        const QuantIndexedSettings& s, ModuleResult* out) {
    *out = ModuleResult{};
    ModuleResult wide{};
    if (!quant_expand(in, &wide)) return false;
    const int32_t w = in.info->width, h = in.info->height;
    out->info = module_copy_info(in.info);
    out->rowbytes = w;
    out->pixels = out->info ? static_cast<uint8_t*>(galloc(w * h)) : nullptr;
    bool ok = out->pixels && quant_remap(wide.info, wide.pixels, wide.rowbytes, palette, used,
                                         s.dither, nullptr, 0, out->pixels, w) == 1;
    module_result_free(&wide);
    if (!ok) {
        module_result_free(out);
        return false;
    }
    TavixInfo* info = out->info;
    info->bufferbpp = info->bpp = 8;
    info->startcolour = std::clamp(s.start, 0, 255);
    info->numcolours = s.count;
    for (int32_t i = 0; i < 256; ++i)
        module_store_argb(reinterpret_cast<uint8_t*>(&info->colours[i]), palette[i]);
    return true;
}
