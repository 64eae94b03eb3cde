// RefPack: the decoder against hand-made streams of every command kind,
// hostile streams, and the compressor's round trips and ratio.

#include "ShapeFixtures.h"

#include "tavix/drivers/shape/RefPack.h"

#include <gtest/gtest.h>
#include <random>

using namespace shapetest;
namespace refpack = tavix::refpack;

namespace {

Blob str(const std::string& s) {
    return Blob(s.begin(), s.end());
}

// A stream with a 3-byte size header around `commands`.
Blob stream(size_t size, const Blob& commands) {
    Blob s = {0x10, 0xFB, uint8_t(size >> 16), uint8_t(size >> 8), uint8_t(size)};
    s.insert(s.end(), commands.begin(), commands.end());
    return s;
}

Blob cat(std::initializer_list<Blob> parts) {
    Blob out;
    for (const Blob& p : parts)
        out.insert(out.end(), p.begin(), p.end());
    return out;
}

Blob decoded(const Blob& s, size_t limit = 1 << 24) {
    refpack::Decoded d = refpack::decode(s, limit);
    return Blob(d.bytes.begin(), d.bytes.end());
}

Blob randomBytes(size_t n, unsigned seed) {
    std::mt19937 rng(seed);
    Blob b(n);
    for (uint8_t& v : b)
        v = static_cast<uint8_t>(rng());
    return b;
}

// Literal commands for `data`, leaving its last (size % 4) bytes to the
// caller.
Blob literalCommands(const Blob& data) {
    Blob s;
    size_t at = 0;
    while (data.size() - at >= 4) {
        size_t chunk = std::min<size_t>(112, (data.size() - at) & ~size_t{3});
        s.push_back(static_cast<uint8_t>(0xE0 + chunk / 4 - 1));
        s.insert(s.end(), data.begin() + at, data.begin() + at + chunk);
        at += chunk;
    }
    return s;
}

struct StreamCase {
    const char* name;
    Blob stream;
    Blob expected;
};

class RefPackDecode : public ::testing::TestWithParam<StreamCase> {};

TEST_P(RefPackDecode, ProducesTheDocumentedOutput) {
    LibraryHost host;
    const StreamCase& c = GetParam();
    EXPECT_TRUE(refpack::looksPacked(c.stream));
    EXPECT_EQ(refpack::declaredSize(c.stream), c.expected.size());
    EXPECT_EQ(decoded(c.stream), c.expected);
}

std::vector<StreamCase> streamCases() {
    Blob far = randomBytes(70000, 1);
    Blob farExpected = far;
    farExpected.insert(farExpected.end(), far.begin(), far.begin() + 600);
    Blob mid = randomBytes(300, 2);
    Blob midExpected = mid;
    midExpected.insert(midExpected.end(), mid.begin(), mid.begin() + 20);
    Blob sized = {0x90, 0xFB, 0, 0, 0, 8};
    Blob end8 = {0xE0, 'a', 'b', 'c', 'd', 0xE0, 'e', 'f', 'g', 'h', 0xFC};
    return {
        {"literals_and_end_literals",
         stream(10, {0xE0, 'a', 'b', 'c', 'd', 0xE0, 'e', 'f', 'g', 'h', 0xFE, 'i', 'j'}),
         str("abcdefghij")},
        // 00-7F: P = 3 literals, L = 6, D = 3.
        {"short_copy", stream(9, {0x0F, 0x02, 'a', 'b', 'c', 0xFC}), str("abcabcabc")},
        // D = 1 copies the byte just written, again and again.
        {"overlapping_copy", stream(7, {0x0D, 0x00, 'x', 0xFC}), str("xxxxxxx")},
        // 80-BF: P = 2 in b1's top bits, L = 10, D = 2.
        {"medium_copy", stream(12, {0x86, 0x80, 0x01, 'h', 'i', 0xFC}), str("hihihihihihi")},
        // 80-BF with a distance that needs b1's low bits: D = 300.
        {"medium_far",
         stream(320, cat({literalCommands(mid), {0x80 | (20 - 4), 0x01, 0x2B, 0xFC}})),
         midExpected},
        // C0-DF: D = 70000 needs the 0x10 bit of b0, L = 600 its 0x0C bits.
        {"long_copy", Blob(), farExpected},
        // Flag 0x80: 4-byte sizes.
        {"four_byte_size", cat({sized, {0xE0, 'a', 'b', 'c', 'd', 0xE0, 'e', 'f', 'g', 'h', 0xFC}}),
         str("abcdefgh")},
        // Flag 0x01: a compressed-size field comes before the size.
        {"compressed_size_field",
         cat({{0x11, 0xFB, 0, 0, uint8_t(end8.size() + 8), 0, 0, 8}, end8}), str("abcdefgh")},
        {"both_flags", cat({{0x91, 0xFB, 0, 0, 0, uint8_t(end8.size() + 10), 0, 0, 0, 8}, end8}),
         str("abcdefgh")},
    };
}

std::vector<StreamCase> allStreamCases() {
    std::vector<StreamCase> cases = streamCases();
    for (StreamCase& c : cases)
        if (c.stream.empty()) {
            Blob far(c.expected.begin(), c.expected.begin() + 70000);
            const size_t d = 70000 - 1, l = 600 - 5;
            Blob copy = {uint8_t(0xC0 | ((d >> 12) & 0x10) | ((l >> 6) & 0x0C)), uint8_t(d >> 8),
                         uint8_t(d), uint8_t(l), 0xFC};
            c.stream = stream(c.expected.size(), cat({literalCommands(far), copy}));
        }
    return cases;
}

INSTANTIATE_TEST_SUITE_P(Commands, RefPackDecode, ::testing::ValuesIn(allStreamCases()),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(RefPack, HostileStreamsFailCleanly) {
    LibraryHost host;
    struct {
        const char* name;
        Blob stream;
        size_t limit;
    } cases[] = {
        {"copy before the start", stream(8, {0x0C, 0x04, 0xFC}), 1 << 20},
        {"copy past the declared size", stream(5, {0x0F, 0x02, 'a', 'b', 'c', 0xFC}), 1 << 20},
        {"literals past the declared size", stream(3, {0xE0, 'a', 'b', 'c', 'd', 0xFC}), 1 << 20},
        {"ends before the declared size", stream(20, {0xE0, 'a', 'b', 'c', 'd', 0xFC}), 1 << 20},
        {"no end and no more input", stream(20, {0xE0, 'a', 'b', 'c', 'd'}), 1 << 20},
        {"cut inside a command", stream(20, {0xE0, 'a', 'b', 'c', 'd', 0xC1, 0x00}), 1 << 20},
        {"cut inside literals", stream(20, {0xE1, 'a', 'b'}), 1 << 20},
        {"size above the limit", stream(100, {0xFC}), 50},
        {"size no stream can reach", Blob{0x90, 0xFB, 0x40, 0, 0, 0, 0xFC}, size_t{1} << 31},
        {"bad magic", Blob{0x10, 0xFA, 0, 0, 1, 0xFD, 'a'}, 1 << 20},
        {"header cut short", Blob{0x11, 0xFB, 0, 0, 1}, 1 << 20},
    };
    for (const auto& c : cases) {
        EXPECT_THROW(refpack::decode(c.stream, c.limit), tavix::FormatError) << c.name;
        EXPECT_THROW(refpack::peek(c.stream, 100000), tavix::FormatError) << c.name;
    }
}

TEST(RefPack, PeekReadsOnlyTheStart) {
    LibraryHost host;
    Blob s = stream(1000000, {0xE0, 'S', 'H', 'P', 'I'}); // the rest is missing
    tavix::Bytes start = refpack::peek(s, 4);
    EXPECT_EQ(Blob(start.begin(), start.end()), str("SHPI"));
    EXPECT_THROW(refpack::decode(s, 1 << 24), tavix::FormatError);
}

TEST(RefPack, CompressorOutputDecodesToItsInput) {
    LibraryHost host;
    std::vector<Blob> inputs;
    for (size_t n : {0, 1, 2, 3, 4, 5, 7, 100, 1029, 70000, 300000})
        inputs.push_back(randomBytes(n, unsigned(n)));
    Blob twice = randomBytes(90000, 7);
    twice.insert(twice.end(), twice.begin(), twice.end()); // matches 90000 back: 4-byte commands
    inputs.push_back(twice);
    inputs.push_back(Blob(1 << 20, 0)); // runs longer than one copy
    Blob mixed;
    for (int i = 0; i < 200000; ++i)
        mixed.push_back(uint8_t(i % 7 == 0 ? i * 13 : i / 50));
    inputs.push_back(mixed);
    for (const Blob& in : inputs) {
        tavix::Bytes packed = refpack::encode(in);
        EXPECT_EQ(decoded(Blob(packed.begin(), packed.end()), in.size() + 1), in)
            << in.size() << " bytes";
    }
    tavix::Bytes again = refpack::encode(twice);
    EXPECT_LT(again.size(), twice.size() * 6 / 10)
        << "the second copy must be found 90000 bytes back";
}

TEST(RefPack, CompressorRatioOnRepetitiveData) {
    LibraryHost host;
    // Sprite-like pixels: flat areas, repeated rows and a few edges, 4 MiB.
    Blob pixels;
    for (int y = 0; y < 1024; ++y)
        for (int x = 0; x < 1024; ++x) {
            const bool inside = (x / 64 + y / 64) % 2 == 0;
            const uint8_t shade = static_cast<uint8_t>(inside ? 200 : 30 + (x % 64) / 8);
            pixels.insert(pixels.end(), {shade, uint8_t(shade / 2), uint8_t(y / 4), 255});
        }
    tavix::Bytes packed = refpack::encode(pixels);
    const double ratio = double(packed.size()) / double(pixels.size());
    printf("RefPack: %zu bytes -> %zu bytes (%.2f%% of the input)\n", pixels.size(), packed.size(),
           100 * ratio);
    RecordProperty("refpack_ratio_percent", static_cast<int>(100 * ratio));
    EXPECT_LT(ratio, 0.05);
    EXPECT_EQ(decoded(Blob(packed.begin(), packed.end()), pixels.size()), pixels);
}

} // namespace
