// The binding against the real codec library, and against variants of it
// built by the tests that lack one entry each.

#include "CodecTestSupport.h"

#include "codec/FrameIO.h"
#include "codec/TavixBinding.h"
#include "imaging/galloc.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

using namespace zytest;

namespace {

class Binding : public ::testing::Test {
  protected:
    void SetUp() override { bindBuiltLibrary(); }
    void TearDown() override {
        TavixUnbind(); // later tests rebind the normal library
        unsetenv("TAVIX_DRIVERNAME");
    }
};

TEST_F(Binding, FillsEveryEntryOfTheRealLibrary) {
    const TavixEntryTable& table = TavixTable();
    auto* slots = reinterpret_cast<void* const*>(&table);
    for (int i = 0; i < 21; ++i)
        EXPECT_NE(slots[i], nullptr) << kTavixExportNames[i];
    ASSERT_NE(table.aboutData, nullptr);
    EXPECT_NE(table.ttfInfo, nullptr);
    EXPECT_STREQ(TavixLibraryAbout()->shortname, "tavix");
}

TEST_F(Binding, FindsDriversByShortName) {
    EXPECT_GT(TavixCount(), 0);
    for (const char* name : {"newfsh", "newssh", "newxsh", "newgsh", "tga", "png", "bmp", "tvx"}) {
        int driver = TavixFind(name);
        ASSERT_GE(driver, 0) << name;
        TavixSet(driver);
        EXPECT_EQ(TavixGet(), driver);
        TavixAboutPtr about(TavixAboutDriver());
        ASSERT_TRUE(about);
        EXPECT_STREQ(about->shortname, name);
    }
    EXPECT_EQ(TavixFind("newpsh"), -1) << "drivers Zy does not ship are not found";
}

TEST_F(Binding, RoundTripKeepsEveryFieldThroughTavixImages) {
    TempFolder folder;
    TavixFrame indexed = makeFrame(7, 5, 8, "indexed sprite");
    indexed.info->centerx = 3;
    indexed.info->defaulty = -12;
    indexed.info->numhotspots = 2;
    indexed.info->hotspots[1] = {5, 6};
    strcpy(indexed.info->comment, "a comment\nwith two lines");
    indexed.info->attributes = kAttrMipLevel;
    TavixFrame truecolour = makeFrame(9, 3, 32, "truecolour");
    truecolour.info->fps = 12.5f;

    int32_t live = galloc_live_count();
    {
        std::string error;
        std::string path = (folder / "deep/er/frames.tvx").string();
        ASSERT_TRUE(TavixWriteFile(path, TavixFind("tvx"), {&indexed, &truecolour}, error))
            << error;
        TavixReadResult back = TavixReadFile(path);
        ASSERT_TRUE(back.ok) << back.error;
        EXPECT_EQ(back.driver, TavixFind("tvx"));
        ASSERT_EQ(back.frames.size(), 2u);
        for (int i = 0; i < 2; ++i) {
            const TavixFrame& original = i == 0 ? indexed : truecolour;
            TavixInfo expected = *original.info;
            expected.frame = i;
            EXPECT_EQ(memcmp(back.frames[i].info.get(), &expected, sizeof expected), 0)
                << "frame " << i;
            EXPECT_EQ(argbPixels(back.frames[i]), argbPixels(original));
        }
    }
    EXPECT_EQ(galloc_live_count(), live) << "every record the library returned was freed";
}

TEST_F(Binding, AskingForTrueColourExpandsThePalette) {
    TempFolder folder;
    TavixFrame indexed = makeFrame(4, 4, 8);
    std::string error;
    std::string path = (folder / "one.tvx").string();
    ASSERT_TRUE(TavixWriteFile(path, TavixFind("tvx"), {&indexed}, error));

    char work[260] = {};
    intptr_t stream = TavixGOpen(path.c_str(), work);
    ASSERT_NE(stream, 0);
    TavixReader reader = nullptr;
    ASSERT_EQ(TavixOpen(&reader, stream, path.c_str(), 1), 1);
    TavixInfoPtr info(TavixFrameInfo(reader, 0));
    info->bufferbpp = 32;
    std::vector<uint32_t> pixels(16);
    ASSERT_TRUE(TavixRead(reader, info.get(), pixels.data(), 16));
    EXPECT_EQ(pixels, argbPixels(indexed));
    EXPECT_EQ(TavixFrameInfo(reader, 1), nullptr) << "no frame past the end";
    EXPECT_TRUE(TavixClose(reader));
    TavixProgramCallbacks().close(stream);
}

TEST_F(Binding, UnreadableFilesFailCleanly) {
    TempFolder folder;
    int32_t live = galloc_live_count();
    EXPECT_FALSE(TavixReadFile((folder / "missing.tvx").string()).ok);
    std::string junk = (folder / "junk.tvx").string();
    FILE* file = fopen(junk.c_str(), "wb");
    fputs("TVX1\x05\x00\x00\x00 and then nothing useful", file);
    fclose(file);
    TavixReadResult result = TavixReadFile(junk);
    EXPECT_FALSE(result.ok);
    EXPECT_FALSE(result.error.empty());
    EXPECT_EQ(galloc_live_count(), live);
}

TEST_F(Binding, FailedSaveKeepsTheOldFile) {
    TempFolder folder;
    std::string path = (folder / "keep.tvx").string();
    TavixFrame frame = makeFrame(3, 3, 32, "first");
    std::string error;
    ASSERT_TRUE(TavixWriteFileSafely(path, TavixFind("tvx"), {&frame}, error));
    TavixFrame broken = makeFrame(3, 3, 32);
    broken.info->width = 0; // the library refuses a frame of no size
    EXPECT_FALSE(TavixWriteFileSafely(path, TavixFind("tvx"), {&frame, &broken}, error));
    TavixReadResult back = TavixReadFile(path);
    ASSERT_TRUE(back.ok);
    EXPECT_EQ(back.frames.size(), 1u);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1)
        << "no temporary file is left behind";
}

TEST_F(Binding, EnvironmentSelectsAnotherLibrary) {
    TavixUnbind();
    setenv("TAVIX_DRIVERNAME", ZY_TAVIX_NO_OPEN16, 1);
    ASSERT_TRUE(TavixBind());
    EXPECT_NE(TavixLibraryPath().find("tavix_no_open16"), std::string::npos);
    EXPECT_EQ(TavixTable().open, nullptr);
    EXPECT_NE(TavixTable().open12, nullptr);
}

TEST_F(Binding, OlderLibraryWithoutFourArgumentOpenStillReads) {
    TempFolder folder;
    std::string path = (folder / "old.tvx").string();
    TavixFrame frame = makeFrame(5, 2, 8, "old");
    std::string error;
    ASSERT_TRUE(TavixWriteFile(path, TavixFind("tvx"), {&frame}, error));
    TavixUnbind();
    setenv("TAVIX_DRIVERNAME", ZY_TAVIX_NO_OPEN16, 1);
    ASSERT_TRUE(TavixBind());
    TavixReadResult back = TavixReadFile(path);
    ASSERT_TRUE(back.ok) << back.error;
    EXPECT_EQ(argbPixels(back.frames.at(0)), argbPixels(frame));
}

TEST_F(Binding, LibraryWithoutInitFailsToBindButStaysLoaded) {
    TavixUnbind();
    setenv("TAVIX_DRIVERNAME", ZY_TAVIX_NO_INIT, 1);
    EXPECT_FALSE(TavixBind());
    EXPECT_TRUE(TavixIsBound());
    EXPECT_EQ(TavixTable().init, nullptr);
}

TEST_F(Binding, MissingLibraryFailsToBind) {
    TavixUnbind();
    setenv("TAVIX_DRIVERNAME", "zy-no-such-codec", 1);
    EXPECT_FALSE(TavixBind());
    EXPECT_FALSE(TavixIsBound());
    // Every wrapper answers its "missing" result instead of crashing.
    TavixReader reader = nullptr;
    EXPECT_EQ(TavixOpen(&reader, 1, "x", 1), 0);
    EXPECT_EQ(TavixAboutDriver(), nullptr);
    EXPECT_EQ(TavixCount(), 0);
    EXPECT_EQ(TavixGOpen("x", nullptr), 0);
    EXPECT_FALSE(TavixWClose(nullptr));
}

} // namespace
