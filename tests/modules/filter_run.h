#pragma once
// Running a module by name over a TestImage for the filter tests.

#include "test_image.h"

#include "imaging/module/module.h"

#include <gtest/gtest.h>

#include <vector>

// A module's result, freed on destruction.
struct FilterResult {
    ModuleResult result{};
    bool ok = false;
    FilterResult() = default;
    FilterResult(const FilterResult&) = delete;
    FilterResult& operator=(const FilterResult&) = delete;
    ~FilterResult() { module_result_free(&result); }

    const TavixInfo* info() const { return result.info; }
    uint32_t word(int32_t x, int32_t y) const {
        const uint8_t* at = result.pixels + static_cast<size_t>(y) * result.rowbytes;
        if (result.info->bufferbpp <= 8) return at[x];
        uint32_t v;
        memcpy(&v, at + 4 * x, 4);
        return v;
    }
    // The colour of a result pixel, through the palette for indexed ones.
    uint32_t colour(int32_t x, int32_t y) const {
        uint32_t v = word(x, y);
        if (result.info->bufferbpp > 8) return v;
        const TavixColour& c = result.info->colours[v];
        return uint32_t{c.alpha} << 24 | uint32_t{c.red} << 16 | uint32_t{c.green} << 8 | c.blue;
    }
};

inline void runFilter(FilterResult& out, const char* name, const TestImage& image,
                      const std::vector<ModuleValue>& values = {}) {
    int32_t index = module_find(name);
    ASSERT_NE(index, 0) << name;
    ImageEntry entry = image.entry();
    out.ok = module_run_new(index, 1, &entry, static_cast<int32_t>(values.size()),
                            values.empty() ? nullptr : values.data(), 4, &out.result) == 1;
    ASSERT_TRUE(out.ok) << name;
}

inline void fillImage(TestImage& image, uint32_t v) {
    for (int32_t y = 0; y < image.height(); ++y)
        for (int32_t x = 0; x < image.width(); ++x)
            image.setPixel(x, y, v);
}

inline void setPalette(TestImage& image, int index, uint32_t argb) {
    image.info()->colours[index] = {uint8_t(argb), uint8_t(argb >> 8), uint8_t(argb >> 16),
                                    uint8_t(argb >> 24)};
}

inline ModuleValue I(int32_t v) {
    return ModuleValue::ofInt(v);
}
inline ModuleValue U(uint32_t v) {
    return ModuleValue::ofUint(v);
}
inline ModuleValue R(double v) {
    return ModuleValue::ofReal(v);
}
