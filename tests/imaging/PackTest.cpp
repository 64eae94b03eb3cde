// The texture-page packer: no overlap, page boundaries and page edges, the
// fallback row, rotation, and refusal without memory.

#include "imaging/galloc.h"
#include "imaging/layout/pack.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <vector>

namespace {

struct Packed {
    int32_t fitted;
    std::vector<PackPlace> places;
};

Packed pack(const PackArea& area, const std::vector<PackShape>& shapes) {
    Packed result{0, std::vector<PackPlace>(shapes.size())};
    result.fitted = pack_shapes(&area, shapes.data(), static_cast<int32_t>(shapes.size()),
                                result.places.data());
    return result;
}

struct Box {
    int64_t x0, y0, x1, y1;
};

Box boxOf(const PackShape& s, const PackPlace& p) {
    int64_t w = p.rotated ? s.height : s.width, h = p.rotated ? s.width : s.height;
    return {p.x, p.y, p.x + w, p.y + h};
}

int64_t pageOf(int64_t v, int64_t size) {
    return v >= 0 ? v / size : -((-v + size - 1) / size);
}

// Every rule a packing must keep, checked shape by shape.
void expectValid(const PackArea& area, const std::vector<PackShape>& shapes, const Packed& packed) {
    ASSERT_GE(packed.fitted, 0);
    int fitted = 0;
    int64_t fallbackX = 0;
    for (size_t i = 0; i < shapes.size(); ++i) {
        const PackPlace& p = packed.places[i];
        const Box b = boxOf(shapes[i], p);
        if (!p.fits) {
            EXPECT_EQ(p.y, kPackFallbackY) << "shape " << i;
            EXPECT_EQ(p.x, fallbackX) << "shape " << i << " continues the fallback row";
            EXPECT_EQ(p.rotated, 0);
            fallbackX += shapes[i].width;
            continue;
        }
        ++fitted;
        if (shapes[i].width <= 0 || shapes[i].height <= 0) continue;
        EXPECT_TRUE(p.rotated == 0 || (area.flags & kPackRotate)) << "shape " << i;
        EXPECT_GE(b.x0, area.x);
        EXPECT_GE(b.y0, area.y);
        EXPECT_LE(b.x1, area.x + area.width) << "shape " << i;
        EXPECT_LE(b.y1, area.y + area.height) << "shape " << i;
        if ((area.flags & kPackRespectPages) && area.pageWidth > 0) {
            const int64_t px = pageOf(b.x0, area.pageWidth), py = pageOf(b.y0, area.pageHeight);
            const int64_t lastX =
                (px + 1) * area.pageWidth - ((area.flags & kPackCheckEdges) ? 1 : 0);
            const int64_t lastY =
                (py + 1) * area.pageHeight - ((area.flags & kPackCheckEdges) ? 1 : 0);
            EXPECT_LE(b.x1, lastX) << "shape " << i << " crosses or touches its page's right edge";
            EXPECT_LE(b.y1, lastY) << "shape " << i << " crosses or touches its page's bottom edge";
        }
        for (size_t j = 0; j < i; ++j) {
            if (!packed.places[j].fits || shapes[j].width <= 0 || shapes[j].height <= 0) continue;
            const Box o = boxOf(shapes[j], packed.places[j]);
            EXPECT_FALSE(b.x0 < o.x1 && o.x0 < b.x1 && b.y0 < o.y1 && o.y0 < b.y1)
                << "shapes " << j << " and " << i << " overlap";
        }
    }
    EXPECT_EQ(packed.fitted, fitted);
}

int fittedCount(const Packed& p) {
    int n = 0;
    for (const PackPlace& place : p.places)
        n += place.fits;
    return n;
}

struct Case {
    const char* what;
    PackArea area;
    std::vector<PackShape> shapes;
    int fitted;
};

class PackTest : public ::testing::Test {
  protected:
    void SetUp() override { live = galloc_live_count(); }
    void TearDown() override { EXPECT_EQ(galloc_live_count(), live); }
    int32_t live = 0;
};

TEST_F(PackTest, CasesKeepEveryRule) {
    const std::vector<PackShape> quarters(4, PackShape{128, 128});
    const std::vector<PackShape> five(5, PackShape{128, 128});
    const Case cases[] = {
        {"four quarters fill the area", {0, 0, 256, 256, 0, 0, 0}, quarters, 4},
        {"the fifth goes to the fallback row", {0, 0, 256, 256, 0, 0, 0}, five, 4},
        {"pages of the shapes' size", {0, 0, 256, 256, 128, 128, kPackRespectPages}, quarters, 4},
        {"page edges kept free: a full page fits nowhere",
         {0, 0, 256, 256, 128, 128, kPackRespectPages | kPackCheckEdges},
         quarters,
         0},
        {"page edges kept free: one pixel less fits",
         {0, 0, 256, 256, 128, 128, kPackRespectPages | kPackCheckEdges},
         std::vector<PackShape>(4, {127, 127}),
         4},
        {"a shape taller than a page with pages respected",
         {0, 0, 256, 256, 128, 128, kPackRespectPages},
         {{100, 200}},
         0},
        {"the same shape when pages are not respected",
         {0, 0, 256, 256, 128, 128, 0},
         {{100, 200}},
         1},
        {"edges mean nothing without respecting pages",
         {0, 0, 256, 256, 128, 128, kPackCheckEdges},
         quarters,
         4},
        {"a long shape fits only turned", {0, 0, 100, 300, 0, 0, kPackRotate}, {{300, 100}}, 1},
        {"not turned without leave", {0, 0, 100, 300, 0, 0, 0}, {{300, 100}}, 0},
        {"an area off the page grid is cut at the page lines",
         {64, 32, 256, 256, 128, 128, kPackRespectPages},
         {{64, 96}, {128, 128}, {64, 96}, {60, 20}, {128, 96}},
         5},
        {"an area's own edge is not a page edge",
         {0, 0, 100, 100, 128, 128, kPackRespectPages | kPackCheckEdges},
         {{100, 100}},
         1},
        {"shapes without area fit at the corner",
         {10, 20, 50, 50, 0, 0, 0},
         {{0, 5}, {50, 50}, {3, 0}},
         3},
        {"an empty area fits nothing", {0, 0, 0, 0, 0, 0, 0}, {{1, 1}, {2, 2}}, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Packed packed = pack(c.area, c.shapes);
        expectValid(c.area, c.shapes, packed);
        EXPECT_EQ(packed.fitted, c.fitted);
    }
}

TEST_F(PackTest, FallbackRowRunsInInputOrderAlongY512) {
    const PackArea area{0, 0, 64, 64, 0, 0, 0};
    const std::vector<PackShape> shapes{{64, 64}, {30, 10}, {20, 70}, {80, 5}};
    Packed packed = pack(area, shapes);
    ASSERT_EQ(packed.fitted, 1);
    EXPECT_EQ(packed.places[0].x, 0);
    EXPECT_EQ(packed.places[0].y, 0);
    const int32_t expectedX[] = {0, 30, 50};
    for (int i = 1; i < 4; ++i) {
        EXPECT_EQ(packed.places[i].fits, 0);
        EXPECT_EQ(packed.places[i].x, expectedX[i - 1]);
        EXPECT_EQ(packed.places[i].y, 512);
    }
}

TEST_F(PackTest, RandomShapesInPagedMemory) {
    std::mt19937 random(7);
    std::uniform_int_distribution<int32_t> side(1, 140);
    const int32_t flagSets[] = {0, kPackRotate, kPackRespectPages,
                                kPackRespectPages | kPackCheckEdges | kPackRotate};
    for (int32_t flags : flagSets) {
        SCOPED_TRACE(flags);
        std::vector<PackShape> shapes(300);
        for (PackShape& s : shapes)
            s = {side(random), side(random)};
        const PackArea area{32, 0, 1024, 768, 256, 256, flags};
        Packed packed = pack(area, shapes);
        expectValid(area, shapes, packed);
        EXPECT_GT(packed.fitted, 50);
        EXPECT_LT(packed.fitted, 300) << "more shapes than the area holds";
    }
}

TEST_F(PackTest, OutOfMemoryRefusesAndLeavesTheAnswerAlone) {
    std::vector<PackShape> shapes(40, PackShape{10, 20});
    const PackArea area{0, 0, 256, 256, 64, 64, kPackRespectPages | kPackRotate};
    for (int limit = 1; limit < 8; ++limit) {
        std::vector<PackPlace> places(shapes.size(), PackPlace{-7, -7, -7, -7});
        setenv("GALLOCMAX", std::to_string(live + limit).c_str(), 1);
        galloc_reload_limit();
        int32_t fitted = pack_shapes(&area, shapes.data(), 40, places.data());
        unsetenv("GALLOCMAX");
        galloc_reload_limit();
        if (fitted >= 0) {
            EXPECT_EQ(fitted, fittedCount({fitted, places}));
            continue;
        }
        EXPECT_EQ(places[0].x, -7) << "limit " << limit;
    }
}

} // namespace
