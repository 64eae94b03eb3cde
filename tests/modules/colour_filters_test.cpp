// The colour and tone filters: each rule on one colour, applied to the
// pixels of a 32-bit image and to the palette of an indexed one (whose
// indices must stay as they are).

#include "filter_run.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

struct ColourCase {
    const char* label;
    const char* module;
    std::vector<ModuleValue> values;
    uint32_t in, out;
};

std::vector<ColourCase> colourCases() {
    return {
        {"invert_default_keeps_alpha", "invert", {}, 0x80102030, 0x80EFDFCF},
        {"invert_all_bits", "invert", {U(0xFFFFFFFF)}, 0x80102030, 0x7FEFDFCF},
        {"grey_bt601", "grey", {}, 0xFFC8320A, 0xFF5A5A5A},
        {"grey_two_levels", "grey", {I(2)}, 0xFFC8320A, 0xFF000000},
        {"grey_average", "grey", {I(256), I(1)}, 0xFFC8320A, 0xFF575757},
        {"gamma_red_2", "Gamma", {R(1), R(2), R(1), R(1)}, 0xFF404040, 0xFF804040},
        {"gamma_zero_ignored", "Gamma", {R(0), R(0), R(0), R(0)}, 0x12345678, 0x12345678},
        {"contrast_brightness", "Contrast", {I(10)}, 0xFF102030, 0xFF1A2A3A},
        {"contrast_flat", "Contrast", {R(0), R(-100)}, 0x40102030, 0x40808080},
        {"preten_attenuate", "Preten", {}, 0x80FF8000, 0x80804000},
        {"preten_unattenuate", "Preten", {I(1)}, 0x80804000, 0x80FF8000},
        {"preten_transparent", "Preten", {I(1)}, 0x00804000, 0x00804000},
        {"doubled_red_5", "Doubled", {I(8), I(5), I(8), I(8)}, 0xFF870000, 0xFF840000},
        {"doubled_no_alpha", "Doubled", {I(0), I(8), I(8), I(8)}, 0x10203040, 0xFF203040},
        {"chanmap_default_bgr", "FChanmap", {}, 0x11223344, 0x11443322},
        {"chanmap_alpha_view", "FChanmap", {U(0x05030303)}, 0x80112233, 0xFF808080},
        {"acopy_grey_to_alpha", "ACopy", {}, 0x00C8320A, 0x5AC8320A},
        {"acopy_alpha_to_grey", "ACopy", {I(1)}, 0x5A000000, 0xFF5A5A5A},
        {"chroma_near_key", "Chroma", {I(16), U(0xFF00FF00)}, 0xFF08F008, 0x0008F008},
        {"chroma_far_from_key", "Chroma", {I(16), U(0xFF00FF00)}, 0xFF20FF00, 0xFF20FF00},
        {"swap_first", "Swap", {U(0xFF112233), U(0xFF445566)}, 0xFF112233, 0xFF445566},
        {"swap_second", "Swap", {U(0xFF112233), U(0xFF445566)}, 0xFF445566, 0xFF112233},
        {"swap_other", "Swap", {U(0xFF112233), U(0xFF445566)}, 0xFE112233, 0xFE112233},
        {"shade_half", "shade", {U(0xFF808080), U(0xFFFFFFFF)}, 0xFFFF8000, 0xFF804000},
        {"safe_white", "safe", {}, 0xFFFFFFFF, 0xFFEBEBEB},
        {"safe_black", "safe", {}, 0x80000000, 0x80101010},
        {"csmap_red_to_ycc", "CSMap", {}, 0xFFFF0000, 0xFFFF4C55},
        {"csmap_grey_stays", "CSMap", {I(1)}, 0xFF808080, 0xFF808080},
        {"hsl_defaults", "HSL", {}, 0xFF336699, 0xFF336699},
        {"hsl_hue_half_turn", "HSL", {I(0), I(0), U(0xFFFFFFFF), R(180)}, 0xFFFF0000, 0xFF00FFFF},
        {"hsl_lightness_full", "HSL", {I(0), I(100)}, 0xFF336699, 0xFFFFFFFF},
        {"hsl_desaturate", "HSL", {I(-100)}, 0xFFFF0000, 0xFF808080},
        {"hsl_grey_stays_grey", "HSL", {I(100)}, 0xFF808080, 0xFF808080},
        {"hsl_mask_red_only", "HSL", {I(0), I(100), U(0x00FF0000)}, 0xFF336699, 0xFFFF6699},
        {"hsv_value_off", "HSV", {I(0), I(0), I(-100)}, 0xFF336699, 0xFF000000},
        {"hsv_brightness_up", "HSV", {R(0), R(100)}, 0xFF800000, 0xFFFF0000},
        {"fyi_defaults", "FYI", {}, 0xFF336699, 0xFF336699},
        {"fyi_no_chroma", "FYI", {R(1), R(0), R(0)}, 0xFFC8320A, 0xFF5A5A5A},
        {"fyi_alpha_half", "FYI", {R(1), R(0), R(1), R(0), R(0.5)}, 0x80336699, 0x40336699},
        {"colbal_green", "ColBal", {I(100), I(0), I(0)}, 0xFF102030, 0xFF10FF30},
        {"colbal_defaults", "ColBal", {}, 0xFF102030, 0xFF102030},
        {"radfill_reference",
         "RadFill",
         {I(0), I(0), I(0), I(0), I(0), I(0), U(0xFF00FF00), U(0xFFFF0000)},
         0xFFFF0000,
         0xFF00FF00},
        {"radfill_hue_range",
         "RadFill",
         {I(20), I(0), I(255), I(255), I(255), I(255), U(0xFF00FF00), U(0xFFFF0000)},
         0xFF802000,
         0xFF00FF00},
        {"radfill_outside",
         "RadFill",
         {I(20), I(0), I(255), I(255), I(255), I(255), U(0xFF00FF00), U(0xFFFF0000)},
         0xFF0000FF,
         0xFF0000FF},
    };
}

class ColourRule : public ModuleTest, public ::testing::WithParamInterface<ColourCase> {};

TEST_P(ColourRule, PixelsOfATrueColourImage) {
    const ColourCase& c = GetParam();
    TestImage image(3, 2, 32, 3);
    fillImage(image, c.in);
    FilterResult run;
    runFilter(run, c.module, image, c.values);
    for (int32_t y = 0; y < 2; ++y)
        for (int32_t x = 0; x < 3; ++x)
            ASSERT_EQ(run.word(x, y), c.out) << std::hex << c.in;
}

TEST_P(ColourRule, PaletteOfAnIndexedImage) {
    const ColourCase& c = GetParam();
    TestImage image(3, 2, 8, 1);
    fillImage(image, 5);
    setPalette(image, 5, c.in);
    FilterResult run;
    runFilter(run, c.module, image, c.values);
    for (int32_t y = 0; y < 2; ++y)
        for (int32_t x = 0; x < 3; ++x)
            ASSERT_EQ(run.word(x, y), 5u);
    EXPECT_EQ(run.colour(0, 0), c.out) << std::hex << c.in;
}

INSTANTIATE_TEST_SUITE_P(Filters, ColourRule, ::testing::ValuesIn(colourCases()),
                         [](const auto& info) { return std::string(info.param.label); });

// Equalize and the key-colour defaults depend on the image as a whole.
using ImageWideColour = ModuleTest;

TEST_F(ImageWideColour, EqualizeSpreadsTwoLevelsToTheEnds) {
    TestImage image(4, 1, 32);
    for (int32_t x = 0; x < 4; ++x)
        image.setPixel(x, 0, x < 2 ? 0xFF646464 : 0xFF6E6E6E);
    FilterResult run;
    runFilter(run, "Equalize", image);
    EXPECT_EQ(run.word(0, 0), 0xFF000000u);
    EXPECT_EQ(run.word(3, 0), 0xFFFFFFFFu);
}

TEST_F(ImageWideColour, EqualizeCountsByAlphaWhenAsked) {
    TestImage image(3, 1, 32);
    image.setPixel(0, 0, 0x00000000); // unseen: does not count with BlendAlpha
    image.setPixel(1, 0, 0xFF646464);
    image.setPixel(2, 0, 0xFF6E6E6E);
    FilterResult run;
    runFilter(run, "Equalize", image, {I(256), I(1)});
    EXPECT_EQ(run.word(1, 0), 0xFF000000u);
    EXPECT_EQ(run.word(2, 0), 0xFFFFFFFFu);
}

TEST_F(ImageWideColour, ChromaKeysTheTopLeftColourByDefault) {
    TestImage image(2, 1, 32);
    image.setPixel(0, 0, 0xFFFF00FF);
    image.setPixel(1, 0, 0xFF00FF00);
    FilterResult run;
    runFilter(run, "Chroma", image);
    EXPECT_EQ(run.word(0, 0), 0x00FF00FFu);
    EXPECT_EQ(run.word(1, 0), 0xFF00FF00u);
}

} // namespace
