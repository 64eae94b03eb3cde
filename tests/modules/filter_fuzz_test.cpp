// Every filter of the colour, tone, alpha and neighbourhood families, run
// with random values inside and outside their descriptors' ranges (and
// with extra and missing slots) on tiny and odd-sized images of both
// depths, into a new buffer and in place; then with too little memory.
// Under the sanitizers a fault anywhere fails the run; a filter may only
// fail for want of memory.

#include "filter_run.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

const char* const kFilters[] = {
    "FYI",    "ColBal", "Contrast", "Gamma",   "grey",        "HSL",     "HSV",      "invert",
    "safe",   "shade",  "Equalize", "CSMap",   "Preten",      "Doubled", "FChanmap", "ACopy",
    "Chroma", "Swap",   "Psnr",     "Blur",    "Sharpen",     "Median",  "Dilate",   "Erode",
    "Smooth", "Edge",   "tedge",    "Outline", "Creep",       "Deband",  "Fill",     "RadFill",
    "Screen", "Grid",   "Line",     "Acenter", "alphacomment"};

constexpr int32_t kExtraSlots = 8;

// A value for a parameter of `type` between `lo` and `hi` most of the
// time, otherwise anything at all.
ModuleValue randomValue(std::mt19937& rng, const ModuleParam* param) {
    std::uniform_int_distribution<int> pick(0, 9);
    int how = pick(rng);
    bool real = param ? (param->type & 3) == kParamReal : how % 2 == 0;
    if (how >= 7) { // outside any sensible range
        if (real) {
            const double wild[] = {std::numeric_limits<double>::quiet_NaN(),
                                   std::numeric_limits<double>::infinity(),
                                   -std::numeric_limits<double>::infinity(),
                                   1e300,
                                   -1e300,
                                   -0.0};
            return ModuleValue::ofReal(wild[rng() % 6]);
        }
        const int32_t wild[] = {INT32_MIN, INT32_MAX, -1, 0x7FFF0000, -65536};
        return ModuleValue::ofInt(wild[rng() % 5]);
    }
    if (real) {
        double lo = param ? param->minimum.asReal() : -10.0;
        double hi = param ? param->maximum.asReal() : 300.0;
        return ModuleValue::ofReal(std::uniform_real_distribution<double>(lo, hi)(rng));
    }
    int64_t lo = param ? param->minimum.asInt() : -16;
    int64_t hi = param ? static_cast<int64_t>(param->maximum.asUint()) : 64;
    if (param && (param->type & kParamMaskHint)) lo = 0, hi = 0xFFFFFFFF;
    if (hi < lo) std::swap(lo, hi);
    int64_t v = std::uniform_int_distribution<int64_t>(lo, hi)(rng);
    return ModuleValue::ofUint(static_cast<uint32_t>(v));
}

struct Size {
    int32_t width, height;
};
constexpr Size kSizes[] = {{1, 1}, {1, 7}, {7, 1}, {5, 3}, {4, 9}, {13, 11}};

class FilterFuzz : public ModuleTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(FilterFuzz, RandomValuesOnOddSizesNeverFault) {
    const char* name = GetParam();
    int32_t index = module_find(name);
    ASSERT_NE(index, 0);
    ModuleDescriptor* d = module_describe();
    ASSERT_TRUE(d);
    std::mt19937 rng(static_cast<uint32_t>(index) * 7919u);
    PrintCapture quiet; // Psnr and alphacomment report through the hook
    for (int round = 0; round < 12; ++round) {
        for (const Size& size : kSizes) {
            for (int32_t bpp : {32, 8}) {
                TestImage image(size.width, size.height, bpp, round % 3);
                for (int32_t y = 0; y < size.height; ++y)
                    for (int32_t x = 0; x < size.width; ++x)
                        image.setPixel(x, y, static_cast<uint32_t>(rng()));
                for (int c = 0; c < 256; ++c)
                    image.info()->colours[c].alpha = static_cast<uint8_t>(rng() % 3 == 0 ? 0 : 255);
                snprintf(image.info()->comment, sizeof image.info()->comment, "round %d", round);
                std::vector<ModuleValue> values;
                int32_t count = static_cast<int32_t>(rng() % (d->paramCount + kExtraSlots + 1));
                for (int32_t i = 0; i < count; ++i)
                    values.push_back(randomValue(
                        rng, i < static_cast<int32_t>(d->paramCount) ? &d->params[i] : nullptr));
                SCOPED_TRACE(std::string(name) + " " + std::to_string(size.width) + "x" +
                             std::to_string(size.height) + "x" + std::to_string(bpp) + " values " +
                             std::to_string(count));
                FilterResult run;
                runFilter(run, name, image, values);
                ASSERT_EQ(run.info()->width, size.width);
                ASSERT_EQ(run.info()->height, size.height);
                ASSERT_EQ(module_run_in_place(index, image.info(), image.pixels.data(),
                                              image.rowbytes, count,
                                              values.empty() ? nullptr : values.data()),
                          1);
            }
        }
    }
    gfree(d);
}

// With memory for only some of the blocks a filter needs, every run ends in
// a clean failure or a success, and nothing stays allocated.
TEST_P(FilterFuzz, TooLittleMemoryFailsCleanly) {
    const char* name = GetParam();
    int32_t index = module_find(name);
    PrintCapture quiet;
    for (int32_t bpp : {32, 8}) {
        TestImage image(6, 5, bpp, 1);
        ImageEntry entry = image.entry();
        bool succeeded = false;
        for (int32_t extra = 0; extra < 12 && !succeeded; ++extra) {
            setenv("GALLOCMAX", std::to_string(galloc_live_count() + extra).c_str(), 1);
            galloc_reload_limit();
            ModuleResult result{};
            succeeded = module_run_new(index, 1, &entry, 0, nullptr, 4, &result) == 1;
            unsetenv("GALLOCMAX");
            galloc_reload_limit();
            module_result_free(&result);
        }
        EXPECT_TRUE(succeeded) << name << " needs more than 12 blocks";
    }
}

INSTANTIATE_TEST_SUITE_P(Filters, FilterFuzz, ::testing::ValuesIn(kFilters),
                         [](const auto& info) { return std::string(info.param); });

} // namespace
