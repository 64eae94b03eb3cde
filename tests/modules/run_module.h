#pragma once
// Runs a module by name over test images into a new result and hands the
// result back as a TestImage-like owner.

#include "test_image.h"

#include "imaging/module/module.h"

#include <vector>

struct ModuleOutput {
    ModuleResult result{};
    bool ok = false;
    ModuleOutput() = default;
    ModuleOutput(const ModuleOutput&) = delete;
    ModuleOutput& operator=(const ModuleOutput&) = delete;
    ~ModuleOutput() {
        if (ok) module_result_free(&result);
    }
    const TavixInfo* info() const { return result.info; }
    int32_t bytes() const { return result.info->bufferbpp <= 8 ? 1 : 4; }
    uint32_t pixel(int32_t x, int32_t y) const {
        const uint8_t* at = result.pixels + static_cast<size_t>(y) * result.rowbytes + x * bytes();
        if (bytes() == 1) return *at;
        uint32_t v;
        memcpy(&v, at, 4);
        return v;
    }
    // The result as a TestImage, to feed into the next run.
    TestImage image() const {
        TestImage copy(result.info->width, result.info->height, result.info->bufferbpp);
        memcpy(copy.record.data(), result.info, sizeof(TavixInfo));
        for (int32_t y = 0; y < copy.height(); ++y)
            for (int32_t x = 0; x < copy.width(); ++x)
                copy.setPixel(x, y, pixel(x, y));
        return copy;
    }
};

inline void runModule(ModuleOutput& out, const char* name,
                      const std::vector<const TestImage*>& images,
                      std::vector<ModuleValue> values = {}) {
    std::vector<ImageEntry> entries;
    for (const TestImage* image : images)
        entries.push_back(image->entry());
    out.ok = module_run_new(module_find(name), static_cast<int32_t>(entries.size()), entries.data(),
                            static_cast<int32_t>(values.size()),
                            values.empty() ? nullptr : values.data(), 4, &out.result) == 1;
}

inline void runModule(ModuleOutput& out, const char* name, const TestImage& image,
                      std::vector<ModuleValue> values = {}) {
    runModule(out, name, std::vector<const TestImage*>{&image}, std::move(values));
}
