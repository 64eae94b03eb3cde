#pragma once
// Small images for module tests: a record and a pixel buffer whose rows
// may carry padding, filled with a recognisable pattern.

#include "tests/support/PrintCapture.h"
#include "imaging/galloc.h"
#include "imaging/module/module.h"

#include <gtest/gtest.h>

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

struct TestImage {
    std::vector<uint8_t> record; // a TavixInfo, possibly with a tail
    std::vector<uint8_t> pixels;
    int32_t rowbytes = 0;

    // `padding` extra bytes per row, filled with 0xEE; `tail` extra record bytes.
    TestImage(int32_t width, int32_t height, int32_t bpp, int32_t padding = 0, int32_t tail = 0)
        : record(sizeof(TavixInfo) + tail) {
        TavixInfo* i = info();
        i->size = static_cast<int32_t>(record.size());
        i->version = kTavixInfoVersion;
        i->width = width;
        i->height = height;
        i->bufferbpp = bpp;
        i->bpp = bpp;
        i->numcolours = 256;
        for (int c = 0; c < 256; ++c)
            i->colours[c] = TavixColour{uint8_t(c), uint8_t(255 - c), uint8_t(c * 3), 255};
        int32_t size = bpp <= 8 ? 1 : 4;
        rowbytes = width * size + padding;
        pixels.assign(static_cast<size_t>(rowbytes) * height, 0xEE);
        for (int32_t y = 0; y < height; ++y)
            for (int32_t x = 0; x < width; ++x)
                setPixel(x, y, pattern(x, y));
        for (size_t t = sizeof(TavixInfo); t < record.size(); ++t)
            record[t] = uint8_t(t * 7);
    }

    static uint32_t pattern(int32_t x, int32_t y) {
        return 0x80000000u | (uint32_t(y) << 16) | (uint32_t(x) << 4) | uint32_t(x + y);
    }

    TavixInfo* info() { return reinterpret_cast<TavixInfo*>(record.data()); }
    const TavixInfo* info() const { return reinterpret_cast<const TavixInfo*>(record.data()); }
    int32_t width() const { return info()->width; }
    int32_t height() const { return info()->height; }
    int32_t pixelBytes() const { return info()->bufferbpp <= 8 ? 1 : 4; }
    ImageEntry entry() const { return ImageEntry{info(), pixels.data(), rowbytes}; }

    uint32_t pixel(int32_t x, int32_t y) const { return read(pixels.data(), rowbytes, x, y); }
    void setPixel(int32_t x, int32_t y, uint32_t v) {
        uint8_t* at = pixels.data() + static_cast<size_t>(y) * rowbytes + x * pixelBytes();
        if (pixelBytes() == 1)
            *at = uint8_t(v);
        else
            memcpy(at, &v, 4);
    }
    uint32_t read(const uint8_t* base, int32_t pitch, int32_t x, int32_t y) const {
        const uint8_t* at = base + static_cast<size_t>(y) * pitch + x * pixelBytes();
        if (pixelBytes() == 1) return *at;
        uint32_t v;
        memcpy(&v, at, 4);
        return v;
    }
};

// Base fixture: every test must hand back every block it took.
class ModuleTest : public ::testing::Test {
  protected:
    void SetUp() override {
        m_LiveAtStart = galloc_live_count();
        module_select(0);
    }
    void TearDown() override { EXPECT_EQ(galloc_live_count(), m_LiveAtStart) << "blocks leaked"; }
    int32_t m_LiveAtStart = 0;
};
