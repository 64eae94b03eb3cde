// Normal and bump maps: Dot3 on a hemisphere against its analytic normals,
// and heights rebuilt by UnDot3 and UnEmbm against the heights they came from.

#include "run_module.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

using V = ModuleValue;
constexpr int32_t kSize = 65, kMiddle = 32;

// A dome of radius `radius` pixels whose top is white: a hemisphere once
// the height scale equals the radius.
TestImage dome(double radius) {
    TestImage image(kSize, kSize, 32);
    for (int32_t y = 0; y < kSize; ++y)
        for (int32_t x = 0; x < kSize; ++x) {
            double r2 = double(x - kMiddle) * (x - kMiddle) + double(y - kMiddle) * (y - kMiddle);
            double h = r2 < radius * radius ? std::sqrt(1 - r2 / (radius * radius)) : 0;
            auto g = static_cast<uint32_t>(std::lround(h * 255));
            image.setPixel(x, y, 0xFF000000u | g << 16 | g << 8 | g);
        }
    return image;
}

// The largest difference in levels between Dot3's normals and the dome's
// analytic ones, over the pixels within `inner` of the radius.
int32_t worstLevel(const ModuleOutput& out, double radius, double scale, double inner) {
    int32_t worst = 0;
    for (int32_t y = 0; y < kSize; ++y)
        for (int32_t x = 0; x < kSize; ++x) {
            double dx = x - kMiddle, dy = y - kMiddle;
            double r2 = dx * dx + dy * dy;
            if (r2 > inner * inner * radius * radius) continue;
            double q = std::sqrt(1 - r2 / (radius * radius));
            double n[3] = {scale * dx / (radius * radius * q), -scale * dy / (radius * radius * q),
                           1};
            double length = std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]);
            uint32_t p = out.pixel(x, y);
            for (int k = 0; k < 3; ++k) {
                double expected = (n[k] / length + 1) * 127.5;
                double got = (p >> (16 - 8 * k)) & 0xFF;
                worst = std::max(worst,
                                 static_cast<int32_t>(std::ceil(std::fabs(got - expected) - 0.5)));
            }
        }
    return worst;
}

class NormalMap : public ModuleTest {};

// Heights come in as 8-bit grey, so a steep dome carries a rounding error
// of half a level in its heights that the slopes magnify; gentle domes give
// their normals within one level, the full hemisphere (scale = radius) within
// the error its rounded heights carry.
TEST_F(NormalMap, Dot3OfADomeGivesItsAnalyticNormals) {
    const double radius = 30;
    struct Case {
        double scale;
        int32_t method, levels;
    } cases[] = {
        {2, 0, 1}, {2, 1, 1}, {2, 2, 1},  {4, 0, 1},  {4, 1, 1},
        {4, 2, 1}, {2, 3, 2}, {30, 0, 7}, {30, 1, 5}, {30, 2, 5},
    };
    TestImage image = dome(radius);
    for (const Case& c : cases) {
        ModuleOutput out;
        runModule(out, "Dot3", image, {V::ofReal(c.scale), V::ofInt(c.method)});
        ASSERT_TRUE(out.ok);
        EXPECT_LE(worstLevel(out, radius, c.scale, 0.8), c.levels)
            << "scale " << c.scale << " method " << c.method;
        EXPECT_EQ(out.pixel(0, 0), 0xFF8080FFu) << "flat ground faces straight out";
        EXPECT_NE(out.info()->attributes & kAttrDot3, 0u);
    }
}

// The largest grey difference between two height maps.
int32_t worstGrey(const ModuleOutput& out, const TestImage& heights) {
    int32_t worst = 0;
    for (int32_t y = 0; y < kSize; ++y)
        for (int32_t x = 0; x < kSize; ++x)
            worst = std::max(worst, std::abs(int32_t(out.pixel(x, y) & 0xFF) -
                                             int32_t(heights.pixel(x, y) & 0xFF)));
    return worst;
}

// Heights are stretched to the full grey range, as the dome's are.
TEST_F(NormalMap, HeightsComeBackFromNormalAndBumpMaps) {
    TestImage heights = dome(30);
    for (const char* pair : {"Dot3", "Embm"}) {
        bool bump = pair[0] == 'E';
        std::vector<V> values = {V::ofReal(30), V::ofInt(1)};
        if (bump) values.insert(values.begin(), V::ofInt(3));
        ModuleOutput map;
        runModule(map, pair, heights, values);
        ASSERT_TRUE(map.ok);
        TestImage normals = map.image();
        for (int32_t mode : {0, 1, 2, 3}) {
            ModuleOutput back;
            runModule(back, bump ? "UnEmbm" : "UnDot3", normals, {V::ofInt(mode)});
            ASSERT_TRUE(back.ok);
            // The rim of the dome is a wall whose slope no normal map holds.
            EXPECT_LE(worstGrey(back, heights), 24) << pair << " mode " << mode;
        }
    }
}

} // namespace
