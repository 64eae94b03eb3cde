// Scale, Halfsize, Zoom, Shrink and Rect through the module framework.

#include "support.h"

namespace {

class Resizers : public ResampleTest {};

TavixInfo* queryOnly(const char* name, const Picture& in, std::vector<ModuleValue> values) {
    module_find(name);
    ImageEntry entry = in.entry();
    ModuleInstance* instance = nullptr;
    if (!module_open(&instance, 1, &entry, int32_t(values.size()), values.data())) return nullptr;
    TavixInfo* info = module_query(instance, 0);
    module_close(instance);
    return info;
}

// ---- Scale ----------------------------------------------------------------

TEST_F(Resizers, ScaleSizesPlainAndRelative) {
    struct Case {
        const char* name;
        std::vector<ModuleValue> values;
        int32_t w, h;
    };
    const Case cases[] = {
        {"plain", {I(5), I(3)}, 5, 3},
        {"relative", {I(2), I(3), I(4), I(6), I(1)}, 5, 3}, // 10 / 4 x 2, 6 / 6 x 3
        {"fifth value 0", {I(2), I(3), I(4), I(6), I(0)}, 2, 3},
        {"four values", {I(2), I(3), I(4), I(6)}, 2, 3},
        {"six values", {I(2), I(3), I(4), I(6), I(1), I(0)}, 2, 3},
        {"reference 0", {I(2), I(3), I(0), I(4), I(1)}, 2, 4}, // 6 / 4 x 3 = 4.5
        {"below one", {I(0), I(-2)}, 1, 1},
        {"no values", {}, 256, 256},
    };
    Picture in(10, 6);
    in.info()->centerx = 5;
    in.info()->centery = 3;
    in.info()->numhotspots = 1;
    in.info()->hotspots[0] = {-3, 5};
    for (const Case& c : cases) {
        TavixInfo* info = queryOnly("Scale", in, c.values);
        ASSERT_TRUE(info) << c.name;
        EXPECT_EQ(info->width, c.w) << c.name;
        EXPECT_EQ(info->height, c.h) << c.name;
        if (c.w == 5 && c.h == 3) { // ratio 0.5: points truncate toward zero
            EXPECT_EQ(info->centerx, 2);
            EXPECT_EQ(info->centery, 1);
            EXPECT_EQ(info->hotspots[0].x, -1);
            EXPECT_EQ(info->hotspots[0].y, 2);
        }
        gfree(info);
    }
}

TEST_F(Resizers, ScaleTakesThePixelUnderEachCentre) {
    for (int32_t bpp : {8, 32}) {
        Picture in(4, 3, bpp, 1);
        for (int32_t y = 0; y < 3; ++y)
            for (int32_t x = 0; x < 4; ++x)
                in.set(x, y, uint32_t(0xFF000000 | (y * 16 + x)));
        Picture down = runModule("Scale", in, {I(2), I(1)});
        uint32_t mask = bpp == 8 ? 0xFF : 0xFFFFFFFF;
        EXPECT_EQ(down.at(0, 0), 0xFF000011u & mask);
        EXPECT_EQ(down.at(1, 0), 0xFF000013u & mask);
        Picture up = runModule("Scale", in, {I(8), I(3)});
        for (int32_t x = 0; x < 8; ++x)
            EXPECT_EQ(up.at(x, 2), in.at(x / 2, 2)) << bpp;
    }
}

// ---- Halfsize ---------------------------------------------------------------

TEST_F(Resizers, HalfsizeGeometry) {
    struct Case {
        std::vector<ModuleValue> values;
        int32_t w, h;
    };
    const Case cases[] = {
        {{}, 2, 3},                  // both axes; odd sides lose a row and a column
        {{I(1)}, 5, 3},              // bit 0: vertical only
        {{I(2)}, 2, 7},              // bit 1: horizontal only
        {{I(0)}, 5, 7},              // neither
        {{I(0), I(2)}, 5, 3},        // vscale overrides the direction
        {{I(3), I(0), I(1)}, 5, 3},  // hscale 1 keeps the width
        {{I(3), I(4), I(4)}, 1, 1},  // 5 / 4 and 7 / 4
        {{I(3), I(9), I(9)}, 1, 1},  // at least one pixel
        {{I(3), I(-2), I(0)}, 2, 3}, // negative scales count as 0
    };
    Picture in(5, 7);
    in.info()->centerx = 3;
    in.info()->centery = 5;
    in.info()->numhotspots = 1;
    in.info()->hotspots[0] = {4, -3};
    in.info()->framesize = 1000;
    for (size_t i = 0; i < std::size(cases); ++i) {
        TavixInfo* info = queryOnly("Halfsize", in, cases[i].values);
        ASSERT_TRUE(info) << i;
        EXPECT_EQ(info->width, cases[i].w) << i;
        EXPECT_EQ(info->height, cases[i].h) << i;
        if (i == 0) {
            EXPECT_EQ(info->centerx, 1);
            EXPECT_EQ(info->centery, 2);
            EXPECT_EQ(info->hotspots[0].x, 2);
            EXPECT_EQ(info->hotspots[0].y, -1);
            EXPECT_EQ(info->framesize, 250);
        }
        gfree(info);
    }
}

// A 2 x 2 image: a b on top, c d below.
Picture block2x2(uint32_t a, uint32_t b, uint32_t c, uint32_t d, int32_t bpp = 32) {
    Picture in(2, 2, bpp, 3);
    in.set(0, 0, a);
    in.set(1, 0, b);
    in.set(0, 1, c);
    in.set(1, 1, d);
    return in;
}

TEST_F(Resizers, HalfsizePixelRules) {
    struct Case {
        const char* name;
        std::vector<ModuleValue> values;
        uint32_t expected;
    };
    Picture in = block2x2(0x0A0A0A0A, 0x14141414, 0x1E1E1E1E, 0x29292929);
    const Case cases[] = {
        {"mean rounds half up", {}, 0x19191919}, // (10 + 20 + 30 + 41 + 2) / 4 = 25
        {"vstep 1 first row", {I(3), I(0), I(0), I(1)}, 0x0F0F0F0F}, // (10 + 20 + 1) / 2
        {"vstep 2 last row", {I(3), I(0), I(0), I(2)}, 0x24242424},  // (30 + 41 + 1) / 2
        {"hstep 2 last column", {I(3), I(0), I(0), I(0), I(2)}, 0x1F1F1F1F},
        {"both steps", {I(3), I(0), I(0), I(2), I(1)}, 0x1E1E1E1E},
    };
    for (const Case& c : cases)
        EXPECT_EQ(runModule("Halfsize", in, c.values).at(0, 0), c.expected) << c.name;
}

TEST_F(Resizers, HalfsizeEdgeKeepsTransparentPixelsOutOfTheColour) {
    Picture in = block2x2(0xFFFF8000, 0, 0, 0);
    EXPECT_EQ(runModule("Halfsize", in, {}).at(0, 0), 0x40402000u);
    EXPECT_EQ(runModule("Halfsize", in, {I(3), I(0), I(0), I(0), I(0), I(1)}).at(0, 0),
              0x40FF8000u);
}

TEST_F(Resizers, HalfsizeDot3KeepsNormalsUnitLength) {
    // +x (255, 128, 128) and +y (128, 255, 128), twice each.
    Picture in = block2x2(0xFFFF8080, 0xFF80FF80, 0xFFFF8080, 0xFF80FF80);
    uint32_t p = runModule("Halfsize", in, {I(3), I(0), I(0), I(0), I(0), I(0), I(1)}).at(0, 0);
    auto component = [&](int shift) { return ((p >> shift) & 0xFF) / 255.0 * 2.0 - 1.0; };
    double x = component(16), y = component(8), z = component(0);
    EXPECT_NEAR(std::sqrt(x * x + y * y + z * z), 1.0, 0.01);
    EXPECT_NEAR(x, y, 0.01);
    EXPECT_EQ(runModule("Halfsize", in, {}).at(0, 0), 0xFFC0C080u) << "plain mean is shorter";
}

TEST_F(Resizers, HalfsizeIndexedTakesOnePixel) {
    Picture in = block2x2(1, 2, 3, 4, 8);
    EXPECT_EQ(runModule("Halfsize", in, {}).at(0, 0), 1u);
    EXPECT_EQ(runModule("Halfsize", in, {I(3), I(0), I(0), I(2), I(2)}).at(0, 0), 4u);
}

TEST_F(Resizers, HalfsizeFastAndGeneralPathsAgree) {
    // Steps of 0 with a vscale of 2 given explicitly still take the 2 x 2
    // path; the edge flag on a fully opaque image takes the general one and
    // must give the same means.
    ref::Image source = randomImage(4, 37, 23);
    for (uint32_t& p : source.px)
        p |= 0xFF000000u;
    Picture in(source, 2);
    EXPECT_EQ(runModule("Halfsize", in, {}).image().px,
              runModule("Halfsize", in, {I(3), I(0), I(0), I(0), I(0), I(1)}).image().px);
}

// ---- Zoom ------------------------------------------------------------------------

TEST_F(Resizers, ZoomAtTheSameSizeCopies) {
    Picture in(randomImage(6, 9, 7), 1);
    for (int32_t edge : {0, 1})
        EXPECT_EQ(runModule("Zoom", in, {I(9), I(7), I(edge), U(0xFFFF0000), R(2.0)}).image().px,
                  in.image().px)
            << edge;
}

TEST_F(Resizers, ZoomEdgesReadSolidColourOrBoundary) {
    Picture in(4, 4);
    in.fill(0xFF808080);
    Picture boundary = runModule("Zoom", in, {I(16), I(16), I(1), U(0xFF000000)});
    for (uint32_t p : boundary.image().px)
        EXPECT_EQ(p, 0xFF808080u);
    Picture solid = runModule("Zoom", in, {I(16), I(16), I(0), U(0xFF000000)});
    EXPECT_EQ(solid.at(8, 8), 0xFF808080u);
    EXPECT_LT(solid.at(0, 0) & 0xFF, 0x80u) << "the corner mixes in the solid colour";
}

TEST_F(Resizers, ZoomKernelWidthOutOfRangeIsHeld) {
    Picture in(randomImage(8, 5, 6));
    Picture standard = runModule("Zoom", in, {I(11), I(9), I(1), U(0), R(2.0)});
    EXPECT_EQ(runModule("Zoom", in, {I(11), I(9), I(1), U(0), R(0.0)}).pixels, standard.pixels);
    EXPECT_EQ(runModule("Zoom", in, {I(11), I(9), I(1), U(0), R(100.0)}).pixels,
              runModule("Zoom", in, {I(11), I(9), I(1), U(0), R(8.0)}).pixels);
    EXPECT_NE(runModule("Zoom", in, {I(11), I(9), I(1), U(0), R(0.5)}).pixels, standard.pixels);
}

TEST_F(Resizers, ZoomIndexedTakesTheNearestPixel) {
    Picture in = block2x2(1, 2, 3, 4, 8);
    Picture out = runModule("Zoom", in, {I(4), I(4)});
    EXPECT_EQ(out.at(0, 0), 1u);
    EXPECT_EQ(out.at(3, 3), 4u);
}

// ---- Shrink -----------------------------------------------------------------------

TEST_F(Resizers, ShrinkCropsToContent) {
    struct Case {
        const char* name;
        int32_t method;
        uint32_t background;
        int32_t alphabits;
        int32_t w, h, left, top;
    };
    const Case cases[] = {
        {"transparent", 0, 0x00FFFFFF, 8, 3, 2, 2, 1},
        {"upper-left colour", 1, 0xFF00FF00, 8, 3, 2, 2, 1},
        {"no alpha bits: nothing is transparent", 0, 0x00FFFFFF, 0, 8, 6, 0, 0},
    };
    for (const Case& c : cases) {
        Picture in(8, 6, 32, 2);
        in.fill(c.background);
        in.set(2, 1, 0xFF112233);
        in.set(4, 2, 0x80445566);
        in.info()->alphabits = c.alphabits;
        in.info()->centerx = 5;
        in.info()->defaultx = 10;
        in.info()->numhotspots = 1;
        in.info()->hotspots[0] = {3, 3};
        Picture out = runModule("Shrink", in, {I(c.method)});
        ASSERT_EQ(out.width(), c.w) << c.name;
        ASSERT_EQ(out.height(), c.h) << c.name;
        EXPECT_EQ(out.at(2 - c.left, 1 - c.top), 0xFF112233u) << c.name;
        EXPECT_EQ(out.at(4 - c.left, 2 - c.top), 0x80445566u) << c.name;
        EXPECT_EQ(out.info()->centerx, 5 - c.left) << c.name;
        EXPECT_EQ(out.info()->hotspots[0].y, 3 - c.top) << c.name;
        EXPECT_EQ(out.info()->defaultx, 10 + c.left) << c.name;
    }
}

TEST_F(Resizers, ShrinkWithoutContentKeepsTheCorner) {
    Picture in(5, 4);
    in.fill(0x00000000);
    Picture out = runModule("Shrink", in, {});
    EXPECT_EQ(out.width(), 1);
    EXPECT_EQ(out.height(), 1);
}

TEST_F(Resizers, ShrinkIndexedUsesPaletteAlphaOrIndex) {
    Picture in(6, 5, 8);
    in.fill(7);
    in.set(3, 2, 9);
    in.info()->alphabits = 8;
    for (TavixColour& c : in.info()->colours)
        c.alpha = 255;
    in.info()->colours[7].alpha = 0;
    for (int32_t method : {0, 1}) {
        Picture out = runModule("Shrink", in, {I(method)});
        EXPECT_EQ(out.width(), 1) << method;
        EXPECT_EQ(out.height(), 1) << method;
        EXPECT_EQ(out.at(0, 0), 9u) << method;
    }
}

// ---- Rect --------------------------------------------------------------------------

TEST_F(Resizers, RectPaintsAClippedRectangle) {
    struct Case {
        const char* name;
        std::vector<ModuleValue> values;
        int32_t x0, y0, x1, y1; // painted area, half open
        uint32_t colour;
    };
    const Case cases[] = {
        {"defaults: 16 x 16 of opaque black at 0, 0", {}, 0, 0, 7, 5, 0xFF000000},
        {"size and colour", {I(3), I(2), U(0xFF00FF00)}, 0, 0, 3, 2, 0xFF00FF00},
        {"placed and clipped", {I(9), I(2), U(0x12345678), I(4), I(4)}, 4, 4, 7, 5, 0x12345678},
        {"placed above and left",
         {I(3), I(3), U(0xFFABCDEF), I(-1), I(-2)},
         0,
         0,
         2,
         1,
         0xFFABCDEF},
        {"nothing", {I(0), I(3), U(0xFFFFFFFF)}, 0, 0, 0, 0, 0},
    };
    ref::Image source = randomImage(9, 7, 5);
    for (const Case& c : cases) {
        Picture out = runModule("Rect", Picture(source, 1), c.values);
        for (int32_t y = 0; y < 5; ++y)
            for (int32_t x = 0; x < 7; ++x) {
                bool inside = x >= c.x0 && x < c.x1 && y >= c.y0 && y < c.y1;
                EXPECT_EQ(out.at(x, y), inside ? c.colour : source.at(x, y))
                    << c.name << " at " << x << "," << y;
            }
    }
}

TEST_F(Resizers, RectOnIndexedPixelsPaintsTheLowByteInPlace) {
    Picture in(4, 3, 8, 2);
    in.fill(1);
    const ModuleValue values[] = {I(2), I(2), U(0xFFFFFF05), I(1), I(1)};
    ASSERT_EQ(module_run_in_place(module_find("Rect"), in.info(), in.pixels.data(), in.rowbytes, 5,
                                  values),
              1);
    EXPECT_EQ(in.at(1, 1), 5u);
    EXPECT_EQ(in.at(2, 2), 5u);
    EXPECT_EQ(in.at(0, 0), 1u);
    EXPECT_EQ(in.at(3, 1), 1u);
}

} // namespace
