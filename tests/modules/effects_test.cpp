// FTxMp, DropS and Stereo on small scenes whose answer is known.

#include "run_module.h"

#include <gtest/gtest.h>

namespace {

using V = ModuleValue;

TestImage filled(int32_t width, int32_t height, uint32_t colour) {
    TestImage image(width, height, 32);
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x)
            image.setPixel(x, y, colour);
    return image;
}

class Effects : public ModuleTest {};

// A face whose colour is the texture's, halved, is matched back to it:
// laid in, it leaves no trace.
TEST_F(Effects, FacialTextureMatchesTheFaceToTheTexture) {
    TestImage texture = filled(20, 16, 0xFF804020), face = filled(8, 6, 0xFF402010);
    texture.info()->centerx = 10, texture.info()->centery = 8;
    face.info()->centerx = 4, face.info()->centery = 3;
    ModuleOutput out;
    runModule(out, "FTxMp", {&texture, &face});
    ASSERT_TRUE(out.ok);
    ASSERT_EQ(out.info()->width, 20);
    for (int32_t y = 0; y < 16; ++y)
        for (int32_t x = 0; x < 20; ++x)
            ASSERT_EQ(out.pixel(x, y), 0xFF804020u) << x << "," << y;

    // A dark spot in the face stays dark where the face is fully opaque.
    face.setPixel(4, 3, 0xFF000000);
    ModuleOutput spotted;
    runModule(spotted, "FTxMp", {&texture, &face});
    ASSERT_TRUE(spotted.ok);
    EXPECT_EQ(spotted.pixel(10, 8), 0xFF000000u);

    ModuleOutput alone;
    runModule(alone, "FTxMp", texture);
    EXPECT_FALSE(alone.ok) << "one image is not enough";
}

TEST_F(Effects, DistantLightCastsTheShadowAlongItsDirection) {
    TestImage sprite = filled(8, 5, 0);
    sprite.setPixel(2, 2, 0xFFFFFFFF);
    std::vector<V> values(31, V::ofReal(0));
    values[0] = V::ofReal(3); // the picture 3 pixels above the shadow plane
    values[8] = V::ofInt(1);  // distant light
    values[9] = V::ofReal(1); // shining to the right
    values[20] = values[21] = V::ofInt(1);
    values[22] = V::ofInt(255); // red shadow
    values[23] = values[24] = V::ofInt(0);
    values[28] = V::ofReal(1);
    values[29] = values[30] = V::ofInt(1);
    ModuleOutput out;
    runModule(out, "DropS", sprite, values);
    ASSERT_TRUE(out.ok);
    EXPECT_EQ(out.pixel(2, 2), 0xFFFFFFFFu);
    EXPECT_EQ(out.pixel(5, 2), 0xFFFF0000u);
    EXPECT_EQ(out.pixel(4, 2), 0u);
}

TEST_F(Effects, StereoShiftsTheEyesApartByDepth) {
    TestImage image = filled(9, 1, 0xFF000000);
    image.setPixel(4, 0, 0xFFFFFFFF);
    ModuleOutput out;
    runModule(out, "Stereo", image, {V::ofInt(0), V::ofInt(4)});
    ASSERT_TRUE(out.ok);
    // Black has no disparity; the white pixel itself is read 2 pixels each way.
    EXPECT_EQ(out.pixel(0, 0), 0xFF000000u);
    EXPECT_EQ(out.pixel(4, 0), 0xFF000000u);
}

} // namespace
