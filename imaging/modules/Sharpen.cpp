// Sharpen ("Sharpen"): an unsharp mask: each pixel moves away from the
// mean of its four neighbours (above, below, left, right),
// level' = level + k x (level - mean), with strength k = 4 / (amount - 4).
//
// Value, slot 0, either
// - a real amount (the Sharpen command: 8.0 for the plain item, k = 1;
//   5.0 "by a lot", k = 4; its dialog 0.1 .. 256): larger amounts sharpen
//   less; amounts at or below 4.25 all sharpen with the strongest k = 16;
// - or the descriptor's integer Method 0 .. 3, a preset amount: 0 is 8.0
//   (the default), 1 is 5.0, 2 is 12.0 (gentle), 3 is 4.5 (very strong).
// Red, green and blue are sharpened; alpha stays. Edges repeat outward.
// Indexed images are filtered in colour and mapped back to the nearest
// colour of their palette.

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/neighbourhood.h"
#include "imaging/modules/filter/plane_filter.h"
#include "imaging/modules/modules.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, 0, 3, 0, "Method"},
};

constexpr ModuleDecl kDecl = {.magic = "SHRP",
                              .name = "Sharpen",
                              .description = "Sharpen",
                              .version = "1.01",
                              .params = kParams};

constexpr double kPresets[4] = {8.0, 5.0, 12.0, 4.5};
constexpr double kMaxStrength = 16.0;

// The amount in slot 0: a real as it is, an integer as a preset.
double amountOf(const ModuleInstance* instance) {
    if (!instance->values || instance->valueCount < 1) return kPresets[0];
    uint32_t high;
    memcpy(&high, instance->values[0].bytes + 4, sizeof high);
    if (high != 0) return instance->values[0].asReal();
    return kPresets[std::clamp(instance->values[0].asInt(), 0, 3)];
}

bool sharpen(const ModuleInstance* instance, filter::Plane* plane) {
    double amount = amountOf(instance);
    double k = amount - 4.0 > 4.0 / kMaxStrength ? 4.0 / (amount - 4.0) : kMaxStrength;
    if (!std::isfinite(k)) k = 0.0;
    filter::Plane from;
    if (!filter::plane_make_like(&from, *plane)) return false;
    filter::plane_copy(*plane, &from);
    for (int32_t y = 0; y < plane->height; ++y) {
        for (int32_t x = 0; x < plane->width; ++x) {
            uint32_t p = from.at(x, y);
            uint32_t n[4] = {from.clamped(x - 1, y), from.clamped(x + 1, y), from.clamped(x, y - 1),
                             from.clamped(x, y + 1)};
            uint32_t out = p & 0xFF000000;
            for (int c = 0; c < 3; ++c) {
                double mean = (filter::channel(n[0], c) + filter::channel(n[1], c) +
                               filter::channel(n[2], c) + filter::channel(n[3], c)) /
                              4.0;
                double level = filter::channel(p, c);
                out |= filter::clamp_byte(level + k * (level - mean)) << (8 * c);
            }
            plane->at(x, y) = out;
        }
    }
    filter::plane_free(&from);
    return true;
}

} // namespace

constexpr ModuleEntry mod_sharpen = filter::plane_entry<kDecl, sharpen>();
