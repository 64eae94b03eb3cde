// Size: kernel values, the rules' edge cases, the result record's points,
// refusals and allocation failures.

#include "support.h"

#include "imaging/modules/resample/kernels.h"
#include "imaging/modules/resample/resampler.h"

#include <cmath>

namespace {

struct KernelPoint {
    int32_t filter;
    float x;
    float expected;
};

// Values worked out by hand from the kernel formulas.
const KernelPoint kKernelPoints[] = {
    {0, 0.0f, 1.0f},         {0, 0.5f, 0.6079271f}, {0, -0.5f, 0.6079271f},  {0, 1.5f, -0.1350949f},
    {0, 2.5f, 0.0243171f},   {0, 1.0f, 0.0f},       {0, 3.0f, 0.0f},         {1, 0.0f, 0.8888889f},
    {1, 0.5f, 0.5347222f},   {1, 1.0f, 0.0555556f}, {1, -1.5f, -0.0347222f}, {1, 2.0f, 0.0f},
    {2, 0.0f, 1.0f},         {2, 0.25f, 0.84375f},  {2, -0.5f, 0.5f},        {2, 1.0f, 0.0f},
    {3, 0.25f, 0.75f},       {3, -0.5f, 0.5f},      {3, 1.0f, 0.0f},         {4, 0.0f, 1.0f},
    {4, 0.5f, 1.0f},         {4, -0.5f, 0.0f},      {4, 0.51f, 0.0f},        {5, 0.0f, 0.75f},
    {5, 0.5f, 0.5f},         {5, -1.0f, 0.125f},    {5, 1.5f, 0.0f},         {6, 0.0f, 0.6666667f},
    {6, 1.0f, 0.1666667f},   {6, 1.5f, 0.0208333f}, {6, 2.0f, 0.0f},         {7, 0.0f, 0.9f},
    {7, 0.5f, 0.5f},         {7, 1.0f, 0.05f},      {7, 1.5f, 0.0f},         {9, 0.5f, 0.6079271f},
    {-1, 1.5f, -0.1350949f},
};

TEST(Kernels, ValuesAtChosenPoints) {
    for (const KernelPoint& p : kKernelPoints) {
        resample::Kernel k = resample::kernel(p.filter);
        EXPECT_NEAR(k.fn(p.x), p.expected, 2e-6) << "filter " << p.filter << " at " << p.x;
    }
}

TEST(Kernels, SupportsAndUnknownFilters) {
    const float supports[] = {3.0f, 2.0f, 1.0f, 1.0f, 0.5f, 1.5f, 2.0f, 1.5f};
    for (int32_t f = 0; f < 8; ++f)
        EXPECT_EQ(resample::kernel(f).support, supports[f]) << f;
    for (int32_t f : {8, 9, -1, 1000})
        EXPECT_EQ(resample::kernel(f).fn, resample::kernel(0).fn) << f;
}

class SizeModule : public ResampleTest {};

std::vector<ModuleValue> sizeValues(int32_t w, int32_t h, int32_t filter = 0, int32_t respect = 0,
                                    uint32_t key = 0) {
    return {I(w), I(h), I(filter), I(respect), U(key)};
}

TEST_F(SizeModule, SameSizeWithLinearCopiesEachPixel) {
    Picture in(randomImage(5, 13, 7, 200), 2);
    Picture out = runModule("Size", in, sizeValues(13, 7, 3));
    EXPECT_EQ(out.image().px, in.image().px);

    in.info()->alphabits = 0; // no alpha bits: same colours, alpha 255
    out = runModule("Size", in, sizeValues(13, 7, 3));
    for (int32_t i = 0; i < 13 * 7; ++i)
        EXPECT_EQ(out.image().px[i], in.image().px[i] | 0xFF000000u) << i;
}

TEST_F(SizeModule, TwoToOneTakesTheSecondPixelExceptWithPoint) {
    Picture in(2, 2);
    in.set(0, 0, 0xFF102030);
    in.set(1, 0, 0xFF405060);
    in.set(0, 1, 0x80112233);
    in.set(1, 1, 0xC0445566);
    for (int32_t filter = 0; filter < 8; ++filter) {
        if (filter == 4) continue;
        EXPECT_EQ(runModule("Size", in, sizeValues(1, 1, filter)).at(0, 0), 0xC0445566u) << filter;
    }
    // Point: centre 1.0 reaches 0.5 either side, both pixels weigh 1/2 and
    // the mean rounds half to even.
    Picture pair(2, 1);
    pair.set(0, 0, 0xFF000010);
    pair.set(1, 0, 0xFF030021);
    EXPECT_EQ(runModule("Size", pair, sizeValues(1, 1, 4)).at(0, 0), 0xFF020018u);
}

TEST_F(SizeModule, UnknownFiltersActAsLanczos3) {
    Picture in(randomImage(9, 17, 11));
    Picture lanczos = runModule("Size", in, sizeValues(7, 5, 0));
    for (int32_t filter : {8, 9, -1})
        EXPECT_EQ(runModule("Size", in, sizeValues(7, 5, filter)).pixels, lanczos.pixels) << filter;
}

// 16 x 16 of `background`, with a 3 x 3 opaque block in the top-left corner.
Picture keyedPicture(uint32_t background) {
    Picture in(16, 16);
    in.fill(background);
    for (int32_t y = 0; y < 3; ++y)
        for (int32_t x = 0; x < 3; ++x)
            in.set(x, y, 0xFFC04020);
    return in;
}

TEST_F(SizeModule, RespectAlphaGivesTheKeyWhereNothingIsOpaque) {
    struct Case {
        uint32_t background, chromakey, expectedKey;
    };
    const Case cases[] = {
        {0xFF00FF00, 0xFF00FF00, 0xFF00FF00}, // a chosen key colour
        {0x00000000, 0, 0x00000000},          // first transparent pixel is 0: alpha 0 test
        {0x00123456, 0, 0x00123456},          // first transparent pixel becomes the key
    };
    for (const Case& c : cases) {
        Picture in = keyedPicture(c.background);
        Picture out = runModule("Size", in, sizeValues(8, 8, 0, 1, c.chromakey));
        EXPECT_EQ(out.at(7, 7), c.expectedKey) << std::hex << c.background;
        EXPECT_EQ(out.at(0, 0), 0xFFC04020u) << "keyed pixels lend nothing to the opaque ones";
        Picture blended = runModule("Size", in, sizeValues(8, 8, 0, 0, c.chromakey));
        EXPECT_NE(blended.at(0, 0), 0xFFC04020u) << "without Respect Alpha the key blends in";
    }
}

TEST_F(SizeModule, OnlyTheFirstTransparentColourIsSkipped) {
    Picture in = keyedPicture(0x00FFFFFF); // alpha 0, but not the first transparent pixel:
    in.set(3, 0, 0x00123456);              // (3, 0) precedes every other one in row order
    for (int32_t y = 8; y < 16; ++y)
        for (int32_t x = 8; x < 16; ++x)
            in.set(x, y, 0x00123456);
    Picture out = runModule("Size", in, sizeValues(8, 8, 3, 1));
    EXPECT_EQ(out.at(7, 7), 0x00123456u);
    EXPECT_EQ(out.at(7, 0), 0x00FFFFFFu) << "other transparent pixels are used like any other";
}

TEST_F(SizeModule, FallbackKeyMatchesNothing) {
    ref::Image source = randomImage(21, 19, 13);
    for (uint32_t& p : source.px)
        p |= 0x01000000u; // nothing transparent
    Picture in(source);
    resample::ArgbView view{in.pixels.data(), in.width(), in.height(), in.rowbytes};
    EXPECT_EQ(resample::resolve_key(view, true, 0), 0x0000FFFFu);
    EXPECT_EQ(resample::resolve_key(view, false, 0), 0u);
    EXPECT_EQ(resample::resolve_key(view, true, 0x12345678), 0x12345678u);
    EXPECT_EQ(runModule("Size", in, sizeValues(8, 30, 1, 1)).pixels,
              runModule("Size", in, sizeValues(8, 30, 1, 0)).pixels);
}

TEST_F(SizeModule, SizesBelowOneGiveOnePixel) {
    Picture in(randomImage(3, 6, 4));
    struct Case {
        int32_t w, h, expectW, expectH;
    };
    for (Case c : {Case{0, 3, 1, 3}, Case{-5, 0, 1, 1}, Case{4, -1, 4, 1}}) {
        Picture out = runModule("Size", in, sizeValues(c.w, c.h));
        EXPECT_EQ(out.width(), c.expectW);
        EXPECT_EQ(out.height(), c.expectH);
    }
}

TEST_F(SizeModule, RunInPlaceAtTheSameSize) {
    ref::Image source = randomImage(8, 23, 9, 100);
    Picture in(source, 4);
    std::vector<ModuleValue> values = sizeValues(23, 9, 1);
    ASSERT_EQ(module_run_in_place(module_find("Size"), in.info(), in.pixels.data(), in.rowbytes,
                                  int32_t(values.size()), values.data()),
              1);
    EXPECT_EQ(in.image().px, ref::resize(source, 23, 9, 1, false, 0, true).px);
}

struct PointCase {
    const char* name;
    std::vector<ModuleValue> values;
    TavixHotSpot centre, defaultPoint, spot0, spot1;
};

// Source 10 x 10: centre (5, 5), default point (3, 7), hot spots (9, 1) and
// (-3, 4). Hot spots truncate toward zero; centre and default point take
// the integer part plus 1 when the fraction is at least one half.
TEST_F(SizeModule, PointsFollowTheRatios) {
    const PointCase cases[] = {
        {"Ratio 1.5 x 0.4", sizeValues(15, 4), {8, 2}, {5, 3}, {13, 0}, {-4, 1}},
        {"Nine slots override",
         {I(15), I(4), I(0), I(0), U(0), R(1), R(1), R(2.0), R(0.5)},
         {10, 3},
         {6, 4},
         {18, 0},
         {-6, 2}},
        {"Eight slots do not",
         {I(15), I(4), I(0), I(0), U(0), R(1), R(1), R(2.0)},
         {8, 2},
         {5, 3},
         {13, 0},
         {-4, 1}},
    };
    Picture in(10, 10);
    in.info()->centerx = in.info()->centery = 5;
    in.info()->defaultx = 3;
    in.info()->defaulty = 7;
    in.info()->numhotspots = 2;
    in.info()->hotspots[0] = {9, 1};
    in.info()->hotspots[1] = {-3, 4};
    for (const PointCase& c : cases) {
        SCOPED_TRACE(c.name);
        TavixInfo* info = nullptr;
        module_find("Size");
        ImageEntry entry = in.entry();
        ModuleInstance* instance = nullptr;
        ASSERT_EQ(module_open(&instance, 1, &entry, int32_t(c.values.size()), c.values.data()), 1);
        info = module_query(instance, 0);
        ASSERT_TRUE(info);
        EXPECT_EQ(info->width, 15);
        EXPECT_EQ(info->height, 4);
        EXPECT_EQ(info->centerx, c.centre.x);
        EXPECT_EQ(info->centery, c.centre.y);
        EXPECT_EQ(info->defaultx, c.defaultPoint.x);
        EXPECT_EQ(info->defaulty, c.defaultPoint.y);
        EXPECT_EQ(info->hotspots[0].x, c.spot0.x);
        EXPECT_EQ(info->hotspots[0].y, c.spot0.y);
        EXPECT_EQ(info->hotspots[1].x, c.spot1.x);
        EXPECT_EQ(info->hotspots[1].y, c.spot1.y);
        gfree(info);
        module_close(instance);
    }
}

TEST_F(SizeModule, ValuesFromTextAsACommandLineGivesThem) {
    module_find("Size");
    ModuleDescriptor* d = module_describe();
    ASSERT_TRUE(d);
    ASSERT_EQ(d->paramCount, 7u);
    EXPECT_STREQ(d->params[6].name, "Scale Ratio Y");
    std::vector<ModuleValue> values(3);
    ASSERT_EQ(module_value_from_text(&d->params[0], "5", &values[0]), 1);
    ASSERT_EQ(module_value_from_text(&d->params[1], "4", &values[1]), 1);
    ASSERT_EQ(module_value_from_text(&d->params[2], "mitchell", &values[2]), 1);
    gfree(d);
    Picture in(randomImage(2, 9, 9));
    EXPECT_EQ(runModule("Size", in, values).pixels,
              runModule("Size", in, sizeValues(5, 4, 1)).pixels);
}

TEST_F(SizeModule, IndexedPixelsAreRefusedWithOneLine) {
    Picture in(4, 4, 8);
    ImageEntry entry = in.entry();
    std::vector<ModuleValue> values = sizeValues(2, 2);
    ModuleResult result{};
    Printed printed;
    EXPECT_EQ(module_run_new(module_find("Size"), 1, &entry, 5, values.data(), 1, &result), 0);
    ASSERT_EQ(Printed::lines().size(), 1u);
    EXPECT_EQ(Printed::lines()[0], "Size - needs 32-bit source and result pixels\n");
}

TEST_F(SizeModule, AllocationFailuresAtEveryStepFailCleanly) {
    Picture in(randomImage(3, 37, 21, 50));
    ImageEntry entry = in.entry();
    std::vector<ModuleValue> values = sizeValues(11, 45, 0, 1);
    Printed quiet;
    int32_t size = module_find("Size"); // before the limit: finding allocates too
    int32_t failures = 0;
    for (int32_t extra = 0; extra < 40; ++extra) {
        allowMore(extra);
        ModuleResult result{};
        int ok = module_run_new(size, 1, &entry, 5, values.data(), 1, &result);
        unsetenv("GALLOCMAX");
        galloc_reload_limit();
        EXPECT_EQ(galloc_live_count(), m_Live + (ok ? 2 : 0)) << extra;
        if (ok) {
            module_result_free(&result);
            break;
        }
        ++failures;
    }
    EXPECT_GE(failures, 6) << "instance, record, pixels and each scratch block";
}

} // namespace
