// Mapping onto a palette with and without dithering, and the reduction of
// channel bits.

#include "tests/quant/QuantImage.h"
#include "imaging/module/module.h"

#include <string>

namespace {

using Rows = std::vector<std::string>;

// A 4x4 field of grey 64 mapped onto black and white. Each result below
// was worked out by hand, pixel by pixel: serpentine rows, the error of
// each pixel spread with the kernel's weights, summed and divided once
// with rounding half away from zero, and error past the edges dropped.
// For example, Floyd-Steinberg on row 0: 64 -> black (error 64); 64 +
// 448/16 = 92 -> black; 64 + 644/16 = 104 -> black; 64 + 728/16 = 110 ->
// black; row 1 runs right to left and turns white at x = 2 (64 + 105 =
// 169) and x = 0 (64 + 72 = 136).
TEST(RemapDither, HandCheckedFourByFour) {
    const struct {
        int32_t dither;
        Rows rows;
    } cases[] = {
        {quant::kDitherNone, {"....", "....", "....", "...."}},
        {quant::kDitherFloyd, {"....", "#.#.", "....", "..#."}},
        {quant::kDitherBurkes, {"....", "..#.", "....", "..#."}},
        {quant::kDitherStucki, {"....", ".#..", "..#.", "...."}},
    };
    ArgbImage image(4, 4, 0xFF404040);
    uint32_t palette[256] = {0xFF000000, 0xFFFFFFFF};
    uint8_t used[256] = {1, 1};
    for (const auto& c : cases) {
        uint8_t out[16];
        ASSERT_EQ(quant_remap(&image.info, image.pixels.data(), 16, palette, used, c.dither,
                              nullptr, 0, out, 4),
                  1);
        Rows rows;
        for (int y = 0; y < 4; ++y) {
            std::string row;
            for (int x = 0; x < 4; ++x)
                row += out[y * 4 + x] ? '#' : '.';
            rows.push_back(row);
        }
        EXPECT_EQ(rows, c.rows) << "dither " << c.dither;
    }
}

TEST(RemapDither, OnlyUsedEntriesAndTheMapOffset) {
    ArgbImage image(3, 1);
    image.at(0, 0) = 0xFF000000;
    image.at(1, 0) = 0xFFFFFFFF;
    image.at(2, 0) = 0xFF0000F0;
    uint32_t palette[256] = {};
    uint8_t used[256] = {};
    palette[20] = 0xFF000000, used[20] = 1;
    palette[21] = 0xFFFFFFFF, used[21] = 1;
    palette[22] = 0xFF0000FF; // unused: never chosen
    uint8_t out[3];
    ASSERT_EQ(
        quant_remap(&image.info, image.pixels.data(), 12, palette, used, 0, nullptr, 0, out, 3), 1);
    EXPECT_EQ(out[0], 20);
    EXPECT_EQ(out[1], 21);
    EXPECT_EQ(out[2], 20);
    // No used entry: refused.
    uint8_t none[256] = {};
    EXPECT_EQ(
        quant_remap(&image.info, image.pixels.data(), 12, palette, none, 0, nullptr, 0, out, 3), 0);
}

TEST(ReduceBits, ChannelsBecomeReplicatedNearestValues) {
    const struct {
        int a, r, g, b;
        uint32_t in, out;
    } cases[] = {
        {8, 8, 8, 8, 0x12345678, 0x12345678}, // 8888 keeps everything
        {0, 8, 8, 8, 0x12345678, 0xFF345678}, // 888: opaque
        {0, 5, 6, 5, 0x00FF8040, 0xFFFF8242}, // 565: 0x80 -> 32 -> 0x82, 0x40 -> 8 -> 0x42
        {1, 5, 5, 5, 0x7F808080, 0x00848484}, // 1555: alpha 0x7F -> 0
        {1, 5, 5, 5, 0x80070707, 0xFF080808},
        {4, 4, 4, 4, 0x88FF1177, 0x88FF1177}, // 4444: already representable
        {4, 4, 4, 4, 0x80000000, 0x88000000},
        {0, 0, 0, 8, 0x12345678, 0xFF000078}, // 0 bits of a colour: 0
        {2, 3, 3, 2, 0xFFFFFFFF, 0xFFFFFFFF},
    };
    for (const auto& c : cases) {
        ArgbImage image(1, 1, c.in);
        uint32_t out = 0;
        ASSERT_EQ(
            quant_reduce_bits(&image.info, image.pixels.data(), 4, c.a, c.r, c.g, c.b, 0, &out, 4),
            1);
        EXPECT_EQ(out, c.out) << std::hex << c.in << " " << c.a << c.r << c.g << c.b;
    }
    ArgbImage image(1, 1);
    uint32_t out;
    EXPECT_EQ(quant_reduce_bits(&image.info, image.pixels.data(), 4, 9, 5, 5, 5, 0, &out, 4), 0);
}

// Dithering keeps the mean of a flat field that falls between two levels.
TEST(ReduceBits, DitherKeepsTheMean) {
    ArgbImage image(32, 32, 0xFF848484); // between the 3-bit levels 0x6D and 0x92
    for (int32_t dither : {1, 2, 3}) {
        std::vector<uint32_t> out(image.pixels.size());
        ASSERT_EQ(quant_reduce_bits(&image.info, image.pixels.data(), 128, 8, 3, 3, 3, dither,
                                    out.data(), 128),
                  1);
        double sum = 0;
        bool mixed = false;
        for (uint32_t p : out) {
            sum += p & 0xFF;
            mixed |= (p & 0xFF) != (out[0] & 0xFF);
        }
        EXPECT_TRUE(mixed);
        EXPECT_NEAR(sum / out.size(), 0x84, 1.5) << dither;
    }
}

} // namespace

namespace {

// The Remap module through the module framework.
TEST(RemapModule, ReducesToEightBitsInTheGivenRange) {
    const int32_t live = galloc_live_count();
    ArgbImage image = ArgbImage::gradient(33, 21);
    const struct {
        std::vector<ModuleValue> values;
        int32_t start, count;
    } cases[] = {
        {{}, 0, 256},
        {{ModuleValue::ofInt(11), ModuleValue::ofInt(8), ModuleValue::ofInt(1),
          ModuleValue::ofInt(100)},
         100,
         8},
        {{ModuleValue::ofInt(7), ModuleValue::ofInt(300), ModuleValue::ofInt(0),
          ModuleValue::ofInt(250)},
         250,
         6},
    };
    for (const auto& c : cases) {
        ImageEntry entry{&image.info, image.pixels.data(), image.rowbytes()};
        ModuleResult result{};
        ASSERT_EQ(module_run_new(module_find("Remap"), 1, &entry, int32_t(c.values.size()),
                                 c.values.data(), 4, &result),
                  1);
        EXPECT_EQ(result.info->bufferbpp, 8);
        EXPECT_EQ(result.info->startcolour, c.start);
        EXPECT_EQ(result.info->numcolours, c.count);
        for (int32_t y = 0; y < 21; ++y)
            for (int32_t x = 0; x < 33; ++x) {
                const int index = result.pixels[y * result.rowbytes + x];
                ASSERT_TRUE(index >= c.start && index < c.start + c.count) << index;
            }
        module_result_free(&result);
    }
    EXPECT_EQ(galloc_live_count(), live);
}

} // namespace
