// The Pixel module: one expression per channel, per pixel, through the
// module framework as every caller runs it.

#include "imaging/expr/expr.h"
#include "imaging/galloc.h"
#include "imaging/module/module.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

struct Image {
    TavixInfo info{};
    std::vector<uint8_t> pixels;
    int32_t rowbytes = 0;

    Image(int width, int height, int bpp) {
        info.size = kTavixInfoSize;
        info.version = kTavixInfoVersion;
        info.width = width;
        info.height = height;
        info.bufferbpp = info.bpp = bpp;
        rowbytes = (width * (bpp / 8) + 3) & ~3;
        pixels.assign(static_cast<size_t>(rowbytes) * height, 0);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                if (bpp == 8)
                    row(y)[x] = static_cast<uint8_t>(x + 10 * y);
                else
                    set(x, y, 0x80000000u | (x * 20) << 16 | (y * 30) << 8 | (x + y));
            }
        if (bpp == 8)
            for (int i = 0; i < 256; ++i)
                info.colours[i] = {uint8_t(i), uint8_t(i / 2), uint8_t(255 - i), 255};
    }
    uint8_t* row(int y) { return pixels.data() + static_cast<size_t>(y) * rowbytes; }
    uint32_t at(int x, int y) const {
        uint32_t v;
        memcpy(&v, pixels.data() + static_cast<size_t>(y) * rowbytes + 4 * x, 4);
        return v;
    }
    void set(int x, int y, uint32_t v) { memcpy(row(y) + 4 * x, &v, 4); }
    ImageEntry entry() const { return {&info, pixels.data(), rowbytes}; }
};

// Runs Pixel with the given slot values into a new image.
struct Run {
    bool ok = false;
    Image out{1, 1, 32};
};

class PixelModule : public ::testing::Test {
  protected:
    void SetUp() override {
        m_index = module_find("Pixel");
        ASSERT_NE(m_index, 0);
        m_live = galloc_live_count();
    }
    void TearDown() override { EXPECT_EQ(galloc_live_count(), m_live); }

    // Slot 0 is the handle; texts fill slots 1.. (nullptr for none).
    bool run(const Image& in, std::vector<const char*> texts, Image& out,
             ExprContext* handle = nullptr) {
        std::vector<ModuleValue> values{ModuleValue::ofPointer(handle)};
        for (const char* text : texts)
            values.push_back(ModuleValue::ofPointer(text));
        ImageEntry entry = in.entry();
        ModuleResult result{};
        if (!module_run_new(m_index, 1, &entry, static_cast<int32_t>(values.size()), values.data(),
                            4, &result))
            return false;
        out.info = *result.info;
        out.rowbytes = result.rowbytes;
        out.pixels.assign(result.pixels, result.pixels + static_cast<size_t>(result.rowbytes) *
                                                             result.info->height);
        module_result_free(&result);
        return true;
    }

    int32_t m_index = 0;
    int32_t m_live = 0;
};

TEST_F(PixelModule, RedTakesTheGreenChannel) {
    Image in(5, 3, 32), out(1, 1, 32);
    ASSERT_TRUE(run(in, {"", "g"}, out));
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 5; ++x) {
            uint32_t was = in.at(x, y), now = out.at(x, y);
            EXPECT_EQ(now, (was & 0xFF00FFFFu) | ((was >> 8) & 0xFF) << 16) << x << "," << y;
        }
}

TEST_F(PixelModule, ChannelsClampRoundAndSeeTheOriginalValues) {
    Image in(2, 2, 32), out(1, 1, 32);
    in.set(0, 0, 0x10203040);
    // Every channel expression reads the loaded values, not a neighbour's result.
    ASSERT_TRUE(run(in, {"300", "-4", "r + 0.5", "b * 1.6"}, out));
    EXPECT_EQ(out.at(0, 0), 0xFF002166u)
        << "alpha clamps to 255, red to 0, 0x20 + 0.5 rounds up, 0x40 * 1.6 = 102.4";
}

TEST_F(PixelModule, LaterChannelsSeeAssignedVariablesButTheSourcePixel) {
    Image in(1, 1, 32), out(1, 1, 32);
    in.set(0, 0, 0x10203040);
    // Alpha makes t, red overwrites r: green still reads the source red, blue reads t.
    ASSERT_TRUE(run(in, {"t = r + 1; 255", "r = 0; t", "r", "t + g"}, out));
    EXPECT_EQ(out.at(0, 0), 0xFF212051u);
}

TEST_F(PixelModule, PositionAndImageVariables) {
    Image in(4, 3, 32), out(1, 1, 32);
    in.info.centerx = 2;
    in.info.numhotspots = 1;
    in.info.hotspots[0] = {3, 1};
    ASSERT_TRUE(
        run(in, {"255", "x * 10 + y", "width * 10 + height", "centerx + hot0x + ispal + a_width"},
            out));
    EXPECT_EQ(out.at(3, 2), 0xFF202B09u); // 32, 43, 2 + 3 + 0 + 4
    EXPECT_EQ(out.at(1, 0), 0xFF0A2B09u);
}

TEST_F(PixelModule, XAndYExpressionsChooseTheSourcePixel) {
    Image in(5, 4, 32), out(1, 1, 32);
    ASSERT_TRUE(run(in, {nullptr, nullptr, nullptr, nullptr, nullptr, "width - 1 - x", "99"}, out));
    for (int x = 0; x < 5; ++x)
        EXPECT_EQ(out.at(x, 0), in.at(4 - x, 3)) << "mirrored, and y clamped to the last row";
}

TEST_F(PixelModule, IndexedImagesKeepTheirPaletteUnlessAsked) {
    Image in(6, 2, 8), out(1, 1, 32);
    ASSERT_TRUE(run(in, {nullptr, nullptr, nullptr, nullptr, "255 - i"}, out));
    EXPECT_EQ(out.row(1)[2], 255 - 12);
    EXPECT_EQ(memcmp(out.info.colours, in.info.colours, sizeof in.info.colours), 0);

    ASSERT_TRUE(run(in, {"a", "i", "0", "b"}, out));
    EXPECT_EQ(out.row(0)[3], 3) << "no index expression: indices stay";
    EXPECT_EQ(out.info.colours[7].red, 7) << "the palette is rewritten entry by entry";
    EXPECT_EQ(out.info.colours[7].green, 0);
    EXPECT_EQ(out.info.colours[7].blue, in.info.colours[7].blue);
}

TEST_F(PixelModule, CallersContextCarriesStateAcrossImages) {
    ExprContext* context = exprCreate();
    double* count = exprSetVariable(context, "count", 0);
    Image in(3, 2, 32), out(1, 1, 32);
    ASSERT_TRUE(run(in, {nullptr, "count = count + 1; r"}, out, context));
    ASSERT_TRUE(run(in, {nullptr, "count = count + 1; r"}, out, context));
    EXPECT_EQ(*count, 12.0);
    exprDestroy(context);
}

TEST_F(PixelModule, RunsInPlace) {
    Image in(4, 2, 32);
    Image before = in;
    std::vector<ModuleValue> values{
        ModuleValue::ofPointer(nullptr),        ModuleValue::ofPointer(nullptr),
        ModuleValue::ofPointer(nullptr),        ModuleValue::ofPointer(nullptr),
        ModuleValue::ofPointer(nullptr),        ModuleValue::ofPointer(nullptr),
        ModuleValue::ofPointer("width - 1 - x")};
    ASSERT_TRUE(
        module_run_in_place(m_index, &in.info, in.pixels.data(), in.rowbytes, 7, values.data()));
    for (int x = 0; x < 4; ++x)
        EXPECT_EQ(in.at(x, 1), before.at(3 - x, 1));
}

TEST_F(PixelModule, BadExpressionsFailTheOpenCleanly) {
    Image in(2, 2, 32), out(1, 1, 32);
    for (const char* text : {"nosuchname + 1", "(1 + 2", "1 +", "max(1,", "'unterminated"})
        EXPECT_FALSE(run(in, {nullptr, text}, out)) << text;
}

TEST_F(PixelModule, NoExpressionsCopiesTheImage) {
    Image in(3, 3, 32), out(1, 1, 32);
    ASSERT_TRUE(run(in, {}, out));
    EXPECT_EQ(out.pixels, in.pixels);
}

TEST_F(PixelModule, AllocationFailuresAreClean) {
    Image in(3, 3, 32), out(1, 1, 32);
    for (int limit = m_live; limit < m_live + 40; ++limit) {
        setenv("GALLOCMAX", std::to_string(limit).c_str(), 1);
        galloc_reload_limit();
        run(in, {nullptr, "g + 1"}, out);
        unsetenv("GALLOCMAX");
        galloc_reload_limit();
        EXPECT_EQ(galloc_live_count(), m_live) << "limit " << limit;
    }
}

} // namespace
