// Every raster driver writes every pixel kind through the library and reads
// back what it wrote, with the record describing the file truthfully; and
// each driver describes itself honestly and refuses what it cannot store.

#include "RasterTestSupport.h"

#include "codec/TavixBinding.h"
#include "imaging/galloc.h"

#include <gtest/gtest.h>

#include <cstring>

using namespace rastertest;

namespace {

struct Format {
    const char* driver;
    const char* extension;
    bool paletteAlpha; // a palette entry's alpha is stored in the palette
    int packedOnRead;  // -1: as written; else the fixed value the reader reports
};

// A bitmap's colour table has no alpha: its writer stores a palette image
// with transparency as 32-bit colours, so no format loses alpha.
const Format kFormats[] = {
    {"tga", ".tga", true, -1},
    {"png", ".png", true, 1},
    {"bmp", ".bmp", false, 0},
};

struct Kind {
    const char* label;
    bool indexed;
    bool alpha;        // the frame has non-opaque colours and says so in alphabits
    bool garbageAlpha; // non-opaque colours but alphabits 0: written opaque
    bool packed;
    int width, height;
};

const Kind kKinds[] = {
    {"indexed", true, false, false, false, 17, 13},
    {"indexed with alpha", true, true, false, false, 17, 13},
    {"indexed packed", true, false, false, true, 300, 7},
    {"indexed, one pixel", true, false, false, false, 1, 1},
    {"true colour", false, false, false, false, 19, 11},
    {"true colour with alpha", false, true, false, false, 19, 11},
    {"true colour with unmeant alpha", false, false, true, false, 6, 5},
    {"true colour packed with alpha", false, true, false, true, 261, 4},
    {"true colour, one column", false, true, false, false, 1, 9},
};

// Colours with long repeats (so packing has runs to find) and variety.
uint32_t patternColour(int x, int y, bool alpha) {
    if ((x / 7 + y) % 3 == 0) return alpha ? 0x80336699 : 0xFF336699;
    uint32_t a = alpha ? static_cast<uint32_t>((x * 37 + y * 11) & 255) : 255;
    return a << 24 | (x * 13 & 255) << 16 | (y * 29 & 255) << 8 | ((x ^ y) * 7 & 255);
}

std::vector<uint32_t> patternPalette(int count, bool alpha) {
    std::vector<uint32_t> palette;
    for (int i = 0; i < count; ++i) {
        uint32_t a = alpha ? static_cast<uint32_t>(i * 31 & 255) : 255;
        palette.push_back(a << 24 | (i * 53 & 255) << 16 | (i * 97 & 255) << 8 | (255 - i * 5));
    }
    return palette;
}

std::vector<uint8_t> patternIndices(int width, int height, int count) {
    std::vector<uint8_t> indices;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            indices.push_back(static_cast<uint8_t>((x / 9 + y) % 2 ? 3 : (x * 7 + y * 3) % count));
    return indices;
}

TavixFrame frameFor(const Kind& kind) {
    if (kind.indexed) {
        auto palette = patternPalette(40, kind.alpha || kind.garbageAlpha);
        return indexedFrame(kind.width, kind.height, palette,
                            patternIndices(kind.width, kind.height, 40), kind.alpha ? 8 : 0);
    }
    std::vector<uint32_t> argb;
    for (int y = 0; y < kind.height; ++y)
        for (int x = 0; x < kind.width; ++x)
            argb.push_back(patternColour(x, y, kind.alpha || kind.garbageAlpha));
    return trueColourFrame(kind.width, kind.height, argb, kind.alpha ? 8 : 0);
}

std::vector<uint32_t> expectedColours(const TavixFrame& frame, bool alphaKept) {
    std::vector<uint32_t> colours = zytest::argbPixels(frame);
    if (!alphaKept)
        for (uint32_t& c : colours)
            c |= 0xFF000000u;
    return colours;
}

TEST(RasterRoundTrip, EveryDriverKeepsEveryKindOfPixel) {
    TempFolder folder;
    for (const Format& format : kFormats)
        for (const Kind& kind : kKinds) {
            SCOPED_TRACE(std::string(format.driver) + ": " + kind.label);
            TavixFrame frame = frameFor(kind);
            frame.info->packed = kind.packed;
            std::filesystem::path path = folder / (std::string("image") + format.extension);
            std::string error;
            ASSERT_TRUE(writeImage(path, format.driver, frame, &error)) << error;
            Image back = readImage(path);
            ASSERT_TRUE(back.ok) << back.error;
            EXPECT_EQ(back.driver, driverIndex(format.driver));
            ASSERT_EQ(back.info.width, kind.width);
            ASSERT_EQ(back.info.height, kind.height);
            bool alphaKept = kind.alpha;
            EXPECT_EQ(firstDifference(expectedColours(frame, alphaKept), back.argb), "");
            EXPECT_EQ(back.info.alphabits > 0, alphaKept);
            EXPECT_EQ(back.info.packed,
                      format.packedOnRead < 0 ? int(kind.packed) : format.packedOnRead);
            if (kind.indexed && kind.alpha && !format.paletteAlpha) {
                EXPECT_EQ(back.info.bufferbpp, 32);
                EXPECT_EQ(back.info.bpp, 32);
            } else if (kind.indexed) {
                EXPECT_EQ(back.info.bufferbpp, 8);
                EXPECT_EQ(back.info.bpp, 8);
                EXPECT_EQ(back.indices, patternIndices(kind.width, kind.height, 40));
                EXPECT_GE(back.info.numcolours, 4);
                EXPECT_LE(back.info.numcolours, 40);
            } else {
                EXPECT_EQ(back.info.bufferbpp, 32);
                EXPECT_EQ(back.info.bpp, alphaKept ? 32 : 24);
            }
        }
}

TEST(RasterRoundTrip, PaletteCoversEveryIndexInUse) {
    // A record that claims fewer colours than the pixels use must not lose
    // the colours of the higher indices.
    TempFolder folder;
    for (const Format& format : kFormats) {
        SCOPED_TRACE(format.driver);
        std::vector<uint32_t> palette = patternPalette(12, false);
        std::vector<uint8_t> indices = {0, 11, 5, 11};
        TavixFrame frame = indexedFrame(2, 2, palette, indices, 0);
        frame.info->numcolours = 2;
        std::filesystem::path path = folder / (std::string("few") + format.extension);
        ASSERT_TRUE(writeImage(path, format.driver, frame));
        Image back = readImage(path);
        ASSERT_TRUE(back.ok) << back.error;
        EXPECT_EQ(back.info.numcolours, 12);
        EXPECT_EQ(back.indices, indices);
        EXPECT_EQ(back.argb[1], palette[11]);
    }
}

TEST(RasterRoundTrip, BitmapResolutionIsKept) {
    TempFolder folder;
    TavixFrame frame = trueColourFrame(1, 1, {0xFF102030}, 0);
    frame.info->dpi = 300;
    ASSERT_TRUE(writeImage(folder / "dpi.bmp", "bmp", frame));
    Image back = readImage(folder / "dpi.bmp");
    ASSERT_TRUE(back.ok);
    EXPECT_NEAR(back.info.dpi, 300, 0.05);
}

TEST(RasterDrivers, DescribeThemselvesHonestly) {
    zytest::bindBuiltLibrary();
    struct Expected {
        const char* driver;
        uint32_t formatid;
        bool packed;
        const char* firstExtension;
        const char* description;
    } table[] = {
        {"tga", 0x54474100, true, ".tga", "Targa"},
        {"png", 0x504E4700, true, ".png", "Portable Network Graphics"},
        {"bmp", 0x424D5000, false, ".bmp", "Windows Bitmap"},
    };
    int32_t live = galloc_live_count();
    for (const Expected& e : table) {
        SCOPED_TRACE(e.driver);
        int index = TavixFind(e.driver);
        ASSERT_GE(index, 0);
        TavixSet(index);
        TavixAbout* about = TavixAboutDriver();
        ASSERT_NE(about, nullptr);
        EXPECT_EQ(about->formatid, e.formatid);
        uint32_t caps = about->caps;
        EXPECT_EQ(caps & (kCapRead | kCapWrite | kCapPalette | kCapTrueColour),
                  kCapRead | kCapWrite | kCapPalette | kCapTrueColour);
        EXPECT_EQ(caps & kCapMultiImage, 0u);
        EXPECT_EQ(caps & kCapStartColour, 0u);
        EXPECT_EQ((caps & (kCapPacked | kCapPackedAlt)) != 0, e.packed);
        EXPECT_EQ(about->colourlimit, 256);
        EXPECT_STREQ(about->extensions[0], e.firstExtension);
        EXPECT_STREQ(about->description, e.description);
        EXPECT_STRNE(about->author, "");
        EXPECT_STRNE(about->version, "");
        gfree(about);
    }
    EXPECT_EQ(galloc_live_count(), live);
}

TEST(RasterDrivers, RefuseSeveralImagesWithAReason) {
    TempFolder folder;
    TavixFrame a = trueColourFrame(1, 1, {0xFF000000}, 0);
    TavixFrame b = trueColourFrame(1, 1, {0xFFFFFFFF}, 0);
    for (const Format& format : kFormats) {
        SCOPED_TRACE(format.driver);
        MessageCapture messages;
        std::string error;
        std::filesystem::path path = folder / (std::string("two") + format.extension);
        EXPECT_FALSE(TavixWriteFile(path.string(), driverIndex(format.driver), {&a, &b}, error));
        EXPECT_NE(messages.text().find("one image per file"), std::string::npos) << messages.text();
    }
}

TEST(RasterDrivers, TargaRefusesSidesItsHeaderCannotHold) {
    TempFolder folder;
    TavixFrame wide = trueColourFrame(70000, 1, std::vector<uint32_t>(70000, 0xFF000000), 0);
    MessageCapture messages;
    EXPECT_FALSE(writeImage(folder / "wide.tga", "tga", wide));
    EXPECT_NE(messages.text().find("65535"), std::string::npos) << messages.text();
}

// The writer's choice of layout, seen in the bytes other tools will read.
TEST(RasterDrivers, WrittenLayoutsAreTheDocumentedOnes) {
    TempFolder folder;
    TavixFrame opaque = trueColourFrame(2, 1, {0xFF010203, 0xFF040506}, 8);
    TavixFrame clear = trueColourFrame(2, 1, {0x80010203, 0xFF040506}, 8);
    TavixFrame mapped = indexedFrame(2, 1, {0xFF010203, 0x40040506}, {0, 1}, 8);
    TavixFrame solidMapped = indexedFrame(2, 1, {0xFF010203, 0xFF040506}, {0, 1}, 8);
    struct Case {
        const char* driver;
        const TavixFrame* frame;
        size_t at; // offset of the byte that tells the depth
        uint8_t depth;
    } cases[] = {
        {"tga", &opaque, 16, 24}, {"tga", &clear, 16, 32}, {"tga", &mapped, 7, 32},
        {"bmp", &opaque, 28, 24}, {"bmp", &clear, 28, 32}, {"bmp", &solidMapped, 28, 8},
        {"bmp", &mapped, 28, 32}, // a colour table has no alpha: 32-bit colours instead
        {"png", &opaque, 25, 2},  {"png", &clear, 25, 6},  {"png", &mapped, 25, 3},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.driver) + " at " + std::to_string(c.at));
        std::filesystem::path path = folder / (std::string("layout.") + c.driver);
        ASSERT_TRUE(writeImage(path, c.driver, *c.frame));
        std::vector<uint8_t> bytes = readBytes(path);
        ASSERT_GT(bytes.size(), c.at);
        EXPECT_EQ(bytes[c.at], c.depth);
    }
    // Targa rows run top to bottom and say so (descriptor bit 5), so that
    // viewers which ignore a bottom-left origin still show them upright.
    ASSERT_TRUE(writeImage(folder / "origin.tga", "tga", clear));
    std::vector<uint8_t> tga = readBytes(folder / "origin.tga");
    EXPECT_EQ(tga[17], 0x28); // top-left origin, 8 alpha bits
    EXPECT_EQ(tga[18], 0x03); // first stored pixel: the top row's first, blue first
    // The alpha-carrying bitmap uses the version 4 header with an alpha mask.
    ASSERT_TRUE(writeImage(folder / "solid.bmp", "bmp", solidMapped));
    std::vector<uint8_t> bmp = readBytes(folder / "solid.bmp"); // 40-byte header
    EXPECT_EQ(bmp[14], 40);
    ASSERT_TRUE(writeImage(folder / "alpha.bmp", "bmp", clear));
    bmp = readBytes(folder / "alpha.bmp");
    EXPECT_EQ(bmp[14], 108);
    EXPECT_EQ(bmp[30], 3);             // BI_BITFIELDS
    EXPECT_EQ(bmp[14 + 52 + 3], 0xFF); // alpha mask 0xFF000000
}

TEST(RasterDetection, ContentDecidesForSignaturesAndTheNameForTarga) {
    TempFolder folder;
    TavixFrame frame = trueColourFrame(3, 2, std::vector<uint32_t>(6, 0xFF00FF00), 0);
    ASSERT_TRUE(writeImage(folder / "a.png", "png", frame));
    ASSERT_TRUE(writeImage(folder / "a.bmp", "bmp", frame));
    ASSERT_TRUE(writeImage(folder / "a.tga", "tga", frame));
    std::filesystem::copy_file(folder / "a.png", folder / "png.dat");
    std::filesystem::copy_file(folder / "a.bmp", folder / "bmp.dat");
    std::filesystem::copy_file(folder / "a.tga", folder / "tga.dat");
    std::filesystem::copy_file(folder / "a.tga", folder / "UPPER.TGA");
    std::filesystem::copy_file(folder / "a.png", folder / "png.tga");
    struct Case {
        const char* file;
        const char* driver; // null: no driver may claim it
    } cases[] = {
        {"png.dat", "png"},   {"bmp.dat", "bmp"}, {"tga.dat", nullptr},
        {"UPPER.TGA", "tga"}, {"png.tga", "png"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.file);
        Image image = readImage(folder / c.file);
        if (!c.driver) {
            EXPECT_FALSE(image.ok);
            continue;
        }
        ASSERT_TRUE(image.ok) << image.error;
        EXPECT_EQ(image.driver, driverIndex(c.driver));
    }
}

} // namespace
