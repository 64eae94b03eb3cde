#pragma once
// The shared shape of a colour filter: one rule applied to each colour on
// its own, to the palette of an indexed image (in query output, so the
// indices stay as they are) and to the pixels of a 32-bit one (in
// process). A module prepares its rule from the values once per call and
// hands it here as a callable `uint32_t rule(uint32_t argb)`.

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/plane.h"

#include <cstdint>

namespace filter {

// The colour of palette entry `i` of a record, and back.
inline uint32_t palette_word(const TavixInfo* info, int32_t i) {
    const TavixColour& c = info->colours[i];
    return (uint32_t{c.alpha} << 24) | (uint32_t{c.red} << 16) | (uint32_t{c.green} << 8) | c.blue;
}
inline void set_palette_word(TavixInfo* info, int32_t i, uint32_t argb) {
    info->colours[i] = {static_cast<uint8_t>(argb), static_cast<uint8_t>(argb >> 8),
                        static_cast<uint8_t>(argb >> 16), static_cast<uint8_t>(argb >> 24)};
}

// The colour of the top-left pixel of an image (through the palette for
// indexed images); 0 when the image has no pixels. Filters that key on a
// colour take it as their default.
inline uint32_t corner_colour(const ImageEntry& in) {
    if (!in.pixels) return 0;
    const uint8_t* row = module_row(in, 0);
    return in.info->bufferbpp <= 8 ? palette_word(in.info, row[0]) : module_load_argb(row);
}

// Copies the input's rows into the result (nothing to do when run in
// place); the first step of every colour filter's process.
void copy_rows(const ImageEntry& in, void* pixels, int32_t rowbytes);

template <class Rule> TavixInfo* colour_query(const ModuleInstance* instance, const Rule& rule) {
    if (!module_instance_ok(instance)) return nullptr;
    TavixInfo* info = module_copy_info(instance->images[0].info);
    if (info && info->bufferbpp <= 8)
        for (int32_t i = 0; i < 256; ++i)
            set_palette_word(info, i, rule(palette_word(info, i)));
    return info;
}

template <class Rule>
int colour_process(const ModuleDecl& decl, const ModuleInstance* instance, const TavixInfo* result,
                   void* pixels, int32_t rowbytes, const Rule& rule) {
    if (!module_check_same_shape(decl, instance, result, pixels, rowbytes)) return 0;
    const ImageEntry& in = instance->images[0];
    copy_rows(in, pixels, rowbytes);
    if (result->bufferbpp <= 8) return 1;
    for (int32_t y = 0; y < result->height; ++y) {
        uint8_t* row = module_row(pixels, rowbytes, y);
        for (int32_t x = 0; x < result->width; ++x)
            module_store_argb(row + 4 * x, rule(module_load_argb(row + 4 * x)));
    }
    return 1;
}

// The entry record of a colour filter whose rule `RuleOf(instance)` makes
// from the values: query output maps the palette, process the pixels.
template <const ModuleDecl& Decl, auto RuleOf> constexpr ModuleEntry colour_entry() {
    return module_entry<Decl>(
        [](ModuleInstance* instance, int32_t) -> TavixInfo* {
            if (!module_instance_ok(instance)) return nullptr;
            return colour_query(instance, RuleOf(instance));
        },
        [](ModuleInstance* instance, const TavixInfo* result, void* pixels,
           int32_t rowbytes) -> int {
            if (!module_instance_ok(instance)) return 0;
            return colour_process(Decl, instance, result, pixels, rowbytes, RuleOf(instance));
        });
}

// A rule made of one table per channel (blue, green, red, alpha): each
// channel's new level depends on its old level alone.
struct ChannelTables {
    uint8_t table[4][256];

    // Fills channel c's table from f(level 0 .. 255) -> real level, rounded
    // and held to 0 .. 255.
    template <class F> void fill(int c, const F& f) {
        for (int v = 0; v < 256; ++v)
            table[c][v] = static_cast<uint8_t>(clamp_byte(f(v)));
    }
    void identity(int c) {
        fill(c, [](int v) { return v; });
    }
    uint32_t operator()(uint32_t p) const {
        return uint32_t{table[0][p & 0xFF]} | uint32_t{table[1][(p >> 8) & 0xFF]} << 8 |
               uint32_t{table[2][(p >> 16) & 0xFF]} << 16 | uint32_t{table[3][p >> 24]} << 24;
    }
};

} // namespace filter
