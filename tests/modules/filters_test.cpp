// Flip and Xcolour: pixels on 8-bit and 32-bit images against a reference,
// points and hot spots, the palette, and the values each takes when none
// are passed.

#include "test_image.h"

#include "imaging/module/module.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

constexpr int32_t kFlip = 25, kXcolour = 57;
constexpr uint8_t kResultFill = 0x5A;

// Runs the current protocol by hand into a buffer prefilled with
// kResultFill whose rows carry `padding` extra bytes.
struct ManualRun {
    TavixInfo* info = nullptr;
    std::vector<uint8_t> pixels;
    int32_t rowbytes = 0;
    int processed = 0;
    ~ManualRun() {
        if (info) gfree(info);
    }
};

void runInto(ManualRun& run, int32_t module, const TestImage& source,
             std::vector<ModuleValue> values, int32_t padding = 3) {
    module_select(module);
    ImageEntry entry = source.entry();
    ModuleInstance* instance = nullptr;
    ASSERT_EQ(module_open(&instance, 1, &entry, static_cast<int32_t>(values.size()),
                          values.empty() ? nullptr : values.data()),
              1);
    run.info = module_query(instance, 0);
    ASSERT_TRUE(run.info);
    run.rowbytes = run.info->width * source.pixelBytes() + padding;
    run.pixels.assign(static_cast<size_t>(run.rowbytes) * run.info->height, kResultFill);
    run.processed = module_process(instance, run.info, run.pixels.data(), run.rowbytes);
    EXPECT_EQ(module_close(instance), 1);
}

void expectPaddingUntouched(const ManualRun& run, const TestImage& source) {
    int32_t used = source.width() * source.pixelBytes();
    for (int32_t y = 0; y < source.height(); ++y)
        for (int32_t p = used; p < run.rowbytes; ++p)
            ASSERT_EQ(run.pixels[static_cast<size_t>(y) * run.rowbytes + p], kResultFill);
}

// ---- Flip ------------------------------------------------------------------

struct FlipCase {
    int32_t width, height, bpp, direction;
};

std::string flipName(const ::testing::TestParamInfo<FlipCase>& info) {
    const FlipCase& c = info.param;
    return std::to_string(c.width) + "x" + std::to_string(c.height) + "_" + std::to_string(c.bpp) +
           "bit_dir" + std::to_string(c.direction);
}

std::vector<FlipCase> flipCases() {
    std::vector<FlipCase> cases;
    for (int32_t bpp : {8, 32})
        for (int32_t direction : {1, 2, 3})
            for (auto [w, h] : {std::pair{5, 3}, {1, 1}, {4, 7}, {1, 6}, {7, 1}})
                cases.push_back({w, h, bpp, direction});
    return cases;
}

class FlipPixels : public ModuleTest, public ::testing::WithParamInterface<FlipCase> {};

TEST_P(FlipPixels, MatchMirroredSourceAndKeepPadding) {
    const FlipCase& c = GetParam();
    TestImage source(c.width, c.height, c.bpp, 2);
    ManualRun run;
    runInto(run, kFlip, source, {ModuleValue::ofInt(c.direction)});
    ASSERT_EQ(run.processed, 1);
    for (int32_t y = 0; y < c.height; ++y)
        for (int32_t x = 0; x < c.width; ++x) {
            int32_t sx = (c.direction & 1) ? c.width - 1 - x : x;
            int32_t sy = (c.direction & 2) ? c.height - 1 - y : y;
            ASSERT_EQ(source.read(run.pixels.data(), run.rowbytes, x, y), source.pixel(sx, sy))
                << x << "," << y;
        }
    expectPaddingUntouched(run, source);
}

TEST_P(FlipPixels, InPlaceGivesTheSameImage) {
    const FlipCase& c = GetParam();
    TestImage source(c.width, c.height, c.bpp, 2);
    ModuleValue direction = ModuleValue::ofInt(c.direction);
    ImageEntry entry = source.entry();
    ModuleResult fresh{};
    ASSERT_EQ(module_run_new(kFlip, 1, &entry, 1, &direction, 1, &fresh), 1);

    TestImage image = source;
    ASSERT_EQ(module_run_in_place(kFlip, image.info(), image.pixels.data(), image.rowbytes, 1,
                                  &direction),
              1);
    for (int32_t y = 0; y < c.height; ++y)
        for (int32_t x = 0; x < c.width; ++x)
            ASSERT_EQ(image.pixel(x, y), source.read(fresh.pixels, fresh.rowbytes, x, y));
    module_result_free(&fresh);
}

INSTANTIATE_TEST_SUITE_P(Sizes, FlipPixels, ::testing::ValuesIn(flipCases()), flipName);

TEST_F(ModuleTest, FlipNoneWritesNothing) {
    TestImage source(5, 3, 32);
    ManualRun run;
    runInto(run, kFlip, source, {ModuleValue::ofInt(0)});
    EXPECT_EQ(run.processed, 1);
    for (uint8_t b : run.pixels)
        ASSERT_EQ(b, kResultFill);
}

TEST_F(ModuleTest, FlipWithoutValuesMirrorsHorizontally) {
    TestImage source(5, 2, 8);
    ManualRun run;
    runInto(run, kFlip, source, {});
    ASSERT_EQ(run.processed, 1);
    EXPECT_EQ(source.read(run.pixels.data(), run.rowbytes, 0, 1), source.pixel(4, 1));
    EXPECT_EQ(source.read(run.pixels.data(), run.rowbytes, 4, 0), source.pixel(0, 0));
}

TEST_F(ModuleTest, FlipMirrorsCentreAndHotSpotsAboutTheEdge) {
    struct Case {
        std::vector<ModuleValue> values;
        int32_t centerx, centery, hot0x, hot0y, defaultx, defaulty;
    };
    auto v = [](int32_t i) { return ModuleValue::ofInt(i); };
    // A 10 x 6 image with its centre at (3, 2), hot spot 0 at (0, 6), placed
    // at (20, 30) in a 100 x 50 frame.
    const Case cases[] = {
        {{}, 7, 2, 10, 6, 20, 30},
        {{v(0)}, 3, 2, 0, 6, 20, 30},
        {{v(1)}, 7, 2, 10, 6, 20, 30},
        {{v(2)}, 3, 4, 0, 0, 20, 30},
        {{v(3)}, 7, 4, 10, 0, 20, 30},
        {{v(1), v(100), v(50), v(1)}, 7, 2, 10, 6, 70, 30},
        {{v(2), v(100), v(50), v(1)}, 3, 4, 0, 0, 20, 14},
        {{v(3), v(100), v(50), v(1)}, 7, 4, 10, 0, 70, 14},
        {{v(3), v(100), v(50), v(0)}, 7, 4, 10, 0, 20, 30},       // switch off
        {{v(3), v(100), v(50)}, 7, 4, 10, 0, 20, 30},             // three values
        {{v(3), v(100), v(50), v(1), v(0)}, 7, 4, 10, 0, 20, 30}, // five values
    };
    for (size_t i = 0; i < std::size(cases); ++i) {
        const Case& c = cases[i];
        SCOPED_TRACE(i);
        TestImage source(10, 6, 32);
        TavixInfo* in = source.info();
        in->centerx = 3;
        in->centery = 2;
        in->defaultx = 20;
        in->defaulty = 30;
        in->numhotspots = 2;
        in->hotspots[0] = {0, 6};
        in->hotspots[1] = {4, 1};
        in->hotspots[2] = {9, 9}; // beyond the count: not a hot spot
        ManualRun run;
        runInto(run, kFlip, source, c.values);
        const TavixInfo* out = run.info;
        EXPECT_EQ(out->centerx, c.centerx);
        EXPECT_EQ(out->centery, c.centery);
        EXPECT_EQ(out->hotspots[0].x, c.hot0x);
        EXPECT_EQ(out->hotspots[0].y, c.hot0y);
        EXPECT_EQ(out->defaultx, c.defaultx);
        EXPECT_EQ(out->defaulty, c.defaulty);
        EXPECT_EQ(out->hotspots[2].x, 9);
        EXPECT_EQ(out->hotspots[2].y, 9);
        EXPECT_EQ(out->width, 10);
        EXPECT_EQ(out->height, 6);
    }
}

TEST_F(ModuleTest, FlipTwiceRestoresPixelsAndPoints) {
    TestImage source(10, 3, 32, 1);
    source.info()->centerx = 3;
    ModuleValue horizontal = ModuleValue::ofInt(1);
    ImageEntry entry = source.entry();
    ModuleResult once{}, twice{};
    ASSERT_EQ(module_run_new(kFlip, 1, &entry, 1, &horizontal, 4, &once), 1);
    EXPECT_EQ(once.info->centerx, 7);
    ImageEntry flipped{once.info, once.pixels, once.rowbytes};
    ASSERT_EQ(module_run_new(kFlip, 1, &flipped, 1, &horizontal, 4, &twice), 1);
    EXPECT_EQ(twice.info->centerx, 3);
    for (int32_t y = 0; y < 3; ++y)
        for (int32_t x = 0; x < 10; ++x)
            EXPECT_EQ(source.read(twice.pixels, twice.rowbytes, x, y), source.pixel(x, y));
    module_result_free(&once);
    module_result_free(&twice);
}

TEST_F(ModuleTest, FlipMovesIndicesAndLeavesThePalette) {
    TestImage source(3, 2, 8);
    ManualRun run;
    runInto(run, kFlip, source, {ModuleValue::ofInt(3)});
    EXPECT_EQ(memcmp(run.info->colours, source.info()->colours, sizeof source.info()->colours), 0);
    EXPECT_EQ(source.read(run.pixels.data(), run.rowbytes, 0, 0), source.pixel(2, 1));
}

// ---- Xcolour -----------------------------------------------------------------

struct XcolourCase {
    const char* what;
    std::vector<uint32_t> values; // Search, Replace, SearchMask, ReplaceMask, SearchNot
    uint32_t colour, expected;
};

const XcolourCase kXcolourCases[] = {
    {"no values: only 0 matches, replaced by 0", {}, 0x00000000, 0x00000000},
    {"no values leave other colours", {}, 0x12345678, 0x12345678},
    {"exact match replaced", {0xFF00FF00, 0xFF0000FF}, 0xFF00FF00, 0xFF0000FF},
    {"near miss kept", {0xFF00FF00, 0xFF0000FF}, 0xFF00FF01, 0xFF00FF01},
    {"mask ignores alpha", {0x0000FF00, 0xFFFF0000, 0x00FFFFFF}, 0x7F00FF00, 0xFFFF0000},
    {"search bits outside the mask match nothing",
     {0x8000FF00, 0xFFFF0000, 0x00FFFFFF},
     0x8000FF00,
     0x8000FF00},
    {"replace mask keeps other channels",
     {0xFF00FF00, 0x000000AB, 0xFFFFFFFF, 0x000000FF},
     0xFF00FF00,
     0xFF00FFAB},
    {"search not replaces non-matching",
     {0xFF00FF00, 0x11223344, 0xFFFFFFFF, 0xFFFFFFFF, 1},
     0xFF000000,
     0x11223344},
    {"search not keeps matching",
     {0xFF00FF00, 0x11223344, 0xFFFFFFFF, 0xFFFFFFFF, 1},
     0xFF00FF00,
     0xFF00FF00},
    {"search not 2 replaces matching",
     {0xFF00FF00, 0x11223344, 0xFFFFFFFF, 0xFFFFFFFF, 2},
     0xFF00FF00,
     0x11223344},
    {"search not 2 replaces the rest",
     {0xFF00FF00, 0x11223344, 0xFFFFFFFF, 0xFFFFFFFF, 2},
     0x01020304,
     0x11223344},
    {"zero masks: everything matches 0, nothing replaced",
     {0, 0x11223344, 0, 0},
     0xAABBCCDD,
     0xAABBCCDD},
};

std::vector<ModuleValue> slots(const std::vector<uint32_t>& values) {
    std::vector<ModuleValue> out;
    for (uint32_t v : values)
        out.push_back(ModuleValue::ofUint(v));
    return out;
}

TEST_F(ModuleTest, XcolourReplacesTrueColourPixels) {
    for (const XcolourCase& c : kXcolourCases) {
        SCOPED_TRACE(c.what);
        TestImage source(3, 2, 32, 4);
        source.setPixel(1, 1, c.colour);
        ManualRun run;
        runInto(run, kXcolour, source, slots(c.values));
        ASSERT_EQ(run.processed, 1);
        EXPECT_EQ(source.read(run.pixels.data(), run.rowbytes, 1, 1), c.expected);
        expectPaddingUntouched(run, source);
    }
}

TEST_F(ModuleTest, XcolourChangesIndexedImagesThroughThePaletteOnly) {
    for (const XcolourCase& c : kXcolourCases) {
        SCOPED_TRACE(c.what);
        TestImage source(4, 3, 8, 1);
        memcpy(&source.info()->colours[7], &c.colour, 4);
        ManualRun run;
        runInto(run, kXcolour, source, slots(c.values));
        ASSERT_EQ(run.processed, 1);
        uint32_t entry;
        memcpy(&entry, &run.info->colours[7], 4);
        EXPECT_EQ(entry, c.expected);
        for (int32_t y = 0; y < 3; ++y)
            for (int32_t x = 0; x < 4; ++x)
                ASSERT_EQ(source.read(run.pixels.data(), run.rowbytes, x, y), source.pixel(x, y));
        expectPaddingUntouched(run, source);
    }
}

TEST_F(ModuleTest, XcolourInPlaceEqualsIntoNew) {
    TestImage image(6, 5, 32, 2);
    image.setPixel(2, 3, 0xFF00FF00);
    image.setPixel(5, 4, 0xFF00FF00);
    const std::vector<ModuleValue> values = slots({0xFF00FF00, 0x00000000});
    ASSERT_EQ(module_run_in_place(kXcolour, image.info(), image.pixels.data(), image.rowbytes, 2,
                                  values.data()),
              1);
    EXPECT_EQ(image.pixel(2, 3), 0u);
    EXPECT_EQ(image.pixel(5, 4), 0u);
    EXPECT_EQ(image.pixel(0, 0), TestImage::pattern(0, 0));
    EXPECT_EQ(image.pixels[static_cast<size_t>(image.rowbytes) - 1], 0xEE);
}

} // namespace
