// Hostile shape files: every one must fail cleanly (the entry or the file),
// never crash, never hang and never leak a block. Also replays the
// crashers folder and the fuzz seeds through the fuzz entry functions.

#include "ShapeFixtures.h"
#include "fuzz/ShapeFuzz.h"

#include "imaging/galloc.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

using namespace shapetest;

namespace {

const Endian LE{false};

void setU32(Blob& b, size_t at, uint32_t v) {
    for (int i = 0; i < 4; ++i)
        b[at + i] = uint8_t(v >> (8 * i));
}
void setU24(Blob& b, size_t at, uint32_t v) {
    for (int i = 0; i < 3; ++i)
        b[at + i] = uint8_t(v >> (8 * i));
}
void setU16(Blob& b, size_t at, uint32_t v) {
    b[at] = uint8_t(v);
    b[at + 1] = uint8_t(v >> 8);
}

Blob twoEntries() {
    return buildFile("SHPI", {{"one", {bitmap(LE, 0x7D, 2, 2, Blob(16, 7)), text(LE, "first")}},
                              {"two", {bitmap(LE, 0x7D, 2, 2, Blob(16, 9))}}});
}

// Where entry i's first record starts in a buildFile() file.
size_t entryAt(const Blob& f, int i) {
    return f[16 + 8 * i + 4] | f[16 + 8 * i + 5] << 8 | f[16 + 8 * i + 6] << 16;
}

struct HostileCase {
    const char* name;
    Blob file;
    int readable; // frames that must still decode (-1: the file must not open)
};

std::vector<HostileCase> hostileCases() {
    std::vector<HostileCase> cases;
    auto edit = [&](const char* name, int readable, auto change) {
        Blob f = twoEntries();
        change(f);
        cases.push_back({name, f, readable});
    };
    edit("directory offset past the end", 1, [](Blob& f) { setU32(f, 16 + 4, 0x7FFFFFF0); });
    edit("directory offset inside the directory", 1, [](Blob& f) { setU32(f, 16 + 4, 8); });
    edit("entry count beyond the file", -1, [](Blob& f) { setU32(f, 8, 0x10000000); });
    edit("next offset past the end", 1, [](Blob& f) { setU24(f, entryAt(f, 0) + 1, 0xFFFFF0); });
    edit("next offset inside the record", 1, [](Blob& f) { setU24(f, entryAt(f, 0) + 1, 2); });
    edit("next offset into the next entry", 2,
         [](Blob& f) { setU24(f, entryAt(f, 0) + 1, uint32_t(entryAt(f, 1) - entryAt(f, 0))); });
    edit("pixels overflow the record", 1, [](Blob& f) { setU16(f, entryAt(f, 0) + 4, 0xFFFF); });
    edit("huge width times height", 1, [](Blob& f) {
        setU16(f, entryAt(f, 0) + 4, 0xFFFF);
        setU16(f, entryAt(f, 0) + 6, 0xFFFF);
    });
    edit("zero width", 1, [](Blob& f) { setU16(f, entryAt(f, 0) + 4, 0); });
    edit("fifteen mip levels that do not fit", 1,
         [](Blob& f) { setU16(f, entryAt(f, 0) + 14, 0xF000); });
    edit("text length overflows", 2,
         [](Blob& f) { setU32(f, entryAt(f, 0) + 32 + 4, 0xFFFFFFFF); });
    edit("magic only", -1, [](Blob& f) { f.resize(4); });
    edit("header only", 0, [](Blob& f) {
        f.resize(16);
        setU32(f, 8, 0);
    });
    edit("file size field lies", 2, [](Blob& f) { setU32(f, 4, 12345); });
    // Records the reader must refuse inside an otherwise good file.
    auto entry = [&](const char* name, std::vector<Rec> records, int readable) {
        Blob f =
            buildFile("SHPI", {{"bad", records}, {"ok", {bitmap(LE, 0x7D, 1, 1, {1, 2, 3, 4})}}});
        cases.push_back({name, f, readable});
    };
    entry("packed record with a forged size",
          {bitmap(LE, 0xFD, 2, 2, {0x10, 0xFB, 0xFF, 0xFF, 0xFF, 0xFC})}, 1);
    entry("packed record copying before the start",
          {bitmap(LE, 0xFD, 2, 2, {0x10, 0xFB, 0, 0, 16, 0x0C, 0x04, 0xFC})}, 1);
    entry("packed record too short",
          {bitmap(LE, 0xFD, 2, 2, {0x10, 0xFB, 0, 0, 8, 0xE1, 1, 2, 3, 4, 5, 6, 7, 8, 0xFC})}, 1);
    entry("palette of no colours", {bitmap(LE, 0x7B, 1, 1, {0}), palette(LE, 0x2A, 0, {})}, 2);
    entry("palette of 300 colours",
          {bitmap(LE, 0x7B, 1, 1, {0}), palette(LE, 0x2A, 300, Blob(1200, 1))}, 2);
    entry("palette entry cut short", {palette(LE, 0x2A, 200, Blob(8, 1))}, 1);
    entry("hot spot count overflows",
          {bitmap(LE, 0x7D, 1, 1, {1, 2, 3, 4}), raw(0x7C, {0xFF, 0xFF, 0xFF, 0x1F})}, 2);
    entry("long name without terminator",
          {bitmap(LE, 0x7D, 1, 1, {1, 2, 3, 4}), raw(0x70, {'a', 'b', 'c'})}, 2);
    entry("header shorter than 16 bytes", {raw(0x7D, {1, 0, 1, 0})}, 1);
    // A whole-file stream that claims a gigabyte.
    cases.push_back({"whole-file RefPack bomb",
                     Blob{0x90, 0xFB, 0x40, 0, 0, 0, 0xE0, 'S', 'H', 'P', 'I', 0xFC}, -1});
    return cases;
}

class Hostile : public ::testing::TestWithParam<HostileCase> {};

TEST_P(Hostile, FailsCleanlyAndKeepsTheRest) {
    LibraryHost host;
    const HostileCase& c = GetParam();
    ReadResult r = readWith(tavix::kFshDriver, c.file);
    if (c.readable < 0) {
        EXPECT_FALSE(r.opened);
        EXPECT_FALSE(r.error.empty());
        return;
    }
    ASSERT_TRUE(r.opened) << r.error;
    int ok = 0;
    for (const Frame& f : r.frames)
        ok += f.ok;
    EXPECT_EQ(ok, c.readable);
    // Whatever was read can be written again.
    std::vector<WriteInput> inputs;
    for (const Frame& f : r.frames)
        if (f.ok) inputs.push_back(fromFrame(f));
    if (!inputs.empty()) {
        EXPECT_FALSE(writeWith(tavix::kFshDriver, inputs).empty());
    }
}

INSTANTIATE_TEST_SUITE_P(Files, Hostile, ::testing::ValuesIn(hostileCases()), [](const auto& info) {
    std::string n = info.param.name;
    for (char& ch : n)
        if (!isalnum(static_cast<unsigned char>(ch))) ch = '_';
    return n;
});

TEST(ShapeHostile, EveryTruncationOfAGoodFileFailsCleanly) {
    LibraryHost host;
    Blob pal(1024, 0x55);
    Blob good = buildFile(
        "SHPI", {{"a",
                  {bitmap(LE, 0x7B, 4, 4, Blob(16, 1)), palette(LE, 0x2A, 256, pal),
                   longName("a_name"), text(LE, "c"), hotspots(LE, {{1, 1}})}},
                 {"b", {bitmap(LE, 0xE0, 8, 8, literalPack(Blob(32 + 8, 3)), 0, 0, 0, 1u << 12)}},
                 {"!pal", {palette(LE, 0x24, 2, {1, 2, 3, 4, 5, 6})}}});
    Blob packed = literalPack(good);
    for (const Blob* file : {&good, &packed})
        for (size_t n = 0; n < file->size(); ++n) {
            Blob cut(file->begin(), file->begin() + n);
            readWith(tavix::kFshDriver, cut); // must return, whatever it finds
            shapeFuzzReader(cut.data(), cut.size());
        }
}

TEST(ShapeHostile, OverlappingChainsRunOutOfBudgetInsteadOfTime) {
    LibraryHost host;
    // Thousands of directory entries that all name one long chain.
    std::vector<Rec> chain = {bitmap(LE, 0x7D, 1, 1, {1, 2, 3, 4})};
    for (int i = 0; i < 2000; ++i)
        chain.push_back(raw(0x45, {1}));
    Blob f = buildFile("SHPI", {{"ch", chain}});
    const size_t first = entryAt(f, 0);
    const uint32_t entries = 20000;
    Blob dir(16 + 8 * entries);
    memcpy(dir.data(), f.data(), 12);
    setU32(dir, 8, entries);
    while (dir.size() % 16)
        dir.push_back(0);
    const size_t shift = dir.size() - first;
    for (uint32_t i = 0; i < entries; ++i) {
        memcpy(&dir[16 + 8 * i], "ch\0\0", 4);
        setU32(dir, 16 + 8 * i + 4, uint32_t(first + shift));
    }
    dir.insert(dir.end(), f.begin() + first, f.end());
    setU32(dir, 4, uint32_t(dir.size()));
    ReadResult r = readWith(tavix::kFshDriver, dir);
    ASSERT_TRUE(r.opened);
    EXPECT_EQ(r.frames.size(), entries);
    EXPECT_TRUE(r.frames.front().ok);
    EXPECT_FALSE(r.frames.back().ok);
    EXPECT_TRUE(host.printed("more problems"));
}

TEST(ShapeHostile, AllocationFailuresAreCleanFailures) {
    LibraryHost host;
    Blob file = twoEntries();
    for (int limit = 1; limit < 40; ++limit) {
        const int32_t live = galloc_live_count();
        setenv("GALLOCMAX", std::to_string(live + limit).c_str(), 1);
        galloc_reload_limit();
        readWith(tavix::kFshDriver, file);
        rewrite(tavix::kFshDriver, file);
        unsetenv("GALLOCMAX");
        galloc_reload_limit();
        EXPECT_EQ(galloc_live_count(), live) << "limit " << limit;
    }
}

// Files that once broke the readers (found by fuzzing or by hand), and the
// fuzz seeds: all replayed through the same entry functions the fuzzers use.
TEST(ShapeHostile, CrashersAndSeedsReplayCleanly) {
    LibraryHost host;
    namespace fs = std::filesystem;
    int replayed = 0;
    for (const char* folder : {"crashers", "fuzz/seeds"}) {
        const fs::path dir = fs::path(ZY_SOURCE_DIR) / "tests/shape" / folder;
        if (!fs::exists(dir)) continue;
        for (const auto& item : fs::directory_iterator(dir)) {
            if (!item.is_regular_file() || item.path().extension() == ".md") continue;
            std::ifstream in(item.path(), std::ios::binary);
            Blob data((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
            shapeFuzzReader(data.data(), data.size());
            shapeFuzzRefPack(data.data(), data.size());
            ++replayed;
        }
    }
    EXPECT_GT(replayed, 0);
}

} // namespace
