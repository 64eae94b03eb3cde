// Writing shape files: byte-identical rewrites of hand-built files, round
// trips through every write path (packed, DXT, tiled, mip levels, global
// palettes, attachments) and the record the writer derives from a frame.

#include "ShapeFixtures.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace shapetest;

namespace {

const Endian LE{false};
const Endian BE{true};

Blob bytesOf(size_t n, int seed) {
    Blob b(n);
    for (size_t i = 0; i < n; ++i)
        b[i] = static_cast<uint8_t>(i * 7 + seed);
    return b;
}

std::vector<uint32_t> gradient(int w, int h, bool alpha) {
    std::vector<uint32_t> px;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            px.push_back(
                argb(alpha ? (x * 255) / std::max(1, w - 1) : 255, 40 + 6 * x, 60 + 10 * y, 128));
    return px;
}

std::vector<uint32_t> greyPalette(int n) {
    std::vector<uint32_t> p;
    for (int i = 0; i < n; ++i)
        p.push_back(argb(255, i, 255 - i, i / 2));
    return p;
}

struct Fixture {
    const char* name;
    const tavix::Driver* driver;
    Blob file;
};

// Files laid out as the published tables say; reading and writing them back
// without edits must reproduce every byte.
std::vector<Fixture> fixtures() {
    Blob pal256, pal16le, ps2pal, gcpal;
    for (int i = 0; i < 256; ++i)
        pal256.insert(pal256.end(), {uint8_t(i), uint8_t(255 - i), uint8_t(i / 3), 0xFF});
    for (int i = 0; i < 16; ++i)
        LE.u16(pal16le, 0x8000 | i * 0x421);
    for (int i = 0; i < 256; ++i)
        ps2pal.insert(ps2pal.end(), {uint8_t(i), 0x10, 0x20, uint8_t(i % 3 ? 0x80 : 0x40)});
    for (int i = 0; i < 256; ++i)
        BE.u32(gcpal, 0xFF000000u | uint32_t(i) * 0x010203u);
    Blob dxt1(8 * 4 + 8 + 8), dxt5(16 * 4);
    for (size_t i = 0; i < dxt1.size(); ++i)
        dxt1[i] = static_cast<uint8_t>(i * 37 + 5);
    for (size_t i = 0; i < dxt5.size(); ++i)
        dxt5[i] = static_cast<uint8_t>(i * 53 + 1);
    Blob mipPixels = bytesOf(4 * (8 * 4 + 4 * 2 + 2 * 1), 3);
    Blob big = bytesOf(4 * 64 * 64, 1);
    return {
        {"every_pc_record", &tavix::kFshDriver,
         buildFile(
             "SHPI",
             {{"a7D", {bitmap(LE, 0x7D, 3, 2, bytesOf(24, 1), 1, 2, 3, 4)}},
              {"a7F", {bitmap(LE, 0x7F, 3, 3, bytesOf(27, 2))}},
              {"a7E", {bitmap(LE, 0x7E, 2, 2, bytesOf(8, 3))}},
              {"a78", {bitmap(LE, 0x78, 2, 2, bytesOf(8, 4))}},
              {"a6D", {bitmap(LE, 0x6D, 2, 2, bytesOf(8, 5))}},
              {"a60", {bitmap(LE, 0x60, 8, 8, dxt1, 0, 0, 0, 2u << 12)}},
              {"a62", {bitmap(LE, 0x62, 8, 8, dxt5)}},
              {"a61", {bitmap(LE, 0x61, 4, 4, bytesOf(16, 9))}},
              {"a7B", {bitmap(LE, 0x7B, 4, 4, bytesOf(16, 6)), palette(LE, 0x2A, 256, pal256)}},
              {"a7A", {bitmap(LE, 0x7A, 4, 2, bytesOf(4, 7)), palette(LE, 0x2D, 16, pal16le)}},
              {"a79",
               {bitmap(LE, 0x79, 3, 3, Blob{0x12, 0x01, 0x20, 0x11, 0x02}),
                palette(LE, 0x22, 3, {1, 2, 3, 4, 5, 6, 63, 62, 61})}},
              {"mip", {bitmap(LE, 0x7D, 8, 4, mipPixels, 0, 0, 0, 2u << 12)}}},
             false, "G354")},
        {"palettes_and_global", &tavix::kFshDriver,
         buildFile(
             "SHPI",
             {{"loc", {bitmap(LE, 0x7B, 2, 2, {0, 1, 2, 3}), palette(LE, 0x24, 4, bytesOf(12, 2))}},
              {"glo", {bitmap(LE, 0x7B, 2, 2, {3, 2, 1, 0})}},
              {"565",
               {bitmap(LE, 0x7B, 2, 2, {1, 1, 0, 0}), palette(LE, 0x29, 2, {0x1F, 0, 0xE0, 0x07})}},
              {"!pal", {palette(LE, 0x2A, 256, pal256)}}})},
        {"attachments", &tavix::kFshDriver,
         buildFile("SHPI",
                   {{"ship",
                     {bitmap(LE, 0x7D, 1, 1, {1, 2, 3, 4}), raw(0x69, bytesOf(20, 1)),
                      longName("spaceship_left"), text(LE, "made by hand"),
                      hotspots(LE, {{1, 2}, {-3, 4000}}), raw(0x45, {7, 7})}},
                    {"ab  ", {bitmap(LE, 0x7D, 1, 1, {5, 6, 7, 8}), longName("ab")}}},
                   false, "GIMX")},
        {"packed", &tavix::kFshDriver,
         buildFile("SHPI", {{"pk", {bitmap(LE, 0x7D | 0x80, 64, 64, literalPack(big))}}})},
        {"ps2", &tavix::kSshDriver,
         buildFile(
             "SHPS",
             {{"p8", {bitmap(LE, 0x02, 4, 4, bytesOf(16, 3)), palette(LE, 0x21, 256, ps2pal)}},
              {"p32", {bitmap(LE, 0x05, 2, 1, {1, 2, 3, 0x80, 4, 5, 6, 0x20})}},
              {"p4",
               {bitmap(LE, 0x01, 4, 1, {0x21, 0x43}),
                palette(LE, 0x23, 16, Blob(ps2pal.begin(), ps2pal.begin() + 64))}},
              {"p15", {bitmap(LE, 0x02, 2, 1, {0, 1}), palette(LE, 0x23, 256, bytesOf(512, 9))}}})},
        {"xbox", &tavix::kXshDriver,
         buildFile("ShpX", {{"x", {bitmap(LE, 0x60, 4, 4, bytesOf(8, 2)), text(LE, "xbox")}}})},
        {"gamecube", &tavix::kGshDriver,
         buildFile("SHPG",
                   {{"c8", {bitmap(BE, 0x7B, 8, 4, bytesOf(32, 1)), palette(BE, 0x2A, 256, gcpal)}},
                    {"rgba", {bitmap(BE, 0x7D, 4, 4, bytesOf(64, 2), 1, 1, 7, 8)}},
                    {"565", {bitmap(BE, 0x78, 4, 4, bytesOf(32, 3)), hotspots(BE, {{5, -6}})}},
                    {"cmpr", {bitmap(BE, 0x60, 8, 8, bytesOf(32, 4))}}},
                   true)},
    };
}

class ByteIdentical : public ::testing::TestWithParam<Fixture> {};

TEST_P(ByteIdentical, UneditedRewriteGivesTheSameBytes) {
    LibraryHost host;
    const Fixture& f = GetParam();
    ReadResult read = readWith(*f.driver, f.file);
    ASSERT_TRUE(read.opened) << read.error;
    for (const Frame& frame : read.frames)
        ASSERT_TRUE(frame.ok) << frame.info.framename << ": " << read.error;
    Blob again = rewrite(*f.driver, f.file);
    EXPECT_EQ(again.size(), f.file.size());
    for (size_t i = 8; i < std::min(again.size(), f.file.size()); ++i)
        ASSERT_EQ(again[i], f.file[i]) << "first difference at byte " << i;
}

INSTANTIATE_TEST_SUITE_P(Files, ByteIdentical, ::testing::ValuesIn(fixtures()),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(ShapeWrite, PackedFilesAndRecordsComeBackWithTheSameContent) {
    LibraryHost host;
    Blob px = bytesOf(4 * 16 * 16, 4);
    Blob plain = buildFile("SHPI", {{"w", {bitmap(LE, 0x7D, 16, 16, px)}}});
    Blob packedFile = literalPack(plain);
    Blob again = rewrite(tavix::kFshDriver, packedFile);
    // Our compressor finds other matches than the literal-only original,
    // but the file stays whole-file packed and unpacks to the same bytes.
    ReadResult r = readWith(tavix::kFshDriver, again);
    ASSERT_EQ(r.frames.size(), 1u);
    EXPECT_EQ(again[1], 0xFB);
    EXPECT_EQ(r.frames[0].argb, readWith(tavix::kFshDriver, plain).frames[0].argb);
}

// Every record the writer can choose, from a frame with that subtype:
// the pixels survive (exactly for lossless layouts, within a bound for DXT
// and quantised ones).
struct PathCase {
    const tavix::Driver* driver;
    int subtype;
    bool packed;
    int tolerance; // largest channel difference allowed
    bool indexed;
    double meanTolerance = 0; // mean channel difference allowed
};

class WritePaths : public ::testing::TestWithParam<PathCase> {};

int channelDifference(uint32_t a, uint32_t b) {
    int worst = 0;
    for (int shift = 0; shift < 32; shift += 8)
        worst = std::max(worst, std::abs(int((a >> shift) & 255) - int((b >> shift) & 255)));
    return worst;
}

TEST_P(WritePaths, RoundTripKeepsPixelsAndRecord) {
    LibraryHost host;
    const PathCase& c = GetParam();
    const int w = 13, h = 7; // not a multiple of any block or tile
    WriteInput in;
    if (c.indexed) {
        std::vector<uint8_t> idx;
        for (int i = 0; i < w * h; ++i)
            idx.push_back(static_cast<uint8_t>(i % 16));
        in = indexedInput(w, h, idx, greyPalette(16), "pathframe");
    } else {
        in = trueColourInput(w, h, gradient(w, h, true), "pathframe");
    }
    in.info.subtype = c.subtype;
    in.info.packed = c.packed;
    std::string error;
    Blob file = writeWith(*c.driver, {in}, &error);
    ASSERT_FALSE(file.empty()) << error;
    ReadResult r = readWith(*c.driver, file);
    ASSERT_EQ(r.frames.size(), 1u) << r.error;
    const Frame& f = r.frames[0];
    ASSERT_TRUE(f.ok) << r.error;
    EXPECT_EQ(f.info.subtype, c.subtype);
    EXPECT_EQ(f.info.packed, c.packed ? 1 : 0);
    EXPECT_STREQ(f.info.framename, "pathframe");
    std::vector<uint32_t> expected = in.argb;
    if (c.indexed) {
        expected.clear();
        for (uint8_t i : in.indices)
            expected.push_back(in.palette[i]);
        EXPECT_EQ(f.indices, in.indices);
    }
    ASSERT_EQ(f.argb.size(), expected.size());
    int worst = 0;
    double total = 0;
    for (size_t i = 0; i < expected.size(); ++i) {
        uint32_t want = expected[i];
        if (c.subtype == 0x60 && (want >> 24) < 128) continue; // DXT1 keeps 1-bit alpha
        if (c.subtype == 0x60 || c.subtype == 0x7F || c.subtype == 0x78)
            want |= 0xFF000000; // no alpha
        if (c.subtype == 0x7E) want = (want & 0xFFFFFF) | ((want >> 24) >= 128 ? 0xFF000000 : 0);
        const int difference = channelDifference(f.argb[i], want);
        worst = std::max(worst, difference);
        total += difference;
    }
    EXPECT_LE(worst, c.tolerance);
    EXPECT_LE(total / expected.size(), c.meanTolerance > 0 ? c.meanTolerance : c.tolerance);
}

// DXT: a gentle two-way gradient through libsquish stays within 16 per
// channel at worst and 8 on average.
INSTANTIATE_TEST_SUITE_P(Records, WritePaths,
                         ::testing::Values(PathCase{&tavix::kFshDriver, 0x7D, false, 0, false},
                                           PathCase{&tavix::kFshDriver, 0x7D, true, 0, false},
                                           PathCase{&tavix::kFshDriver, 0x7F, false, 0, false},
                                           PathCase{&tavix::kFshDriver, 0x7E, true, 4, false},
                                           PathCase{&tavix::kFshDriver, 0x78, false, 4, false},
                                           PathCase{&tavix::kFshDriver, 0x6D, false, 8, false},
                                           PathCase{&tavix::kFshDriver, 0x60, false, 16, false, 8},
                                           PathCase{&tavix::kFshDriver, 0x61, true, 16, false, 8},
                                           PathCase{&tavix::kFshDriver, 0x62, false, 16, false, 8},
                                           PathCase{&tavix::kFshDriver, 0x7B, true, 0, true},
                                           PathCase{&tavix::kFshDriver, 0x7A, false, 0, true},
                                           PathCase{&tavix::kFshDriver, 0x79, false, 0, true},
                                           PathCase{&tavix::kXshDriver, 0x62, true, 16, false, 8},
                                           PathCase{&tavix::kSshDriver, 0x05, true, 1, false},
                                           PathCase{&tavix::kSshDriver, 0x02, false, 1, true},
                                           PathCase{&tavix::kSshDriver, 0x01, false, 1, true},
                                           PathCase{&tavix::kGshDriver, 0x7B, false, 0, true},
                                           PathCase{&tavix::kGshDriver, 0x7A, true, 0, true},
                                           PathCase{&tavix::kGshDriver, 0x7D, false, 0, false},
                                           PathCase{&tavix::kGshDriver, 0x78, false, 4, false},
                                           PathCase{&tavix::kGshDriver, 0x60, false, 16, false, 8}),
                         [](const auto& info) {
                             char name[48];
                             snprintf(name, sizeof name, "%s_%02X%s", info.param.driver->shortname,
                                      info.param.subtype, info.param.packed ? "_packed" : "");
                             return std::string(name);
                         });

TEST(ShapeWrite, RecordIsDerivedFromDepthAndChannelsWhenSubtypeIsZero) {
    LibraryHost host;
    struct {
        const tavix::Driver* driver;
        int bpp;
        int a, r, g, b;
        bool indexed;
        bool alpha;
        int id;
    } cases[] = {
        {&tavix::kFshDriver, 32, 8, 8, 8, 8, false, false, 0x7D},
        {&tavix::kFshDriver, 24, 0, 8, 8, 8, false, false, 0x7F},
        {&tavix::kFshDriver, 16, 1, 5, 5, 5, false, false, 0x7E},
        {&tavix::kFshDriver, 15, 0, 5, 5, 5, false, false, 0x7E},
        {&tavix::kFshDriver, 16, 0, 5, 6, 5, false, false, 0x78},
        {&tavix::kFshDriver, 16, 4, 4, 4, 4, false, false, 0x6D},
        {&tavix::kFshDriver, 32, 1, 5, 6, 5, false, false, 0x7D},
        {&tavix::kFshDriver, 8, 8, 8, 8, 8, true, false, 0x7B},
        {&tavix::kSshDriver, 24, 0, 8, 8, 8, false, false, 0x05},
        {&tavix::kSshDriver, 8, 8, 8, 8, 8, true, false, 0x02},
        {&tavix::kGshDriver, 16, 0, 5, 6, 5, false, false, 0x78},
        {&tavix::kGshDriver, 24, 0, 8, 8, 8, false, false, 0x7D},
    };
    for (const auto& c : cases) {
        WriteInput in = c.indexed ? indexedInput(2, 2, {0, 1, 1, 0}, greyPalette(2))
                                  : trueColourInput(2, 2, gradient(2, 2, false));
        in.info.bpp = c.bpp;
        in.info.alphabits = c.a, in.info.redbits = c.r, in.info.greenbits = c.g,
        in.info.bluebits = c.b;
        ReadResult r = readWith(*c.driver, writeWith(*c.driver, {in}));
        ASSERT_EQ(r.frames.size(), 1u);
        EXPECT_EQ(r.frames[0].info.subtype, c.id) << c.driver->shortname << " bpp " << c.bpp;
    }
}

TEST(ShapeWrite, IndexedPaletteRecordFollowsAlphaAndTheGlobalPaletteIsShared) {
    LibraryHost host;
    std::vector<uint32_t> opaque = greyPalette(4), clear = greyPalette(4), global = greyPalette(4);
    opaque[0] = 0xFF123456;
    clear[2] = 0x40FFFFFF;
    WriteInput a = indexedInput(2, 1, {0, 1}, opaque, "opaq");
    WriteInput b = indexedInput(2, 1, {2, 3}, clear, "alph");
    WriteInput shared = indexedInput(2, 1, {3, 0}, greyPalette(4), "shrd");
    WriteInput pal = indexedInput(4, 1, {0, 1, 2, 3}, greyPalette(4), "!pal");
    Blob file = writeWith(tavix::kFshDriver, {a, b, shared, pal});
    ReadResult r = readWith(tavix::kFshDriver, file);
    ASSERT_EQ(r.frames.size(), 4u);
    // opaq: local 0x24 palette; alph: local 0x2A; shrd: none (uses !pal)
    const size_t dir = 16;
    auto entryOffset = [&](int i) {
        return file[dir + 8 * i + 4] | file[dir + 8 * i + 5] << 8 | file[dir + 8 * i + 6] << 16;
    };
    auto nextRecordId = [&](int i) {
        size_t at = entryOffset(i);
        size_t next = file[at + 1] | file[at + 2] << 8 | file[at + 3] << 16;
        return next ? int(file[at + next]) : -1;
    };
    EXPECT_EQ(nextRecordId(0), 0x24);
    EXPECT_EQ(nextRecordId(1), 0x2A);
    EXPECT_EQ(nextRecordId(2), -1);
    EXPECT_EQ(file[entryOffset(3)], 0x24); // the !pal entry is a palette record
    EXPECT_EQ(r.frames[1].argb[0], 0x40FFFFFFu);
    EXPECT_EQ(r.frames[2].argb, (std::vector<uint32_t>{global[3], global[0]}));
}

TEST(ShapeWrite, MipFramesFoldBackIntoTheirBase) {
    LibraryHost host;
    WriteInput base = trueColourInput(8, 4, gradient(8, 4, false), "tex");
    base.info.subtype = 0x60;
    WriteInput m1 = trueColourInput(4, 2, gradient(4, 2, false), "mm1");
    WriteInput m2 = trueColourInput(2, 1, gradient(2, 1, false), "mm2");
    WriteInput odd = trueColourInput(3, 3, gradient(3, 3, false), "mm3"); // not a halving
    for (WriteInput* m : {&m1, &m2, &odd}) {
        m->info.subtype = 0x60;
        m->info.attributes = kAttrMipLevel;
    }
    Blob file = writeWith(tavix::kFshDriver, {base, m1, m2, odd});
    EXPECT_EQ(file[8], 2) << "two directory entries: the folded texture and the odd frame";
    ReadResult r = readWith(tavix::kFshDriver, file);
    ASSERT_EQ(r.frames.size(), 4u);
    EXPECT_STREQ(r.frames[1].info.framename, "mm1");
    EXPECT_EQ(r.frames[2].info.width, 2);
    EXPECT_EQ(r.frames[2].info.attributes & kAttrMipLevel, kAttrMipLevel);
    EXPECT_STREQ(r.frames[3].info.framename, "mm3");
    EXPECT_EQ(r.frames[3].info.attributes & kAttrMipLevel, 0u);
}

TEST(ShapeWrite, NamesCommentsHotSpotsAndPositions) {
    LibraryHost host;
    WriteInput in = trueColourInput(2, 2, gradient(2, 2, true), "a_long_frame_name");
    snprintf(in.info.comment, sizeof in.info.comment, "drawn by the tests");
    in.info.numhotspots = 2;
    in.info.hotspots[0] = {1, -2};
    in.info.hotspots[1] = {300, 400};
    in.info.centerx = 1;
    in.info.centery = 70000; // clamped
    in.info.defaultx = 4095;
    in.info.defaulty = -3; // clamped
    for (const tavix::Driver* driver :
         {&tavix::kFshDriver, &tavix::kSshDriver, &tavix::kXshDriver, &tavix::kGshDriver}) {
        host.clear();
        Blob file = writeWith(*driver, {in});
        EXPECT_EQ(memcmp(&file[16], "a_lo", 4), 0);
        ReadResult r = readWith(*driver, file);
        ASSERT_TRUE(r.frames.at(0).ok) << driver->shortname;
        const TavixInfo& info = r.frames[0].info;
        EXPECT_STREQ(info.framename, "a_long_frame_name");
        EXPECT_STREQ(info.comment, "drawn by the tests");
        ASSERT_EQ(info.numhotspots, 2);
        EXPECT_EQ(info.hotspots[0].y, -2);
        EXPECT_EQ(info.hotspots[1].x, 300);
        EXPECT_EQ(info.centerx, 1);
        EXPECT_EQ(info.centery, 65535);
        EXPECT_EQ(info.defaultx, 4095);
        EXPECT_EQ(info.defaulty, 0);
        EXPECT_TRUE(host.printed("clamped")) << driver->shortname;
        EXPECT_EQ(file.size() % 16, 0u);
    }
}

TEST(ShapeWrite, FramesMoveBetweenPlatformsWithTheirAttachments) {
    LibraryHost host;
    Blob pc = buildFile("SHPI",
                        {{"keep",
                          {bitmap(LE, 0x7E, 2, 1, {0x00, 0xFC, 0x1F, 0x00}), longName("keep_this"),
                           raw(0x69, {1, 2, 3, 4})}}},
                        false, "G264");
    ReadResult read = readWith(tavix::kFshDriver, pc);
    std::vector<WriteInput> frames = {fromFrame(read.frames.at(0))};
    Blob ssh = writeWith(tavix::kSshDriver, frames);
    EXPECT_EQ(memcmp(&ssh[12], "G264", 4), 0) << "the directory id travels";
    EXPECT_TRUE(host.printed("stay behind"));
    ReadResult r = readWith(tavix::kSshDriver, ssh);
    ASSERT_TRUE(r.frames.at(0).ok);
    EXPECT_EQ(r.frames[0].info.subtype, 0x05);
    EXPECT_STREQ(r.frames[0].info.framename, "keep_this");
    EXPECT_EQ(r.frames[0].argb, read.frames[0].argb);
}

TEST(ShapeWrite, TailsOfOtherFormatsAreIgnored) {
    LibraryHost host;
    WriteInput in = trueColourInput(1, 1, {0xFF102030}, "t");
    in.info.formatid = 0x54564800; // not a shape driver
    in.tail = Blob(64, 0xAB);
    Blob file = writeWith(tavix::kFshDriver, {in});
    ReadResult r = readWith(tavix::kFshDriver, file);
    ASSERT_TRUE(r.frames.at(0).ok);
    EXPECT_EQ(r.frames[0].argb[0], 0xFF102030u);
}

} // namespace
