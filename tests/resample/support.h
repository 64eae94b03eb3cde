#pragma once
// Images for the resampling tests: a record plus pixels (rows optionally
// padded), conversion to and from the reference resizer's images, and
// running a module by name through the framework's public calls.

#include "tests/support/PrintCapture.h"
#include "reference_resize.h"

#include "imaging/galloc.h"
#include "imaging/module/module.h"

#include <gtest/gtest.h>

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

struct Picture {
    std::vector<uint8_t> record = std::vector<uint8_t>(sizeof(TavixInfo));
    std::vector<uint8_t> pixels;
    int32_t rowbytes = 0;

    Picture() = default;
    Picture(int32_t width, int32_t height, int32_t bpp = 32, int32_t padding = 0) {
        TavixInfo* i = info();
        i->size = int32_t(sizeof(TavixInfo));
        i->version = kTavixInfoVersion;
        i->width = width;
        i->height = height;
        i->bufferbpp = bpp;
        i->bpp = bpp;
        i->alphabits = bpp > 8 ? 8 : 0;
        i->redbits = i->greenbits = i->bluebits = 8;
        i->numcolours = bpp > 8 ? 0 : 256;
        rowbytes = width * (bpp > 8 ? 4 : 1) + padding;
        pixels.assign(size_t(rowbytes) * height, 0xEE);
    }
    explicit Picture(const ref::Image& image, int32_t padding = 0)
        : Picture(image.width, image.height, 32, padding) {
        for (int32_t y = 0; y < image.height; ++y)
            for (int32_t x = 0; x < image.width; ++x)
                set(x, y, image.at(x, y));
    }

    TavixInfo* info() { return reinterpret_cast<TavixInfo*>(record.data()); }
    const TavixInfo* info() const { return reinterpret_cast<const TavixInfo*>(record.data()); }
    int32_t width() const { return info()->width; }
    int32_t height() const { return info()->height; }
    int32_t bytes() const { return info()->bufferbpp > 8 ? 4 : 1; }
    ImageEntry entry() const { return ImageEntry{info(), pixels.data(), rowbytes}; }

    uint32_t at(int32_t x, int32_t y) const {
        const uint8_t* p = pixels.data() + size_t(y) * rowbytes + size_t(x) * bytes();
        if (bytes() == 1) return *p;
        uint32_t v;
        memcpy(&v, p, 4);
        return v;
    }
    void set(int32_t x, int32_t y, uint32_t v) {
        uint8_t* p = pixels.data() + size_t(y) * rowbytes + size_t(x) * bytes();
        if (bytes() == 1)
            *p = uint8_t(v);
        else
            memcpy(p, &v, 4);
    }
    void fill(uint32_t v) {
        for (int32_t y = 0; y < height(); ++y)
            for (int32_t x = 0; x < width(); ++x)
                set(x, y, v);
    }
    ref::Image image() const {
        ref::Image out{width(), height(), {}};
        for (int32_t y = 0; y < height(); ++y)
            for (int32_t x = 0; x < width(); ++x)
                out.px.push_back(at(x, y));
        return out;
    }
    std::vector<uint8_t> rowBytes(int32_t y) const {
        const uint8_t* p = pixels.data() + size_t(y) * rowbytes;
        return std::vector<uint8_t>(p, p + size_t(width()) * bytes());
    }
};

// Random pixels; `transparent` in 1000 are alpha 0 with random colour,
// `keyed` in 1000 equal `key`.
inline ref::Image randomImage(uint32_t seed, int32_t width, int32_t height, int transparent = 0,
                              int keyed = 0, uint32_t key = 0) {
    std::mt19937 rng(seed);
    ref::Image out{width, height, {}};
    for (int32_t i = 0; i < width * height; ++i) {
        uint32_t p = rng();
        int roll = int(rng() % 1000);
        if (roll < transparent)
            p &= 0x00FFFFFFu;
        else if (roll < transparent + keyed)
            p = key;
        out.px.push_back(p);
    }
    return out;
}

// Runs module `name` on one picture into a new picture whose rows are
// padded to `rowAlign` bytes. Fails the test when the run fails.
inline Picture runModule(const char* name, const Picture& in, std::vector<ModuleValue> values,
                         int32_t rowAlign = 4) {
    ImageEntry entry = in.entry();
    ModuleResult result{};
    int32_t index = module_find(name);
    EXPECT_NE(index, 0) << name;
    int ok =
        module_run_new(index, 1, &entry, int32_t(values.size()), values.data(), rowAlign, &result);
    EXPECT_EQ(ok, 1) << name;
    Picture out;
    if (!ok) return out;
    out.record.assign(reinterpret_cast<uint8_t*>(result.info),
                      reinterpret_cast<uint8_t*>(result.info) + result.info->size);
    out.rowbytes = result.rowbytes;
    out.pixels.assign(result.pixels, result.pixels + size_t(result.rowbytes) * result.info->height);
    module_result_free(&result);
    return out;
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

using Printed = PrintCapture;

// Every test hands back every block it took, and leaves no allocation
// limit behind.
class ResampleTest : public ::testing::Test {
  protected:
    void SetUp() override { m_Live = galloc_live_count(); }
    void TearDown() override {
        unsetenv("GALLOCMAX");
        galloc_reload_limit();
        EXPECT_EQ(galloc_live_count(), m_Live) << "blocks leaked";
    }
    // Lets `extra` more blocks be live than are live now.
    static void allowMore(int32_t extra) {
        setenv("GALLOCMAX", std::to_string(galloc_live_count() + extra).c_str(), 1);
        galloc_reload_limit();
    }
    int32_t m_Live = 0;
};
