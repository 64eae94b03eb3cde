// The quantizer table, its protocol, the Wu family, Exact, Tw, and the
// quality of the refining quantizers against Wu.

#include "tests/quant/QuantImage.h"
#include "tests/support/PrintCapture.h"

#include <cstdlib>
#include <map>
#include <string>

namespace {

struct Row {
    int32_t index;
    const char* name;
    const char* description;
    const char* version;
    uint32_t magic;
    uint32_t flags;
};

const Row kRows[] = {
    {0, "Nil", "Nil", "1.03", 0x4E494C43, 4},
    {1, "Wu", "Wu's 666", "1.05", 0x57554352, 1},
    {2, "Tw", "Tarvos Wu", "1.03", 0x54525755, 0},
    {3, "Wu777", "Wu's 777", "1.05", 0x57554352, 1},
    {4, "MQ", "Mirel Quant", "1.00", 0x4D495251, 0},
    {5, "Nil", "Nil", "1.03", 0x4E494C43, 4},
    {6, "Nil", "Nil", "1.03", 0x4E494C43, 4},
    {7, "Exact", "Exact Histogram", "1.06", 0x58414354, 0},
    {8, "4D Wu", "4D Wu with alpha", "1.11", 0x414C5048, 0},
    {9, "Wu555", "Wu's 555", "1.05", 0x57554352, 1},
    {10, "Wu Ve", "Wu Ve", "1.01", 0x57555645, 0},
    {11, "Lloyd", "Lloyd Histogram", "1.00", 0x4C4F5944, 0},
};

TEST_F(QuantTest, TableDescribesTwelveQuantizers) {
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.index);
        EXPECT_EQ(quant_select(row.index), row.index);
        QuantDescriptor* d = quant_describe();
        ASSERT_NE(d, nullptr);
        EXPECT_EQ(d->magic, row.magic);
        EXPECT_EQ(d->size, 104u);
        EXPECT_EQ(d->interfaceVersion, 169u);
        EXPECT_EQ(d->flags, row.flags);
        EXPECT_STREQ(d->name, row.name);
        EXPECT_STREQ(d->description, row.description);
        EXPECT_STREQ(d->version, row.version);
        gfree(d);
    }
}

TEST_F(QuantTest, SelectionOutsideTheTableFallsBackToNull) {
    for (int32_t index : {12, -1, 1000}) {
        quant_select(3);
        EXPECT_EQ(quant_select(index), 0);
        EXPECT_EQ(quant_current(), 0);
        EXPECT_EQ(quant_begin(), nullptr);
    }
    EXPECT_EQ(quant_find("lloyd"), 11);
    EXPECT_EQ(quant_find("WU"), 1);
    EXPECT_EQ(quant_find("4d wu"), 8);
    EXPECT_EQ(quant_find("octree"), 0);
}

TEST_F(QuantTest, NullQuantizerStoresNullAndZero) {
    QuantInverseMap* map = reinterpret_cast<QuantInverseMap*>(&m_Live);
    int32_t count = 7;
    quant_select(5);
    EXPECT_EQ(quant_make_palette(quant_begin(), 256, &map, &count), nullptr);
    EXPECT_EQ(map, nullptr);
    EXPECT_EQ(count, 0);
}

TEST_F(QuantTest, OneColourGivesOneColour) {
    ArgbImage image(7, 5, 0x80123456);
    for (int32_t index : {1, 3, 9, 10, 11, 4, 8, 7}) {
        SCOPED_TRACE(index);
        std::vector<uint32_t> palette = run(index, {&image}, 256);
        ASSERT_EQ(palette.size(), 1u);
        // Alpha is ignored by the colour-cube methods, kept by the others.
        uint32_t alpha = index == 8 || index == 7 ? 0x80000000u : 0xFF000000u;
        EXPECT_EQ(palette[0], alpha | 0x123456u);
    }
}

TEST_F(QuantTest, OneEntryIsTheMeanColour) {
    ArgbImage image(2, 1);
    image.at(0, 0) = 0x00102030;
    image.at(1, 0) = 0x40203041;
    for (int32_t index : {1, 3, 9, 10, 11}) {
        std::vector<uint32_t> palette = run(index, {&image}, 1);
        ASSERT_EQ(palette.size(), 1u);
        EXPECT_EQ(palette[0], 0xFF182838u) << index;
    }
}

TEST_F(QuantTest, EightBitImageIsRefusedAndChangesNothing) {
    ArgbImage image(3, 3, 0xFF445566);
    TavixInfo indexed = image.info;
    indexed.bufferbpp = indexed.bpp = 8;
    std::vector<uint8_t> indices(9, 1);
    quant_select(1);
    QuantInstance* q = quant_begin();
    EXPECT_EQ(quant_add_image(q, &indexed, indices.data(), 3), 0);
    EXPECT_EQ(quant_add_image(q, &image.info, image.pixels.data(), image.rowbytes()), 1);
    int32_t count = 0;
    uint32_t* palette = quant_make_palette(q, 256, nullptr, &count);
    ASSERT_EQ(count, 1);
    EXPECT_EQ(palette[0], 0xFF445566u);
    gfree(palette);
}

// Each palette entry is the truncated mean of the pixels the map sends to
// it, so the map's cells and the boxes behind the palette agree.
TEST_F(QuantTest, InverseMapAgreesWithTheBoxes) {
    ArgbImage image = ArgbImage::gradient(61, 47);
    const struct {
        int32_t index;
        uint32_t size;
        int bits;
    } cases[] = {{9, 32784, 5}, {1, 262160, 6}, {3, 2097168, 7}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.index);
        QuantInverseMap* map = nullptr;
        std::vector<uint32_t> palette = run(c.index, {&image}, 40, &map);
        ASSERT_NE(map, nullptr);
        EXPECT_EQ(memcmp(map->code, "WVNI", 4), 0);
        EXPECT_EQ(map->size, c.size);
        EXPECT_EQ(map->bits[0], c.bits);
        EXPECT_EQ(map->bits[2], c.bits);
        std::map<int, std::array<uint64_t, 4>> sums;
        for (uint32_t p : image.pixels) {
            auto& s = sums[quant_map_lookup(map, p)];
            s[0] += (p >> 16) & 0xFF, s[1] += (p >> 8) & 0xFF, s[2] += p & 0xFF, s[3] += 1;
        }
        for (const auto& [k, s] : sums) {
            ASSERT_LT(size_t(k), palette.size());
            uint32_t mean = 0xFF000000u | uint32_t(s[0] / s[3]) << 16 | uint32_t(s[1] / s[3]) << 8 |
                            uint32_t(s[2] / s[3]);
            EXPECT_EQ(palette[k], mean) << k;
        }
        gfree(map);
    }
}

TEST_F(QuantTest, Wu777FailsCleanlyWithoutMemory) {
    setenv("GALLOCMAX", "3", 1);
    galloc_reload_limit();
    quant_select(3);
    PrintCapture capture;
    EXPECT_EQ(quant_begin(), nullptr);
    unsetenv("GALLOCMAX");
    galloc_reload_limit();
    ASSERT_FALSE(capture.lines().empty());
    EXPECT_EQ(capture.lines().back(), "Wu777 - not enough memory for the colour cube\n");
}

TEST_F(QuantTest, ExactKeepsFirstSeenOrderAndCounts) {
    // Seen in the order A B C D; counts 1, 3, 2, 1.
    ArgbImage image(7, 1);
    const uint32_t A = 0xFF0000AA, B = 0x800000BB, C = 0xFF0000CC, D = 0xFF0000DD;
    const uint32_t order[] = {A, B, C, B, C, B, D};
    for (int x = 0; x < 7; ++x)
        image.at(x, 0) = order[x];
    EXPECT_EQ(run(7, {&image}, 2), (std::vector<uint32_t>{B, C}));
    EXPECT_EQ(run(7, {&image}, 3).size(), 3u);
    EXPECT_EQ(run(7, {&image}, 256), (std::vector<uint32_t>{A, B, C, D}));
}

TEST_F(QuantTest, ExactTakesAnIndexedImageWithItsPalette) {
    ArgbImage image(2, 1);
    TavixInfo info = image.info;
    info.bufferbpp = 8;
    for (int i = 0; i < 256; ++i)
        info.colours[i] = TavixColour{uint8_t(i), 0, 0, 255};
    const uint8_t indices[2] = {9, 9};
    quant_select(7);
    QuantInstance* q = quant_begin();
    EXPECT_EQ(quant_add_image(q, &info, indices, 2), 1);
    int32_t count = 0;
    uint32_t* palette = quant_make_palette(q, 3, nullptr, &count);
    ASSERT_EQ(count, 3);
    // Colour 9 (used) and two unused ones, in palette order.
    EXPECT_EQ(palette[0], 0xFF000000u);
    EXPECT_EQ(palette[1], 0xFF000001u);
    EXPECT_EQ(palette[2], 0xFF000009u);
    gfree(palette);
}

// Alpha slots: transparent, half and opaque pixels in varying numbers.
TEST_F(QuantTest, TwMakesAtMostKColoursWithSlotAlphas) {
    ArgbImage image = ArgbImage::gradient(40, 30);
    for (int32_t y = 0; y < 30; ++y)
        for (int32_t x = 0; x < 40; ++x)
            image.at(x, y) = (image.at(x, y) & 0xFFFFFF) | (x < 10   ? 0u
                                                            : x < 15 ? 0x70000000u
                                                                     : 0xFF000000u);
    quant_set_diagnostics(true);
    for (int32_t k : {1, 2, 3, 16, 100, 256}) {
        SCOPED_TRACE(k);
        PrintCapture capture;
        std::vector<uint32_t> palette = run(2, {&image}, k);
        EXPECT_LE(palette.size(), size_t(k));
        EXPECT_GE(palette.size(), 1u);
        for (uint32_t c : palette) {
            uint32_t a = c >> 24;
            EXPECT_TRUE(a == 0 || a == 0x70 || a == 0xFF) << std::hex << c;
        }
        std::string all;
        for (const std::string& line : capture.lines())
            all += line;
        EXPECT_NE(
            all.find(
                "TW alpha slot 0 count 300 TW alpha slot 3 count 150 TW alpha slot 7 count 750 "),
            std::string::npos);
        EXPECT_NE(all.find("alpha 255 want "), std::string::npos);
        EXPECT_EQ(all.back(), '\n');
    }
    quant_set_diagnostics(false);
}

// The refining quantizers start from or improve on Wu's boxes; on a busy
// image none may do worse than Wu 666 mapped through its own map.
TEST_F(QuantTest, RefiningQuantizersAreNoWorseThanWu) {
    ArgbImage image = ArgbImage::gradient(96, 80);
    QuantInverseMap* map = nullptr;
    std::vector<uint32_t> wu = run(1, {&image}, 64, &map);
    const double wuError = remapError(image, wu.data(), int32_t(wu.size()), map);
    gfree(map);
    for (int32_t index : {4, 10, 11}) {
        std::vector<uint32_t> palette = run(index, {&image}, 64);
        EXPECT_EQ(palette.size(), 64u);
        EXPECT_LE(remapError(image, palette.data(), int32_t(palette.size())), wuError) << index;
    }
}

TEST_F(QuantTest, FourDimensionalWuSeparatesAlpha) {
    ArgbImage image(4, 1);
    image.at(0, 0) = image.at(1, 0) = 0x00FF0000;
    image.at(2, 0) = image.at(3, 0) = 0xFFFF0000;
    std::vector<uint32_t> palette = run(8, {&image}, 4);
    ASSERT_EQ(palette.size(), 2u);
    EXPECT_NE(palette[0] >> 24, palette[1] >> 24);
}

} // namespace
