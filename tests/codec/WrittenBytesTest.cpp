// Files written through the real library stay byte for byte what they were
// when the block-wise readers and writers came in: every uncompressed
// format (and run-length Targa, whose packer was left alone) is written
// from fixed frames, several at once where the format holds several, and
// its bytes compared with a checksum taken from the writers that came
// before. A changed checksum means files saved
// by Zy would differ from before; if that is meant, say why in the commit
// and take the new value from the failure message.

#include "CodecTestSupport.h"

#include "codec/TavixBinding.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>

using namespace zytest;

namespace {

uint64_t fnv1a(const std::vector<char>& bytes) {
    uint64_t hash = 0xcbf29ce484222325ull;
    for (char c : bytes) {
        hash ^= static_cast<uint8_t>(c);
        hash *= 0x100000001b3ull;
    }
    return hash;
}

struct Case {
    const char* driver;
    int width;
    int height;
    int bufferbpp;
    int packed;
    uint64_t checksum;
    size_t size;
};

// Odd widths give every row padding; 1030 x 1030 x 4 bytes crosses the
// 4 MB block of the block-wise writers.
const Case kCases[] = {
    {"tga", 37, 23, 8, 0, 0x5a6fbd4ce11c902eull, 1663},
    {"tga", 37, 23, 32, 0, 0x78c26123124be10bull, 3448},
    {"tga", 1030, 1030, 32, 0, 0xcd27bba3f82d7bf2ull, 4243644},
    {"tga", 37, 23, 8, 1, 0x924cbebaa311a38cull, 1686},
    {"tga", 37, 23, 32, 1, 0x22f04470b3c89093ull, 3471},
    {"bmp", 37, 23, 8, 0, 0xd38175387873ab6full, 1998},
    {"bmp", 37, 23, 32, 0, 0xf316508f9e0c1e27ull, 3526},
    {"bmp", 1030, 1030, 32, 0, 0x79077638e9031ec9ull, 4243722},
    {"tvx", 37, 23, 8, 0, 0xb005b18ce450e15full, 23462},
    {"tvx", 37, 23, 32, 0, 0x6ec2d62389de9faeull, 28568},
    {"tvx", 1030, 1030, 32, 0, 0x3bfda32a35afbb07ull, 8508960},
    {"newfsh", 37, 23, 8, 0, 0xe67771d2ab78b64cull, 3904},
    {"newfsh", 37, 23, 32, 0, 0xeaad56dac5ce1a4dull, 6912},
    {"newfsh", 1030, 1030, 32, 0, 0x3f167ee3719a6000ull, 8487296},
    {"newssh", 37, 23, 8, 0, 0x1a9fb038a0fe2452ull, 3904},
    {"newssh", 37, 23, 32, 0, 0x17a67cd96d568a9aull, 6912},
    {"newxsh", 37, 23, 32, 0, 0x12032c3891179e26ull, 6912},
    {"newgsh", 37, 23, 8, 0, 0xbc35cdf1a23c5edcull, 4096},
    {"newgsh", 40, 24, 32, 0, 0x81ae7a9557371289ull, 7776},
};

TEST(WrittenBytes, UncompressedFormatsWriteWhatTheyAlwaysWrote) {
    bindBuiltLibrary();
    TempFolder folder;
    for (const Case& c : kCases) {
        SCOPED_TRACE(testing::Message() << c.driver << " " << c.width << "x" << c.height << " "
                                        << c.bufferbpp << "-bit packed " << c.packed);
        TavixFrame first = makeFrame(c.width, c.height, c.bufferbpp, "first");
        first.info->packed = c.packed;
        first.info->centerx = 5;
        first.info->defaulty = 7;
        // Shape files and tvx hold several frames; the others take one.
        TavixFrame second = makeFrame(c.height, c.width, c.bufferbpp, "second");
        second.info->packed = c.packed;
        const bool many = c.driver[0] == 'n' || c.driver[1] == 'v';
        std::vector<const TavixFrame*> frames{&first};
        if (many) frames.push_back(&second);
        const std::string driver = c.driver;
        const auto path =
            folder / ("out." + (driver.rfind("new", 0) == 0 ? driver.substr(3) : driver));
        std::string error;
        ASSERT_TRUE(TavixWriteFile(path.string(), TavixFind(c.driver), frames, error)) << error;
        std::ifstream in(path, std::ios::binary);
        std::vector<char> bytes{std::istreambuf_iterator<char>(in), {}};
        char expected[64];
        snprintf(expected, sizeof expected, "0x%016llx, %zu", (unsigned long long)fnv1a(bytes),
                 bytes.size());
        EXPECT_EQ(fnv1a(bytes), c.checksum) << "now " << expected;
        EXPECT_EQ(bytes.size(), c.size);
    }
}

} // namespace
