// Every geometric, normal-map, palette and exchange module, run with random
// values inside and outside their descriptors' ranges (and with extra and
// missing slots) on tiny and odd-sized images of both depths, into a new
// buffer and, where the result keeps the shape, in place; then with too
// little memory. Under the sanitizers a fault anywhere fails the run.

#include "run_module.h"

#include "imaging/external/editor.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

const char* const kModules[] = {"Rot",   "Rotate",      "Trans",  "Crop",     "Wrap",
                                "Grb",   "Deinterlace", "Stereo", "Warp",     "Texture",
                                "DropS", "Dot3",        "UnDot3", "Embm",     "UnEmbm",
                                "FTxMp", "PalSort",     "PSort",  "Photoshop"};

constexpr int32_t kExtraSlots = 12;

// Integers stay near the image most of the time (sizes and coordinates),
// colours and masks take any word, and now and then anything goes.
ModuleValue randomValue(std::mt19937& rng, const ModuleParam* param) {
    int how = static_cast<int>(rng() % 10);
    bool real = param ? (param->type & 3) == kParamReal : how % 2 == 0;
    if (how >= 8) {
        if (real) {
            const double wild[] = {std::numeric_limits<double>::quiet_NaN(),
                                   std::numeric_limits<double>::infinity(), -1e300, 1e300, -0.0};
            return ModuleValue::ofReal(wild[rng() % 5]);
        }
        const int32_t wild[] = {INT32_MIN, INT32_MAX, -1, 0x7FFF0000, -65536};
        return ModuleValue::ofInt(wild[rng() % 5]);
    }
    if (real) {
        double lo = param ? std::max(param->minimum.asReal(), -400.0) : -10.0;
        double hi = param ? std::min(param->maximum.asReal(), 400.0) : 300.0;
        return ModuleValue::ofReal(std::uniform_real_distribution<double>(lo, hi)(rng));
    }
    if (param && (param->type & kParamMaskHint))
        return ModuleValue::ofUint(static_cast<uint32_t>(rng()));
    return ModuleValue::ofInt(static_cast<int32_t>(rng() % 129) - 64);
}

struct Size {
    int32_t width, height;
};
constexpr Size kSizes[] = {{1, 1}, {1, 7}, {7, 1}, {5, 3}, {4, 9}, {13, 11}};

TestImage randomImage(std::mt19937& rng, Size size, int32_t bpp, int32_t padding) {
    TestImage image(size.width, size.height, bpp, padding);
    for (int32_t y = 0; y < size.height; ++y)
        for (int32_t x = 0; x < size.width; ++x)
            image.setPixel(x, y, static_cast<uint32_t>(rng()));
    image.info()->numcolours = static_cast<int32_t>(rng() % 300);
    image.info()->centerx = static_cast<int32_t>(rng());
    image.info()->numhotspots = static_cast<int32_t>(rng() % 3);
    for (int c = 0; c < 256; ++c)
        image.info()->colours[c].alpha = static_cast<uint8_t>(rng() % 3 == 0 ? 0 : 255);
    return image;
}

class GeometryFuzz : public ModuleTest, public ::testing::WithParamInterface<const char*> {
  protected:
    void SetUp() override {
        ModuleTest::SetUp();
        external::editor_set_command("true");
    }
    void TearDown() override {
        external::editor_set_command("");
        ModuleTest::TearDown();
    }
};

TEST_P(GeometryFuzz, RandomValuesOnOddSizesNeverFault) {
    const char* name = GetParam();
    int32_t index = module_find(name);
    ASSERT_NE(index, 0);
    ModuleDescriptor* d = module_describe();
    ASSERT_TRUE(d);
    std::mt19937 rng(static_cast<uint32_t>(index) * 7919u);
    PrintCapture quiet;
    int rounds = std::string(name) == "Photoshop" ? 2 : 8;
    for (int round = 0; round < rounds; ++round)
        for (const Size& size : kSizes)
            for (int32_t bpp : {32, 8}) {
                TestImage image = randomImage(rng, size, bpp, round % 3);
                TestImage second = randomImage(rng, kSizes[rng() % 6], rng() % 2 ? 32 : 8, 1);
                std::vector<ModuleValue> values;
                int32_t count = static_cast<int32_t>(rng() % (d->paramCount + kExtraSlots + 1));
                for (int32_t i = 0; i < count; ++i)
                    values.push_back(randomValue(
                        rng, i < static_cast<int32_t>(d->paramCount) ? &d->params[i] : nullptr));
                SCOPED_TRACE(std::string(name) + " " + std::to_string(size.width) + "x" +
                             std::to_string(size.height) + "x" + std::to_string(bpp) + " values " +
                             std::to_string(count));
                ModuleOutput out;
                runModule(out, name, {&image, &second}, values);
                // Only a window too large for memory may fail.
                if (!out.ok) {
                    ASSERT_EQ(std::string(name), "Crop");
                }
                if (out.ok && out.info()->width == size.width &&
                    out.info()->height == size.height && out.bytes() == image.pixelBytes() &&
                    std::string(name) != "FTxMp") {
                    ASSERT_EQ(module_run_in_place(index, image.info(), image.pixels.data(),
                                                  image.rowbytes, count,
                                                  values.empty() ? nullptr : values.data()),
                              1);
                }
            }
    gfree(d);
}

// With memory for only some of the blocks a module needs, every run ends in
// a clean failure or a success, and nothing stays allocated.
TEST_P(GeometryFuzz, TooLittleMemoryFailsCleanly) {
    const char* name = GetParam();
    int32_t index = module_find(name);
    PrintCapture quiet;
    for (int32_t bpp : {32, 8}) {
        TestImage image(6, 5, bpp, 1), second(4, 3, 32);
        ImageEntry entries[] = {image.entry(), second.entry()};
        bool succeeded = false;
        for (int32_t extra = 0; extra < 12 && !succeeded; ++extra) {
            setenv("GALLOCMAX", std::to_string(galloc_live_count() + extra).c_str(), 1);
            galloc_reload_limit();
            ModuleResult result{};
            succeeded = module_run_new(index, 2, entries, 0, nullptr, 4, &result) == 1;
            unsetenv("GALLOCMAX");
            galloc_reload_limit();
            module_result_free(&result);
        }
        EXPECT_TRUE(succeeded) << name << " needs more than 12 blocks";
    }
}

INSTANTIATE_TEST_SUITE_P(Geometry, GeometryFuzz, ::testing::ValuesIn(kModules),
                         [](const auto& info) { return std::string(info.param); });

} // namespace
