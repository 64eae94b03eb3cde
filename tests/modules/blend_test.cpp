// Blend against a plain per-pixel reference written from the method table:
// every method (and two out of range), masks, percentages, both layers,
// the union rectangle, the palette merge, the index rules and the
// signal-to-noise ratios.

#include "test_image.h"

#include "imaging/blend/blend.h"

#include <cmath>

namespace {

// ---- The reference: one channel at a time, straight from the table ---------

struct Px {
    int a, r, g, b;
};
Px split(uint32_t v) {
    return {int(v >> 24), int((v >> 16) & 255), int((v >> 8) & 255), int(v & 255)};
}
uint32_t join(Px p) {
    return uint32_t(p.a) << 24 | uint32_t(p.r) << 16 | uint32_t(p.g) << 8 | uint32_t(p.b);
}

struct RefSums {
    double diff = 0, lum = 0;
    int channels = 3;
};

int refColour(int m, int f, int b, int fa, bool covered, int fallback) {
    if ((m == 7 || m == 8 || m == 9) && !covered) return fallback;
    switch (m) {
    case 2:
        return b - f > 0 ? b - f : 0;
    case 3:
        return b + f < 255 ? b + f : 255;
    case 4:
        return b - f > 0 ? b - f : 0;
    case 6:
        return std::min(f + ((255 - fa) * b) / 255, 255);
    case 7:
        return ((f * b) / 255) * fa / 255 + ((255 - fa) * b) / 255;
    case 8:
        return (255 - ((255 - f) * (255 - b)) / 255) * fa / 255 + ((255 - fa) * b) / 255;
    case 9: {
        int o =
            b <= 128 ? std::min((f * b + 63) / 128, 255) : 255 - ((511 - 2 * f) * (255 - b)) / 255;
        return o * fa / 255 + ((255 - fa) * b) / 255;
    }
    default:
        return std::min((f * fa + (255 - fa) * b) / 255, 255);
    }
}

uint32_t refBlend(uint32_t lower, uint32_t upper, int m, double p, uint32_t mask, bool covered,
                  RefSums& sums) {
    Px B = split(lower), F = split(upper);
    if (p != 100) {
        int* c[4] = {&F.a, &F.r, &F.g, &F.b};
        for (int* v : c)
            *v = int(std::min(255.0, std::max(0.0, *v * p * 0.01)));
    }
    if (m < 1 || m > 10) m = 0;
    Px out = B;
    if (m == 1) {
        out = covered ? F : B;
    } else if (m == 10) {
        out = F.a ? F : B;
    } else if (m == 5) {
        int ba = sums.channels < 4 ? 255 : B.a, fa = sums.channels < 4 ? 255 : F.a;
        sums.diff += (B.r - F.r) * (B.r - F.r) + (B.g - F.g) * (B.g - F.g) +
                     (B.b - F.b) * (B.b - F.b) + (sums.channels == 4 ? (ba - fa) * (ba - fa) : 0);
        float lb = (0.299f * B.r + 0.587f * B.g + 0.114f * B.b) * ba * (1.0f / 255);
        float lf = (0.299f * F.r + 0.587f * F.g + 0.114f * F.b) * fa * (1.0f / 255);
        sums.lum += (double(lb) - double(lf)) * (double(lb) - double(lf));
    } else if (!((m == 7 || m == 8 || m == 9) && !covered)) {
        out.a = m == 2 || m == 3 ? B.a : m == 4 ? std::max(B.a - F.a, 0) : std::max(F.a, B.a);
        out.r = refColour(m, F.r, B.r, F.a, covered, B.r);
        out.g = refColour(m, F.g, B.g, F.a, covered, B.g);
        out.b = refColour(m, F.b, B.b, F.a, covered, B.b);
    }
    if (!(mask >> 24)) out.a = B.a;
    if (!((mask >> 16) & 255)) out.r = B.r;
    if (!((mask >> 8) & 255)) out.g = B.g;
    if (!(mask & 255)) out.b = B.b;
    return join(out);
}

double refRatio(double mean) {
    const double floor = std::pow(255.0 / std::pow(10.0, 6.4), 2.0);
    return -20.0 * std::log10(std::sqrt(std::max(mean, floor)) / 255.0);
}

// ---- Images ---------------------------------------------------------------------

void fillRandom(TestImage& image, uint32_t seed) {
    for (int32_t y = 0; y < image.height(); ++y)
        for (int32_t x = 0; x < image.width(); ++x) {
            seed = seed * 1664525u + 1013904223u;
            uint32_t v = seed;
            if ((seed >> 8) % 7 == 0) v &= 0x00FFFFFFu; // some fully transparent pixels
            if ((seed >> 8) % 7 == 1) v |= 0xFF000000u; // some opaque ones
            image.setPixel(x, y, image.pixelBytes() == 1 ? (v >> 13) & 255 : v);
        }
}

struct BlendRun {
    TavixInfo* info = nullptr;
    ModuleResult result{};
    bool ok = false;
    ~BlendRun() { module_result_free(&result); }
};

void runBlend(BlendRun& run, const std::vector<const TestImage*>& images,
              const std::vector<ModuleValue>& values) {
    std::vector<ImageEntry> entries;
    for (const TestImage* image : images)
        entries.push_back(image->entry());
    run.ok = module_run_new(module_find("Blend"), int32_t(entries.size()), entries.data(),
                            int32_t(values.size()), values.data(), 4, &run.result) == 1;
}

uint32_t resultPixel(const BlendRun& run, int x, int y) {
    const uint8_t* at = run.result.pixels + size_t(y) * run.result.rowbytes;
    if (run.result.info->bufferbpp <= 8) return at[x];
    uint32_t v;
    memcpy(&v, at + 4 * x, 4);
    return v;
}

uint32_t inputAt(const TestImage& image, int wx, int wy, bool& covered) {
    int x = wx - image.info()->defaultx, y = wy - image.info()->defaulty;
    covered = x >= 0 && y >= 0 && x < image.width() && y < image.height();
    return covered ? image.pixel(x, y) : 0;
}

class BlendTest : public ModuleTest {
  protected:
    void SetUp() override {
        ModuleTest::SetUp();
        blend_psnr_reset();
        back.info()->defaultx = 2;
        back.info()->defaulty = 1;
        back.info()->alphabits = 8;
        front.info()->defaultx = 5;
        front.info()->defaulty = -2;
        fillRandom(back, 7);
        fillRandom(front, 99);
    }
    TestImage back{9, 6, 32, 3};
    TestImage front{7, 8, 32, 1};
};

struct Case {
    int method;
    uint32_t mask;
    double firstPercentage, secondPercentage;
    uint32_t colour;
};

class BlendMethods : public BlendTest, public ::testing::WithParamInterface<Case> {};

TEST_P(BlendMethods, MatchTheReferencePixelForPixel) {
    const Case c = GetParam();
    BlendRun run;
    runBlend(run, {&back, &front},
             {ModuleValue::ofInt(c.method), ModuleValue::ofUint(c.colour),
              ModuleValue::ofReal(c.firstPercentage), ModuleValue::ofReal(c.secondPercentage),
              ModuleValue::ofUint(c.mask)});
    ASSERT_TRUE(run.ok);
    const TavixInfo& info = *run.result.info;
    ASSERT_EQ(info.defaultx, 2);
    ASSERT_EQ(info.defaulty, -2);
    ASSERT_EQ(info.width, 10); // 2 .. 12
    ASSERT_EQ(info.height, 9); // -2 .. 7
    RefSums sums;
    sums.channels = 4;
    for (int y = 0; y < info.height; ++y)
        for (int x = 0; x < info.width; ++x) {
            bool inBack = false, inFront = false;
            const int wx = x + 2, wy = y - 2;
            const uint32_t b = inputAt(back, wx, wy, inBack);
            const uint32_t f = inputAt(front, wx, wy, inFront);
            uint32_t layer = refBlend(c.colour, b, c.method == 0 ? 0 : 1, c.firstPercentage,
                                      0xFFFFFFFF, inBack, sums);
            uint32_t expected =
                refBlend(layer, f, c.method, c.secondPercentage, c.mask, inFront, sums);
            ASSERT_EQ(resultPixel(run, x, y), expected) << "at " << x << "," << y;
        }
    const BlendPsnr psnr = blend_psnr_read();
    EXPECT_NEAR(psnr.channel, refRatio(sums.diff / (90.0 * 4)), 1e-9);
    EXPECT_NEAR(psnr.luminance, refRatio(sums.lum / 90.0), 1e-6);
    EXPECT_LE(psnr.channel, 128.0);
}

std::vector<Case> allCases() {
    std::vector<Case> cases;
    for (int method = -1; method <= 11; ++method)
        for (uint32_t mask : {0xFFFFFFFFu, 0u, 0x00FF00FFu, 0xFF000000u})
            cases.push_back({method, mask, 100.0, 100.0, 0});
    for (int method : {0, 2, 5, 6, 8, 9})
        for (double p : {-50.0, 200.0, 37.5})
            cases.push_back({method, 0xFFFFFFFFu, p, 100.0, 0x80402010u}),
                cases.push_back({method, 0xFF00FF00u, 100.0, p, 0});
    return cases;
}

INSTANTIATE_TEST_SUITE_P(Table, BlendMethods, ::testing::ValuesIn(allCases()));

TEST_F(BlendTest, UnionRectangleAndShiftedPoints) {
    TestImage a(10, 10, 32), b(10, 10, 32);
    b.info()->defaultx = b.info()->defaulty = 5;
    a.info()->centerx = 3;
    a.info()->numhotspots = 1;
    a.info()->hotspots[0] = {1, 2};
    BlendRun run;
    runBlend(run, {&b, &a}, {});
    ASSERT_TRUE(run.ok);
    EXPECT_EQ(run.result.info->width, 15);
    EXPECT_EQ(run.result.info->height, 15);
    EXPECT_EQ(run.result.info->defaultx, 0);
    EXPECT_EQ(run.result.info->centerx, 5); // b's centre 0, moved by 5
    BlendRun points;
    runBlend(points, {&a, &b}, {});
    EXPECT_EQ(points.result.info->centerx, 3);
    EXPECT_EQ(points.result.info->hotspots[0].x, 1);
}

TEST_F(BlendTest, OneImageIsLaidOverColourWithTheFirstPercentage) {
    BlendRun run;
    runBlend(run, {&back},
             {ModuleValue::ofInt(1), ModuleValue::ofUint(0xFF102030u), ModuleValue::ofReal(200.0)});
    ASSERT_TRUE(run.ok);
    RefSums sums;
    for (int y = 0; y < back.height(); ++y)
        for (int x = 0; x < back.width(); ++x)
            ASSERT_EQ(resultPixel(run, x, y),
                      refBlend(0xFF102030u, back.pixel(x, y), 1, 200.0, ~0u, true, sums));
}

TEST_F(BlendTest, IdenticalImagesReach128Decibels) {
    BlendRun run;
    TestImage same = back;
    runBlend(run, {&back, &same},
             {ModuleValue::ofInt(5), ModuleValue::ofUint(0), ModuleValue::ofReal(100),
              ModuleValue::ofReal(100), ModuleValue::ofUint(0)});
    ASSERT_TRUE(run.ok);
    // Mask 0: the background comes back unchanged, yet psnr still measured.
    const BlendPsnr psnr = blend_psnr_read();
    EXPECT_DOUBLE_EQ(psnr.channel, 128.0);
    EXPECT_DOUBLE_EQ(psnr.luminance, 128.0);
    EXPECT_DOUBLE_EQ(psnr.totalChannel, 128.0);
}

TEST_F(BlendTest, TotalsCoverEveryCallUntilTheReset) {
    const std::vector<ModuleValue> psnr = {ModuleValue::ofInt(5), ModuleValue::ofUint(0xFF000000u)};
    TestImage a(4, 4, 32), b(4, 4, 32), c(4, 4, 32);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 4; ++x) {
            a.setPixel(x, y, 0xFF000000u);
            b.setPixel(x, y, 0xFF000010u); // blue differs by 16: mean 256 / 3
            c.setPixel(x, y, 0xFF000000u);
        }
    BlendRun first, second;
    runBlend(first, {&a, &b}, psnr);
    const double one = refRatio(256.0 / 3.0);
    EXPECT_NEAR(blend_psnr_read().channel, one, 1e-9);
    runBlend(second, {&a, &c}, psnr);
    EXPECT_DOUBLE_EQ(blend_psnr_read().channel, 128.0);
    EXPECT_NEAR(blend_psnr_read().totalChannel, refRatio(256.0 / 6.0), 1e-9);
    blend_psnr_reset();
    EXPECT_DOUBLE_EQ(blend_psnr_read().totalChannel, 128.0);
}

// ---- Palette images ----------------------------------------------------------------

TEST_F(BlendTest, IndexRulesAndPaletteMerge) {
    TestImage b(6, 4, 8), f(6, 4, 8);
    fillRandom(b, 3);
    fillRandom(f, 4);
    f.info()->defaultx = 2;
    for (int i = 0; i < 256; ++i) {
        b.info()->colours[i] = {uint8_t(i), 1, 2, uint8_t(i % 3 == 0 ? 10 : 200)};
        f.info()->colours[i] = {9, uint8_t(i), 7, uint8_t(i % 2 == 0 ? 100 : 250)};
    }
    for (int method : {0, 1, 2, 3, 4, 5, 8}) {
        BlendRun run;
        runBlend(run, {&b, &f},
                 {ModuleValue::ofInt(method), ModuleValue::ofUint(0), ModuleValue::ofReal(100),
                  ModuleValue::ofReal(100), ModuleValue::ofUint(0x00FF00FFu)});
        ASSERT_TRUE(run.ok) << method;
        const TavixInfo& info = *run.result.info;
        ASSERT_EQ(info.width, 8);
        // Combine under the mask: alpha and green stay the background's.
        for (int i = 0; i < 256; ++i) {
            const bool take = f.info()->colours[i].alpha >= b.info()->colours[i].alpha;
            EXPECT_EQ(info.colours[i].red,
                      take ? f.info()->colours[i].red : b.info()->colours[i].red)
                << i;
            EXPECT_EQ(info.colours[i].alpha, b.info()->colours[i].alpha);
            EXPECT_EQ(info.colours[i].green, 1);
        }
        double diff = 0;
        for (int y = 0; y < 4; ++y)
            for (int x = 0; x < 8; ++x) {
                bool covered = false;
                const int B0 = int(inputAt(b, x, y, covered));
                // First layer: the image over index 0, Alpha or Paste.
                int lower = covered ? B0 : 0;
                if (method == 0 && covered && b.info()->colours[B0].alpha < info.colours[0].alpha)
                    lower = 0;
                const int F = int(inputAt(f, x, y, covered));
                int expected;
                switch (method) {
                case 1:
                    expected = covered ? F : lower;
                    break;
                case 2:
                    expected = (lower - F) & 255;
                    break;
                case 3:
                    expected = (lower + F) & 255;
                    break;
                case 4:
                    expected = std::max(lower - F, 0);
                    break;
                case 5:
                    expected = lower, diff += (lower - F) * (lower - F);
                    break;
                default:
                    expected = !covered || f.info()->colours[F].alpha < info.colours[lower].alpha
                                   ? lower
                                   : F;
                }
                ASSERT_EQ(int(resultPixel(run, x, y)), expected)
                    << method << " at " << x << "," << y;
            }
        if (method == 5) {
            EXPECT_NEAR(blend_psnr_read().channel, refRatio(diff / 32.0), 1e-9);
        }
    }
}

TEST_F(BlendTest, PaletteMethodPicksOnePaletteWhole) {
    TestImage b(2, 2, 8), f(2, 2, 8);
    f.info()->colours[7] = {1, 2, 3, 4};
    for (int method : {1, 2}) {
        BlendRun run;
        runBlend(run, {&b, &f},
                 {ModuleValue::ofInt(0), ModuleValue::ofUint(0), ModuleValue::ofReal(100),
                  ModuleValue::ofReal(100), ModuleValue::ofUint(~0u), ModuleValue::ofInt(method)});
        ASSERT_TRUE(run.ok);
        const TavixColour expected = (method == 1 ? b : f).info()->colours[7];
        EXPECT_EQ(run.result.info->colours[7].alpha, expected.alpha);
        EXPECT_EQ(run.result.info->colours[7].blue, expected.blue);
    }
}

TEST_F(BlendTest, MixedDepthsAreRefusedWithAReason) {
    TestImage indexed(3, 3, 8);
    PrintCapture capture;
    BlendRun run;
    runBlend(run, {&back, &indexed}, {});
    EXPECT_FALSE(run.ok);
    std::string text;
    for (const std::string& line : PrintCapture::lines())
        text += line;
    EXPECT_NE(text.find("same depth"), std::string::npos) << text;
}

} // namespace
