// DropS ("Drop Shadow"): casts the picture's shadow onto a plane below it
// and lays the picture over the shadow.
//
// The scene, in pixels: the picture lies flat at height TexPlaneOffest, its
// top-left corner at x = y = 0 and y running down the picture; the shadow
// falls on the plane at height ShadowPlaneOffset. The shadow is what the
// picture's alpha blocks of the light.
//
// - LightType 0, a point light at (LightLocx, LightLocy, LightLocz), its
//   z measured up from the shadow plane (a light no higher than the
//   picture casts nothing); 1, a distant light shining along (LightDirx,
//   LightDiry, -1), so the shadow moves by LightDir times the planes'
//   distance; 2, an area light: a grid
//   of AreaNumLightW x AreaNumLightH point lights spread over the
//   parallelogram ArAxis1 x ArAxis2 centred on LightLoc, for soft edges.
// - ShadowColourR/G/B is the shadow's colour; LightCoefficient (0 .. 1) its
//   opacity where the picture blocks all light.
// - FadeDist and FadePower: the shadow thins with the distance d between a
//   shadow point and the picture point casting it, by (1 - d / FadeDist) to
//   the power FadePower (a FadeDist of 0 turns fading off).
// - Falloff: the shadow thins with the distance r from the point under the
//   light, by 1 / (1 + Falloff x r / 100).
// - MulSuperSample: samples per pixel along each axis; NumPasses: passes of
//   a 3 x 3 blur over the shadow (1 pass blurs nothing).
// - The view is straight down on the planes and the result keeps the
//   picture's size, so CamLook and CamLoc have no effect; they are kept for
//   callers that pass them.
//
// With the defaults the planes coincide and the shadow lies hidden under
// the picture. The result is 32-bit.

#include "imaging/galloc.h"
#include "imaging/geometry/raster.h"
#include "imaging/geometry/sampler.h"
#include "imaging/geometry/scratch.h"
#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"
#include "imaging/normalmap/field.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamReal, -10000.0, 10000.0, 0.0, "TexPlaneOffest"},
    {kParamReal, -10000.0, 10000.0, 0.0, "ShadowPlaneOffset"},
    {kParamReal, -10000.0, 10000.0, 0.0, "LightLocx"},
    {kParamReal, -10000.0, 10000.0, 0.0, "LightLocy"},
    {kParamReal, -10000.0, 10000.0, 100.0, "LightLocz"},
    {kParamReal, -10000.0, 10000.0, 0.0, "CamLookx"},
    {kParamReal, -10000.0, 10000.0, 0.0, "CamLooky"},
    {kParamReal, -10000.0, 10000.0, 0.0, "CamLookz"},
    {kParamInteger, 0, 2, 0, "LightType"},
    {kParamReal, -1.0, 1.0, 0.0, "LightDirx"},
    {kParamReal, -1.0, 1.0, 0.0, "LightDiry"},
    {kParamReal, 0.0, 10.0, 0.0, "Falloff"},
    {kParamReal, 0.0, 10.0, 1.0, "FadePower"},
    {kParamReal, 0.0, 10000.0, 100.0, "FadeDist"},
    {kParamReal, -10000.0, 10000.0, 0.0, "ArAxis1x"},
    {kParamReal, -10000.0, 10000.0, 0.0, "ArAxis1y"},
    {kParamReal, -10000.0, 10000.0, 0.0, "ArAxis1z"},
    {kParamReal, -10000.0, 10000.0, 0.0, "ArAxis2x"},
    {kParamReal, -10000.0, 10000.0, 0.0, "ArAxis2y"},
    {kParamReal, -10000.0, 10000.0, 0.0, "ArAxis2z"},
    {kParamInteger, 1, 16, 1, "AreaNumLightW"},
    {kParamInteger, 1, 16, 1, "AreaNumLightH"},
    {kParamInteger, 0, 255, 0, "ShadowColourR"},
    {kParamInteger, 0, 255, 0, "ShadowColourG"},
    {kParamInteger, 0, 255, 0, "ShadowColourB"},
    {kParamReal, -10000.0, 10000.0, 0.0, "CamLocX"},
    {kParamReal, -10000.0, 10000.0, 0.0, "CamLocY"},
    {kParamReal, -10000.0, 10000.0, 100.0, "CamLocZ"},
    {kParamReal, 0.0, 1.0, 0.5, "LightCoefficient"},
    {kParamInteger, 1, 16, 1, "NumPasses"},
    {kParamInteger, 1, 8, 1, "MulSuperSample"},
};

constexpr ModuleDecl kDecl = {.magic = "DROP",
                              .name = "DropS",
                              .description = "Drop Shadow",
                              .version = "1.05",
                              .params = kParams};

enum : int32_t { kPoint = 0, kDistant = 1, kArea = 2 };

struct Scene {
    double height; // of the picture above the shadow plane
    int32_t type;
    double lx, ly, lz, dx, dy;
    double axis1[3], axis2[3];
    int32_t gridW, gridH, samples, passes;
    double falloff, fadePower, fadeDist, opacity;
    uint32_t colour;
};

double real(const ModuleInstance* instance, int32_t slot) {
    double v = module_value_real(instance, kDecl, slot);
    return std::isfinite(v) ? std::clamp(v, -1e6, 1e6) : 0.0;
}

Scene scene(const ModuleInstance* instance) {
    Scene s{};
    s.height = real(instance, 0) - real(instance, 1);
    s.lx = real(instance, 2), s.ly = real(instance, 3), s.lz = real(instance, 4);
    s.type = module_value_int(instance, kDecl, 8);
    s.dx = real(instance, 9), s.dy = real(instance, 10);
    s.falloff = std::max(0.0, real(instance, 11));
    s.fadePower = std::max(0.0, real(instance, 12));
    s.fadeDist = std::max(0.0, real(instance, 13));
    for (int k = 0; k < 3; ++k)
        s.axis1[k] = real(instance, 14 + k), s.axis2[k] = real(instance, 17 + k);
    s.gridW = s.type == kArea ? std::clamp(module_value_int(instance, kDecl, 20), 1, 16) : 1;
    s.gridH = s.type == kArea ? std::clamp(module_value_int(instance, kDecl, 21), 1, 16) : 1;
    auto byte = [&](int32_t slot) {
        return static_cast<uint32_t>(std::clamp(module_value_int(instance, kDecl, slot), 0, 255));
    };
    s.colour = geometry::pack_argb(0, byte(22), byte(23), byte(24));
    s.opacity = std::clamp(real(instance, 28), 0.0, 1.0);
    s.passes = std::clamp(module_value_int(instance, kDecl, 29), 1, 16);
    s.samples = std::clamp(module_value_int(instance, kDecl, 30), 1, 8);
    return s;
}

// How much of the light reaching shadow point (px, py) the picture blocks, 0 .. 1.
// The picture's opacity at (x, y), 0 .. 1; nothing outside it.
struct Opacity {
    const ImageEntry& image;
    const geometry::Raster& raster;
    double at(double x, double y) const {
        if (raster.bytes == 4)
            return geometry::channel(geometry::Sampler{raster}.at(x, y), 24) / 255.0;
        double fx = std::floor(x), fy = std::floor(y);
        if (!(fx >= 0 && fy >= 0 && fx < raster.width && fy < raster.height)) return 0;
        auto px = static_cast<int32_t>(fx), py = static_cast<int32_t>(fy);
        return geometry::channel(geometry::argb_at(image, raster, px, py), 24) / 255.0;
    }
};

double blocked(const Scene& s, const Opacity& alpha, double px, double py) {
    double sum = 0;
    int32_t lights = s.gridW * s.gridH;
    for (int32_t j = 0; j < s.gridH; ++j)
        for (int32_t i = 0; i < s.gridW; ++i) {
            double qx = px, qy = py, distance = std::fabs(s.height);
            if (s.type == kDistant) {
                qx = px - s.dx * s.height, qy = py - s.dy * s.height;
                distance = std::hypot(s.dx * s.height, s.dy * s.height, s.height);
            } else {
                double fi = (i + 0.5) / s.gridW - 0.5, fj = (j + 0.5) / s.gridH - 0.5;
                double lx = s.lx + fi * s.axis1[0] + fj * s.axis2[0];
                double ly = s.ly + fi * s.axis1[1] + fj * s.axis2[1];
                double lz = s.lz + fi * s.axis1[2] + fj * s.axis2[2];
                // A light below the picture casts nothing onto the plane.
                if (!(lz > s.height) || s.height < 0) continue;
                double t = s.height / lz;
                qx = px + t * (lx - px), qy = py + t * (ly - py);
                distance = std::hypot(qx - px, qy - py, s.height);
            }
            double fade = 1;
            if (s.fadeDist > 0)
                fade = std::pow(std::max(0.0, 1 - distance / s.fadeDist), s.fadePower);
            sum += fade * alpha.at(qx, qy);
        }
    double r = s.type == kDistant ? 0 : std::hypot(px - s.lx, py - s.ly);
    return sum / lights / (1 + s.falloff * r / 100);
}

// One pass of a 3 x 3 box blur, edges held.
void blur(normalmap::Field& f, normalmap::Field& scratch) {
    for (int32_t y = 0; y < f.height(); ++y)
        for (int32_t x = 0; x < f.width(); ++x) {
            float sum = 0;
            for (int32_t j = -1; j <= 1; ++j)
                for (int32_t i = -1; i <= 1; ++i)
                    sum += f.clamped(x + i, y + j);
            scratch.at(x, y) = sum / 9;
        }
    for (int32_t y = 0; y < f.height(); ++y)
        for (int32_t x = 0; x < f.width(); ++x)
            f.at(x, y) = scratch.at(x, y);
}

// Picture over shadow, straight alpha.
uint32_t over(uint32_t top, uint32_t shadow, double shadowAlpha) {
    double ta = geometry::channel(top, 24) / 255.0, a = ta + shadowAlpha * (1 - ta);
    if (a <= 0) return 0;
    uint32_t c[3];
    for (int k = 0; k < 3; ++k) {
        int shift = 16 - 8 * k;
        double v = (geometry::channel(top, shift) * ta +
                    geometry::channel(shadow, shift) * shadowAlpha * (1 - ta)) /
                   a;
        c[k] = static_cast<uint32_t>(std::lround(std::clamp(v, 0.0, 255.0)));
    }
    return geometry::pack_argb(static_cast<uint32_t>(std::lround(a * 255)), c[0], c[1], c[2]);
}

TavixInfo* query(ModuleInstance* instance, int32_t) {
    return geometry::argb_copy_query(instance);
}

int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    if (!geometry::check_argb_same_size(kDecl.name, instance, result, pixels, rowbytes)) return 0;
    const ImageEntry& in = instance->images[0];
    geometry::Raster out = geometry::raster_of(result, pixels, rowbytes);
    geometry::Scratch source(in, out);
    normalmap::Field shadow(out.width, out.height), scratch(out.width, out.height);
    if (!source.ok() || !shadow.ok() || !scratch.ok()) return 0;
    ImageEntry copy{in.info, source.raster().base, source.raster().rowbytes};
    const geometry::Raster& src = source.raster();
    // The alpha of indexed pictures comes from their palette.
    auto colour = [&](int32_t x, int32_t y) { return geometry::argb_at(copy, src, x, y); };
    Opacity alpha{copy, src};
    Scene s = scene(instance);
    for (int32_t y = 0; y < out.height; ++y)
        for (int32_t x = 0; x < out.width; ++x) {
            double sum = 0;
            for (int32_t j = 0; j < s.samples; ++j)
                for (int32_t i = 0; i < s.samples; ++i)
                    sum += blocked(s, alpha, x + (i + 0.5) / s.samples, y + (j + 0.5) / s.samples);
            shadow.at(x, y) = static_cast<float>(sum / (s.samples * s.samples));
        }
    for (int32_t pass = 1; pass < s.passes; ++pass)
        blur(shadow, scratch);
    for (int32_t y = 0; y < out.height; ++y)
        for (int32_t x = 0; x < out.width; ++x)
            out.set(x, y,
                    over(colour(x, y), s.colour,
                         std::clamp(double(shadow.at(x, y)), 0.0, 1.0) * s.opacity));
    return 1;
}

} // namespace

constexpr ModuleEntry mod_drops = module_entry<kDecl>(query, process);
