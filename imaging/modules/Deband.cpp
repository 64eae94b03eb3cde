// Deband ("Deband"): smooths the steps (bands) that few colour levels
// leave in gradients, while keeping real edges: each pixel becomes the
// average of the samples around it whose colour is close to its own, but
// only where enough of them are close (a flat area).
//
// Values:
// - RGB distance (0 .. 255 levels, default 4): a sample is close when
//   none of its channels (alpha, red, green, blue) differs by more.
// - Image step (1 .. 256, default 1): how many times the smoothing runs,
//   each pass on the result of the last (at most 16).
// - Block size (pixels, 1 .. 256, default 8): the side of the square of
//   samples around each pixel.
// - Block step (pixels, 1 .. 256, default 4): the spacing of the samples
//   in that square (a larger step reaches as far with fewer samples; it
//   is raised when the square would hold more than 33 x 33 samples).
// - Colour area (pixels, 0 .. 65536, default 16): a pixel is smoothed only
//   when its close samples cover at least this many pixels (each sample
//   standing for Block step x Block step of them).
// Indexed images are worked in colour and mapped back to the nearest
// colour of their palette.

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/plane_filter.h"
#include "imaging/modules/modules.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, 0, 255, 4, "RGB distance"},   {kParamInteger, 1, 256, 1, "Image step"},
    {kParamInteger, 1, 256, 8, "Block size"},     {kParamInteger, 1, 256, 4, "Block step"},
    {kParamInteger, 0, 65536, 16, "Colour area"},
};

constexpr ModuleDecl kDecl = {.magic = "DBND",
                              .name = "Deband",
                              .description = "Deband",
                              .version = "1.00",
                              .params = kParams};

constexpr int32_t kMaxPasses = 16;
constexpr int32_t kMaxSamplesAcross = 33;

struct Settings {
    int32_t distance, passes, reach, step;
    double area;
};

Settings settingsOf(const ModuleInstance* instance) {
    Settings s{};
    s.distance = module_value_int(instance, kDecl, 0);
    s.passes = std::clamp(module_value_int(instance, kDecl, 1), 1, kMaxPasses);
    int32_t size = std::clamp(module_value_int(instance, kDecl, 2), 1, 256);
    s.step = std::clamp(module_value_int(instance, kDecl, 3), 1, 256);
    s.reach = size / 2;
    s.step = std::max(s.step, (2 * s.reach + kMaxSamplesAcross - 1) / kMaxSamplesAcross);
    s.area = module_value_int(instance, kDecl, 4);
    return s;
}

bool similar(uint32_t a, uint32_t b, int32_t distance) {
    for (int c = 0; c < 4; ++c)
        if (std::abs(static_cast<int32_t>(filter::channel(a, c)) -
                     static_cast<int32_t>(filter::channel(b, c))) > distance)
            return false;
    return true;
}

uint32_t smoothed(const filter::Plane& from, int32_t x, int32_t y, const Settings& s) {
    uint32_t centre = from.at(x, y);
    double sum[4] = {};
    int32_t count = 0;
    for (int32_t dy = -s.reach; dy <= s.reach; dy += s.step) {
        for (int32_t dx = -s.reach; dx <= s.reach; dx += s.step) {
            uint32_t p = from.clamped(x + dx, y + dy);
            if (!similar(p, centre, s.distance)) continue;
            for (int c = 0; c < 4; ++c)
                sum[c] += filter::channel(p, c);
            ++count;
        }
    }
    if (count == 0 || static_cast<double>(count) * s.step * s.step < s.area) return centre;
    uint32_t out = 0;
    for (int c = 0; c < 4; ++c)
        out |= filter::clamp_byte(sum[c] / count) << (8 * c);
    return out;
}

bool deband(const ModuleInstance* instance, filter::Plane* plane) {
    Settings s = settingsOf(instance);
    filter::Plane from;
    if (!filter::plane_make_like(&from, *plane)) return false;
    for (int32_t pass = 0; pass < s.passes; ++pass) {
        filter::plane_copy(*plane, &from);
        for (int32_t y = 0; y < plane->height; ++y)
            for (int32_t x = 0; x < plane->width; ++x)
                plane->at(x, y) = smoothed(from, x, y, s);
    }
    filter::plane_free(&from);
    return true;
}

} // namespace

constexpr ModuleEntry mod_deband = filter::plane_entry<kDecl, deband>();
