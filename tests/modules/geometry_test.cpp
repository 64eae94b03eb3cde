// The geometric modules through the library interface: identities that
// must hold on pixels and points, the quarter-turn agreement of Rotate and
// Rot, the crop window's points and edge rules, and the pixel rules of
// Wrap, Grb and Deinterlace.

#include "run_module.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace {

using V = ModuleValue;

struct Shape {
    int32_t width, height, bpp;
};

const Shape kShapes[] = {{5, 3, 32}, {1, 1, 32}, {1, 6, 8}, {7, 1, 32}, {4, 7, 8}, {6, 6, 32}};

TestImage pointedImage(const Shape& s) {
    TestImage image(s.width, s.height, s.bpp, 3);
    TavixInfo* info = image.info();
    info->centerx = 2, info->centery = 1;
    info->defaultx = 100, info->defaulty = 50;
    info->numhotspots = 2;
    info->hotspots[0] = {0, 0};
    info->hotspots[1] = {s.width, s.height - 1};
    return image;
}

void expectSamePicture(const TestImage& a, const TestImage& b) {
    ASSERT_EQ(a.width(), b.width());
    ASSERT_EQ(a.height(), b.height());
    for (int32_t y = 0; y < a.height(); ++y)
        for (int32_t x = 0; x < a.width(); ++x)
            ASSERT_EQ(a.pixel(x, y), b.pixel(x, y)) << x << "," << y;
    const TavixInfo *p = a.info(), *q = b.info();
    EXPECT_EQ(p->centerx, q->centerx);
    EXPECT_EQ(p->centery, q->centery);
    EXPECT_EQ(p->defaultx, q->defaultx);
    EXPECT_EQ(p->defaulty, q->defaulty);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(p->hotspots[i].x, q->hotspots[i].x);
        EXPECT_EQ(p->hotspots[i].y, q->hotspots[i].y);
    }
}

// Applies `name` with `values` `times` times.
TestImage repeat(const TestImage& start, const char* name, std::vector<V> values, int times) {
    TestImage current = start;
    for (int i = 0; i < times; ++i) {
        ModuleOutput out;
        runModule(out, name, current, values);
        EXPECT_TRUE(out.ok);
        if (!out.ok) break;
        current = out.image();
    }
    return current;
}

class Geometry : public ModuleTest {};

TEST_F(Geometry, FourQuarterTurnsAndTwoTransposesAreIdentities) {
    for (const Shape& s : kShapes) {
        SCOPED_TRACE(std::to_string(s.width) + "x" + std::to_string(s.height));
        TestImage image = pointedImage(s);
        for (int32_t code : {1, 2, 3, -1})
            expectSamePicture(repeat(image, "Rot", {V::ofInt(code)}, 4), image);
        expectSamePicture(repeat(image, "Trans", {}, 2), image);
    }
}

TEST_F(Geometry, QuarterTurnMovesPixelsAndPointsClockwise) {
    TestImage image = pointedImage({5, 3, 32});
    ModuleOutput out;
    runModule(out, "Rot", image, {V::ofInt(1)});
    ASSERT_TRUE(out.ok);
    ASSERT_EQ(out.info()->width, 3);
    ASSERT_EQ(out.info()->height, 5);
    EXPECT_EQ(out.pixel(2, 0), image.pixel(0, 0)) << "top-left goes to top-right";
    EXPECT_EQ(out.pixel(0, 4), image.pixel(4, 2)) << "bottom-right goes to bottom-left";
    // Points lie between pixels: (x, y) becomes (height - y, x).
    EXPECT_EQ(out.info()->centerx, 2);
    EXPECT_EQ(out.info()->centery, 2);
    EXPECT_EQ(out.info()->hotspots[1].x, 1);
    EXPECT_EQ(out.info()->hotspots[1].y, 5);
    // The centre point keeps its place on the worksheet.
    EXPECT_EQ(out.info()->defaultx + out.info()->centerx, 100 + 2);
    EXPECT_EQ(out.info()->defaulty + out.info()->centery, 50 + 1);

    ModuleOutput back, ccw;
    runModule(back, "Rot", image, {V::ofInt(-1)});
    runModule(ccw, "Rot", image, {V::ofInt(3)});
    ASSERT_TRUE(back.ok && ccw.ok);
    expectSamePicture(back.image(), ccw.image());
}

TEST_F(Geometry, RotateByZeroIsTheIdentity) {
    for (const Shape& s : kShapes)
        for (int32_t interpolate : {0, 1}) {
            TestImage image = pointedImage(s);
            expectSamePicture(
                repeat(image, "Rotate", {V::ofReal(0.0), V::ofUint(0), V::ofInt(interpolate)}, 1),
                image);
        }
}

// A clockwise quarter turn by angle (the editor passes -90 degrees in
// radians, not quite pi/2) lands on Rot's pixels; with interpolation only
// the outermost ring may differ, where edges fade into the fill.
TEST_F(Geometry, RotateByAQuarterMatchesRot) {
    const double clockwise = -90 * 0.017453292522222223;
    for (const Shape& s : kShapes)
        for (int32_t interpolate : {0, 1}) {
            SCOPED_TRACE(std::to_string(s.width) + "x" + std::to_string(s.height) +
                         " interpolate " + std::to_string(interpolate));
            TestImage image = pointedImage(s);
            ModuleOutput turned, rot;
            runModule(turned, "Rotate", image,
                      {V::ofReal(clockwise), V::ofUint(0), V::ofInt(interpolate)});
            runModule(rot, "Rot", image, {V::ofInt(1)});
            ASSERT_TRUE(turned.ok && rot.ok);
            ASSERT_EQ(turned.info()->width, rot.info()->width);
            ASSERT_EQ(turned.info()->height, rot.info()->height);
            int32_t w = rot.info()->width, h = rot.info()->height;
            for (int32_t y = 0; y < h; ++y)
                for (int32_t x = 0; x < w; ++x) {
                    bool ring = x == 0 || y == 0 || x == w - 1 || y == h - 1;
                    if (!interpolate || !ring) {
                        ASSERT_EQ(turned.pixel(x, y), rot.pixel(x, y)) << x << "," << y;
                    }
                }
        }
}

TEST_F(Geometry, RotateGrowsAndFillsWhatItDoesNotCover) {
    TestImage image(10, 4, 32);
    ModuleOutput out;
    runModule(out, "Rotate", image, {V::ofReal(M_PI / 4), V::ofUint(0xFF00FF00), V::ofInt(0)});
    ASSERT_TRUE(out.ok);
    EXPECT_EQ(out.info()->width, 10); // ceil(10 cos 45 + 4 sin 45) = ceil(9.9)
    EXPECT_EQ(out.info()->height, 10);
    EXPECT_EQ(out.pixel(0, 0), 0xFF00FF00u);
    EXPECT_EQ(out.pixel(5, 5) >> 24, 0x80u) << "the middle shows the picture";
}

TEST_F(Geometry, CropMovesPointsByTheOffsetsAndKeepsThePictureOnTheWorksheet) {
    TestImage image = pointedImage({6, 5, 8});
    ModuleOutput out;
    // Command form: x, y, width, height, colour, ClampX, ClampY.
    runModule(out, "Crop", image,
              {V::ofInt(2), V::ofInt(-1), V::ofInt(3), V::ofInt(4), V::ofUint(9), V::ofInt(0),
               V::ofInt(0)});
    ASSERT_TRUE(out.ok);
    EXPECT_EQ(out.info()->width, 3);
    EXPECT_EQ(out.info()->height, 4);
    EXPECT_EQ(out.pixel(0, 0), 9u) << "row -1 is outside: the fill index";
    EXPECT_EQ(out.pixel(1, 1), image.pixel(3, 0));
    EXPECT_EQ(out.info()->centerx, 0);
    EXPECT_EQ(out.info()->centery, 2);
    EXPECT_EQ(out.info()->hotspots[0].x, -2);
    EXPECT_EQ(out.info()->defaultx, 102);
    EXPECT_EQ(out.info()->defaulty, 49);
}

TEST_F(Geometry, CropEdgeRulesRepeatTheImage) {
    TestImage image(3, 1, 32);
    struct Case {
        int32_t rule;
        int32_t sources[7]; // source column of result columns 0..6 (window x = -2), -1 = fill
    } cases[] = {
        {0, {-1, -1, 0, 1, 2, -1, -1}},
        {1, {0, 0, 0, 1, 2, 2, 2}},
        {2, {1, 2, 0, 1, 2, 0, 1}},
        {3, {1, 0, 0, 1, 2, 2, 1}},
    };
    for (const Case& c : cases) {
        ModuleOutput out;
        runModule(out, "Crop", image,
                  {V::ofInt(-2), V::ofInt(0), V::ofInt(7), V::ofInt(1), V::ofUint(0x12345678),
                   V::ofInt(c.rule), V::ofInt(c.rule)});
        ASSERT_TRUE(out.ok);
        for (int32_t x = 0; x < 7; ++x)
            EXPECT_EQ(out.pixel(x, 0),
                      c.sources[x] < 0 ? 0x12345678u : image.pixel(c.sources[x], 0))
                << "rule " << c.rule << " column " << x;
    }
}

TEST_F(Geometry, WrapScrollsAndAFullTurnIsTheIdentity) {
    TestImage image = pointedImage({5, 3, 8});
    ModuleOutput out;
    runModule(out, "Wrap", image, {V::ofInt(2), V::ofInt(-1)});
    ASSERT_TRUE(out.ok);
    EXPECT_EQ(out.pixel(2, 0), image.pixel(0, 1));
    EXPECT_EQ(out.pixel(0, 2), image.pixel(3, 0));
    expectSamePicture(repeat(image, "Wrap", {V::ofInt(INT32_MIN), V::ofInt(INT32_MAX)}, 1),
                      repeat(image, "Wrap", {V::ofInt(2), V::ofInt(1)}, 1));
}

TEST_F(Geometry, GrbMirrorsPixelsAndLeavesPoints) {
    TestImage image = pointedImage({5, 3, 32});
    ModuleOutput out;
    runModule(out, "Grb", image, {V::ofInt(3)});
    ASSERT_TRUE(out.ok);
    EXPECT_EQ(out.pixel(0, 0), image.pixel(4, 2));
    EXPECT_EQ(out.info()->centerx, 2);
    EXPECT_EQ(out.info()->hotspots[1].x, 5);
}

TEST_F(Geometry, DeinterlaceRebuildsTheDroppedField) {
    TestImage image(2, 4, 32);
    image.setPixel(0, 0, 0x10203040);
    image.setPixel(0, 2, 0x30405061);
    ModuleOutput odd, even;
    runModule(odd, "Deinterlace", image, {V::ofInt(0)});
    runModule(even, "Deinterlace", image, {V::ofInt(1)});
    ASSERT_TRUE(odd.ok && even.ok);
    EXPECT_EQ(odd.pixel(0, 1), 0x20304051u) << "average of rows 0 and 2, rounded";
    EXPECT_EQ(odd.pixel(0, 3), image.pixel(0, 2)) << "the last row has one neighbour";
    EXPECT_EQ(odd.pixel(0, 2), image.pixel(0, 2));
    EXPECT_EQ(even.pixel(0, 0), image.pixel(0, 1));
}

TEST_F(Geometry, WarpsWithoutMovementLeaveThePicture) {
    for (const Shape& s : kShapes) {
        TestImage image = pointedImage(s);
        expectSamePicture(repeat(image, "Warp", {}, 1), image);
        expectSamePicture(repeat(image, "Warp", {V::ofInt(1), V::ofInt(0), V::ofInt(0)}, 1), image);
        // One pair of control lines lying where it came from.
        std::vector<V> lines = {V::ofInt(2), V::ofInt(0), V::ofInt(0), V::ofInt(0), V::ofInt(1)};
        for (int32_t v : {0, 0, s.width, s.height, 0, 0, s.width, s.height})
            lines.push_back(V::ofInt(v));
        expectSamePicture(repeat(image, "Warp", lines, 1), image);
        // The whole picture mapped onto itself as a square.
        std::vector<V> square = {V::ofInt(4)};
        for (auto [x, y] : {std::pair{0, 0}, {s.width, 0}, {s.width, s.height}, {0, s.height}})
            for (int32_t v : {x, y, x, y})
                square.push_back(V::ofInt(v));
        expectSamePicture(repeat(image, "Texture", square, 1), image);
    }
}

TEST_F(Geometry, WarpDragsAPointAndTextureLeavesTheUncoveredTransparent) {
    TestImage image(9, 9, 8);
    ModuleOutput dragged;
    runModule(dragged, "Warp", image,
              {V::ofInt(0), V::ofInt(1), V::ofInt(1), V::ofUint(0), V::ofInt(5), V::ofInt(5),
               V::ofInt(3), V::ofInt(3)});
    ASSERT_TRUE(dragged.ok);
    EXPECT_EQ(dragged.pixel(5, 5), image.pixel(3, 3));
    // The pull reaches twice the drag's length (2 x 2.83 pixels) around the target.
    EXPECT_EQ(dragged.pixel(0, 8), image.pixel(0, 8));
    EXPECT_NE(dragged.pixel(4, 4), image.pixel(4, 4));

    TestImage colours(8, 8, 32);
    ModuleOutput half;
    // The upper-right triangle shows the picture turned half over.
    runModule(half, "Texture", colours,
              {V::ofInt(3), V::ofInt(0), V::ofInt(0), V::ofInt(8), V::ofInt(8), V::ofInt(8),
               V::ofInt(0), V::ofInt(0), V::ofInt(8), V::ofInt(8), V::ofInt(8), V::ofInt(0),
               V::ofInt(0)});
    ASSERT_TRUE(half.ok);
    EXPECT_EQ(half.pixel(0, 7), 0u);
    EXPECT_EQ(half.pixel(6, 1), colours.pixel(1, 6));
}

} // namespace
