// Files built byte by byte (never by our own writers) for the layouts that
// are easy to get wrong: packed runs that cross rows, both row orders,
// 16-bit colours, colour masks, small palettes, packed bitmaps, PNG's
// palette transparency, grey with alpha and 16-bit channels.

#include "RasterTestSupport.h"

#include <gtest/gtest.h>

#include <cstring>

using namespace rastertest;

namespace {

constexpr uint32_t R = 0xFFFF0000, G = 0xFF00FF00, B = 0xFF0000FF, W = 0xFFFFFFFF, K = 0xFF000000;

// What the reader must report about a fixture.
struct Shape {
    int width, height, bufferbpp, bpp, packed, alphabits;
};

struct Fixture {
    const char* label;
    const char* file;
    std::vector<uint8_t> bytes;
    Shape shape;
    std::vector<uint32_t> argb;        // top row first
    std::vector<uint8_t> indices = {}; // checked when not empty
};

// --- Targa -------------------------------------------------------------

std::vector<uint8_t> tgaHeader(int idLength, int mapType, int type, int mapFirst, int mapLength,
                               int mapBits, int width, int height, int depth, int descriptor) {
    ByteBuilder b;
    b.u8(idLength).u8(mapType).u8(type).u16(mapFirst).u16(mapLength).u8(mapBits);
    b.u16(0).u16(0).u16(width).u16(height).u8(depth).u8(descriptor);
    return b.bytes();
}

std::vector<Fixture> targaFixtures() {
    std::vector<Fixture> list;
    {
        // 3 x 2, bottom row stored first; a run of four red pixels fills the
        // bottom row and spills into the top row.
        ByteBuilder b;
        b.raw(tgaHeader(0, 0, 10, 0, 0, 0, 3, 2, 24, 0));
        b.u8(0x83).u8(0).u8(0).u8(255);                     // run: 4 x red
        b.u8(0x01).u8(0).u8(255).u8(0).u8(255).u8(0).u8(0); // raw: green, blue
        list.push_back({"RLE run crossing rows, bottom-left",
                        "run.tga",
                        b.bytes(),
                        {3, 2, 32, 24, 1, 0},
                        {R, G, B, R, R, R}});
    }
    {
        ByteBuilder b;
        b.raw(tgaHeader(0, 0, 2, 0, 0, 0, 3, 2, 24, 0x20));
        b.bgr({R, G, B, W, K, R});
        list.push_back(
            {"top-left origin", "top.tga", b.bytes(), {3, 2, 32, 24, 0, 0}, {R, G, B, W, K, R}});
    }
    {
        ByteBuilder b;
        b.raw(tgaHeader(0, 0, 2, 0, 0, 0, 2, 1, 24, 0x30));
        b.bgr({R, G});
        list.push_back(
            {"right-to-left, top-left", "rtl.tga", b.bytes(), {2, 1, 32, 24, 0, 0}, {G, R}});
    }
    {
        // 1555: the top bit is alpha when the descriptor grants one alpha bit.
        ByteBuilder b;
        b.raw(tgaHeader(0, 0, 2, 0, 0, 0, 2, 2, 16, 0x21));
        b.u16(0x7C00).u16(0x83E0).u16(0x801F).u16(0xFFFF);
        list.push_back({"16-bit 1555 with alpha",
                        "a1555.tga",
                        b.bytes(),
                        {2, 2, 32, 16, 0, 1},
                        {0x00FF0000, G, B, W}});
    }
    {
        ByteBuilder b;
        b.raw(tgaHeader(0, 0, 2, 0, 0, 0, 2, 1, 16, 0x20));
        b.u16(0x7C00).u16(0x0010); // 0x10 of 31 blue -> 132
        list.push_back({"16-bit without alpha bit",
                        "x1555.tga",
                        b.bytes(),
                        {2, 1, 32, 16, 0, 0},
                        {R, 0xFF000084}});
    }
    {
        // An image ID to skip, and a colour map that starts at index 2 with
        // 16-bit entries.
        ByteBuilder b;
        b.raw(tgaHeader(5, 1, 1, 2, 2, 16, 2, 1, 8, 0x20)).text("hello");
        b.u16(0x7C00).u16(0x03E0);
        b.u8(3).u8(2);
        list.push_back({"colour map from index 2 after an image ID",
                        "map.tga",
                        b.bytes(),
                        {2, 1, 8, 8, 0, 0},
                        {G, R},
                        {3, 2}});
    }
    {
        ByteBuilder b;
        b.raw(tgaHeader(0, 1, 9, 0, 2, 32, 4, 1, 8, 0x28));
        b.u32(0x80FF0000).u32(0xFF00FF00);
        b.u8(0x82).u8(1).u8(0x00).u8(0);
        list.push_back({"packed colour map with alpha entries",
                        "rlemap.tga",
                        b.bytes(),
                        {4, 1, 8, 8, 1, 8},
                        {G, G, G, 0x80FF0000},
                        {1, 1, 1, 0}});
    }
    {
        ByteBuilder b;
        b.raw(tgaHeader(0, 0, 11, 0, 0, 0, 3, 1, 8, 0x20));
        b.u8(0x81).u8(0x40).u8(0x00).u8(0xC0);
        list.push_back({"packed greyscale",
                        "grey.tga",
                        b.bytes(),
                        {3, 1, 32, 8, 1, 0},
                        {0xFF404040, 0xFF404040, 0xFFC0C0C0}});
    }
    {
        // A colour map on a true-colour image is skipped, not applied.
        ByteBuilder b;
        b.raw(tgaHeader(0, 1, 2, 0, 3, 24, 1, 1, 32, 0x28)).zeros(9);
        b.u8(1).u8(2).u8(3).u8(0x7F);
        list.push_back({"32-bit after an unused colour map",
                        "skipmap.tga",
                        b.bytes(),
                        {1, 1, 32, 32, 0, 8},
                        {0x7F030201}});
    }
    {
        // 32 bits, descriptor says no alpha and every alpha byte is zero.
        ByteBuilder b;
        b.raw(tgaHeader(0, 0, 2, 0, 0, 0, 2, 1, 32, 0x20));
        b.u32(0x00112233).u32(0x00445566);
        list.push_back({"32-bit with unused alpha bytes",
                        "x8888.tga",
                        b.bytes(),
                        {2, 1, 32, 32, 0, 0},
                        {0xFF112233, 0xFF445566}});
    }
    return list;
}

// --- Windows Bitmap ------------------------------------------------------

// File header + 40-byte INFO header; `extra` bytes (masks, palette) follow.
ByteBuilder bmpHeaders(int width, int height, int bpp, uint32_t compression, uint32_t colours,
                       size_t extra, uint32_t headerSize = 40) {
    ByteBuilder b;
    b.text("BM").u32(0).u32(0).u32(static_cast<uint32_t>(14 + headerSize + extra));
    b.u32(headerSize).u32(width).u32(height).u16(1).u16(bpp).u32(compression);
    b.u32(0).u32(2835).u32(2835).u32(colours).u32(0);
    return b;
}

std::vector<Fixture> bitmapFixtures() {
    std::vector<Fixture> list;
    {
        // 24-bit, 3 pixels = 9 bytes + 3 padding per row, bottom row first.
        ByteBuilder b = bmpHeaders(3, 2, 24, 0, 0, 0);
        b.bgr({W, K, R});
        b.zeros(3);
        b.bgr({R, G, B});
        b.zeros(3);
        list.push_back({"24-bit bottom-up with padding",
                        "up.bmp",
                        b.bytes(),
                        {3, 2, 32, 24, 0, 0},
                        {R, G, B, W, K, R}});
    }
    {
        ByteBuilder b = bmpHeaders(3, -2, 24, 0, 0, 0);
        b.bgr({R, G, B});
        b.zeros(3);
        b.bgr({W, K, R});
        b.zeros(3);
        list.push_back(
            {"24-bit top-down", "down.bmp", b.bytes(), {3, 2, 32, 24, 0, 0}, {R, G, B, W, K, R}});
    }
    {
        // Masks after a 40-byte header, in an unusual channel order.
        ByteBuilder b = bmpHeaders(2, 1, 32, 3, 0, 12);
        b.u32(0x000000FF).u32(0x0000FF00).u32(0x00FF0000);
        b.u32(0x00332211).u32(0xAA0000FF);
        list.push_back({"32-bit BITFIELDS, red in the low byte",
                        "bf32.bmp",
                        b.bytes(),
                        {2, 1, 32, 32, 0, 0},
                        {0xFF112233, R}});
    }
    {
        ByteBuilder b = bmpHeaders(2, 1, 16, 3, 0, 12);
        b.u32(0xF800).u32(0x07E0).u32(0x001F);
        b.u16(0xF800).u16(0x0410); // green 32 of 63 -> 130, blue 16 of 31 -> 132
        list.push_back(
            {"16-bit 565 BITFIELDS", "bf16.bmp", b.bytes(), {2, 1, 32, 16, 0, 0}, {R, 0xFF008284}});
    }
    {
        ByteBuilder b = bmpHeaders(1, 1, 16, 0, 0, 0);
        b.u16(0x03E0).u16(0);
        list.push_back({"16-bit 555 BI_RGB", "rgb16.bmp", b.bytes(), {1, 1, 32, 16, 0, 0}, {G}});
    }
    {
        // Narrow channels widen by bit replication: red 28 of 31 -> 231,
        // blue 3 of 31 -> 24 (rounding would give 230 and 25).
        ByteBuilder b = bmpHeaders(1, 1, 16, 0, 0, 0);
        b.u16(28 << 10 | 3).u16(0);
        list.push_back({"16-bit 555 bit replication",
                        "rep16.bmp",
                        b.bytes(),
                        {1, 1, 32, 16, 0, 0},
                        {0xFFE70018}});
    }
    {
        // Version 5 header with an alpha mask.
        ByteBuilder b = bmpHeaders(2, 1, 32, 3, 0, 0, 124);
        b.u32(0x00FF0000).u32(0x0000FF00).u32(0x000000FF).u32(0xFF000000).zeros(124 - 56);
        b.u32(0x40FF0000).u32(0xFF00FF00);
        list.push_back(
            {"32-bit V5 with alpha", "v5.bmp", b.bytes(), {2, 1, 32, 32, 0, 8}, {0x40FF0000, G}});
    }
    {
        ByteBuilder b = bmpHeaders(10, 1, 1, 0, 2, 8);
        b.u32(0x000000).u32(0xFFFFFF);
        b.u8(0b10110000).u8(0b01000000).u16(0);
        list.push_back({"1-bit",
                        "one.bmp",
                        b.bytes(),
                        {10, 1, 8, 1, 0, 0},
                        {W, K, W, W, K, K, K, K, K, W},
                        {1, 0, 1, 1, 0, 0, 0, 0, 0, 1}});
    }
    {
        ByteBuilder b = bmpHeaders(3, 1, 4, 0, 3, 12);
        b.u32(0xFF0000).u32(0x00FF00).u32(0x0000FF);
        b.u8(0x21).u8(0x00).u16(0);
        list.push_back({"4-bit with three colours",
                        "four.bmp",
                        b.bytes(),
                        {3, 1, 8, 4, 0, 0},
                        {B, G, R},
                        {2, 1, 0}});
    }
    {
        // RLE8 4 x 3: a run, a literal stretch with its pad byte, end of
        // line, a jump, end of bitmap. Pixels never written stay index 0.
        ByteBuilder b = bmpHeaders(4, 3, 8, 1, 3, 12);
        b.u32(0x000000).u32(0xFF0000).u32(0x00FF00);
        b.u8(2).u8(1).u8(0).u8(0);             // bottom row: 1 1, end of line
        b.u8(0).u8(3).u8(2).u8(1).u8(2).u8(0); // middle row: literal 2 1 2 + pad
        b.u8(0).u8(2).u8(0).u8(1);             // jump up 1, staying at x = 3
        b.u8(1).u8(2).u8(0).u8(1);             // top row x=3: one 2, end of bitmap
        list.push_back({"RLE8 with literal, jump and early end",
                        "rle8.bmp",
                        b.bytes(),
                        {4, 3, 8, 8, 1, 0},
                        {K, K, K, G, G, R, G, K, R, R, K, K},
                        {0, 0, 0, 2, 2, 1, 2, 0, 1, 1, 0, 0}});
    }
    {
        ByteBuilder b = bmpHeaders(5, 1, 4, 2, 2, 8);
        b.u32(0x000000).u32(0x0000FF);
        b.u8(3).u8(0x10).u8(0).u8(3).u8(0x01).u8(0x00).u8(0).u8(1);
        list.push_back({"RLE4 run and literal",
                        "rle4.bmp",
                        b.bytes(),
                        {5, 1, 8, 4, 1, 0},
                        {B, K, B, K, B},
                        {1, 0, 1, 0, 1}});
    }
    {
        // OS/2 core header: 16-bit sizes and 3-byte palette entries.
        ByteBuilder b;
        b.text("BM").u32(0).u32(0).u32(14 + 12 + 6);
        b.u32(12).u16(2).u16(1).u16(1).u16(8);
        b.u8(0).u8(0).u8(255).u8(255).u8(0).u8(0);
        b.u8(1).u8(0).u16(0);
        list.push_back({"core header", "core.bmp", b.bytes(), {2, 1, 8, 8, 0, 0}, {B, R}, {1, 0}});
    }
    return list;
}

// --- PNG ------------------------------------------------------------------

std::vector<Fixture> pngFixtures() {
    std::vector<Fixture> list;
    {
        // 2-bit palette of four with a tRNS shorter than the palette.
        PngBuilder p;
        p.header(4, 1, 2, 3);
        p.chunk("PLTE", {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 255});
        p.chunk("tRNS", {0, 128});
        p.imageData({0, 0b00011011});
        p.end();
        list.push_back({"palette with tRNS",
                        "trns.png",
                        p.bytes(),
                        {4, 1, 8, 2, 1, 8},
                        {0x00FF0000, 0x8000FF00, B, W},
                        {0, 1, 2, 3}});
    }
    {
        PngBuilder p;
        p.header(2, 1, 8, 4);
        p.imageData({0, 0x20, 0x80, 0xF0, 0xFF});
        p.end();
        list.push_back({"grey with alpha",
                        "ga.png",
                        p.bytes(),
                        {2, 1, 32, 16, 1, 8},
                        {0x80202020, 0xFFF0F0F0}});
    }
    {
        PngBuilder p;
        p.header(2, 1, 16, 2);
        p.imageData({0, 0xFF, 0xFF, 0x12, 0x34, 0x00, 0x00, 0x80, 0x80, 0x00, 0x00, 0xFF, 0xFF});
        p.end();
        list.push_back({"16-bit RGB scaled to 8",
                        "rgb16.png",
                        p.bytes(),
                        {2, 1, 32, 48, 1, 0},
                        {0xFFFF1200, 0xFF8000FF}});
    }
    {
        PngBuilder p;
        p.header(3, 1, 1, 0);
        p.imageData({0, 0b10100000});
        p.end();
        list.push_back({"1-bit grey", "grey1.png", p.bytes(), {3, 1, 32, 1, 1, 0}, {W, K, W}});
    }
    {
        // RGB with a tRNS colour key: exactly that colour turns transparent.
        PngBuilder p;
        p.header(2, 1, 8, 2);
        p.chunk("tRNS", {0, 10, 0, 20, 0, 30});
        p.imageData({0, 10, 20, 30, 10, 20, 31});
        p.end();
        list.push_back({"RGB with colour key",
                        "key.png",
                        p.bytes(),
                        {2, 1, 32, 24, 1, 1},
                        {0x000A141E, 0xFF0A141F}});
    }
    {
        // Adam7 on 2 x 2: pass 1 holds (0,0), pass 6 (1,0), pass 7 the second row.
        PngBuilder p;
        p.header(2, 2, 8, 2, 1);
        p.imageData({0, 255, 0, 0, 0, 0, 255, 0, 0, 0, 0, 255, 255, 255, 255});
        p.end();
        list.push_back(
            {"interlaced RGB", "adam7.png", p.bytes(), {2, 2, 32, 24, 1, 0}, {R, G, B, W}});
    }
    return list;
}

void checkFixtures(const std::vector<Fixture>& fixtures) {
    TempFolder folder;
    for (const Fixture& f : fixtures) {
        SCOPED_TRACE(f.label);
        writeBytes(folder / f.file, f.bytes);
        Image image = readImage(folder / f.file);
        ASSERT_TRUE(image.ok) << image.error;
        const TavixInfo& info = image.info;
        Shape got = {info.width, info.height, info.bufferbpp,
                     info.bpp,   info.packed, info.alphabits};
        EXPECT_EQ(memcmp(&got, &f.shape, sizeof got), 0)
            << "width, height, bufferbpp, bpp, packed, alphabits: " << got.width << ", "
            << got.height << ", " << got.bufferbpp << ", " << got.bpp << ", " << got.packed << ", "
            << got.alphabits;
        EXPECT_EQ(firstDifference(f.argb, image.argb), "");
        if (!f.indices.empty()) {
            EXPECT_EQ(image.indices, f.indices);
        }
    }
}

TEST(RasterFixtures, Targa) {
    checkFixtures(targaFixtures());
}
TEST(RasterFixtures, WindowsBitmap) {
    checkFixtures(bitmapFixtures());
}
TEST(RasterFixtures, Png) {
    checkFixtures(pngFixtures());
}

} // namespace
