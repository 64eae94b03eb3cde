// zytool as a user runs it: the real binary, the real codec library.

#include "CodecTestSupport.h"

#include "codec/FrameIO.h"
#include "codec/TavixBinding.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <sys/wait.h>

using namespace zytest;

namespace {

struct ToolRun {
    int status;
    std::string out;
    std::string err;
};

ToolRun zytool(const std::string& arguments, const TempFolder& folder) {
    std::string errPath = (folder / "stderr.txt").string();
    std::string command = std::string(ZY_BIN_DIR) + "/zytool " + arguments + " 2>" + errPath;
    ToolRun run{};
    FILE* pipe = popen(command.c_str(), "r");
    std::array<char, 4096> buffer;
    size_t n;
    while ((n = fread(buffer.data(), 1, buffer.size(), pipe)) > 0) run.out.append(buffer.data(), n);
    int raw = pclose(pipe);
    run.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    FILE* err = fopen(errPath.c_str(), "r");
    while (err && (n = fread(buffer.data(), 1, buffer.size(), err)) > 0) run.err.append(buffer.data(), n);
    if (err) fclose(err);
    std::filesystem::remove(errPath);
    return run;
}

class Zytool : public ::testing::Test {
  protected:
    void SetUp() override { bindBuiltLibrary(); }

    std::string writeFrames(const std::string& name, std::vector<TavixFrame> frames, const char* driver = "tvx") {
        std::string path = (m_folder / name).string();
        std::vector<const TavixFrame*> list;
        for (const TavixFrame& frame : frames) list.push_back(&frame);
        std::string error;
        EXPECT_TRUE(TavixWriteFile(path, TavixFind(driver), list, error)) << error;
        return path;
    }

    static std::vector<TavixFrame> twoFrames() {
        std::vector<TavixFrame> frames;
        frames.push_back(makeFrame(6, 4, 8, "hero"));
        frames.push_back(makeFrame(5, 5, 32, ""));
        return frames;
    }

    TempFolder m_folder;
};

TEST_F(Zytool, FormatsListsEveryDriver) {
    ToolRun run = zytool("formats", m_folder);
    EXPECT_EQ(run.status, 0) << run.err;
    for (const char* name : {"newfsh", "newssh", "newxsh", "newgsh", "tga", "png", "bmp", "tvx"})
        EXPECT_NE(run.out.find(name), std::string::npos) << name;
    EXPECT_NE(run.out.find("Tavix Images"), std::string::npos);
}

TEST_F(Zytool, InfoDescribesEachFrame) {
    std::vector<TavixFrame> frames = twoFrames();
    frames[0].info->centerx = 3;
    frames[0].info->centery = 2;
    snprintf(frames[0].info->comment, sizeof frames[0].info->comment, "first");
    std::string path = writeFrames("two.tvx", std::move(frames));
    ToolRun run = zytool("info " + path, m_folder);
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("2 frames"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("\"hero\""), std::string::npos);
    EXPECT_NE(run.out.find("6x4x8"), std::string::npos);
    EXPECT_NE(run.out.find("centre 3,2"), std::string::npos);
    EXPECT_NE(run.out.find("palette 256"), std::string::npos);
    EXPECT_NE(run.out.find("comment \"first\""), std::string::npos);
    EXPECT_NE(run.out.find("5x5x32"), std::string::npos);
}

TEST_F(Zytool, ConvertJoinsInputsInOrderAndNamesLoneFrames) {
    std::string first = writeFrames("first.tvx", twoFrames());
    std::vector<TavixFrame> lone;
    lone.push_back(makeFrame(3, 3, 32, ""));
    std::string second = writeFrames("sprite.tvx", std::move(lone));
    std::string out = (m_folder / "joined.tvx").string();
    ToolRun run = zytool("convert " + first + " " + second + " " + out, m_folder);
    ASSERT_EQ(run.status, 0) << run.err;
    TavixReadResult back = TavixReadFile(out);
    ASSERT_EQ(back.frames.size(), 3u);
    EXPECT_STREQ(back.frames[0].info->framename, "hero");
    EXPECT_STREQ(back.frames[1].info->framename, "") << "only a lone frame takes the file's name";
    EXPECT_STREQ(back.frames[2].info->framename, "sprite");
    EXPECT_EQ(argbPixels(back.frames[2]), argbPixels(makeFrame(3, 3, 32)));
}

TEST_F(Zytool, SingleImageFormatRefusesSeveralFramesAndPointsToExport) {
    std::string in = writeFrames("two.tvx", twoFrames());
    std::string out = (m_folder / "two.tga").string();
    ToolRun run = zytool("convert " + in + " " + out, m_folder);
    EXPECT_NE(run.status, 0);
    EXPECT_NE(run.err.find("export"), std::string::npos) << run.err;
    EXPECT_FALSE(std::filesystem::exists(out)) << "nothing is written on failure";
}

TEST_F(Zytool, ErrorsGoToStandardErrorWithAFailingExit) {
    struct Case {
        std::string arguments;
        const char* expected;
    } cases[] = {
        {"convert " + (m_folder / "missing.tvx").string() + " " + (m_folder / "o.tvx").string(), "cannot open"},
        {"convert a.tvx b.unknownext", "no driver writes .unknownext"},
        {"convert a.tvx b.tvx --format nosuch", "no driver is named 'nosuch'"},
        {"frobnicate", "unknown verb"},
        {"info", "usage"},
    };
    for (const Case& c : cases) {
        ToolRun run = zytool(c.arguments, m_folder);
        EXPECT_NE(run.status, 0) << c.arguments;
        EXPECT_NE(run.err.find(c.expected), std::string::npos) << c.arguments << ": " << run.err;
        EXPECT_EQ(run.out, "") << c.arguments;
    }
    EXPECT_FALSE(std::filesystem::exists(m_folder / "o.tvx"));
}

TEST_F(Zytool, ExportWritesOneFilePerFrameNamedOrNumbered) {
    std::vector<TavixFrame> frames = twoFrames();
    frames.push_back(makeFrame(2, 2, 32, "hero")); // a duplicate name must not overwrite
    std::string in = writeFrames("three.tvx", std::move(frames));
    std::string folder = (m_folder / "out").string();
    ToolRun run = zytool("export " + in + " " + folder + " --format tvx", m_folder);
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(std::filesystem::exists(folder + "/hero.tvx"));
    EXPECT_TRUE(std::filesystem::exists(folder + "/0001.tvx"));
    EXPECT_TRUE(std::filesystem::exists(folder + "/hero_1.tvx"));
    TavixReadResult one = TavixReadFile(folder + "/0001.tvx");
    ASSERT_EQ(one.frames.size(), 1u);
    EXPECT_EQ(one.frames[0].info->width, 5);
}

// PNG in, every writable raster format and back out: the pixels survive.
TEST_F(Zytool, ConvertRoundTripsPixelsThroughEveryRasterFormat) {
    std::vector<TavixFrame> source;
    source.push_back(makeFrame(13, 7, 32, ""));
    std::string png = writeFrames("picture.png", std::move(source), "png");
    const std::vector<uint32_t> expected = argbPixels(makeFrame(13, 7, 32));
    for (const char* extension : {"tga", "bmp", "tvx"}) {
        std::string there = (m_folder / (std::string("there.") + extension)).string();
        std::string back = (m_folder / (std::string("back-") + extension + ".png")).string();
        ToolRun run = zytool("convert " + png + " " + there, m_folder);
        ASSERT_EQ(run.status, 0) << extension << ": " << run.err;
        run = zytool("convert " + there + " " + back, m_folder);
        ASSERT_EQ(run.status, 0) << extension << ": " << run.err;
        TavixReadResult file = TavixReadFile(back);
        ASSERT_EQ(file.frames.size(), 1u) << extension;
        TavixFrame& frame = file.frames[0];
        if (frame.info->bufferbpp <= 8) FAIL() << extension << " came back indexed";
        EXPECT_EQ(argbPixels(frame), expected) << extension;
    }
}

TEST_F(Zytool, SelectPrintsTheChosenIndicesOnly) {
    std::vector<TavixFrame> frames;
    for (const char* name : {"walk1", "walk2", "walk10", "idle", "jump"}) frames.push_back(makeFrame(2, 2, 32, name));
    std::string path = writeFrames("five.tvx", std::move(frames));
    struct Case {
        const char* expression;
        const char* expected;
    } cases[] = {{"1..3", "1 2 3\n"}, {"walk*", "0 1 2\n"}, {"!2,4", "0 1 3\n"}, {"''", "0 1 2 3 4\n"},
                 {"0..4+=2", "0 2 4\n"}};
    for (const Case& c : cases) {
        ToolRun run = zytool(std::string("select '") + c.expression + "' " + path, m_folder);
        EXPECT_EQ(run.status, 0) << c.expression << run.err;
        EXPECT_EQ(run.out, c.expected) << c.expression;
    }
    ToolRun bad = zytool("select 0..9 " + path, m_folder);
    EXPECT_NE(bad.status, 0);
    EXPECT_EQ(bad.out, "");
    EXPECT_EQ(bad.err, "zytool: Invalid range.\n");
}

TEST_F(Zytool, RunAppliesAModuleToTheSelectedFramesOnly) {
    std::vector<TavixFrame> frames;
    frames.push_back(makeFrame(4, 3, 32, "a"));
    frames.push_back(makeFrame(4, 3, 32, "b"));
    std::string in = writeFrames("two.tvx", std::move(frames));
    std::string out = (m_folder / "flipped.tvx").string();
    ToolRun run = zytool("run Flip Horizontal " + in + " " + out + " --select b", m_folder);
    ASSERT_EQ(run.status, 0) << run.err;
    TavixReadResult back = TavixReadFile(out);
    ASSERT_EQ(back.frames.size(), 2u);
    const std::vector<uint32_t> original = argbPixels(makeFrame(4, 3, 32));
    EXPECT_EQ(argbPixels(back.frames[0]), original) << "frame a was not selected";
    std::vector<uint32_t> mirrored = argbPixels(back.frames[1]);
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 4; ++x) EXPECT_EQ(mirrored[y * 4 + x], original[y * 4 + 3 - x]);

    ToolRun unknown = zytool("run NoSuchModule " + in + " " + out, m_folder);
    EXPECT_NE(unknown.status, 0);
    EXPECT_NE(unknown.err.find("no module is named"), std::string::npos);
    ToolRun badValue = zytool("run Flip Sideways " + in + " " + out, m_folder);
    EXPECT_NE(badValue.status, 0);
    EXPECT_NE(badValue.err.find("Direction"), std::string::npos) << badValue.err;
}

TEST_F(Zytool, ConvertAndExportHonourTheSelection) {
    std::string in = writeFrames("two.tvx", twoFrames());
    std::string out = (m_folder / "one.tga").string();
    ToolRun run = zytool("convert " + in + " " + out + " --select 1", m_folder);
    ASSERT_EQ(run.status, 0) << run.err << " (one selected frame fits a single-image format)";
    EXPECT_EQ(TavixReadFile(out).frames.at(0).info->width, 5);
    std::string folder = (m_folder / "ex").string();
    run = zytool("export " + in + " " + folder + " --format tvx --select hero", m_folder);
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(std::filesystem::exists(folder + "/hero.tvx"));
    EXPECT_FALSE(std::filesystem::exists(folder + "/0001.tvx"));
    run = zytool("export " + in + " " + (m_folder / "never").string() + " --select 7", m_folder);
    EXPECT_NE(run.status, 0);
    EXPECT_FALSE(std::filesystem::exists(m_folder / "never")) << "nothing is made for an invalid range";
}

TEST_F(Zytool, RunPixelMakesRedEqualGreen) {
    std::vector<TavixFrame> frames;
    frames.push_back(makeFrame(6, 5, 32, "p"));
    std::string in = writeFrames("p.tvx", std::move(frames));
    std::string out = (m_folder / "p2.tvx").string();
    ToolRun run = zytool("run Pixel 0 '' g " + in + " " + out, m_folder);
    ASSERT_EQ(run.status, 0) << run.err;
    std::vector<uint32_t> before = argbPixels(makeFrame(6, 5, 32));
    std::vector<uint32_t> after = argbPixels(TavixReadFile(out).frames.at(0));
    ASSERT_EQ(after.size(), before.size());
    for (size_t i = 0; i < before.size(); ++i)
        EXPECT_EQ(after[i], (before[i] & 0xFF00FFFFu) | ((before[i] >> 8) & 0xFF) << 16) << i;
}

TEST_F(Zytool, MipmapAddsLevelsAndReplacesAnOldChain) {
    std::vector<TavixFrame> frames;
    frames.push_back(makeFrame(16, 8, 32, "rock"));
    frames.push_back(makeFrame(3, 3, 32, "tiny"));
    std::string in = writeFrames("tex.tvx", std::move(frames));
    std::string once = (m_folder / "once.tvx").string();
    ToolRun run = zytool("mipmap " + in + " " + once + " --levels 3 --method 1 --select rock", m_folder);
    ASSERT_EQ(run.status, 0) << run.err;
    TavixReadResult chain = TavixReadFile(once);
    ASSERT_EQ(chain.frames.size(), 4u);
    const char* names[] = {"rock", "rock_mm01", "rock_mm02", "tiny"};
    const int widths[] = {16, 8, 4, 3};
    for (int i = 0; i < 4; ++i) {
        EXPECT_STREQ(chain.frames[i].info->framename, names[i]);
        EXPECT_EQ(chain.frames[i].info->width, widths[i]);
        EXPECT_EQ((chain.frames[i].info->attributes & kAttrMipLevel) != 0, i < 3) << i;
    }
    EXPECT_EQ(argbPixels(chain.frames[0]), argbPixels(makeFrame(16, 8, 32))) << "level 0 is the image itself";

    std::string twice = (m_folder / "twice.tvx").string();
    run = zytool("mipmap " + once + " " + twice + " --levels 2 --select 0", m_folder);
    ASSERT_EQ(run.status, 0) << run.err;
    TavixReadResult again = TavixReadFile(twice);
    ASSERT_EQ(again.frames.size(), 3u) << "the old chain is replaced, not nested";
    EXPECT_STREQ(again.frames[1].info->framename, "rock_mm01");
    EXPECT_STREQ(again.frames[2].info->framename, "tiny");
}

} // namespace
