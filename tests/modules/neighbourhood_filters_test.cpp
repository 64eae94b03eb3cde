// The filters that look at each pixel's neighbours: blur, sharpen, median,
// dilate and erode, smooth, clean edges, transparent edge extrude and
// deband, on small images whose answer can be worked out by hand.

#include "filter_run.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Neighbourhood = ModuleTest;

constexpr uint32_t kBlack = 0xFF000000, kWhite = 0xFFFFFFFF, kRed = 0xFFFF0000;

// A 32-bit image of one colour with one pixel of another.
TestImage dot(int32_t width, int32_t height, uint32_t ground, uint32_t colour, int32_t x,
              int32_t y) {
    TestImage image(width, height, 32, 1);
    fillImage(image, ground);
    image.setPixel(x, y, colour);
    return image;
}

// Which pixels of a result hold `colour`, row by row as '#' and '.'.
std::string where(const FilterResult& run, uint32_t colour) {
    std::string map;
    for (int32_t y = 0; y < run.info()->height; ++y) {
        for (int32_t x = 0; x < run.info()->width; ++x)
            map += run.colour(x, y) == colour ? '#' : '.';
        map += '/';
    }
    return map;
}

// Modules that must leave an image of one colour as it is, with their values.
struct FlatCase {
    const char* module;
    std::vector<ModuleValue> values;
};

class FlatImage : public ModuleTest, public ::testing::WithParamInterface<FlatCase> {};

TEST_P(FlatImage, StaysAsItIsInBothDepths) {
    for (int32_t bpp : {32, 8}) {
        TestImage image(5, 4, bpp, 3);
        fillImage(image, bpp == 8 ? 7 : 0xFF336699);
        FilterResult run;
        runFilter(run, GetParam().module, image, GetParam().values);
        for (int32_t y = 0; y < 4; ++y)
            for (int32_t x = 0; x < 5; ++x)
                ASSERT_EQ(run.word(x, y), image.pixel(x, y)) << GetParam().module << " " << bpp;
    }
}

INSTANTIATE_TEST_SUITE_P(Filters, FlatImage,
                         ::testing::Values(FlatCase{"Blur", {}}, FlatCase{"Blur", {R(4.0)}},
                                           FlatCase{"Sharpen", {}}, FlatCase{"Sharpen", {R(5.0)}},
                                           FlatCase{"Median", {}}, FlatCase{"Dilate", {}},
                                           FlatCase{"Erode", {}}, FlatCase{"Smooth", {}},
                                           FlatCase{"Deband", {}}, FlatCase{"tedge", {I(1)}}),
                         [](const auto& info) {
                             return std::string(info.param.module) + "_" +
                                    std::to_string(info.index);
                         });

TEST_F(Neighbourhood, BlurSpreadsADotSymmetricallyAndKeepsItsSum) {
    TestImage image = dot(9, 9, kBlack, kWhite, 4, 4);
    FilterResult run;
    runFilter(run, "Blur", image, {R(1.0)});
    uint32_t centre = run.word(4, 4) & 0xFF;
    EXPECT_LT(centre, 255u);
    EXPECT_GT(centre, run.word(5, 4) & 0xFF);
    int32_t sum = 0;
    for (int32_t y = 0; y < 9; ++y) {
        for (int32_t x = 0; x < 9; ++x) {
            sum += static_cast<int32_t>(run.word(x, y) & 0xFF);
            ASSERT_EQ(run.word(x, y), run.word(8 - x, y));
            ASSERT_EQ(run.word(x, y), run.word(y, x));
        }
    }
    EXPECT_NEAR(sum, 255, 20); // rounding of 81 pixels
}

TEST_F(Neighbourhood, BlurLendsNoColourFromTransparentPixels) {
    TestImage image = dot(5, 1, 0x00000000, kRed, 2, 0);
    FilterResult run;
    runFilter(run, "Blur", image, {R(1.0)});
    uint32_t side = run.word(1, 0);
    EXPECT_EQ(side & 0x00FFFFFF, 0x00FF0000u);
    EXPECT_GT(side >> 24, 0u);
    EXPECT_LT(side >> 24, 255u);
}

TEST_F(Neighbourhood, SharpenOvershootsAStepAsAnUnsharpMask) {
    TestImage image(4, 1, 32);
    for (int32_t x = 0; x < 4; ++x)
        image.setPixel(x, 0, x < 2 ? 0xFF646464 : 0xFFC8C8C8);
    FilterResult run;
    runFilter(run, "Sharpen", image, {R(8.0)}); // strength 1
    // 100 + (100 - mean(100, 200, 100, 100)) = 75; 200 + (200 - 175) = 225.
    EXPECT_EQ(run.word(1, 0), 0xFF4B4B4Bu);
    EXPECT_EQ(run.word(2, 0), 0xFFE1E1E1u);
    EXPECT_EQ(run.word(0, 0), 0xFF646464u); // its neighbours match it
}

struct RankCase {
    const char* module;
    uint32_t ground, dot;
    const char* expected; // where the dot's colour is afterwards
};

class RankFilter : public ModuleTest, public ::testing::WithParamInterface<RankCase> {};

TEST_P(RankFilter, ActsOnA3x3Neighbourhood) {
    const RankCase& c = GetParam();
    TestImage image = dot(5, 4, c.ground, c.dot, 1, 1);
    FilterResult run;
    runFilter(run, c.module, image);
    EXPECT_EQ(where(run, c.dot), c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Filters, RankFilter,
    ::testing::Values(RankCase{"Median", kBlack, kWhite, "...../...../...../...../"},
                      RankCase{"Dilate", kBlack, kWhite, "###../###../###../...../"},
                      RankCase{"Erode", kBlack, kWhite, "...../...../...../...../"},
                      RankCase{"Erode", kWhite, kBlack, "###../###../###../...../"}),
    [](const auto& info) { return std::string(info.param.module) + std::to_string(info.index); });

TEST_F(Neighbourhood, MedianAndDilateWorkThroughThePalette) {
    TestImage image(5, 4, 8);
    fillImage(image, 1);
    setPalette(image, 1, kBlack);
    setPalette(image, 2, kWhite);
    image.setPixel(1, 1, 2);
    FilterResult median, dilate;
    runFilter(median, "Median", image);
    runFilter(dilate, "Dilate", image);
    EXPECT_EQ(where(median, kWhite), "...../...../...../...../");
    EXPECT_EQ(where(dilate, kWhite), "###../###../###../...../");
}

TEST_F(Neighbourhood, SmoothFadesTheEdgeByCoverage) {
    TestImage image(5, 5, 32);
    fillImage(image, 0x00000000);
    for (int32_t y = 1; y < 4; ++y)
        for (int32_t x = 1; x < 4; ++x)
            image.setPixel(x, y, kRed);
    FilterResult run;
    runFilter(run, "Smooth", image);
    EXPECT_EQ(run.word(2, 2), kRed);        // inside
    EXPECT_EQ(run.word(0, 0), 0x1CFF0000u); // 1 of 9 covered
    EXPECT_EQ(run.word(1, 1), 0x71FF0000u); // 4 of 9 covered
    EXPECT_EQ(run.word(2, 0), 0x55FF0000u); // 3 of 9 covered
}

struct EdgeCase {
    const char* label;
    int32_t operation;
    const char* before;
    const char* after;
};

// A 5x4 indexed picture from '#' (index 3) and '.' (index 0, the back colour).
TestImage picture(const char* rows) {
    TestImage image(5, 4, 8, 2);
    for (int32_t y = 0; y < 4; ++y)
        for (int32_t x = 0; x < 5; ++x)
            image.setPixel(x, y, rows[y * 6 + x] == '#' ? 3 : 0);
    return image;
}

class CleanEdges : public ModuleTest, public ::testing::WithParamInterface<EdgeCase> {};

TEST_P(CleanEdges, RemovesSpikesAndFillsPits) {
    const EdgeCase& c = GetParam();
    TestImage image = picture(c.before);
    FilterResult run;
    runFilter(run, "Edge", image, {U(0), I(1), I(c.operation)});
    std::string map;
    for (int32_t y = 0; y < 4; ++y) {
        for (int32_t x = 0; x < 5; ++x)
            map += run.word(x, y) == 3 ? '#' : '.';
        map += '/';
    }
    EXPECT_EQ(map, c.after);
}

INSTANTIATE_TEST_SUITE_P(
    Filters, CleanEdges,
    ::testing::Values(EdgeCase{"spike", 1, "###../###.#/###../...../", "###../###../###../...../"},
                      EdgeCase{"pit", 2, "####./#.##./####./...../", "####./####./####./...../"},
                      EdgeCase{"pits_only_keeps_spike", 2, "#..../...../...../...../",
                               "#..../...../...../...../"},
                      EdgeCase{"both", 0, "#..../.###./.#.#./.###./", "...../.###./.###./.###./"}),
    [](const auto& info) { return std::string(info.param.label); });

TEST_F(Neighbourhood, TransparentEdgeTakesTheVisibleColourAndStaysTransparent) {
    TestImage image = dot(5, 1, 0x00000000, kRed, 1, 0);
    FilterResult ring, all;
    runFilter(ring, "tedge", image);
    runFilter(all, "tedge", image, {I(1)});
    EXPECT_EQ(ring.word(0, 0), 0x00FF0000u);
    EXPECT_EQ(ring.word(2, 0), 0x00FF0000u);
    EXPECT_EQ(ring.word(3, 0), 0x00000000u);
    EXPECT_EQ(ring.word(1, 0), kRed);
    EXPECT_EQ(all.word(4, 0), 0x00FF0000u);
}

TEST_F(Neighbourhood, DebandEvensOutSmallStepsAndKeepsEdges) {
    TestImage image(8, 8, 32);
    for (int32_t y = 0; y < 8; ++y)
        for (int32_t x = 0; x < 8; ++x)
            image.setPixel(x, y, x < 4 ? ((x + y) % 2 ? 0xFF646464 : 0xFF666666) : kWhite);
    FilterResult run;
    runFilter(run, "Deband", image, {I(4), I(1), I(3), I(1), I(4)});
    EXPECT_EQ(run.word(1, 1), 0xFF656565u);
    EXPECT_EQ(run.word(6, 3), kWhite);
}

} // namespace
