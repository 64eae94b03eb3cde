// The Tavix Images reader on broken input: every failure is clean, nothing
// leaks, and a damaged file never yields a frame that lies about its size.

#include "CodecTestSupport.h"

#include "codec/FrameIO.h"
#include "codec/TavixBinding.h"
#include "imaging/galloc.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <iterator>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

using namespace zytest;

namespace {

std::vector<uint8_t> validFile(const TempFolder& folder) {
    bindBuiltLibrary();
    std::vector<TavixFrame> frames;
    frames.push_back(makeFrame(3, 2, 8, "a"));
    frames.push_back(makeFrame(2, 2, 32, "b"));
    std::string path = (folder / "valid.tvx").string();
    std::string error;
    EXPECT_TRUE(TavixWriteFile(path, TavixFind("tvx"), {&frames[0], &frames[1]}, error));
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

void put32(std::vector<uint8_t>& bytes, size_t at, uint32_t value) {
    memcpy(&bytes[at], &value, 4);
}

TEST(TvxReader, EveryTruncationFailsCleanly) {
    TempFolder folder;
    std::vector<uint8_t> file = validFile(folder);
    ASSERT_GT(file.size(), 100u);
    int32_t live = galloc_live_count();
    for (size_t length = 0; length < file.size(); length += (length < 64 ? 1 : 97))
        LLVMFuzzerTestOneInput(file.data(), length); // aborts on a leak
    EXPECT_EQ(galloc_live_count(), live);
}

TEST(TvxReader, HostileHeadersAreRefusedThroughTheLibrary) {
    TempFolder folder;
    const std::vector<uint8_t> valid = validFile(folder);
    const size_t record = 12; // first record starts after magic, count, size
    const size_t width = record + 16, height = record + 20;
    struct Case {
        const char* label;
        size_t at;
        uint32_t value;
    } cases[] = {
        {"huge frame count", 4, 0xFFFFFFFF},
        {"record size below the fixed record", 8, 100},
        {"record size past the end", 8, 0x7FFFFFFF},
        {"huge width", width, 0x7FFFFFFF},
        {"negative height", height, 0xFFFFFFFF},
        {"width that disagrees with the pixel count", width, 4},
        {"pixel depth that disagrees with the record", record + kTavixInfoSize, 32},
    };
    int32_t live = galloc_live_count();
    for (const Case& c : cases) {
        std::vector<uint8_t> bytes = valid;
        put32(bytes, c.at, c.value);
        std::string path = (folder / "broken.tvx").string();
        std::ofstream(path, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        TavixReadResult result = TavixReadFile(path);
        EXPECT_FALSE(result.ok && result.frames.size() == 2) << c.label;
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
    EXPECT_EQ(galloc_live_count(), live);
}

TEST(TvxReader, AllocationFailuresAreCleanFailures) {
    TempFolder folder;
    std::vector<uint8_t> file = validFile(folder);
    std::string path = (folder / "valid.tvx").string();
    int32_t live = galloc_live_count();
    for (int limit = live; limit < live + 12; ++limit) {
        setenv("GALLOCMAX", std::to_string(limit).c_str(), 1);
        galloc_reload_limit();
        TavixReadResult result = TavixReadFile(path);
        unsetenv("GALLOCMAX");
        galloc_reload_limit();
        if (result.ok)
            EXPECT_EQ(result.frames.size(), 2u);
        else
            EXPECT_FALSE(result.error.empty());
        result.frames.clear();
        EXPECT_EQ(galloc_live_count(), live) << "limit " << limit;
    }
}

} // namespace
