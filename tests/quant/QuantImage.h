#pragma once
// 32-bit test images for the quantizer tests, and the error of a remap.

#include "imaging/galloc.h"
#include "imaging/quant/quant.h"
#include "imaging/quant/remap.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

struct ArgbImage {
    TavixInfo info{};
    std::vector<uint32_t> pixels;

    ArgbImage(int32_t w, int32_t h, uint32_t fill = 0xFF000000) : pixels(size_t(w) * h, fill) {
        info.size = sizeof(TavixInfo);
        info.version = kTavixInfoVersion;
        info.width = w;
        info.height = h;
        info.bufferbpp = info.bpp = 32;
    }
    uint32_t& at(int32_t x, int32_t y) { return pixels[size_t(y) * info.width + x]; }
    int32_t rowbytes() const { return info.width * 4; }

    // A smooth colour field with some noise: many distinct colours.
    static ArgbImage gradient(int32_t w, int32_t h) {
        ArgbImage img(w, h);
        uint32_t seed = 12345;
        for (int32_t y = 0; y < h; ++y)
            for (int32_t x = 0; x < w; ++x) {
                seed = seed * 1103515245u + 12345u;
                uint32_t r = (x * 255 / (w - 1)), g = (y * 255 / (h - 1)),
                         b = ((x + y) * 97 + ((seed >> 16) & 31)) & 0xFF;
                img.at(x, y) = 0xFF000000u | (r << 16) | (g << 8) | b;
            }
        return img;
    }
};

// Squared RGB error of `image` mapped onto `palette` by nearest colour.
inline double remapError(const ArgbImage& image, const uint32_t* palette, int32_t n,
                         const QuantInverseMap* map = nullptr) {
    uint32_t full[256] = {};
    uint8_t used[256] = {};
    for (int32_t i = 0; i < n; ++i) {
        full[i] = palette[i];
        used[i] = 1;
    }
    std::vector<uint8_t> indices(image.pixels.size());
    EXPECT_EQ(quant_remap(&image.info, image.pixels.data(), image.rowbytes(), full, used, 0, map, 0,
                          indices.data(), image.info.width),
              1);
    double error = 0;
    for (size_t i = 0; i < indices.size(); ++i)
        for (int shift = 0; shift < 24; shift += 8) {
            double d = double((image.pixels[i] >> shift) & 0xFF) -
                       double((full[indices[i]] >> shift) & 0xFF);
            error += d * d;
        }
    return error;
}

class QuantTest : public ::testing::Test {
  protected:
    void SetUp() override { m_Live = galloc_live_count(); }
    void TearDown() override {
        quant_select(0);
        EXPECT_EQ(galloc_live_count(), m_Live) << "blocks leaked";
    }
    // Palette of quantizer `index` for the images, with the count made.
    std::vector<uint32_t> run(int32_t index, const std::vector<const ArgbImage*>& images, int32_t k,
                              QuantInverseMap** map = nullptr) {
        quant_select(index);
        QuantInstance* q = quant_begin();
        EXPECT_NE(q, nullptr);
        for (const ArgbImage* image : images)
            EXPECT_EQ(quant_add_image(q, &image->info, image->pixels.data(), image->rowbytes()), 1);
        int32_t count = -1;
        uint32_t* palette = quant_make_palette(q, k, map, &count);
        std::vector<uint32_t> out;
        if (palette) out.assign(palette, palette + count);
        if (palette) gfree(palette);
        return out;
    }
    int32_t m_Live = 0;
};
