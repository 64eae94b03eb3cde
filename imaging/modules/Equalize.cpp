// Equalize ("Equalize Image"): histogram equalisation. Each of red, green
// and blue is remapped through its own cumulative histogram so that its
// levels spread evenly over the range, then rounded to the given number
// of levels. Alpha stays.
//
// Values:
// - Levels (2 .. 256, default 256): how many evenly spaced levels each
//   channel may take afterwards.
// - BlendAlpha (0 or 1, default 0): 1 counts each pixel in the histogram
//   by its opacity, so transparent pixels (whose colour nobody sees) do
//   not steer the result; 0 counts every pixel alike.
// Indexed images change through their palette; their histograms count
// the pixels that use each entry.

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/colour.h"
#include "imaging/modules/filter/colour_space.h"
#include "imaging/modules/modules.h"

#include <cstring>

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, 2, 256, 256, "Levels"},
    {kParamInteger, 0, 1, 0, "BlendAlpha"},
};

constexpr ModuleDecl kDecl = {.magic = "GREY",
                              .name = "Equalize",
                              .description = "Equalize Image",
                              .version = "1.04",
                              .params = kParams};

// Adds each pixel's colour to the three histograms with weight `w`.
void count(uint32_t p, bool byAlpha, double (&histogram)[3][256]) {
    double w = byAlpha ? (p >> 24) / 255.0 : 1.0;
    for (int c = 0; c < 3; ++c)
        histogram[c][filter::channel(p, c)] += w;
}

void histogramOf(const ImageEntry& in, bool byAlpha, double (&histogram)[3][256]) {
    memset(histogram, 0, sizeof histogram);
    if (!in.pixels) return;
    bool indexed = in.info->bufferbpp <= 8;
    double uses[256] = {};
    for (int32_t y = 0; y < in.info->height; ++y) {
        const uint8_t* row = module_row(in, y);
        for (int32_t x = 0; x < in.info->width; ++x) {
            if (indexed)
                uses[row[x]] += 1.0;
            else
                count(module_load_argb(row + 4 * x), byAlpha, histogram);
        }
    }
    if (!indexed) return;
    for (int32_t i = 0; i < 256; ++i) {
        if (uses[i] == 0.0) continue;
        uint32_t p = filter::palette_word(in.info, i);
        double w = byAlpha ? (p >> 24) / 255.0 : 1.0;
        for (int c = 0; c < 3; ++c)
            histogram[c][filter::channel(p, c)] += w * uses[i];
    }
}

auto ruleOf(const ModuleInstance* instance) {
    filter::ChannelTables tables{};
    tables.identity(3);
    double histogram[3][256];
    histogramOf(instance->images[0], module_value_int(instance, kDecl, 1) != 0, histogram);
    double steps = std::clamp(module_value_int(instance, kDecl, 0), 2, 256) - 1.0;
    for (int c = 0; c < 3; ++c) {
        double cumulative[256], total = 0.0, first = 0.0;
        for (int v = 0; v < 256; ++v) {
            total += histogram[c][v];
            cumulative[v] = total;
            if (first == 0.0) first = total;
        }
        // A channel with one level (or no counted pixel) has nothing to spread.
        if (total - first <= 0.0) {
            tables.identity(c);
            continue;
        }
        tables.fill(c, [&](int v) {
            double share = std::max(0.0, (cumulative[v] - first) / (total - first));
            return std::floor(share * steps + 0.5) * 255.0 / steps;
        });
    }
    return tables;
}

} // namespace

constexpr ModuleEntry mod_equalize = filter::colour_entry<kDecl, ruleOf>();
