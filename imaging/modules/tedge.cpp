// tedge ("Transparent Edge Extrude"): gives fully transparent pixels next
// to visible ones the colour of their visible neighbours, keeping them
// transparent. A game engine that filters the texture then blends the
// sprite's edge with its own colours instead of with whatever colour the
// transparent pixels happened to hold (a dark or magenta fringe).
//
// Each transparent pixel in the ring around the visible ones (its eight
// neighbours) takes the average red, green and blue of the visible or
// already coloured neighbours, weighted by their alpha.
//
// Value: method (default 0): 0 colours one ring of pixels; 1 keeps going
// ring after ring until every transparent pixel has a colour (for mip
// maps, whose smaller levels reach further). Indexed images are worked in
// colour and mapped back to the nearest colour of their palette.

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/plane_filter.h"
#include "imaging/modules/modules.h"

#include "imaging/galloc.h"

#include <cstring>

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, 0, 1, 0, "method"},
};

constexpr ModuleDecl kDecl = {.magic = "TEDG",
                              .name = "tedge",
                              .description = "Transparent Edge Extrude",
                              .version = "1.01",
                              .params = kParams};

// Weighted colour sum of the known neighbours of (x, y); false when none.
bool neighbourColour(const filter::Plane& plane, const uint8_t* known, int32_t x, int32_t y,
                     uint32_t* colour) {
    double sum[3] = {}, weight = 0.0;
    for (int32_t dy = -1; dy <= 1; ++dy) {
        for (int32_t dx = -1; dx <= 1; ++dx) {
            int32_t nx = x + dx, ny = y + dy;
            if ((dx == 0 && dy == 0) || nx < 0 || ny < 0 || nx >= plane.width || ny >= plane.height)
                continue;
            int64_t i = static_cast<int64_t>(ny) * plane.width + nx;
            if (!known[i]) continue;
            uint32_t p = plane.words[i];
            // Colours given in an earlier ring have alpha 0; they count fully.
            double w = (p >> 24) ? (p >> 24) / 255.0 : 1.0;
            for (int c = 0; c < 3; ++c)
                sum[c] += filter::channel(p, c) * w;
            weight += w;
        }
    }
    if (weight <= 0.0) return false;
    *colour =
        filter::make_argb(0, filter::clamp_byte(sum[2] / weight),
                          filter::clamp_byte(sum[1] / weight), filter::clamp_byte(sum[0] / weight));
    return true;
}

bool extrude(const ModuleInstance* instance, filter::Plane* plane) {
    bool all = module_value_int(instance, kDecl, 0) == 1;
    int64_t n = plane->count();
    auto* known = static_cast<uint8_t*>(galloc(static_cast<int32_t>(n)));
    auto* next = static_cast<uint8_t*>(galloc(static_cast<int32_t>(n)));
    bool ok = known && next;
    for (int64_t i = 0; ok && i < n; ++i)
        known[i] = (plane->words[i] >> 24) != 0;
    for (bool grew = ok; grew;) {
        grew = false;
        memcpy(next, known, static_cast<size_t>(n));
        for (int32_t y = 0; y < plane->height; ++y) {
            for (int32_t x = 0; x < plane->width; ++x) {
                int64_t i = static_cast<int64_t>(y) * plane->width + x;
                uint32_t colour;
                if (known[i] || !neighbourColour(*plane, known, x, y, &colour)) continue;
                plane->words[i] = colour;
                next[i] = 1;
                grew = true;
            }
        }
        memcpy(known, next, static_cast<size_t>(n));
        if (!all) break;
    }
    if (known) gfree(known);
    if (next) gfree(next);
    return ok;
}

} // namespace

constexpr ModuleEntry mod_tedge = filter::plane_entry<kDecl, extrude>();
