// PalSort and PSort: every method keeps the picture exactly and puts the
// palette in its order; ForceBlack puts black at index 0.

#include "run_module.h"

#include <gtest/gtest.h>

namespace {

using V = ModuleValue;

uint32_t colourAt(const TavixInfo* info, uint32_t index) {
    const TavixColour& c = info->colours[index];
    return uint32_t(c.alpha) << 24 | uint32_t(c.red) << 16 | uint32_t(c.green) << 8 | c.blue;
}

// An image using indices 0..15 with different counts, over a 16-entry palette.
TestImage sixteenColours() {
    TestImage image(9, 7, 8, 2);
    image.info()->numcolours = 16;
    for (int32_t y = 0; y < 7; ++y)
        for (int32_t x = 0; x < 9; ++x)
            image.setPixel(x, y, static_cast<uint32_t>((x * x + y) % 13 + (x == 8 ? 3 : 0)));
    for (int c = 0; c < 16; ++c)
        image.info()->colours[c] =
            TavixColour{uint8_t(c * 37), uint8_t(200 - c * 11), uint8_t(c * 5 + 9), 255};
    return image;
}

class PaletteSort : public ModuleTest {};

TEST_F(PaletteSort, EveryMethodKeepsThePicture) {
    TestImage image = sixteenColours();
    for (int32_t method = 0; method <= 5; ++method)
        for (int32_t black : {0, 1}) {
            ModuleOutput sorted, packed;
            runModule(sorted, "PalSort", image, {V::ofInt(method), V::ofInt(black)});
            runModule(packed, "PSort", image, {V::ofInt(method | black << 8)});
            ASSERT_TRUE(sorted.ok && packed.ok);
            for (int32_t y = 0; y < 7; ++y)
                for (int32_t x = 0; x < 9; ++x) {
                    uint32_t colour = colourAt(image.info(), image.pixel(x, y));
                    ASSERT_EQ(colourAt(sorted.info(), sorted.pixel(x, y)), colour) << method;
                    ASSERT_EQ(packed.pixel(x, y), sorted.pixel(x, y));
                }
            for (int i = 16; i < 256; ++i) {
                ASSERT_EQ(colourAt(sorted.info(), i), colourAt(image.info(), i))
                    << "entries beyond the palette stay";
            }
            if (black) {
                EXPECT_EQ(colourAt(sorted.info(), 0) & 0xFFFFFF, 0u)
                    << "an unused entry became black";
            }
        }
}

TEST_F(PaletteSort, CountAndArgbOrderThePalette) {
    TestImage image = sixteenColours();
    uint32_t counts[256] = {};
    for (int32_t y = 0; y < 7; ++y)
        for (int32_t x = 0; x < 9; ++x)
            ++counts[image.pixel(x, y)];
    ModuleOutput byCount, byArgb;
    runModule(byCount, "PalSort", image, {V::ofInt(0), V::ofInt(0)});
    runModule(byArgb, "PalSort", image, {V::ofInt(1), V::ofInt(0)});
    ASSERT_TRUE(byCount.ok && byArgb.ok);
    uint32_t newCounts[16] = {};
    for (int32_t y = 0; y < 7; ++y)
        for (int32_t x = 0; x < 9; ++x)
            ++newCounts[byCount.pixel(x, y)];
    for (int i = 1; i < 16; ++i) {
        EXPECT_GE(newCounts[i - 1], newCounts[i]);
        EXPECT_LE(colourAt(byArgb.info(), i - 1), colourAt(byArgb.info(), i));
    }
}

TEST_F(PaletteSort, TrueColourImagesPassUnchanged) {
    TestImage image(5, 3, 32, 1);
    ModuleOutput out;
    runModule(out, "PalSort", image, {V::ofInt(2), V::ofInt(1)});
    ASSERT_TRUE(out.ok);
    for (int32_t y = 0; y < 3; ++y)
        for (int32_t x = 0; x < 5; ++x)
            ASSERT_EQ(out.pixel(x, y), image.pixel(x, y));
}

} // namespace
