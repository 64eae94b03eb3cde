// Reading hand-built shape files: every record type, palette kind and
// attachment, compared field by field with what the published tables say.

#include "ShapeFixtures.h"

#include "imaging/galloc.h"
#include "tavix/drivers/shape/ShapeTail.h"

#include <gtest/gtest.h>

using namespace shapetest;

namespace {

struct Channels {
    int alpha, red, green, blue;
};

const Endian LE{false};
const Endian BE{true};

Blob le16s(std::initializer_list<uint32_t> words) {
    Blob b;
    for (uint32_t w : words)
        LE.u16(b, w);
    return b;
}

// The colours of a DXT colour block by the published rule, for checking.
std::vector<uint32_t> blockColours(uint16_t c0, uint16_t c1, bool dxt1) {
    auto expand = [](uint16_t c, uint32_t& r, uint32_t& g, uint32_t& b) {
        r = (c >> 11) & 31, g = (c >> 5) & 63, b = c & 31;
        r = r << 3 | r >> 2, g = g << 2 | g >> 4, b = b << 3 | b >> 2;
    };
    uint32_t r0, g0, b0, r1, g1, b1;
    expand(c0, r0, g0, b0);
    expand(c1, r1, g1, b1);
    if (c0 > c1 || !dxt1)
        return {argb(255, r0, g0, b0), argb(255, r1, g1, b1),
                argb(255, (2 * r0 + r1) / 3, (2 * g0 + g1) / 3, (2 * b0 + b1) / 3),
                argb(255, (r0 + 2 * r1) / 3, (g0 + 2 * g1) / 3, (b0 + 2 * b1) / 3)};
    return {argb(255, r0, g0, b0), argb(255, r1, g1, b1),
            argb(255, (r0 + r1) / 2, (g0 + g1) / 2, (b0 + b1) / 2), 0};
}

// A colour block whose texel i uses index i % 4.
Blob colourBlock(uint16_t c0, uint16_t c1) {
    Blob b = le16s({c0, c1});
    for (int i = 0; i < 4; ++i)
        b.push_back(0xE4); // indices 0,1,2,3 per row
    return b;
}

struct BitmapCase {
    const char* name;
    uint8_t id;
    int w, h;
    Blob pixels;
    std::vector<uint32_t> expected;
    int bpp;
    Channels bits;
};

class PcBitmaps : public ::testing::TestWithParam<BitmapCase> {};

TEST_P(PcBitmaps, DecodeAsTheTableSays) {
    LibraryHost host;
    const BitmapCase& c = GetParam();
    Blob file = buildFile("SHPI", {{"img", {bitmap(LE, c.id, c.w, c.h, c.pixels, 3, 4, 5, 6)}}});
    ReadResult r = readWith(tavix::kFshDriver, file);
    ASSERT_TRUE(r.opened) << r.error;
    ASSERT_EQ(r.frames.size(), 1u);
    const TavixInfo& i = r.frames[0].info;
    ASSERT_TRUE(r.frames[0].ok) << r.error;
    EXPECT_EQ(i.formatid, 0x46534800u | c.id);
    EXPECT_STREQ(i.framename, "img");
    EXPECT_EQ(
        (std::vector<int>{i.subtype, i.packed, i.bufferbpp, i.bpp, i.alphabits, i.redbits,
                          i.greenbits, i.bluebits, i.centerx, i.centery, i.defaultx, i.defaulty}),
        (std::vector<int>{c.id, 0, 32, c.bpp, c.bits.alpha, c.bits.red, c.bits.green, c.bits.blue,
                          3, 4, 5, 6}));
    EXPECT_EQ(r.frames[0].argb, c.expected);
}

std::vector<BitmapCase> pcCases() {
    std::vector<uint32_t> red_blue = blockColours(0xF800, 0x001F, true);
    std::vector<uint32_t> three = blockColours(0x001F, 0xF800, true);
    auto repeat4 = [](const std::vector<uint32_t>& colours) {
        std::vector<uint32_t> out;
        for (int i = 0; i < 16; ++i)
            out.push_back(colours[i % 4]);
        return out;
    };
    // DXT3: alpha nibble of texel i is i; DXT5: a0 = 255, a1 = 0, index i % 8.
    Blob dxt3 = {0x10, 0x32, 0x54, 0x76, 0x98, 0xBA, 0xDC, 0xFE};
    Blob dxt3Block = dxt3;
    Blob cb = colourBlock(0xF800, 0x001F);
    dxt3Block.insert(dxt3Block.end(), cb.begin(), cb.end());
    std::vector<uint32_t> dxt3Expected = repeat4(blockColours(0xF800, 0x001F, false));
    for (int i = 0; i < 16; ++i)
        dxt3Expected[i] = (dxt3Expected[i] & 0xFFFFFF) | uint32_t(i * 17) << 24;
    Blob dxt5Block = {255, 0};
    uint64_t bits = 0;
    for (int i = 0; i < 16; ++i)
        bits |= uint64_t(i % 8) << (3 * i);
    for (int i = 0; i < 6; ++i)
        dxt5Block.push_back(uint8_t(bits >> (8 * i)));
    dxt5Block.insert(dxt5Block.end(), cb.begin(), cb.end());
    const uint32_t ramp[8] = {
        255, 0, (6 * 255) / 7, (5 * 255) / 7, (4 * 255) / 7, (3 * 255) / 7, (2 * 255) / 7, 255 / 7};
    std::vector<uint32_t> dxt5Expected = repeat4(blockColours(0xF800, 0x001F, false));
    for (int i = 0; i < 16; ++i)
        dxt5Expected[i] = (dxt5Expected[i] & 0xFFFFFF) | ramp[i % 8] << 24;
    // a0 <= a1: four interpolated values, then 0 and 255.
    Blob dxt5Six = dxt5Block;
    dxt5Six[0] = 10, dxt5Six[1] = 200;
    const uint32_t six[8] = {10,
                             200,
                             (4 * 10 + 200) / 5,
                             (3 * 10 + 2 * 200) / 5,
                             (2 * 10 + 3 * 200) / 5,
                             (10 + 4 * 200) / 5,
                             0,
                             255};
    std::vector<uint32_t> dxt5SixExpected = dxt5Expected;
    for (int i = 0; i < 16; ++i)
        dxt5SixExpected[i] = (dxt5SixExpected[i] & 0xFFFFFF) | six[i % 8] << 24;
    // A 5x5 DXT1 image takes 2x2 blocks; its last row and column come from
    // the right and lower blocks.
    Blob dxt1Five;
    for (uint16_t c : {0xF800, 0x07E0, 0x001F, 0xFFFF}) {
        Blob b = le16s({c, 0});
        b.insert(b.end(), 4, 0); // every texel index 0
        dxt1Five.insert(dxt1Five.end(), b.begin(), b.end());
    }
    std::vector<uint32_t> five(25);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 5; ++x)
            five[y * 5 + x] =
                (y < 4 ? (x < 4 ? 0xFFFF0000 : 0xFF00FF00) : (x < 4 ? 0xFF0000FF : 0xFFFFFFFF));
    return {
        {"argb8888",
         0x7D,
         2,
         1,
         {0x33, 0x22, 0x11, 0x80, 0x00, 0x00, 0xFF, 0xFF},
         {0x80112233, 0xFFFF0000},
         32,
         {8, 8, 8, 8}},
        {"rgb888",
         0x7F,
         2,
         1,
         {0x33, 0x22, 0x11, 0xFF, 0x00, 0x00},
         {0xFF112233, 0xFF0000FF},
         24,
         {0, 8, 8, 8}},
        {"argb1555",
         0x7E,
         2,
         1,
         le16s({0xFC00, 0x001F}),
         {0xFFFF0000, 0x000000FF},
         16,
         {1, 5, 5, 5}},
        {"rgb565",
         0x78,
         3,
         1,
         le16s({0xF800, 0x07E0, 0x8410}),
         {0xFFFF0000, 0xFF00FF00, 0xFF848284},
         16,
         {0, 5, 6, 5}},
        {"argb4444",
         0x6D,
         2,
         1,
         le16s({0xF00F, 0x8421}),
         {0xFF0000FF, 0x88442211},
         16,
         {4, 4, 4, 4}},
        {"dxt1 four colours",
         0x60,
         4,
         4,
         colourBlock(0xF800, 0x001F),
         repeat4(red_blue),
         32,
         {1, 5, 6, 5}},
        {"dxt1 three colours",
         0x60,
         4,
         4,
         colourBlock(0x001F, 0xF800),
         repeat4(three),
         32,
         {1, 5, 6, 5}},
        {"dxt1 partial blocks", 0x60, 5, 5, dxt1Five, five, 32, {1, 5, 6, 5}},
        {"dxt3", 0x61, 4, 4, dxt3Block, dxt3Expected, 32, {4, 5, 6, 5}},
        {"dxt5", 0x62, 4, 4, dxt5Block, dxt5Expected, 32, {8, 5, 6, 5}},
        {"dxt5 six values", 0x62, 4, 4, dxt5Six, dxt5SixExpected, 32, {8, 5, 6, 5}},
    };
}

INSTANTIATE_TEST_SUITE_P(Records, PcBitmaps, ::testing::ValuesIn(pcCases()), [](const auto& info) {
    std::string n = info.param.name;
    for (char& ch : n)
        if (!isalnum(static_cast<unsigned char>(ch))) ch = '_';
    return n;
});

struct PaletteCase {
    const char* name;
    uint8_t id;
    Blob entries; // two colours
    uint32_t first, second;
    Channels bits;
};

class PcPalettes : public ::testing::TestWithParam<PaletteCase> {};

TEST_P(PcPalettes, LocalPaletteColoursAnIndexedBitmap) {
    LibraryHost host;
    const PaletteCase& c = GetParam();
    Blob file = buildFile(
        "SHPI", {{"pix", {bitmap(LE, 0x7B, 3, 1, {0, 1, 1}), palette(LE, c.id, 2, c.entries)}}});
    ReadResult r = readWith(tavix::kFshDriver, file);
    ASSERT_EQ(r.frames.size(), 1u);
    const Frame& f = r.frames[0];
    ASSERT_TRUE(f.ok) << r.error;
    const TavixInfo& i = f.info;
    EXPECT_EQ((std::vector<int>{i.bufferbpp, i.bpp, i.numcolours, i.alphabits, i.redbits,
                                i.greenbits, i.bluebits}),
              (std::vector<int>{8, 8, 2, c.bits.alpha, c.bits.red, c.bits.green, c.bits.blue}));
    EXPECT_EQ(f.indices, (std::vector<uint8_t>{0, 1, 1}));
    EXPECT_EQ(f.argb, (std::vector<uint32_t>{c.first, c.second, c.second}));
    EXPECT_EQ(argb(i.colours[0].alpha, i.colours[0].red, i.colours[0].green, i.colours[0].blue),
              c.first);
}

INSTANTIATE_TEST_SUITE_P(
    Records, PcPalettes,
    ::testing::Values(
        PaletteCase{"argb8888",
                    0x2A,
                    {0x00, 0x00, 0xFF, 0x80, 0x00, 0xFF, 0x00, 0xFF},
                    0x80FF0000,
                    0xFF00FF00,
                    {8, 8, 8, 8}},
        PaletteCase{"rgb888",
                    0x24,
                    {0x11, 0x22, 0x33, 0xFF, 0x00, 0x00},
                    0xFF112233,
                    0xFFFF0000,
                    {0, 8, 8, 8}},
        PaletteCase{
            "rgb666", 0x22, {63, 0, 32, 1, 2, 3}, 0xFFFF0082, argb(255, 4, 8, 12), {0, 6, 6, 6}},
        PaletteCase{
            "argb1555", 0x2D, {0x00, 0x7C, 0xE0, 0x83}, 0x00FF0000, 0xFF00FF00, {1, 5, 5, 5}},
        PaletteCase{
            "rgb565", 0x29, {0x1F, 0x00, 0xE0, 0x07}, 0xFF0000FF, 0xFF00FF00, {0, 5, 6, 5}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(ShapeRead, FourBitNibbleOrders) {
    LibraryHost host;
    const Blob pal = {0, 0, 0, 0xFF, 0x11, 0x11, 0x11, 0xFF, 0x22, 0x22, 0x22, 0xFF};
    struct {
        uint8_t id;
        std::vector<uint8_t> expected;
    } cases[] = {
        {0x7A, {1, 2, 0, 1, 0}}, // high nibble first
        {0x79, {2, 1, 1, 0, 2}}, // low nibble first
    };
    for (const auto& c : cases) {
        Blob file = buildFile(
            "SHPI",
            {{"nib", {bitmap(LE, c.id, 5, 1, {0x12, 0x01, 0x02}), palette(LE, 0x2A, 3, pal)}}});
        ReadResult r = readWith(tavix::kFshDriver, file);
        ASSERT_TRUE(r.frames.at(0).ok) << r.error;
        EXPECT_EQ(r.frames[0].info.bpp, 4);
        EXPECT_EQ(r.frames[0].info.bufferbpp, 8);
        EXPECT_EQ(r.frames[0].indices, c.expected) << std::hex << int(c.id);
    }
}

TEST(ShapeRead, AttachmentsAndNamesFillTheRecordAndUnknownOnesStayInTheTail) {
    LibraryHost host;
    Blob px = {1, 2, 3, 4};
    Blob file = buildFile(
        "SHPI",
        {{"shp",
          {bitmap(LE, 0x7D, 1, 1, px), longName("a_longer_name"), text(LE, "a comment"),
           hotspots(LE, {{3, 4}, {-5, 6}}), raw(0x69, {9, 9, 9, 9, 9, 9}), raw(0x45, {1, 2, 3})}},
         {std::string("ab\0\0", 4), {bitmap(LE, 0x7D, 1, 1, px)}},
         {"cd  ", {bitmap(LE, 0x7D, 1, 1, px)}},
         {"cd  ", {bitmap(LE, 0x7D, 1, 1, px)}}},
        false, "G354");
    ReadResult r = readWith(tavix::kFshDriver, file);
    ASSERT_TRUE(r.frames.at(0).ok) << r.error;
    // Directory names lose their padding; they need not be unique.
    ASSERT_EQ(r.frames.size(), 4u);
    EXPECT_STREQ(r.frames[1].info.framename, "ab");
    EXPECT_STREQ(r.frames[2].info.framename, "cd");
    EXPECT_STREQ(r.frames[3].info.framename, "cd");
    const TavixInfo& info = r.frames[0].info;
    EXPECT_STREQ(info.framename, "a_longer_name");
    EXPECT_STREQ(info.comment, "a comment");
    ASSERT_EQ(info.numhotspots, 2);
    EXPECT_EQ((std::vector<int>{info.hotspots[0].x, info.hotspots[0].y, info.hotspots[1].x,
                                info.hotspots[1].y}),
              (std::vector<int>{3, 4, -5, 6}));
    // The tail travels after the fixed record; its summary names what it keeps.
    std::vector<uint8_t> record(sizeof(TavixInfo) + r.frames[0].tail.size());
    TavixInfo copy = info;
    copy.size = static_cast<int32_t>(record.size());
    memcpy(record.data(), &copy, sizeof copy);
    memcpy(record.data() + sizeof copy, r.frames[0].tail.data(), r.frames[0].tail.size());
    char line[512];
    ShapeTailSummary(reinterpret_cast<const TavixInfo*>(record.data()), line, sizeof line);
    EXPECT_NE(std::string(line).find("dir id \"G354\""), std::string::npos) << line;
    EXPECT_NE(std::string(line).find("kept record 0x69 metal bin"), std::string::npos) << line;
    EXPECT_NE(std::string(line).find("kept record 0x45"), std::string::npos) << line;
    EXPECT_NE(std::string(line).find("long name record"), std::string::npos) << line;
}

TEST(ShapeRead, PaletteLookupPrefersTheLocalOneThenBangPalThenGrey) {
    LibraryHost host;
    const Blob global = {0x00, 0x00, 0xFF, 0xFF, 0x00, 0xFF, 0x00, 0xFF}; // red, green
    const Blob local = {0xFF, 0x00, 0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};  // blue, white
    Blob file =
        buildFile("SHPI", {{"loc", {bitmap(LE, 0x7B, 2, 1, {0, 1}), palette(LE, 0x2A, 2, local)}},
                           {"glo", {bitmap(LE, 0x7B, 2, 1, {0, 1})}},
                           {"!pal", {palette(LE, 0x2A, 2, global)}}});
    ReadResult r = readWith(tavix::kFshDriver, file);
    ASSERT_EQ(r.frames.size(), 3u);
    EXPECT_EQ(r.frames[0].argb, (std::vector<uint32_t>{0xFF0000FF, 0xFFFFFFFF}));
    EXPECT_EQ(r.frames[1].argb, (std::vector<uint32_t>{0xFFFF0000, 0xFF00FF00}));
    // The palette entry itself reads as a count x 1 image of its colours.
    const Frame& pal = r.frames[2];
    EXPECT_STREQ(pal.info.framename, "!pal");
    EXPECT_EQ(pal.info.subtype, 0x2A);
    EXPECT_EQ(pal.info.width, 2);
    EXPECT_EQ(pal.info.height, 1);
    EXPECT_EQ(pal.indices, (std::vector<uint8_t>{0, 1}));
    EXPECT_EQ(pal.argb, (std::vector<uint32_t>{0xFFFF0000, 0xFF00FF00}));

    host.clear();
    ReadResult grey = readWith(tavix::kFshDriver,
                               buildFile("SHPI", {{"nop", {bitmap(LE, 0x7B, 2, 1, {0, 200})}}}));
    EXPECT_EQ(grey.frames.at(0).argb, (std::vector<uint32_t>{0xFF000000, 0xFFC8C8C8}));
    EXPECT_TRUE(host.printed("has no palette")) << "a line through the print hook";
}

TEST(ShapeRead, EmbeddedMipLevelsBecomeFramesOfTheirOwn) {
    LibraryHost host;
    Blob px(4 * (4 * 2 + 2 * 1 + 1 * 1));
    for (size_t i = 0; i < px.size(); ++i)
        px[i] = static_cast<uint8_t>(i);
    Blob dxt(8 * 3, 0); // 8x8 needs 4 blocks, 4x4 one, 2x2 still one
    dxt.resize(8 * 4 + 8 + 8, 0);
    Blob file = buildFile("SHPI", {{"mip", {bitmap(LE, 0x7D, 4, 2, px, 2, 2, 0, 2u << 12)}},
                                   {"dxt", {bitmap(LE, 0x60, 8, 8, dxt, 0, 0, 0, 2u << 12)}}});
    ReadResult r = readWith(tavix::kFshDriver, file);
    ASSERT_EQ(r.frames.size(), 6u) << r.error;
    struct {
        const char* name;
        int w, h;
        bool mip;
    } expected[] = {{"mip", 4, 2, false}, {"mm1", 2, 1, true}, {"mm2", 1, 1, true},
                    {"dxt", 8, 8, false}, {"mm1", 4, 4, true}, {"mm2", 2, 2, true}};
    for (int i = 0; i < 6; ++i) {
        const Frame& f = r.frames[i];
        EXPECT_TRUE(f.ok) << i;
        EXPECT_STREQ(f.info.framename, expected[i].name);
        EXPECT_EQ(f.info.width, expected[i].w);
        EXPECT_EQ(f.info.height, expected[i].h);
        EXPECT_EQ((f.info.attributes & kAttrMipLevel) != 0, expected[i].mip);
    }
    // Level 1 starts right after the 4x2 base.
    EXPECT_EQ(r.frames[1].argb[0], uint32_t(32 | 33 << 8 | 34 << 16 | 35u << 24));
}

TEST(ShapeRead, PackedRecordsAndPackedFiles) {
    LibraryHost host;
    Blob px;
    for (int i = 0; i < 64; ++i)
        px.push_back(static_cast<uint8_t>(i * 3));
    Blob file = buildFile("SHPI", {{"pak", {bitmap(LE, 0x7D | 0x80, 4, 4, literalPack(px))}}});
    ReadResult r = readWith(tavix::kFshDriver, file);
    ASSERT_TRUE(r.frames.at(0).ok) << r.error;
    EXPECT_EQ(r.frames[0].info.packed, 1);
    EXPECT_EQ(r.frames[0].info.subtype, 0x7D);
    EXPECT_EQ(r.frames[0].argb[1], uint32_t(12 | 15 << 8 | 18 << 16 | 21u << 24));

    Blob plain = buildFile("SHPI", {{"one", {bitmap(LE, 0x7D, 4, 4, px)}}});
    Blob whole = literalPack(plain);
    EXPECT_EQ(tavix::kFshDriver.detect(whole, ""), tavix::kByContent);
    EXPECT_EQ(tavix::kSshDriver.detect(whole, ""), tavix::kNotMine);
    ReadResult w = readWith(tavix::kFshDriver, whole);
    ASSERT_EQ(w.frames.size(), 1u) << w.error;
    EXPECT_EQ(w.frames[0].argb, readWith(tavix::kFshDriver, plain).frames[0].argb);
}

TEST(ShapeRead, UnknownAndRefusedRecordsFailOnlyTheirFrame) {
    LibraryHost host;
    Blob file = buildFile("SHPI", {{"good", {bitmap(LE, 0x7D, 1, 1, {1, 2, 3, 4})}},
                                   {"what", {bitmap(LE, 0x45, 1, 1, {1, 2, 3, 4})}},
                                   {"six", {bitmap(LE, 0x66, 1, 1, {1, 2, 3, 4})}}});
    ReadResult r = readWith(tavix::kFshDriver, file);
    ASSERT_EQ(r.frames.size(), 3u);
    EXPECT_TRUE(r.frames[0].ok);
    EXPECT_FALSE(r.frames[1].ok);
    EXPECT_FALSE(r.frames[2].ok);
    EXPECT_TRUE(host.printed("entry 1 \"what\": record 0x45 is not a record type Zy knows"));
    EXPECT_TRUE(host.printed("entry 2 \"six\": record 0x66 (A6R6G6B6)"));
}

TEST(ShapeRead, Ps2RecordsScaleAlphaAndSwapPaletteGroups) {
    LibraryHost host;
    // 256 colours whose red is their index, stored with 8-15 and 16-23 of
    // every 32 swapped, alpha 0x80 (opaque) except colour 1 at 0x40.
    Blob entries;
    for (int stored = 0; stored < 256; ++stored) {
        int i = stored;
        if ((stored & 31) >= 8 && (stored & 31) < 16)
            i = stored + 8;
        else if ((stored & 31) >= 16 && (stored & 31) < 24)
            i = stored - 8;
        entries.insert(entries.end(), {uint8_t(i), 0, 0, uint8_t(i == 1 ? 0x40 : 0x80)});
    }
    Blob idx = {0, 1, 9, 17, 255};
    Blob file = buildFile(
        "SHPS", {{"p8", {bitmap(LE, 0x02, 5, 1, idx), palette(LE, 0x21, 256, entries)}},
                 {"p32", {bitmap(LE, 0x05, 2, 1, {0x11, 0x22, 0x33, 0x80, 1, 2, 3, 0x40})}},
                 {"p4", {bitmap(LE, 0x01, 2, 1, {0x21}), palette(LE, 0x23, 16, Blob(64, 0x80))}}});
    ReadResult r = readWith(tavix::kSshDriver, file);
    ASSERT_EQ(r.frames.size(), 3u) << r.error;
    EXPECT_EQ(r.frames[0].argb,
              (std::vector<uint32_t>{0xFF000000, 0x80010000, 0xFF090000, 0xFF110000, 0xFFFF0000}));
    EXPECT_EQ(r.frames[1].argb, (std::vector<uint32_t>{0xFF112233, 0x80010203}));
    EXPECT_EQ(r.frames[1].info.formatid, 0x53534805u);
    EXPECT_EQ(r.frames[2].indices, (std::vector<uint8_t>{1, 2})); // low nibble first
    EXPECT_EQ(r.frames[2].info.bpp, 4);
}

TEST(ShapeRead, Ps2FifteenBitPaletteAndSwizzledFlag) {
    LibraryHost host;
    Blob entries;
    for (int i = 0; i < 256; ++i)
        LE.u16(entries, i == 0 ? 0x801F : 0x7C00); // red opaque; blue clear
    Blob file = buildFile(
        "SHPS", {{"c15", {bitmap(LE, 0x02, 2, 1, {0, 1}), palette(LE, 0x23, 256, entries)}},
                 {"swz", {bitmap(LE, 0x05, 1, 1, {1, 2, 3, 4}, 0, 0, 0x1000)}}});
    ReadResult r = readWith(tavix::kSshDriver, file);
    ASSERT_EQ(r.frames.size(), 2u);
    EXPECT_EQ(r.frames[0].argb, (std::vector<uint32_t>{0xFFFF0000, 0x000000FF}));
    EXPECT_FALSE(r.frames[1].ok);
    EXPECT_TRUE(host.printed("swizzled"));
}

TEST(ShapeRead, XboxUsesPcRecordsUnderEitherMagic) {
    LibraryHost host;
    for (const char* magic : {"SHPX", "ShpX"}) {
        Blob file = buildFile(magic, {{"x", {bitmap(LE, 0x78, 1, 1, le16s({0xF800}))}}});
        EXPECT_EQ(tavix::kXshDriver.detect(file, ""), tavix::kByContent);
        EXPECT_EQ(tavix::kFshDriver.detect(file, "a.xsh"), tavix::kNotMine);
        ReadResult r = readWith(tavix::kXshDriver, file);
        ASSERT_TRUE(r.frames.at(0).ok) << magic;
        EXPECT_EQ(r.frames[0].argb[0], 0xFFFF0000u);
    }
}

TEST(ShapeRead, GameCubeTiledLayouts) {
    LibraryHost host;
    // C8 in 8x4 tiles: a 10x5 image spans 2x2 tiles; texel value = its
    // position in the stream.
    Blob c8(16 * 8);
    for (size_t i = 0; i < c8.size(); ++i)
        c8[i] = static_cast<uint8_t>(i);
    Blob pal;
    for (int i = 0; i < 256; ++i)
        BE.u32(pal, 0xFF000000u | uint32_t(i));
    // RGBA8: one 4x4 tile, alpha/red pairs then green/blue pairs.
    Blob rgba(64, 0);
    rgba[0] = 0x80, rgba[1] = 0x11, rgba[32] = 0x22, rgba[33] = 0x33;
    rgba[2 * 5] = 0xFF, rgba[2 * 5 + 1] = 0xAA;
    // RGB565: big-endian words in a 4x4 tile.
    Blob r565;
    for (int i = 0; i < 16; ++i)
        BE.u16(r565, i == 4 ? 0x07E0 : 0xF800);
    // CMPR: an 8x8 tile of four blocks (TL, TR, BL, BR), colours big-endian,
    // one index byte per row with the leftmost texel on top.
    Blob cmpr;
    for (uint16_t c : {0xF800, 0x07E0, 0x001F, 0xFFFF}) {
        BE.u16(cmpr, c);
        BE.u16(cmpr, 0);
        cmpr.insert(cmpr.end(), {0x00, 0x40, 0x00, 0x00}); // row 1, texel 0 uses colour 1
    }
    Blob c4(32, 0);
    c4[0] = 0x12; // texels (0,0)=1, (1,0)=2
    c4[4] = 0x30; // (0,1)=3
    Blob file = buildFile("SHPG",
                          {{"c8", {bitmap(BE, 0x7B, 10, 5, c8), palette(BE, 0x2A, 256, pal)}},
                           {"rgba", {bitmap(BE, 0x7D, 4, 4, rgba)}},
                           {"565", {bitmap(BE, 0x78, 4, 4, r565)}},
                           {"cmpr", {bitmap(BE, 0x60, 8, 8, cmpr)}},
                           {"c4",
                            {bitmap(BE, 0x7A, 3, 2, c4),
                             palette(BE, 0x2A, 16, Blob(pal.begin(), pal.begin() + 64))}}},
                          true);
    EXPECT_EQ(tavix::kGshDriver.detect(file, ""), tavix::kByContent);
    ReadResult r = readWith(tavix::kGshDriver, file);
    ASSERT_EQ(r.frames.size(), 5u) << r.error;
    for (const Frame& f : r.frames)
        EXPECT_TRUE(f.ok) << f.info.framename;
    const Frame& f8 = r.frames[0];
    EXPECT_EQ(f8.indices[0], 0);               // tile 0, texel 0
    EXPECT_EQ(f8.indices[1 * 10 + 7], 15);     // tile 0, row 1, column 7
    EXPECT_EQ(f8.indices[9], 32 + 1);          // tile 1, column 9 = its column 1
    EXPECT_EQ(f8.indices[4 * 10 + 2], 64 + 2); // tile 2 (second row of tiles)
    EXPECT_EQ(f8.argb[9], 0xFF000021u);        // the palette's words are big-endian
    EXPECT_EQ(r.frames[1].argb[0], 0x80112233u);
    EXPECT_EQ(r.frames[1].argb[5], 0xFFAA0000u);
    EXPECT_EQ(r.frames[2].argb[4], 0xFF00FF00u);
    EXPECT_EQ(r.frames[2].argb[0], 0xFFFF0000u);
    const Frame& fc = r.frames[3];
    EXPECT_EQ(fc.argb[0], 0xFFFF0000u);         // TL block, colour 0
    EXPECT_EQ(fc.argb[8 * 1 + 0], 0xFF000000u); // TL block, row 1 texel 0: colour 1 (black)
    EXPECT_EQ(fc.argb[4], 0xFF00FF00u);         // TR block
    EXPECT_EQ(fc.argb[8 * 4], 0xFF0000FFu);     // BL block
    EXPECT_EQ(fc.argb[8 * 4 + 4], 0xFFFFFFFFu); // BR block
    EXPECT_EQ(r.frames[4].indices, (std::vector<uint8_t>{1, 2, 0, 3, 0, 0}));
}

} // namespace
