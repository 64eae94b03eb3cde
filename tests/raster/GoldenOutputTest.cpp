// Files written by the uncompressed writers stay byte for byte what they
// were: faster I/O must not change a single output byte. The reference
// files in golden/ were written by the library before its I/O was reworked.
// Targa is the one planned exception: its files now store the top-left
// origin (descriptor bit 5) with rows top to bottom, so its references were
// made anew with that change.
//
// ZY_WRITE_GOLDEN=1 rewrites the references instead of comparing (only for
// a deliberate change of a format's output).

#include "RasterTestSupport.h"

#include <gtest/gtest.h>

#include <cstdlib>

using namespace rastertest;

namespace {

uint32_t colourAt(int x, int y, bool alpha) {
    uint32_t a = alpha ? static_cast<uint32_t>((x * 37 + y * 11) & 255) : 255;
    if ((x / 5 + y) % 4 == 0) return a << 24 | 0x336699;
    return a << 24 | (x * 13 & 255) << 16 | (y * 29 & 255) << 8 | ((x ^ y) * 7 & 255);
}

TavixFrame trueColour(int width, int height, bool alpha) {
    std::vector<uint32_t> argb;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            argb.push_back(colourAt(x, y, alpha));
    return trueColourFrame(width, height, argb, alpha ? 8 : 0);
}

TavixFrame indexed(int width, int height, bool alpha) {
    std::vector<uint32_t> palette;
    for (int i = 0; i < 48; ++i)
        palette.push_back((alpha ? (i * 31 & 255) : 255u) << 24 | (i * 53 & 255) << 16 |
                          (i * 97 & 255) << 8 | (255 - i * 5));
    std::vector<uint8_t> indices;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            indices.push_back(static_cast<uint8_t>((x / 6 + y) % 3 ? 7 : (x * 7 + y * 3) % 48));
    return indexedFrame(width, height, palette, indices, alpha ? 8 : 0);
}

struct Case {
    const char* file; // under golden/
    const char* driver;
    bool indexed;
    bool alpha;
    bool packed;
    int width, height;
};

const Case kCases[] = {
    {"rgb24.bmp", "bmp", false, false, false, 37, 23},
    {"argb32.bmp", "bmp", false, true, false, 37, 23},
    {"index8.bmp", "bmp", true, false, false, 37, 23},
    {"rgb24.tga", "tga", false, false, false, 37, 23},
    {"argb32.tga", "tga", false, true, false, 37, 23},
    {"argb32-packed.tga", "tga", false, true, true, 300, 9},
    {"index8.tga", "tga", true, false, false, 37, 23},
    {"index8-alpha-packed.tga", "tga", true, true, true, 300, 9},
    {"argb32.tvx", "tvx", false, true, false, 37, 23},
    {"index8.tvx", "tvx", true, true, false, 37, 23},
    {"argb32.fsh", "newfsh", false, true, false, 37, 23},
    {"index8.fsh", "newfsh", true, false, false, 37, 23},
};

} // namespace

TEST(RasterGoldenOutput, UncompressedWritersKeepEveryByte) {
    const std::filesystem::path golden = ZY_RASTER_GOLDEN;
    const bool rewrite = getenv("ZY_WRITE_GOLDEN") != nullptr;
    TempFolder folder;
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.file);
        TavixFrame frame = c.indexed ? indexed(c.width, c.height, c.alpha)
                                     : trueColour(c.width, c.height, c.alpha);
        frame.info->packed = c.packed;
        snprintf(frame.info->framename, sizeof frame.info->framename, "gold");
        std::filesystem::path path = rewrite ? golden / c.file : folder / c.file;
        std::string error;
        ASSERT_TRUE(writeImage(path, c.driver, frame, &error)) << error;
        if (rewrite) continue;
        std::vector<uint8_t> want = readBytes(golden / c.file);
        std::vector<uint8_t> got = readBytes(path);
        ASSERT_EQ(got.size(), want.size());
        EXPECT_TRUE(got == want) << "the written bytes differ from golden/" << c.file;
    }
}
