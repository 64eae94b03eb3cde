// The worksheet painting engine: background, drawing order, sampling,
// compositing under each channel mask, VRAM units, overlap warning, grid,
// edges and points, all checked pixel by pixel in the back buffer.

#include "app/ui/WorksheetPainter.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace {

// A plain 32-bit image held by the test.
struct TestImage {
    std::vector<uint32_t> pixels;
    std::vector<uint8_t> indices;
    std::vector<uint32_t> palette = std::vector<uint32_t>(256, 0);
    CSheetImage sheet;

    static TestImage Solid(int w, int h, uint32_t argb, CPoint at, int bpp = 32) {
        TestImage t;
        t.pixels.assign(static_cast<size_t>(w * h), argb);
        t.sheet.bits = reinterpret_cast<const uint8_t*>(t.pixels.data());
        t.sheet.pitch = w * 4;
        t.sheet.width = w;
        t.sheet.height = h;
        t.sheet.pixelBytes = 4;
        t.sheet.bpp = bpp;
        t.sheet.position = at;
        return t;
    }
    static TestImage Indexed(int w, int h, int bpp, CPoint at) {
        TestImage t;
        t.indices.resize(static_cast<size_t>(w * h));
        for (int i = 0; i < w * h; ++i)
            t.indices[static_cast<size_t>(i)] = static_cast<uint8_t>(i % w);
        for (int i = 0; i < 256; ++i)
            t.palette[static_cast<size_t>(i)] = 0xFF000000u | static_cast<uint32_t>(i) << 16;
        t.sheet.bits = t.indices.data();
        t.sheet.pitch = w;
        t.sheet.width = w;
        t.sheet.height = h;
        t.sheet.pixelBytes = 1;
        t.sheet.bpp = bpp;
        t.sheet.position = at;
        return t;
    }
    // Refreshes the pointers after the object was copied or moved.
    CSheetImage Sheet() const {
        CSheetImage s = sheet;
        s.bits = pixels.empty() ? indices.data() : reinterpret_cast<const uint8_t*>(pixels.data());
        s.palette = palette.data();
        return s;
    }
};

// The images stay the caller's: the scene points into their pixels.
CSheetScene sceneOf(const std::vector<const TestImage*>& images, std::vector<uint8_t> selected,
                    int focus) {
    CSheetScene scene;
    for (const TestImage* image : images)
        scene.images.push_back(image->Sheet());
    scene.selected = std::move(selected);
    scene.focus = focus;
    return scene;
}

std::unique_ptr<CBackBuffer> paint(const CRect& area, const CSheetScene& scene,
                                   const CImageViewSettings& s, double zoom,
                                   CSize worksheet = {2048, 2048}) {
    auto buffer = std::make_unique<CBackBuffer>();
    EXPECT_TRUE(buffer->Place(area));
    PaintWorksheet(*buffer, scene, s, zoom, worksheet);
    return buffer;
}

TEST(CheckerExponent, FollowsTheZoomWithinOneToEight) {
    struct Case {
        int size;
        double zoom;
        int expected;
    } cases[] = {
        {4, 1.0, 4}, {4, 0.5, 3}, {4, 0.25, 2}, {4, 0.125, 1}, {4, 1.0 / 16, 1}, {4, 2.0, 5},
        {4, 4.0, 6}, {4, 8.0, 7}, {4, 16.0, 7}, {1, 0.125, 1}, {8, 16.0, 8},     {2, 1.0 / 16, 1},
    };
    for (const Case& c : cases)
        EXPECT_EQ(CheckerExponent(c.size, c.zoom), c.expected) << c.size << " at " << c.zoom;
}

TEST(Background, CheckerCellsInsideAndOutsideTheScreenArea) {
    CImageViewSettings s; // cells of 16 pixels, screen area 0,0 to 640,480
    struct Case {
        int x, y;
        uint32_t colour;
    } cases[] = {
        {0, 0, s.m_CheckerColor2},    {15, 15, s.m_CheckerColor2}, {16, 0, s.m_CheckerColor1},
        {0, 16, s.m_CheckerColor1},   {16, 16, s.m_CheckerColor2}, {639, 0, s.m_CheckerColor1},
        {640, 0, s.m_CheckerColor4},  {656, 0, s.m_CheckerColor3}, {0, 480, s.m_CheckerColor4},
        {16, 480, s.m_CheckerColor3},
    };
    auto buffer = paint({0, 0, 700, 500}, {}, s, 1.0);
    for (const Case& c : cases)
        EXPECT_EQ(buffer->At(c.x, c.y), c.colour) << c.x << "," << c.y;
}

TEST(Background, ZoomScalesTheScreenAreaAndTheCells) {
    CImageViewSettings s;
    s.m_ScreenX = 10;
    s.m_ScreenWidth = 100;
    s.m_ScreenHeight = 100;
    // At zoom 0.25 the exponent is 2: cells of 4 view pixels; the screen area
    // spans view x 2.5 to 25.
    auto buffer = paint({0, 0, 40, 40}, {}, s, 0.25);
    EXPECT_EQ(buffer->At(2, 0), s.m_CheckerColor4); // left of the area
    EXPECT_EQ(buffer->At(3, 0), s.m_CheckerColor2);
    EXPECT_EQ(buffer->At(4, 0), s.m_CheckerColor1);
    EXPECT_EQ(buffer->At(8, 0), s.m_CheckerColor2);
    EXPECT_EQ(buffer->At(20, 0), s.m_CheckerColor1);
    EXPECT_EQ(buffer->At(24, 0), s.m_CheckerColor2);
    EXPECT_EQ(buffer->At(25, 0), s.m_CheckerColor4); // right of the area
    EXPECT_EQ(buffer->At(28, 0), s.m_CheckerColor3);
}

TEST(Background, PsxVramBoardHalvesEachColumnAndRowAndGreysTheRest) {
    CImageViewSettings s;
    s.m_ViewMode = 1;
    s.m_ScreenWidth = 640;
    struct Case {
        int x, y;
        uint32_t colour;
    } cases[] = {
        {0, 0, s.m_CheckerColor2},    {63, 0, s.m_CheckerColor2},    {64, 0, s.m_CheckerColor1},
        {128, 0, s.m_CheckerColor2},  {0, 256, s.m_CheckerColor2},   {0, 257, s.m_CheckerColor1},
        {64, 300, s.m_CheckerColor2}, {700, 0, s.m_CheckerColor4},   {700, 300, s.m_CheckerColor3},
        {1023, 0, s.m_CheckerColor3}, {1024, 0, kVramOutsideColour}, {0, 512, kVramOutsideColour},
    };
    auto buffer = paint({0, 0, 1100, 600}, {}, s, 1.0);
    for (const Case& c : cases)
        EXPECT_EQ(buffer->At(c.x, c.y), c.colour) << c.x << "," << c.y;
    // At zoom 2 the board is twice as large.
    auto zoomed = paint({0, 0, 2100, 20}, {}, s, 2.0);
    EXPECT_EQ(zoomed->At(2047, 0), s.m_CheckerColor3);
    EXPECT_EQ(zoomed->At(2048, 0), kVramOutsideColour);
    EXPECT_EQ(zoomed->At(127, 0), s.m_CheckerColor2);
    EXPECT_EQ(zoomed->At(128, 0), s.m_CheckerColor1);
}

TEST(Compositing, EachViewMaskFollowsItsRule) {
    struct Case {
        const char* what;
        uint32_t p, s, mask, expected;
    } cases[] = {
        {"RGB only: opaque copy, alpha kept", 0xFF102030, 0x80AABBCC, 0x00FFFFFF, 0xFFAABBCC},
        {"red only", 0x40102030, 0x80AABBCC, 0x00FF0000, 0x40AA0000},
        {"alpha only: grey", 0xFF102030, 0x80AABBCC, 0xFF000000, 0x80808080},
        {"full: half red over black", 0xFF000000, 0x80FF0000, 0xFFFFFFFF, 0xBE7F0000},
        {"full: opaque white loses a step to the shift", 0xFF000000, 0xFFFFFFFF, 0xFFFFFFFF,
         0xFEFEFEFE},
        {"full: transparent leaves colour (scaled)", 0xFF804020, 0x00FFFFFF, 0xFFFFFFFF,
         0xFE7F3F1F},
        {"alpha and red", 0xFF000000, 0x80FF00FF, 0xFFFF0000, 0xBE7F0000},
    };
    for (const Case& c : cases)
        EXPECT_EQ(CompositePixel(c.p, c.s, c.mask), c.expected) << c.what;
}

TEST(DrawingOrder, FocusedImageLastWhenTopMostAndEarlierImagesOnTop) {
    struct Case {
        const char* what;
        std::vector<uint8_t> selected;
        int focus;
        bool activeVisible, topMost;
        std::vector<int> order;
    } cases[] = {
        {"top-most focus", {1, 1, 1}, 1, true, true, {2, 0, 1}},
        {"focus shown though unselected", {1, 0, 1}, 1, true, false, {2, 1, 0}},
        {"nothing selected, focus hidden", {0, 0, 0}, 0, false, true, {}},
        {"unselected focus not shown", {1, 0, 1}, 1, false, true, {2, 0}},
        {"only the focus", {0, 0, 0}, 2, true, true, {2}},
    };
    for (const Case& c : cases) {
        CSheetScene scene;
        scene.images.resize(c.selected.size());
        scene.selected = c.selected;
        scene.focus = c.focus;
        CImageViewSettings s;
        s.m_IsActiveVisible = c.activeVisible;
        s.m_IsActiveTopMost = c.topMost;
        EXPECT_EQ(DrawingOrder(scene, s), c.order) << c.what;
    }
}

TEST(ImageRect, VramUnitsDependOnTheDepth) {
    struct Case {
        int bpp, mode;
        double zoom;
        CRect rect;
    } cases[] = {
        {8, 1, 1.0, {10, 20, 42, 28}},  {4, 1, 1.0, {10, 20, 26, 28}},
        {16, 1, 1.0, {10, 20, 74, 28}}, {32, 1, 1.0, {10, 20, 74, 28}},
        {8, 0, 1.0, {10, 20, 74, 28}},  {8, 1, 2.0, {20, 40, 84, 56}},
        {32, 0, 0.5, {5, 10, 37, 14}},
    };
    for (const Case& c : cases) {
        TestImage image = TestImage::Solid(64, 8, 0xFFFFFFFF, {10, 20}, c.bpp);
        EXPECT_EQ(SheetImageRect(image.Sheet(), c.mode, c.zoom), c.rect)
            << c.bpp << " bpp, mode " << c.mode << ", zoom " << c.zoom;
    }
}

TEST(Images, NearestNeighbourSamplingAtEachZoom) {
    // Eight columns of increasing red, at (4, 4).
    TestImage image = TestImage::Indexed(8, 2, 8, {4, 4});
    CImageViewSettings s;
    s.m_ChannelViewMask = kChannelRGB; // copies without blending
    struct Case {
        double zoom;
        int x, y;
        int column; // expected source column, -1 for background
    } cases[] = {
        {1.0, 4, 4, 0},  {1.0, 11, 5, 7},  {1.0, 12, 4, -1}, {2.0, 8, 8, 0},   {2.0, 9, 9, 0},
        {2.0, 10, 8, 1}, {2.0, 23, 11, 7}, {4.0, 16, 16, 0}, {4.0, 20, 16, 1}, {4.0, 47, 23, 7},
        {0.5, 2, 2, 0},  {0.5, 3, 2, 2},   {0.5, 5, 2, 6},
    };
    for (const Case& c : cases) {
        auto buffer = paint({0, 0, 64, 64}, sceneOf({&image}, {1}, 0), s, c.zoom);
        const uint32_t pixel = buffer->At(c.x, c.y);
        if (c.column < 0)
            EXPECT_NE(pixel & 0x00FFFFFF, 0u) << "zoom " << c.zoom << " at " << c.x;
        else
            EXPECT_EQ(pixel, 0xFF000000u | static_cast<uint32_t>(c.column) << 16)
                << "zoom " << c.zoom << " at " << c.x << "," << c.y;
    }
}

TEST(Images, VramModeSamplesEveryUnitOfAPaletteImage) {
    // An 8-bit image of 8 columns covers 4 units; unit u shows column 2u.
    TestImage image = TestImage::Indexed(8, 1, 8, {0, 0});
    CImageViewSettings s;
    s.m_ViewMode = 1;
    s.m_ChannelViewMask = kChannelRGB;
    auto buffer = paint({0, 0, 16, 4}, sceneOf({&image}, {1}, 0), s, 1.0);
    for (int u = 0; u < 4; ++u)
        EXPECT_EQ(buffer->At(u, 0), 0xFF000000u | static_cast<uint32_t>(2 * u) << 16) << u;
    EXPECT_EQ(buffer->At(4, 0), s.m_CheckerColor2); // past the image: background
}

TEST(Images, MasksShowChannelsAlphaAsGreyAndRgbOpaque) {
    TestImage image = TestImage::Solid(4, 4, 0x40C08020, {0, 0});
    struct Case {
        uint32_t mask;
        uint32_t expected;
    } cases[] = {
        {kChannelAlpha, 0x40404040},
        {kChannelRGB, 0xFFC08020}, // opaque: the background is gone
        {kChannelRed, 0xFFC00000},
        {kChannelGreen | kChannelBlue, 0xFF008020},
        {0xFFFFFFFF, CompositePixel(CImageViewSettings().m_CheckerColor2, 0x40C08020, 0xFFFFFFFF)},
    };
    for (const Case& c : cases) {
        CImageViewSettings s;
        s.m_ChannelViewMask = c.mask;
        auto buffer = paint({0, 0, 8, 8}, sceneOf({&image}, {1}, 0), s, 1.0);
        EXPECT_EQ(buffer->At(1, 1), c.expected) << std::hex << c.mask;
    }
}

TEST(Images, NothingSelectedAndFocusHiddenShowsOnlyTheBackground) {
    TestImage image = TestImage::Solid(8, 8, 0xFF00FF00, {0, 0});
    CImageViewSettings s;
    s.m_IsActiveVisible = false;
    auto buffer = paint({0, 0, 8, 8}, sceneOf({&image}, {0}, 0), s, 1.0);
    EXPECT_EQ(buffer->At(3, 3), s.m_CheckerColor2);
}

TEST(Images, OverlapWarningTintsOnlyTheSharedArea) {
    // The focused image at 0,0 and a worksheet image at 5,5 that is not shown.
    TestImage focused = TestImage::Solid(10, 10, 0xFF0000FF, {0, 0});
    TestImage other = TestImage::Solid(10, 10, 0xFF00FF00, {5, 5});
    other.sheet.onWorksheet = true;
    CImageViewSettings s;
    s.m_DrawOverlapWarning = true;
    auto buffer = paint({0, 0, 20, 20}, sceneOf({&focused, &other}, {1, 0}, 0), s, 1.0);
    const uint32_t plain = CompositePixel(s.m_CheckerColor2, 0xFF0000FF, 0xFFFFFFFF);
    EXPECT_EQ(buffer->At(2, 2), plain);
    EXPECT_EQ(buffer->At(7, 7), CompositePixel(plain, kOverlapWarningColour, 0xFFFFFFFF));
    EXPECT_EQ(buffer->At(12, 12), s.m_CheckerColor2); // the other image is not drawn

    // Without its visible flag the other image raises no warning.
    other.sheet.onWorksheet = false;
    auto quiet = paint({0, 0, 20, 20}, sceneOf({&focused, &other}, {1, 0}, 0), s, 1.0);
    EXPECT_EQ(quiet->At(7, 7), plain);
}

TEST(Grid, LinesAndDotsAtTheZoomedStep) {
    CImageViewSettings s;
    s.m_GridVisible = true;
    s.m_GridSize = 10;
    s.m_GridColor = 0xFF123456;
    s.m_GridStyle = 1;
    auto lines = paint({0, 0, 300, 300}, {}, s, 2.0, {100, 100});
    struct Case {
        int x, y;
        bool grid;
    } lineCases[] = {
        {5, 0, true},
        {5, 20, true},
        {5, 40, true},
        {20, 5, true},
        {40, 77, true},
        {10, 5, false},
        {5, 10, false},
        {21, 21, false},
        // The lines run over the worksheet's size in worksheet pixels only.
        {150, 20, false},
        {20, 150, false},
    };
    for (const Case& c : lineCases)
        EXPECT_EQ(lines->At(c.x, c.y) == s.m_GridColor, c.grid) << "lines " << c.x << "," << c.y;

    s.m_GridStyle = 0;
    auto dots = paint({0, 0, 300, 300}, {}, s, 2.0, {100, 100});
    const Case dotCases[] = {{20, 20, true}, {40, 60, true},  {0, 0, false},
                             {20, 0, false}, {20, 21, false}, {21, 20, false}};
    for (const Case& c : dotCases)
        EXPECT_EQ(dots->At(c.x, c.y) == s.m_GridColor, c.grid) << "dots " << c.x << "," << c.y;

    // Below zoom 1 there is no grid.
    s.m_GridStyle = 1;
    auto none = paint({0, 0, 50, 50}, {}, s, 0.5, {100, 100});
    EXPECT_NE(none->At(0, 0), s.m_GridColor);
}

TEST(EdgesAndPoints, DrawnAroundAndOnTheShownImages) {
    TestImage image = TestImage::Solid(10, 10, 0xFF000000, {10, 10});
    image.sheet.center = {5, 5};
    image.sheet.hotSpots = {{1, 1}};
    CImageViewSettings s;
    s.m_PointsVisible = true;
    CSheetScene scene = sceneOf({&image}, {1}, 0);
    scene.images[0].hotSpots = {{1, 1}};
    scene.selectionEdges = true;
    auto buffer = paint({0, 0, 40, 40}, scene, s, 1.0);
    EXPECT_EQ(buffer->At(15, 15), s.m_CenterPointColor);
    EXPECT_EQ(buffer->At(11, 11), s.m_HotPointColor);
    // The focused image's edge, one pixel outside it: dashes of four.
    EXPECT_EQ(buffer->At(9, 12), 0xFF000000u);
    EXPECT_EQ(buffer->At(9, 16), 0xFFFFFFFFu);
    EXPECT_EQ(buffer->At(20, 13), 0xFF000000u);
    EXPECT_EQ(buffer->At(8, 12), s.m_CheckerColor2);
}

TEST(BackBuffer, ReusedAtTheSameSizeAndConfinedToItsArea) {
    CBackBuffer buffer;
    ASSERT_TRUE(buffer.Place({0, 0, 32, 32}));
    const uint8_t* bits = buffer.Bitmap().GetBits();
    ASSERT_TRUE(buffer.Place({100, 100, 132, 132}));
    EXPECT_EQ(buffer.Bitmap().GetBits(), bits);
    EXPECT_FALSE(buffer.Place({5, 5, 5, 9}));

    // A paint of part of the view gives the same pixels as a paint of all.
    TestImage image = TestImage::Solid(20, 20, 0x80FF8000, {7, 3});
    CImageViewSettings s;
    s.m_GridVisible = true;
    CSheetScene scene = sceneOf({&image}, {1}, 0);
    auto whole = paint({0, 0, 64, 64}, scene, s, 2.0);
    auto part = paint({21, 13, 50, 40}, scene, s, 2.0);
    for (int y = 13; y < 40; ++y)
        for (int x = 21; x < 50; ++x)
            ASSERT_EQ(part->At(x, y), whole->At(x, y)) << x << "," << y;
}

} // namespace
