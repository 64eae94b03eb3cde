#include "imaging/galloc.h"
#include "imaging/gfile.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <sys/stat.h>

namespace {

std::string g_printed;

void capture(const char* format, va_list args) {
    char text[8192];
    vsnprintf(text, sizeof text, format, args);
    g_printed += text;
}

// Captures the library's print output and restores the allocation limit.
class Allocator : public ::testing::Test {
  protected:
    void SetUp() override {
        g_printed.clear();
        m_previous = gsetprinthook(capture);
        unsetenv("GALLOCMAX");
        galloc_reload_limit();
        m_live = galloc_live_count();
    }
    void TearDown() override {
        unsetenv("GALLOCMAX");
        galloc_reload_limit();
        gsetprinthook(m_previous);
        EXPECT_EQ(galloc_live_count(), m_live);
    }
    void limitTo(const char* value) {
        setenv("GALLOCMAX", value, 1);
        galloc_reload_limit();
    }
    GPrintHook m_previous = nullptr;
    int32_t m_live = 0;
};

TEST_F(Allocator, CountsLiveBlocksAndFreesOnce) {
    void* a = galloc(16);
    void* b = galloc(1);
    ASSERT_TRUE(a && b);
    EXPECT_EQ(galloc_live_count(), m_live + 2);
    memset(a, 0xAB, 16); // the whole block is usable
    EXPECT_EQ(gfree(a), 1);
    EXPECT_EQ(gfree(b), 1);
    EXPECT_EQ(g_printed, "");
}

TEST_F(Allocator, RejectsSizesOfZeroAndBelow) {
    EXPECT_EQ(galloc(0), nullptr);
    EXPECT_EQ(galloc(-5), nullptr);
    EXPECT_EQ(g_printed, "galloc - INVALID SIZE 0\ngalloc - INVALID SIZE -5\n");
}

TEST_F(Allocator, LimitCountsLiveBlocksNotCalls) {
    limitTo("3");
    void* blocks[3];
    for (void*& block : blocks)
        ASSERT_NE(block = galloc(8), nullptr);
    EXPECT_EQ(galloc(8), nullptr);
    EXPECT_EQ(g_printed, "galloc - ERROR, PURPOSELY FAILING ON GALLOC COUNT 3, SIZE 8\n");
    gfree(blocks[0]);
    void* again = galloc(8);
    EXPECT_NE(again, nullptr);
    gfree(again);
    gfree(blocks[1]);
    gfree(blocks[2]);
}

TEST_F(Allocator, LimitOfZeroFailsTheFirstBlock) {
    ASSERT_EQ(galloc_live_count(), 0) << "another test leaked";
    limitTo("0");
    EXPECT_EQ(galloc(4), nullptr);
    EXPECT_NE(g_printed.find("PURPOSELY FAILING ON GALLOC COUNT 0, SIZE 4"), std::string::npos);
}

TEST_F(Allocator, NullAndNearNullPointersAreRefused) {
    EXPECT_EQ(gfree(nullptr), 0);
    EXPECT_EQ(gfree(reinterpret_cast<void*>(2047)), 0);
    EXPECT_EQ(gfree(reinterpret_cast<void*>(-2047)), 0);
    EXPECT_EQ(g_printed, "gfree - ATTEMPT TO FREE NULL POINTER\n"
                         "gfree - ATTEMPT TO FREE NULL POINTER\n"
                         "gfree - ATTEMPT TO FREE NULL POINTER\n");
}

TEST_F(Allocator, DoubleFreeIsCaughtAndTheBlockLeaked) {
    void* block = galloc(32);
    ASSERT_EQ(gfree(block), 1);
    // The freed header still reads "GFRE" only while the heap has not reused
    // it; simulate that state on a block of our own to stay well-defined.
    alignas(8) unsigned char fake[8 + 4 + 4] = {'G', 'F', 'R', 'E', 4, 0, 0, 0};
    EXPECT_EQ(gfree(fake + 8), 0);
    EXPECT_EQ(g_printed, "gfree - ATTEMPT TO FREE MEMORY TWICE\n");
}

TEST_F(Allocator, ForeignMemoryReportsCorruption) {
    alignas(8) unsigned char stack[64] = {};
    EXPECT_EQ(gfree(stack + 16), 0);
    EXPECT_EQ(g_printed, "gfree - SENTINAL CORRUPTED; PROBABLE MEMORY DATA CORRUPTION\n");
}

TEST_F(Allocator, OverrunPastTheEndIsReportedAndLeaked) {
    auto* block = static_cast<unsigned char*>(galloc(10));
    ASSERT_NE(block, nullptr);
    block[10] = 'X'; // first byte of the "GEND" trailer
    EXPECT_EQ(gfree(block), 0);
    EXPECT_EQ(g_printed, "gfree - SENTINAL CORRUPTED; PROBABLE MEMORY DATA CORRUPTION\n");
    // Repair and release it so the live count balances.
    block[10] = 'G';
    EXPECT_EQ(gfree(block), 1);
}

TEST_F(Allocator, DefaultHookIsRestoredByNull) {
    gsetprinthook(nullptr);
    GPrintHook mine = gsetprinthook(capture);
    EXPECT_NE(mine, capture);
    gprintf("%s %d", "value", 7);
    EXPECT_EQ(g_printed, "value 7");
}

class FileHelpers : public ::testing::Test {
  protected:
    void SetUp() override {
        m_root = std::filesystem::temp_directory_path() /
                 ("zy-gfile-" + std::to_string(getpid()) + "-" +
                  ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::remove_all(m_root);
        std::filesystem::create_directories(m_root);
    }
    void TearDown() override { std::filesystem::remove_all(m_root); }
    std::filesystem::path m_root;
};

TEST_F(FileHelpers, WritingCreatesEveryFolderAlongThePath) {
    std::string path = (m_root / "a" / "b" / "c.fsh").string();
    intptr_t out = gfopenwrite(path.c_str());
    ASSERT_NE(out, 0);
    EXPECT_EQ(gfwrite(out, "SHPI", 4), 4);
    EXPECT_EQ(gfclose(out), 1);
    EXPECT_TRUE(std::filesystem::is_directory(m_root / "a" / "b"));
    EXPECT_EQ(std::filesystem::file_size(path), 4u);
}

TEST_F(FileHelpers, BackslashesAreFolderSeparators) {
    std::string path = m_root.string() + "\\x\\y.bin";
    intptr_t out = gfopenwrite(path.c_str());
    ASSERT_NE(out, 0);
    gfclose(out);
    EXPECT_TRUE(std::filesystem::exists(m_root / "x" / "y.bin"));
    intptr_t in = gfopenread(path.c_str());
    EXPECT_NE(in, 0);
    gfclose(in);
}

TEST_F(FileHelpers, SeekTellAndSizeAgree) {
    std::string path = (m_root / "data.bin").string();
    intptr_t out = gfopenwrite(path.c_str());
    char bytes[100];
    for (int i = 0; i < 100; ++i)
        bytes[i] = static_cast<char>(i);
    gfwrite(out, bytes, 100);
    gfclose(out);

    intptr_t in = gfopenread(path.c_str());
    ASSERT_NE(in, 0);
    EXPECT_EQ(gfseek(in, 40, 0), 1);
    EXPECT_EQ(gfsize(in), 100);
    EXPECT_EQ(gftell(in), 40) << "size must restore the position";
    char got[10];
    EXPECT_EQ(gfread(in, got, 10), 10);
    EXPECT_EQ(got[0], 40);
    EXPECT_EQ(gfread(in, got, 0), 0);
    gfseek(in, 100, 0);
    EXPECT_EQ(gfread(in, got, 10), 0) << "end of file";
    gfclose(in);
}

TEST_F(FileHelpers, FailuresAnswerZero) {
    EXPECT_EQ(gfopenread((m_root / "missing").string().c_str()), 0);
    EXPECT_EQ(gfopenread(""), 0);
    errno = 0;
    EXPECT_EQ(gfopenread(m_root.string().c_str()), 0) << "a directory is no file to read";
    EXPECT_EQ(errno, EISDIR);
    EXPECT_EQ(gfclose(0), 1) << "no handle counts as closed";
}

} // namespace
