// Interoperability with an independent implementation: ImageMagick writes
// PNG, Targa and bitmap files that Zy must read with exactly the pixels
// ImageMagick itself sees in them, and reads the files Zy writes with
// exactly the pixels Zy wrote.

#include "RasterTestSupport.h"

#include <gtest/gtest.h>

using namespace rastertest;

namespace {

constexpr const char* kGradient = "-size 17x13 gradient:red-blue";
constexpr const char* kAlphaGradient = "-size 17x13 gradient:'rgba(255,0,0,1)-rgba(0,0,255,0.2)'";
constexpr const char* kPlasma = "-seed 7 -size 23x19 plasma:fractal";

struct MagickFile {
    const char* label;
    std::string source;  // what convert draws
    const char* options; // how it stores it
    const char* prefix;  // the output format when the extension is not enough ("PNG8:")
    const char* file;
    int bufferbpp;
};

const MagickFile kMagickFiles[] = {
    {"PNG RGB", kGradient, "", "", "rgb.png", 32},
    {"PNG RGBA", kAlphaGradient, "", "", "rgba.png", 32},
    {"PNG plasma", kPlasma, "", "", "plasma.png", 32},
    {"PNG 8-bit palette", kPlasma, "-colors 200", "PNG8:", "pal.png", 8},
    {"PNG palette with transparency", kAlphaGradient, "-colors 40", "PNG8:", "paltrns.png", 8},
    {"PNG grey", kPlasma, "-type Grayscale", "", "grey.png", 32},
    {"PNG 16-bit grey", kPlasma, "-type Grayscale -depth 16", "", "grey16.png", 32},
    {"PNG grey with alpha", kAlphaGradient, "-type GrayscaleAlpha", "", "greya.png", 32},
    {"PNG 16-bit RGBA", kAlphaGradient, "", "PNG64:", "rgba64.png", 32},
    {"PNG interlaced", kPlasma, "-interlace PNG", "", "adam7.png", 32},
    {"Targa bottom-left", kPlasma, "-orient BottomLeft", "", "bl.tga", 32},
    {"Targa top-left", kPlasma, "-orient TopLeft", "", "tl.tga", 32},
    {"Targa RLE", kGradient, "-compress RLE", "", "rle.tga", 32},
    {"Targa RLE top-left", kPlasma, "-compress RLE -orient TopLeft", "", "rletl.tga", 32},
    {"Targa with alpha", kAlphaGradient, "", "", "alpha.tga", 32},
    {"Targa RLE with alpha", kAlphaGradient, "-compress RLE", "", "rlealpha.tga", 32},
    {"Targa colour-mapped", kPlasma, "-type Palette", "", "mapped.tga", 8},
    {"Targa colour-mapped RLE", kPlasma, "-type Palette -compress RLE", "", "rlemapped.tga", 8},
    {"Targa greyscale", kPlasma, "-type Grayscale", "", "grey.tga", 32},
    {"Targa greyscale RLE", kPlasma, "-type Grayscale -compress RLE", "", "rlegrey.tga", 32},
    {"bitmap 24-bit", kPlasma, "", "BMP3:", "rgb.bmp", 32},
    {"bitmap V5 24-bit", kGradient, "", "", "v5.bmp", 32},
    {"bitmap with alpha", kAlphaGradient, "", "", "alpha.bmp", 32},
    {"bitmap 8-bit palette", kPlasma, "-type Palette", "BMP3:", "pal8.bmp", 8},
    {"bitmap 4-bit palette", kPlasma, "-colors 12", "BMP3:", "pal4.bmp", 8},
    {"bitmap 1-bit", kPlasma, "-monochrome", "BMP3:", "mono.bmp", 8},
    {"bitmap RLE8", kPlasma, "-type Palette -compress RLE", "BMP3:", "rle8.bmp", 8},
    {"bitmap OS/2 core header", kPlasma, "-type Palette", "BMP2:", "core.bmp", 8},
};

TEST(RasterInterop, ZyReadsWhatImageMagickWrites) {
    if (!convertTool()) GTEST_SKIP() << "ImageMagick's convert is not installed";
    TempFolder folder;
    for (const MagickFile& m : kMagickFiles) {
        SCOPED_TRACE(m.label);
        std::filesystem::path path = folder / m.file;
        ASSERT_TRUE(runConvert(m.source + " " + m.options + " '" + m.prefix + path.string() + "'"));
        std::vector<uint32_t> magick = magickPixels(path);
        ASSERT_FALSE(magick.empty());
        Image image = readImage(path);
        ASSERT_TRUE(image.ok) << image.error;
        EXPECT_EQ(image.info.bufferbpp, m.bufferbpp);
        EXPECT_EQ(firstDifference(magick, image.argb), "");
    }
}

struct ZyFile {
    const char* label;
    const char* driver;
    const char* file;
    bool indexed, alpha, packed;
};

const ZyFile kZyFiles[] = {
    {"Targa true colour", "tga", "rgb.tga", false, false, false},
    {"Targa with alpha", "tga", "rgba.tga", false, true, false},
    {"Targa RLE with alpha", "tga", "rlergba.tga", false, true, true},
    {"Targa colour-mapped", "tga", "mapped.tga", true, false, false},
    {"Targa colour-mapped RLE", "tga", "rlemapped.tga", true, false, true},
    {"Targa colour-mapped with alpha", "tga", "mappedalpha.tga", true, true, false},
    {"PNG RGB", "png", "rgb.png", false, false, false},
    {"PNG RGBA", "png", "rgba.png", false, true, false},
    {"PNG palette", "png", "pal.png", true, false, false},
    {"PNG palette with alpha", "png", "palalpha.png", true, true, false},
    {"bitmap 24-bit", "bmp", "rgb.bmp", false, false, false},
    {"bitmap with alpha", "bmp", "rgba.bmp", false, true, false},
    {"bitmap palette", "bmp", "pal.bmp", true, false, false},
};

TavixFrame zyFrame(const ZyFile& z, int width, int height) {
    if (z.indexed) {
        std::vector<uint32_t> palette;
        for (uint32_t i = 0; i < 70; ++i)
            palette.push_back((z.alpha ? (i * 29 + 3) & 255 : 255) << 24 | (i * 41 & 255) << 16 |
                              (i * 3) << 8 | (200 - i));
        std::vector<uint8_t> indices;
        for (int i = 0; i < width * height; ++i)
            indices.push_back(static_cast<uint8_t>(i / 3 % 70));
        return indexedFrame(width, height, palette, indices, z.alpha ? 8 : 0);
    }
    std::vector<uint32_t> argb;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            uint32_t a = z.alpha ? static_cast<uint32_t>(x * 19 + y * 7) & 255 : 255;
            argb.push_back(x % 4 == 0 ? (a << 24 | 0x123456)
                                      : a << 24 | (x * 9 & 255) << 16 | (y * 17 & 255) << 8 | 99);
        }
    return trueColourFrame(width, height, argb, z.alpha ? 8 : 0);
}

TEST(RasterInterop, ImageMagickReadsWhatZyWrites) {
    if (!convertTool()) GTEST_SKIP() << "ImageMagick's convert is not installed";
    TempFolder folder;
    for (const ZyFile& z : kZyFiles) {
        SCOPED_TRACE(z.label);
        TavixFrame frame = zyFrame(z, 21, 9);
        frame.info->packed = z.packed;
        std::filesystem::path path = folder / z.file;
        std::string error;
        ASSERT_TRUE(writeImage(path, z.driver, frame, &error)) << error;
        EXPECT_EQ(firstDifference(zytest::argbPixels(frame), magickPixels(path)), "");
    }
}

} // namespace
