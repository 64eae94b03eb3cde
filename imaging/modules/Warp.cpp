// Warp ("Warp Image along control lines"): moves the picture's pixels
// smoothly. The first value chooses the kind; the meaning of the others
// depends on it (the parameter names list the three meanings in turn).
//
// Type 0, drag: Clamp X and Clamp Y say what shows beyond the left/right
// and top/bottom edges (0 Fill, 1 Clamp, 2 Wrap, 3 Mirror, as Crop),
// FillColour fills, and the picture at (FromPointX, FromPointY) is pulled
// to (ToPointX, ToPointY); the pull fades smoothly to nothing at twice the
// drag's length around the target. Equal points leave the picture as is.
//
// Type 1, wave: VertWave moves columns up and down by up to that many
// pixels, HorzWave rows left and right, one sine period across the picture
// so a tiling texture still tiles (edges wrap).
//
// Type 2, control lines: numlinepairs pairs follow, eight values each: the
// line's two end points in the result (X1.1 Y1.1 X1.2 Y1.2), then the same
// line's end points in the source (X1.3 Y1.3 X1.4 Y1.4). Each result pixel
// keeps its place relative to the lines, the nearer and longer lines
// counting more; beyond the source the edge pixels repeat. Pairs beyond the
// descriptor's three may follow in further values.
//
// 32-bit images are sampled bilinearly, indexed ones take the nearest pixel.

#include "imaging/geometry/warp.h"
#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"

#include <algorithm>
#include <vector>

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, 0, 2, 0, "Type:Def/Wave/ContLines"},
    {kParamInteger, kIntMin, kIntMax, 0, "Clamp X/VertWave/NA"},
    {kParamInteger, kIntMin, kIntMax, 0, "Clamp Y/HorzWave/NA"},
    {kParamColour, 0, 0xFFFFFFFF, 0, "FillColour/NA/NA"},
    {kParamInteger, kIntMin, kIntMax, 0, "ToPointX/NA/numlinepairs"},
    {kParamInteger, kIntMin, kIntMax, 0, "ToPointY/NA/X1.1"},
    {kParamInteger, kIntMin, kIntMax, 0, "FromPointX/NA/Y1.1"},
    {kParamInteger, kIntMin, kIntMax, 0, "FromPointY/NA/X1.2"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/Y1.2"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/X1.3"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/Y1.3"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/X1.4"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/Y1.4"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/X2.1"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/Y2.1"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/X2.2"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/Y2.2"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/X2.3"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/Y2.3"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/X2.4"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/Y2.4"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/X3.1"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/Y3.1"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/X3.2"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/Y3.2"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/X3.3"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/Y3.3"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/X3.4"},
    {kParamInteger, kIntMin, kIntMax, 0, "NA/NA/Y3.4"},
};

constexpr ModuleDecl kDecl = {.magic = "WARP",
                              .name = "Warp",
                              .description = "Warp Image along control lines",
                              .version = "1.01",
                              .params = kParams};

enum : int32_t { kDrag = 0, kWave = 1, kLines = 2 };
constexpr int32_t kFirstLine = 5, kLineValues = 8;

TavixInfo* query(ModuleInstance* instance, int32_t) {
    if (!module_instance_ok(instance)) return nullptr;
    return module_copy_info(instance->images[0].info);
}

int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    if (!module_check_same_shape(kDecl, instance, result, pixels, rowbytes)) return 0;
    const ImageEntry& in = instance->images[0];
    geometry::Raster out = geometry::raster_of(result, pixels, rowbytes);
    auto value = [&](int32_t slot) { return module_value_int(instance, kDecl, slot); };
    switch (value(0)) {
    case kWave:
        return geometry::warp_wave(in, out, value(1), value(2));
    case kLines: {
        int32_t given = std::max(0, (instance->valueCount - kFirstLine) / kLineValues);
        int32_t count = std::clamp(value(4), 0, given);
        std::vector<geometry::LinePair> pairs(static_cast<size_t>(count));
        for (int32_t i = 0; i < count; ++i) {
            double v[kLineValues];
            for (int32_t k = 0; k < kLineValues; ++k)
                v[k] = module_value_int(instance, kFirstLine + i * kLineValues + k, 0);
            pairs[static_cast<size_t>(i)] = {v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7]};
        }
        return geometry::warp_lines(in, out, pairs.data(), count);
    }
    default: {
        geometry::Raster source = geometry::raster_of(in);
        geometry::Sampler sampler{source, geometry::edge_from(value(1)),
                                  geometry::edge_from(value(2)),
                                  module_value_uint(instance, kDecl, 3)};
        return geometry::warp_drag(in, out, sampler, value(6), value(7), value(4), value(5));
    }
    }
}

} // namespace

constexpr ModuleEntry mod_warp = module_entry<kDecl>(query, process);
