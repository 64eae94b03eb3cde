// The filters that draw, fill or measure: grid, line, screen, creep, fill,
// outline, auto centre, the comment hidden in alpha and the PSNR report.

#include "filter_run.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Drawing = ModuleTest;

constexpr uint32_t kClear = 0x00000000, kInk = 0xFF112233, kRed = 0xFFFF0000;

// Which pixels of a result hold `value` (a word: index or ARGB), row by row.
std::string where(const FilterResult& run, uint32_t value) {
    std::string map;
    for (int32_t y = 0; y < run.info()->height; ++y) {
        for (int32_t x = 0; x < run.info()->width; ++x)
            map += run.word(x, y) == value ? '#' : '.';
        map += '/';
    }
    return map;
}

struct DrawCase {
    const char* label;
    const char* module;
    std::vector<ModuleValue> values;
    const char* expected; // where the ink is on a 5x4 image
};

class DrawOnBothDepths : public ModuleTest, public ::testing::WithParamInterface<DrawCase> {};

// The colour value is an ARGB word on 32-bit images and an index (its low
// byte, 0x33) on indexed ones.
TEST_P(DrawOnBothDepths, PutsTheInkWhereExpected) {
    const DrawCase& c = GetParam();
    for (int32_t bpp : {32, 8}) {
        TestImage image(5, 4, bpp, 2);
        fillImage(image, bpp == 8 ? 1 : kClear);
        FilterResult run;
        runFilter(run, c.module, image, c.values);
        EXPECT_EQ(where(run, bpp == 8 ? 0x33 : kInk), c.expected) << bpp;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Filters, DrawOnBothDepths,
    ::testing::Values(
        DrawCase{"grid", "Grid", {I(2), I(3), U(kInk)}, "#####/#.#.#/#.#.#/#####/"},
        DrawCase{"line_default_diagonal", "Line", {U(kInk)}, "#..../.#.../..##./....#/"},
        DrawCase{"line_clipped",
                 "Line",
                 {U(kInk), I(-100), I(1), I(100), I(1)},
                 "...../#####/...../...../"},
        DrawCase{"line_outside",
                 "Line",
                 {U(kInk), I(-9), I(-9), I(-1), I(-5)},
                 "...../...../...../...../"},
        DrawCase{"screen_rows", "Screen", {U(kInk)}, "...../#####/...../#####/"},
        DrawCase{"screen_columns", "Screen", {U(kInk), I(1)}, ".#.#./.#.#./.#.#./.#.#./"},
        DrawCase{"fill_everything", "Fill", {U(kInk)}, "#####/#####/#####/#####/"}),
    [](const auto& info) { return std::string(info.param.label); });

TEST_F(Drawing, CreepGrowsTheColourByTheAmount) {
    TestImage image(7, 5, 32);
    fillImage(image, kClear);
    image.setPixel(3, 2, kRed);
    FilterResult one, two;
    runFilter(one, "Creep", image, {U(kRed), I(1)});
    runFilter(two, "Creep", image, {U(kRed), I(2)});
    EXPECT_EQ(where(one, kRed), "......./..###../..###../..###../......./");
    EXPECT_EQ(where(two, kRed), ".#####./.#####./.#####./.#####./.#####./");
}

TEST_F(Drawing, FillStopsAtColoursBeyondTheTolerance) {
    TestImage image(5, 3, 32);
    fillImage(image, 0xFF101010);
    for (int32_t y = 0; y < 3; ++y)
        image.setPixel(2, y, 0xFF808080); // a wall
    image.setPixel(1, 1, 0xFF141414);     // near the start colour
    FilterResult strict, loose;
    runFilter(strict, "Fill", image, {U(kInk), I(0)});
    runFilter(loose, "Fill", image, {U(kInk), I(8)});
    EXPECT_EQ(where(strict, kInk), "##.../#..../##.../");
    EXPECT_EQ(where(loose, kInk), "##.../##.../##.../");
}

TEST_F(Drawing, FillStartsAtTheGivenPixel) {
    TestImage image(5, 1, 32);
    fillImage(image, kClear);
    image.setPixel(2, 0, kRed);
    FilterResult run;
    runFilter(run, "Fill", image, {U(kInk), I(0), I(4), I(0)});
    EXPECT_EQ(where(run, kInk), "...##/");
}

TEST_F(Drawing, OutlineSurroundsTheContent) {
    TestImage image(6, 5, 32);
    fillImage(image, kClear);
    image.setPixel(2, 2, kRed);
    FilterResult thin, wide;
    runFilter(thin, "Outline", image);
    runFilter(wide, "Outline", image, {I(2), I(1), U(kInk)});
    EXPECT_EQ(where(thin, 0xFF000000), "....../.###../.#.#../.###../....../");
    EXPECT_EQ(where(wide, kInk), "....../#####./##.##./#####./....../");
    EXPECT_EQ(wide.word(2, 2), kRed);
}

TEST_F(Drawing, OutlineOfAnOpaqueImageUsesTheCornerColourAsBackground) {
    TestImage image(5, 3, 8);
    fillImage(image, 1);
    image.setPixel(2, 1, 2);
    FilterResult run;
    runFilter(run, "Outline", image, {I(1), I(1), U(9)});
    EXPECT_EQ(where(run, 9), ".###./.#.#./.###./");
}

TEST_F(Drawing, AutoCentreMarksTheMiddleOfTheContent) {
    TestImage image(10, 8, 32);
    fillImage(image, kClear);
    image.info()->centerx = 1;
    image.info()->centery = 1;
    image.setPixel(2, 3, kRed);
    image.setPixel(5, 6, kRed);
    FilterResult run;
    runFilter(run, "Acenter", image);
    EXPECT_EQ(run.info()->centerx, 4);
    EXPECT_EQ(run.info()->centery, 5);
    EXPECT_EQ(run.word(2, 3), kRed);
    fillImage(image, kClear);
    FilterResult empty;
    runFilter(empty, "Acenter", image);
    EXPECT_EQ(empty.info()->centerx, 1);
}

TEST_F(Drawing, CommentHiddenInAlphaComesBack) {
    TestImage image(9, 3, 32, 2); // 27 bits: "Hi" and its end fit
    fillImage(image, 0x80FF0000);
    strcpy(image.info()->comment, "Hi");
    FilterResult embedded;
    runFilter(embedded, "alphacomment", image);
    TestImage carrier(9, 3, 32);
    for (int32_t y = 0; y < 3; ++y) {
        for (int32_t x = 0; x < 9; ++x) {
            uint32_t p = embedded.word(x, y);
            ASSERT_EQ(p & 0xFEFFFFFF, 0x80FF0000u);
            carrier.setPixel(x, y, p);
        }
    }
    PrintCapture capture;
    FilterResult extracted;
    runFilter(extracted, "alphacomment", carrier, {I(1)});
    EXPECT_STREQ(extracted.info()->comment, "Hi");
    ASSERT_EQ(PrintCapture::lines().size(), 1u);
    EXPECT_EQ(PrintCapture::lines()[0], "alphacomment - Hi\n");

    // Opaque pixels read as 0xFF bytes with no end: no text, and the comment stays.
    TestImage opaque(9, 3, 32);
    fillImage(opaque, 0xFF102030);
    strcpy(opaque.info()->comment, "kept");
    PrintCapture none;
    FilterResult nothing;
    runFilter(nothing, "alphacomment", opaque, {I(1)});
    EXPECT_STREQ(nothing.info()->comment, "kept");
    ASSERT_EQ(PrintCapture::lines().size(), 1u);
    EXPECT_EQ(PrintCapture::lines()[0], "alphacomment - the image holds no hidden text\n");
}

TEST_F(Drawing, PsnrReportsThroughThePrintHook) {
    TestImage a(4, 2, 32), b(4, 2, 32);
    fillImage(a, 0xFF808080);
    fillImage(b, 0xFF808080);
    b.setPixel(0, 0, 0xFF818080); // one red level off in 8 pixels
    ImageEntry both[2] = {a.entry(), b.entry()};
    ModuleResult result{};
    PrintCapture capture;
    ASSERT_EQ(module_run_new(module_find("Psnr"), 2, both, 0, nullptr, 4, &result), 1);
    module_result_free(&result);
    ASSERT_EQ(PrintCapture::lines().size(), 1u);
    // 10 log10(255^2 x 8 / 1) = 57.16 dB for red; RGB over 24 samples.
    EXPECT_EQ(PrintCapture::lines()[0], "Psnr - 4 x 2: R 57.16 G inf B inf A inf RGB 61.93 dB\n");
}

TEST_F(Drawing, PsnrWithOneImageSaysSo) {
    TestImage a(2, 2, 8);
    PrintCapture capture;
    FilterResult run;
    runFilter(run, "Psnr", a);
    ASSERT_EQ(PrintCapture::lines().size(), 1u);
    EXPECT_EQ(PrintCapture::lines()[0], "Psnr - no second image to compare with\n");
    EXPECT_EQ(run.word(1, 1), a.pixel(1, 1));
}

} // namespace
