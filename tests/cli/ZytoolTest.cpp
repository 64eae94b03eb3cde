// zytool as a user runs it: the real binary, the real codec library.

#include "CodecTestSupport.h"

#include "app/doc/TavixImage.h"
#include "codec/FrameIO.h"
#include "codec/TavixBinding.h"
#include "imaging/galloc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sys/wait.h>
#include <unistd.h>

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
    while ((n = fread(buffer.data(), 1, buffer.size(), pipe)) > 0)
        run.out.append(buffer.data(), n);
    int raw = pclose(pipe);
    run.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    FILE* err = fopen(errPath.c_str(), "r");
    while (err && (n = fread(buffer.data(), 1, buffer.size(), err)) > 0)
        run.err.append(buffer.data(), n);
    if (err) fclose(err);
    std::filesystem::remove(errPath);
    return run;
}

std::vector<uint8_t> readBytes(const std::string& path) {
    std::vector<uint8_t> bytes;
    FILE* file = fopen(path.c_str(), "rb");
    int c;
    while (file && (c = fgetc(file)) != EOF)
        bytes.push_back(static_cast<uint8_t>(c));
    if (file) fclose(file);
    return bytes;
}

void writeBytes(const std::string& path, const std::vector<uint8_t>& bytes) {
    FILE* file = fopen(path.c_str(), "wb");
    ASSERT_NE(file, nullptr);
    fwrite(bytes.data(), 1, bytes.size(), file);
    fclose(file);
}

class Zytool : public ::testing::Test {
  protected:
    void SetUp() override { bindBuiltLibrary(); }

    std::string writeFrames(const std::string& name, std::vector<TavixFrame> frames,
                            const char* driver = "tvx") {
        std::string path = (m_folder / name).string();
        std::vector<const TavixFrame*> list;
        for (const TavixFrame& frame : frames)
            list.push_back(&frame);
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

// info reads headers only: a file whose pixel data is damaged is still
// listed in full, while reading its pixels (convert) fails.
TEST_F(Zytool, InfoListsFramesWhosePixelsAreDamaged) {
    struct Case {
        const char* name;
        const char* driver;
        int bufferbpp;
        const char* geometry;
    } cases[] = {
        {"damaged.png", "png", 32, "7x5x32"},
        {"damaged.tga", "tga", 32, "7x5x32"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<TavixFrame> frames;
        frames.push_back(makeFrame(7, 5, c.bufferbpp));
        frames[0].info->alphabits = 8;
        frames[0].info->packed = 1;
        std::string path = writeFrames(c.name, std::move(frames), c.driver);
        std::vector<uint8_t> bytes = readBytes(path);
        if (std::string(c.driver) == "png") {
            // Overwrite the deflated data inside IDAT (its checksum then fails too).
            auto at =
                std::search(bytes.begin(), bytes.end(), std::begin("IDAT"), std::end("IDAT") - 1);
            ASSERT_NE(at, bytes.end());
            std::fill(at + 4, at + 12, uint8_t{0xFF});
        } else {
            // The first run-length packet now claims 128 pixels of 35.
            bytes.at(18) = 0xFF;
        }
        writeBytes(path, bytes);
        ToolRun info = zytool("info " + path, m_folder);
        EXPECT_EQ(info.status, 0) << info.err;
        EXPECT_NE(info.out.find("1 frame"), std::string::npos) << info.out;
        EXPECT_NE(info.out.find(c.geometry), std::string::npos) << info.out;
        ToolRun convert =
            zytool("convert " + path + " " + (m_folder / "out.tvx").string(), m_folder);
        EXPECT_NE(convert.status, 0) << "the damaged pixels must not read";
    }
}

// A 32-bit Targa whose descriptor claims no alpha bits: the alpha bytes
// decide, in the record from the headers-only listing as in a full read.
TEST_F(Zytool, TargaAlphaIsSettledByThePixelsInEveryReadingMode) {
    struct Case {
        uint8_t alpha[2];
        int alphabits;
        uint32_t first;
    } cases[] = {
        {{0, 0}, 0, 0xFF102030u},
        {{0x80, 0}, 8, 0x80102030u},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.alphabits);
        std::vector<uint8_t> bytes = {0,    0,    2,    0,          0, 0, 0, 0,         0,
                                      0,    0,    0,    2,          0, 1, 0, 32,        0x20,
                                      0x30, 0x20, 0x10, c.alpha[0], 1, 2, 3, c.alpha[1]};
        std::string path = (m_folder / "alpha.tga").string();
        writeBytes(path, bytes);
        TavixReadResult listed = TavixReadInformation(path);
        ASSERT_TRUE(listed.ok) << listed.error;
        ASSERT_EQ(listed.frames.size(), 1u);
        EXPECT_TRUE(listed.frames[0].pixels.empty());
        EXPECT_EQ(listed.frames[0].info->alphabits, c.alphabits);
        TavixReadResult read = TavixReadFile(path);
        ASSERT_TRUE(read.ok) << read.error;
        EXPECT_EQ(read.frames[0].info->alphabits, c.alphabits);
        EXPECT_EQ(argbPixels(read.frames[0]).at(0), c.first);
    }
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
        {"convert " + (m_folder / "missing.tvx").string() + " " + (m_folder / "o.tvx").string(),
         "cannot open"},
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

TEST_F(Zytool, InfoOnAFileThatDoesNotReadNamesTheReasonOnWholeLines) {
    const std::string plain = writeFrames("plain.tvx", twoFrames());
    std::vector<TavixFrame> five;
    for (int i = 0; i < 5; ++i)
        five.push_back(makeFrame(16, 16, 32, ("img" + std::to_string(i)).c_str()));
    const std::string cut = writeFrames("cut.fsh", std::move(five), "newfsh");
    std::filesystem::resize_file(cut, std::filesystem::file_size(cut) - 200);
    const std::string junk = (m_folder / "junk.fsh").string();
    {
        std::ofstream bytes(junk, std::ios::binary);
        bytes << std::string(100, '\x5A');
    }
    struct Case {
        std::string path;
        const char* reason;  // the end of standard error's first zytool line
        const char* listing; // the start of standard output; "" for none
    } cases[] = {
        {(m_folder / "missing.fsh").string(), ": No such file or directory\n", ""},
        {m_folder.path().string(), ": Is a directory\n", ""},
        {plain + "/inside.fsh", ": Not a directory\n", ""},
        {junk, "junk.fsh' holds no readable images\n", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.path);
        ToolRun run = zytool("info " + c.path, m_folder);
        EXPECT_EQ(run.status, 1);
        const size_t line = run.err.find("zytool: ");
        ASSERT_NE(line, std::string::npos) << run.err;
        EXPECT_NE(run.err.find(c.reason, line), std::string::npos) << run.err;
        EXPECT_EQ(run.err.back(), '\n');
        if (c.listing[0])
            EXPECT_NE(run.out.find(c.listing), std::string::npos) << run.out;
        else
            EXPECT_EQ(run.out, "") << "no header for a file without frames";
    }
    // Info reads records only: a file cut inside the last frame's pixels is
    // listed whole, with the codec's note on the frame that cannot be read;
    // convert, which needs the pixels, refuses it.
    ToolRun listed = zytool("info " + cut, m_folder);
    EXPECT_EQ(listed.status, 0) << listed.err;
    EXPECT_NE(listed.out.find("5 frames"), std::string::npos) << listed.out;
    EXPECT_NE(listed.err.find("\"img4\""), std::string::npos) << listed.err;
    EXPECT_NE(listed.err.find("the frame cannot be read\n"), std::string::npos) << listed.err;
    ToolRun converted = zytool("convert " + cut + " " + (m_folder / "c.tvx").string(), m_folder);
    EXPECT_NE(converted.status, 0);
    EXPECT_NE(converted.err.find("frame 4: its pixels could not be read"), std::string::npos)
        << converted.err;
    if (geteuid() != 0) { // the superuser reads everything
        std::filesystem::permissions(plain, std::filesystem::perms::none);
        ToolRun run = zytool("info " + plain, m_folder);
        EXPECT_NE(run.err.find(": Permission denied\n"), std::string::npos) << run.err;
    }
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
    for (const char* name : {"walk1", "walk2", "walk10", "idle", "jump"})
        frames.push_back(makeFrame(2, 2, 32, name));
    std::string path = writeFrames("five.tvx", std::move(frames));
    struct Case {
        const char* expression;
        const char* expected;
    } cases[] = {{"1..3", "1 2 3\n"},
                 {"walk*", "0 1 2\n"},
                 {"!2,4", "0 1 3\n"},
                 {"''", "0 1 2 3 4\n"},
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
        for (int x = 0; x < 4; ++x)
            EXPECT_EQ(mirrored[y * 4 + x], original[y * 4 + 3 - x]);

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
    EXPECT_FALSE(std::filesystem::exists(m_folder / "never"))
        << "nothing is made for an invalid range";
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

TEST_F(Zytool, RunRefusesATypedExpressionHandle) {
    // Slot 0 of Pixel is a program's own object; a typed number is no address.
    std::vector<TavixFrame> frames;
    frames.push_back(makeFrame(4, 4, 32, "p"));
    std::string in = writeFrames("p.tvx", std::move(frames));
    std::string out = (m_folder / "o.tvx").string();
    for (const char* handle : {"1", "12345", "-1", "0x7fff0000", "abc"}) {
        SCOPED_TRACE(handle);
        ToolRun run =
            zytool(std::string("run Pixel ") + handle + " '' g " + in + " " + out, m_folder);
        EXPECT_EQ(run.status, 1) << run.err;
        EXPECT_NE(run.err.find("'Expression Handle' is for programs only; give 0 here\n"),
                  std::string::npos)
            << run.err;
        EXPECT_FALSE(std::filesystem::exists(out));
    }
    ToolRun modules = zytool("modules", m_folder);
    EXPECT_NE(modules.out.find("Expression Handle        handle"), std::string::npos);
}

TEST_F(Zytool, MipmapAddsLevelsAndReplacesAnOldChain) {
    std::vector<TavixFrame> frames;
    frames.push_back(makeFrame(16, 8, 32, "rock"));
    frames.push_back(makeFrame(3, 3, 32, "tiny"));
    std::string in = writeFrames("tex.tvx", std::move(frames));
    std::string once = (m_folder / "once.tvx").string();
    ToolRun run =
        zytool("mipmap " + in + " " + once + " --levels 3 --method 1 --select rock", m_folder);
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
    EXPECT_EQ(argbPixels(chain.frames[0]), argbPixels(makeFrame(16, 8, 32)))
        << "level 0 is the image itself";

    std::string twice = (m_folder / "twice.tvx").string();
    run = zytool("mipmap " + once + " " + twice + " --levels 2 --select 0", m_folder);
    ASSERT_EQ(run.status, 0) << run.err;
    TavixReadResult again = TavixReadFile(twice);
    ASSERT_EQ(again.frames.size(), 3u) << "the old chain is replaced, not nested";
    EXPECT_STREQ(again.frames[1].info->framename, "rock_mm01");
    EXPECT_STREQ(again.frames[2].info->framename, "tiny");
}

TEST_F(Zytool, ExportNameFormatsChangeTheCaseOrNumberTheFiles) {
    std::string in = writeFrames("two.tvx", twoFrames());
    struct Case {
        const char* format;
        const char* first;
        const char* second;
    };
    for (Case c :
         {Case{"1", "0000", "0001"}, Case{"2", "HERO", "0001"}, Case{"3", "hero", "0001"}}) {
        std::string folder = (m_folder / (std::string("out") + c.format)).string();
        ToolRun run = zytool(
            "export " + in + " " + folder + " --format tvx --name-format " + c.format, m_folder);
        ASSERT_EQ(run.status, 0) << run.err;
        EXPECT_TRUE(std::filesystem::exists(folder + "/" + c.first + ".tvx")) << c.format;
        EXPECT_TRUE(std::filesystem::exists(folder + "/" + c.second + ".tvx")) << c.format;
    }
    EXPECT_NE(
        zytool("export " + in + " " + (m_folder / "x").string() + " --name-format 4", m_folder)
            .status,
        0);
}

TEST_F(Zytool, ImportReadsFoldersAndNamesByTheChosenRule) {
    std::filesystem::create_directories(m_folder / "art/sub");
    auto one = [](int w, int h) {
        std::vector<TavixFrame> frames;
        frames.push_back(makeFrame(w, h, 32));
        return frames;
    };
    writeFrames("art/walk.png", one(4, 4), "png");
    writeFrames("art/sub/run.png", one(3, 5), "png");
    writeFrames("art/two.tvx", twoFrames());
    const std::string out = (m_folder / "all.tvx").string();
    struct Case {
        const char* options;
        std::vector<std::string> names; // sorted: the walk follows the file system's order
    };
    const Case cases[] = {
        {"", {"", "hero", "run", "walk"}},
        {"--names file", {"", "hero", "run", "walk"}},
        {"--names keep", {"", "", "", "hero"}},
    };
    for (const Case& c : cases) {
        ToolRun run =
            zytool("import " + (m_folder / "art").string() + " " + out + " " + c.options, m_folder);
        ASSERT_EQ(run.status, 0) << run.err;
        TavixReadResult back = TavixReadFile(out);
        ASSERT_EQ(back.frames.size(), 4u) << c.options;
        std::vector<std::string> names;
        for (const TavixFrame& frame : back.frames)
            names.push_back(frame.info->framename);
        std::sort(names.begin(), names.end());
        EXPECT_EQ(names, c.names) << c.options;
    }
    ToolRun run = zytool("import " + (m_folder / "art/walk.png").string() + " " +
                             (m_folder / "art/sub").string() + " " + out + " --names number",
                         m_folder);
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_STREQ(TavixReadFile(out).frames[0].info->framename, "0");
    EXPECT_STREQ(TavixReadFile(out).frames[1].info->framename, "1");
    run = zytool("import " + (m_folder / "art/walk.png").string() + " " + out + " --path-comment",
                 m_folder);
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_STREQ(TavixReadFile(out).frames[0].info->comment,
                 "vpath=art\r\nfname=walk.png\r\nsname=walk");
}

} // namespace

namespace {

// A 32-bit frame whose pixels cycle through `colours`.
TavixFrame colourFrame(int width, int height, const std::vector<uint32_t>& colours,
                       const char* name) {
    TavixFrame frame = makeFrame(width, height, 32, name);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            uint32_t v = colours[(x + y * width) % colours.size()];
            memcpy(frame.pixels.data() + size_t(y) * frame.pitch + 4 * x, &v, 4);
        }
    return frame;
}

TEST_F(Zytool, QuantizeMakesIndexedFramesWithOwnOrSharedPalettes) {
    const std::vector<uint32_t> a = {0xFF102030, 0xFFF0E0D0, 0xFF00FF00};
    const std::vector<uint32_t> b = {0xFF808080, 0xFF0000FF};
    std::vector<TavixFrame> frames;
    frames.push_back(colourFrame(5, 4, a, "a"));
    frames.push_back(colourFrame(3, 3, b, "b"));
    std::string in = writeFrames("q.tvx", std::move(frames));
    for (const char* mode : {"", " --shared"}) {
        std::string out = (m_folder / "q8.tvx").string();
        ToolRun run = zytool("quantize " + in + " " + out + " --colors 8" + mode, m_folder);
        ASSERT_EQ(run.status, 0) << run.err;
        TavixReadResult back = TavixReadFile(out);
        ASSERT_EQ(back.frames.size(), 2u);
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(back.frames[i].info->bufferbpp, 8) << mode;
            // Few enough colours to come through exactly.
            EXPECT_EQ(argbPixels(back.frames[i]),
                      argbPixels(colourFrame(i ? 3 : 5, i ? 3 : 4, i ? b : a, "")))
                << mode;
        }
        EXPECT_EQ(back.frames[0].info->numcolours, *mode ? 5 : 3);
        EXPECT_EQ(memcmp(back.frames[0].info->colours, back.frames[1].info->colours, 1024) == 0,
                  *mode != 0);
    }
}

TEST_F(Zytool, QuantizeKeepsAlphaOrSaysWhy) {
    std::vector<TavixFrame> frames;
    frames.push_back(colourFrame(4, 4, {0x00000000, 0xFF204060, 0x80FF0000}, "ghost"));
    std::string in = writeFrames("g.tvx", std::move(frames));
    std::string out = (m_folder / "g8.tvx").string();
    ToolRun refused = zytool("quantize " + in + " " + out + " --method Wu", m_folder);
    EXPECT_NE(refused.status, 0);
    EXPECT_NE(refused.err.find(
                  "frame 'ghost' has transparent pixels and method Wu works on colour alone"),
              std::string::npos)
        << refused.err;
    EXPECT_FALSE(std::filesystem::exists(out));
    for (const char* method : {"", " --method Exact", " --method '4D Wu'"}) {
        ToolRun run = zytool("quantize " + in + " " + out + method, m_folder);
        ASSERT_EQ(run.status, 0) << run.err;
        std::vector<uint32_t> px = argbPixels(TavixReadFile(out).frames.at(0));
        EXPECT_EQ(px[0] >> 24, 0u) << method;
        EXPECT_EQ(px[1] >> 24, 0xFFu) << method;
        EXPECT_NEAR(double(px[2] >> 24), 128.0, 9.0) << method;
    }
    ToolRun badColours = zytool("quantize " + in + " " + out + " --colors 300", m_folder);
    EXPECT_NE(badColours.err.find("--colors takes a number from 1 to 256"), std::string::npos);
}

TEST_F(Zytool, DepthReducesChannelBitsAndRecordsTheLayout) {
    std::vector<TavixFrame> frames;
    frames.push_back(colourFrame(2, 1, {0x7F808080, 0xC0FF8040}, "d"));
    std::string in = writeFrames("d.tvx", std::move(frames));
    std::string out = (m_folder / "d16.tvx").string();
    const struct {
        const char* bits;
        int bpp;
        uint32_t first, second;
    } cases[] = {{"1555", 15, 0x00848484, 0xFFFF8442},
                 {"0565", 16, 0xFF848284, 0xFFFF8242},
                 {"4444", 16, 0x77888888, 0xBBFF8844},
                 {"8888", 32, 0x7F808080, 0xC0FF8040}};
    for (const auto& c : cases) {
        ToolRun run = zytool("depth " + in + " " + out + " --bits " + c.bits, m_folder);
        ASSERT_EQ(run.status, 0) << run.err;
        TavixFrame back = std::move(TavixReadFile(out).frames.at(0));
        EXPECT_EQ(back.info->bpp, c.bpp) << c.bits;
        EXPECT_EQ(back.info->alphabits, c.bits[0] - '0');
        EXPECT_EQ(back.info->greenbits, c.bits[2] - '0');
        EXPECT_EQ(argbPixels(back), (std::vector<uint32_t>{c.first, c.second})) << c.bits;
    }
    ToolRun bad = zytool("depth " + in + " " + out + " --bits 565", m_folder);
    EXPECT_NE(bad.err.find("--bits takes four digits"), std::string::npos);
}

} // namespace
// ---- zytool command: the editor's command families on a file ------------------

class ZytoolCommand : public Zytool {
  protected:
    std::string three() {
        std::vector<TavixFrame> frames;
        for (const char* name : {"c", "a", "b"})
            frames.push_back(makeFrame(4 + name[0] - 'a', 3, 32, name));
        return writeFrames("three.fsh", std::move(frames), "newfsh");
    }
    std::string out(const char* name = "out.fsh") { return (m_folder / name).string(); }
    static std::string names(const std::string& path) {
        std::string text;
        for (const TavixFrame& frame : TavixReadFile(path).frames)
            text += frame.info->framename;
        return text;
    }
};

TEST_F(ZytoolCommand, DuplicateOfThreeFramesGivesSix) {
    std::string in = three();
    ToolRun run = zytool("command 35082 " + in + " " + out("six.fsh"), m_folder);
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(names(out("six.fsh")), "cabcab");
}

TEST_F(ZytoolCommand, DeleteTakesItsAnswerFromTheCommandLine) {
    std::string in = three();
    ToolRun unanswered = zytool("command Delete --select 1 " + in + " " + out(), m_folder);
    EXPECT_NE(unanswered.status, 0);
    EXPECT_NE(unanswered.err.find("You are about to delete 1 images."), std::string::npos)
        << unanswered.err;
    EXPECT_NE(unanswered.err.find("--answer yes|no"), std::string::npos) << unanswered.err;
    EXPECT_FALSE(std::filesystem::exists(out()));

    ToolRun no = zytool("command 35083 --answer no --select 1 " + in + " " + out(), m_folder);
    EXPECT_NE(no.status, 0);
    EXPECT_NE(no.err.find("was not performed"), std::string::npos) << no.err;

    ToolRun yes = zytool("command 35083 --answer yes --select 1 " + in + " " + out(), m_folder);
    ASSERT_EQ(yes.status, 0) << yes.err;
    EXPECT_EQ(names(out()), "cb");
}

TEST_F(ZytoolCommand, OrderSortAndPlacementThroughTheCommandLine) {
    std::string in = three();
    struct Case {
        std::string arguments;
        std::string names;
    };
    const Case cases[] = {
        {"Sort", "abc"},
        {"Sort --set CImageListView/m_SortAscending=0", "cba"},
        {"BringToFront --select b", "bca"},
        {"SendBack --select 0", "acb"},
    };
    for (const Case& c : cases) {
        ToolRun run = zytool("command " + c.arguments + " " + in + " " + out(), m_folder);
        ASSERT_EQ(run.status, 0) << c.arguments << ": " << run.err;
        EXPECT_EQ(names(out()), c.names) << c.arguments;
    }
    // Align Right on the focused (first selected) image c, 6 wide at 0.
    ASSERT_EQ(zytool("command AlignRight --select 0..2 " + in + " " + out(), m_folder).status, 0);
    for (const TavixFrame& frame : TavixReadFile(out()).frames)
        EXPECT_EQ(frame.info->defaultx + frame.info->width, 6);
    ASSERT_EQ(
        zytool("command CenterHorizontal --set CImageView/m_ScreenWidth=11 " + in + " " + out(),
               m_folder)
            .status,
        0);
    EXPECT_EQ(TavixReadFile(out()).frames[1].info->defaultx, 3); // (11 - 4) / 2
}

TEST_F(ZytoolCommand, DialogFieldsComeFromSettings) {
    std::string in = three();
    ToolRun keys = zytool("commands --keys AddNewImage", m_folder);
    EXPECT_EQ(keys.out, "CInsertDlg/m_Width\nCInsertDlg/m_Height\nCInsertDlg/m_Depth\n");
    ToolRun run =
        zytool("command AddNewImage --set CInsertDlg/m_Width=9 --set CInsertDlg/m_Height=2 "
               "--set CInsertDlg/m_Depth=8 " +
                   in + " " + out("four.tvx"),
               m_folder);
    ASSERT_EQ(run.status, 0) << run.err;
    TavixReadResult back = TavixReadFile(out("four.tvx"));
    ASSERT_EQ(back.frames.size(), 4u);
    EXPECT_EQ(back.frames[3].info->width, 9);
    EXPECT_EQ(back.frames[3].info->height, 2);
    EXPECT_EQ(back.frames[3].info->bufferbpp, 8);

    ToolRun bad = zytool(
        "command AddNewImage --set CInsertDlg/m_Width=0 " + in + " " + out("x.tvx"), m_folder);
    EXPECT_NE(bad.status, 0);
    EXPECT_NE(bad.err.find("CInsertDlg/m_Width: '0' does not fit"), std::string::npos) << bad.err;
}

TEST_F(ZytoolCommand, LayoutAndMipMapsTakeTheirDialogValues) {
    std::string in = three(); // c 6x3, a 4x3, b 5x3
    ToolRun keys = zytool("commands --keys LayoutWizard", m_folder);
    EXPECT_NE(keys.out.find("CLayoutDlg/m_Width\n"), std::string::npos) << keys.out;
    EXPECT_NE(keys.out.find("CLayoutDlg/m_AllShapes\n"), std::string::npos) << keys.out;

    // A strip 7 wide holds one image per row: no two may overlap.
    ToolRun layout = zytool("command LayoutWizard --set CLayoutDlg/m_Width=7 "
                            "--set CLayoutDlg/m_Height=64 " +
                                in + " " + out(),
                            m_folder);
    ASSERT_EQ(layout.status, 0) << layout.err;
    std::vector<std::pair<int, int>> rows; // top, bottom
    for (const TavixFrame& frame : TavixReadFile(out()).frames) {
        const TavixInfo& info = *frame.info;
        EXPECT_GE(info.defaultx, 0) << info.framename;
        EXPECT_LE(info.defaultx + info.width, 7) << info.framename;
        EXPECT_LE(info.defaulty + info.height, 64) << info.framename;
        for (const auto& [top, bottom] : rows)
            EXPECT_TRUE(info.defaulty >= bottom || info.defaulty + info.height <= top)
                << info.framename;
        rows.emplace_back(info.defaulty, info.defaulty + info.height);
    }
    ToolRun tooWide = zytool(
        "command LayoutWizard --set CLayoutDlg/m_Platform=99 " + in + " " + out("x.fsh"), m_folder);
    EXPECT_NE(tooWide.status, 0);
    EXPECT_FALSE(std::filesystem::exists(out("x.fsh")));

    // Two levels asked after the first image only; its height of 3 halves once (3x1).
    ToolRun mips =
        zytool("command CreateMipMaps --select 0 --set CMipMapDlg/m_Count=2 " + in + " " + out(),
               m_folder);
    ASSERT_EQ(mips.status, 0) << mips.err;
    TavixReadResult back = TavixReadFile(out());
    ASSERT_EQ(back.frames.size(), 4u);
    EXPECT_EQ(std::string(back.frames[0].info->framename), "c");
    EXPECT_EQ(back.frames[1].info->width, 3);
    EXPECT_EQ(back.frames[1].info->height, 1);
    EXPECT_EQ(std::string(back.frames[2].info->framename), "a");
}

TEST_F(ZytoolCommand, ColourReductionThroughFormatItemsAndTheWizard) {
    const std::vector<uint32_t> a = {0xFF102030, 0xFFF0E0D0, 0xFF00FF00};
    const std::vector<uint32_t> b = {0xFF808080, 0xFF0000FF};
    std::vector<TavixFrame> frames;
    frames.push_back(colourFrame(5, 4, a, "a"));
    frames.push_back(colourFrame(3, 3, b, "b"));
    const std::string in = writeFrames("c.tvx", std::move(frames));
    const std::string wiz = "ColorDepthWizard --set CColRedWiz/";
    struct Case {
        std::string arguments;
        int bufferbpp, bpp, abits, gbits;
        bool sharedPalette;
    };
    const Case cases[] = {
        {"Indexed8", 8, 8, 8, 8, true},
        {"Indexed4 --set CColRedCmd/m_Operation=1", 8, 4, 8, 8, false},
        {"Rgb565", 32, 16, 0, 6, false},
        {"Rgb555", 32, 15, 1, 5, false},
        {wiz + "m_Type=TrueColor --set CColRedWiz/m_ABits=4 --set CColRedWiz/m_RBits=4 "
               "--set CColRedWiz/m_GBits=4 --set CColRedWiz/m_BBits=4",
         32, 16, 4, 4, false},
        {wiz + "m_Type=Palette --set CColRedWiz/m_Method=Lloyd --set CColRedWiz/m_Operation=Shared",
         8, 8, 8, 8, true},
        {wiz + "m_Type=Palette --set CColRedWiz/m_Method=Exact --set CColRedWiz/m_Operation=Unique "
               "--set CColRedWiz/m_Depth=4-bit",
         8, 4, 8, 8, false},
        {"ChangeColorDepth --set CColRedCmd/m_ColRedType=1 --set CColRedCmd/m_ABits=1 "
         "--set CColRedCmd/m_RBits=5 --set CColRedCmd/m_GBits=5 --set CColRedCmd/m_BBits=5",
         32, 15, 1, 5, false},
    };
    for (const Case& c : cases) {
        ToolRun run = zytool("command " + c.arguments + " " + in + " " + out("c8.tvx"), m_folder);
        ASSERT_EQ(run.status, 0) << c.arguments << ": " << run.err;
        TavixReadResult back = TavixReadFile(out("c8.tvx"));
        ASSERT_EQ(back.frames.size(), 2u);
        for (int i = 0; i < 2; ++i) {
            const TavixInfo& info = *back.frames[i].info;
            EXPECT_EQ(info.bufferbpp, c.bufferbpp) << c.arguments;
            EXPECT_EQ(info.bpp, c.bpp) << c.arguments;
            EXPECT_EQ(info.alphabits, c.abits) << c.arguments;
            EXPECT_EQ(info.greenbits, c.gbits) << c.arguments;
        }
        if (c.bufferbpp == 8) {
            // Few enough colours to come through exactly.
            EXPECT_EQ(argbPixels(back.frames[0]), argbPixels(colourFrame(5, 4, a, "")))
                << c.arguments;
            const bool same =
                memcmp(back.frames[0].info->colours, back.frames[1].info->colours, 1024) == 0;
            EXPECT_EQ(same, c.sharedPalette) << c.arguments;
        }
    }
    struct Refusal {
        std::string arguments;
        const char* message;
    };
    const Refusal refusals[] = {
        {wiz + "m_Type=Palette --set CColRedWiz/m_Method=Nil", "Nil quantizer makes no palette"},
        {wiz + "m_Type=TrueColor --set CColRedWiz/m_RBits=0 --set CColRedWiz/m_GBits=0 "
               "--set CColRedWiz/m_BBits=0",
         "at least one bit of red, green or blue"},
        {wiz + "m_Depth=16-bit", "CColRedWiz/m_Depth: '16-bit' does not fit"},
    };
    for (const Refusal& r : refusals) {
        ToolRun run = zytool("command " + r.arguments + " " + in + " " + out("r.tvx"), m_folder);
        EXPECT_NE(run.status, 0) << r.arguments;
        EXPECT_NE(run.err.find(r.message), std::string::npos) << run.err;
        EXPECT_FALSE(std::filesystem::exists(out("r.tvx")));
    }
}

TEST_F(ZytoolCommand, ListsCommandsAndRefusesUnknownOnes) {
    ToolRun list = zytool("commands", m_folder);
    EXPECT_NE(list.out.find("35082  Duplicate            Duplicate the selected images\n"),
              std::string::npos)
        << list.out;
    // Every command of the table has its family.
    EXPECT_EQ(list.out.find("(not in this build)"), std::string::npos) << list.out;
    std::string in = three();
    ToolRun unknown = zytool("command NoSuchCommand " + in + " " + out(), m_folder);
    EXPECT_NE(unknown.status, 0);
    EXPECT_NE(unknown.err.find("no command is named 'NoSuchCommand'"), std::string::npos);
    ToolRun absent = zytool("command 35499 " + in + " " + out(), m_folder);
    EXPECT_NE(absent.err.find("has no family in this build"), std::string::npos) << absent.err;
}

TEST_F(Zytool, RunTakesTheSecondImageOfTwoImageModules) {
    std::vector<TavixFrame> frames;
    frames.push_back(makeFrame(4, 3, 32, "a"));
    frames.push_back(makeFrame(4, 3, 32, "b"));
    std::string in = writeFrames("two.tvx", std::move(frames));
    std::vector<TavixFrame> over;
    over.push_back(makeFrame(2, 2, 32, "over"));
    over[0].info->defaultx = 3;
    std::string second = writeFrames("over.tvx", std::move(over));
    std::string out = (m_folder / "out.tvx").string();
    ToolRun run = zytool("run Blend Paste " + in + " " + out + " --second " + second, m_folder);
    ASSERT_EQ(run.status, 0) << run.err;
    TavixReadResult back = TavixReadFile(out);
    ASSERT_EQ(back.frames.size(), 2u);
    for (const TavixFrame& frame : back.frames) {
        EXPECT_EQ(frame.info->width, 5); // 0..4 joined with 3..5
        EXPECT_EQ(argbPixels(frame)[4], argbPixels(makeFrame(2, 2, 32))[1]);
    }
    ToolRun psnr = zytool("run Blend psnr " + in + " " + out + " --second " + in, m_folder);
    ASSERT_EQ(psnr.status, 0) << psnr.err;
    EXPECT_NE(psnr.out.find("frame 1: psnr 128.00 dB, luminance 128.00 dB; so far 128.00 dB"),
              std::string::npos)
        << psnr.out;
    std::vector<TavixFrame> three;
    for (int i = 0; i < 3; ++i)
        three.push_back(makeFrame(2, 2, 32));
    std::string wrong = writeFrames("three.tvx", std::move(three));
    ToolRun mismatch = zytool("run Blend " + in + " " + out + " --second " + wrong, m_folder);
    EXPECT_NE(mismatch.status, 0);
    EXPECT_NE(mismatch.err.find("--second needs one frame or as many frames"), std::string::npos)
        << mismatch.err;
    ToolRun same = zytool("run Psnr " + in + " " + out + " --second " + in, m_folder);
    ASSERT_EQ(same.status, 0) << same.err;
    EXPECT_NE(same.err.find("Psnr - 4 x 3: R inf G inf B inf A inf RGB inf dB"), std::string::npos)
        << same.err;
    ToolRun single =
        zytool("run Flip Horizontal " + in + " " + out + " --second " + second, m_folder);
    EXPECT_NE(single.err.find("takes one image"), std::string::npos) << single.err;
}

// ---- The palette commands with the palette well's selection given by --colors ----

TEST_F(ZytoolCommand, PaletteCommandsTakeColoursAndDialogsFromTheCommandLine) {
    std::vector<TavixFrame> frames;
    frames.push_back(makeFrame(6, 4, 8, "pal"));
    const std::string in = writeFrames("pal.tvx", std::move(frames));
    const TavixReadResult source = TavixReadFile(in);
    const TavixInfo& info0 = *source.frames[0].info;
    auto colourAt = [](const TavixFrame& frame, int x, int y) {
        const TavixColour& c =
            frame.info->colours[frame.pixels[static_cast<size_t>(y * frame.pitch + x)]];
        return static_cast<uint32_t>(c.alpha) << 24 | c.red << 16 | c.green << 8 | c.blue;
    };
    auto picture = [&](const TavixFrame& frame) {
        std::vector<uint32_t> colours;
        for (int y = 0; y < frame.info->height; ++y)
            for (int x = 0; x < frame.info->width; ++x)
                colours.push_back(colourAt(frame, x, y));
        return colours;
    };
    struct Case {
        std::string arguments;
        bool pictureKept;
        int entry;     // an entry of the result
        int fromEntry; // the source entry it holds
    };
    const Case cases[] = {
        {"SwapColors --colors 3,5", true, 3, 5},
        {"ExchangeColors --colors 5,3", false, 5, 3},
        {"33993 --set CSwapColorDlg/m_Index1=2 --set CSwapColorDlg/m_Index2=9", true, 9, 2},
        {"SortPalette --set CSortPalDlg/m_SortStr=p", true, -1, -1},
        {"SortPaletteRGB --colors 0-7", true, -1, -1},
    };
    for (const Case& c : cases) {
        ToolRun run = zytool("command " + c.arguments + " " + in + " " + out("p.tvx"), m_folder);
        ASSERT_EQ(run.status, 0) << c.arguments << ": " << run.err;
        const TavixReadResult back = TavixReadFile(out("p.tvx"));
        EXPECT_EQ(picture(back.frames[0]) == picture(source.frames[0]), c.pictureKept)
            << c.arguments;
        if (c.entry >= 0) {
            EXPECT_EQ(
                memcmp(&back.frames[0].info->colours[c.entry], &info0.colours[c.fromEntry], 4), 0)
                << c.arguments;
        }
    }
    ToolRun keys = zytool("commands --keys SwapColors", m_folder);
    EXPECT_EQ(keys.out, "CSwapColorCmd/m_Index1\nCSwapColorCmd/m_Index2\nCSwapColorDlg/m_Index1\n"
                        "CSwapColorDlg/m_Index2\n");
    ToolRun bad = zytool("command SwapColors --colors 3,300 " + in + " " + out("x.tvx"), m_folder);
    EXPECT_NE(bad.err.find("--colors: palette index 300 is above 255"), std::string::npos)
        << bad.err;
    ToolRun none = zytool("command MoveColors " + in + " " + out("x.tvx"), m_folder);
    EXPECT_NE(none.err.find("not available"), std::string::npos) << none.err;
    ToolRun named = zytool("command NamedPalette " + in + " " + out("n.tvx"), m_folder);
    ASSERT_EQ(named.status, 0) << named.err;
    EXPECT_EQ(names(out("n.tvx")), "pal!pal");
}

// Run Module without a window: the module and its values come from the
// dialog's settings, and the result is the one `zytool run` gives.
TEST_F(ZytoolCommand, RunModuleTakesItsModuleAndValuesFromTheSettings) {
    std::vector<TavixFrame> frames;
    frames.push_back(makeFrame(5, 4, 32, "a"));
    frames.push_back(makeFrame(5, 4, 32, "b"));
    const std::string in = writeFrames("two.tvx", std::move(frames));
    ToolRun keys = zytool("commands --keys RunModule", m_folder);
    EXPECT_NE(keys.out.find("CRunModuleDlg/m_Module\n"), std::string::npos) << keys.out;
    EXPECT_NE(keys.out.find("CRunModuleDlg/Flip\n"), std::string::npos) << keys.out;

    const struct {
        const char* module;
        const char* setting; // CRunModuleDlg/<module>
        const char* run;     // the same values for zytool run
    } same[] = {
        {"Flip", "Vertical", "Flip Vertical"},
        {"Gamma", "1,2,1,1", "Gamma 1 2 1 1"},
        {"HSL", "10,5,0x00FF0000", "HSL 10 5 0x00FF0000"},
        {"Rot", "180", "Rot 2"}, // the choice named "180" is the third
        {"Chroma", "", "Chroma"},
    };
    for (const auto& c : same) {
        SCOPED_TRACE(c.module);
        ToolRun command = zytool(std::string("command RunModule --select b --set "
                                             "CRunModuleDlg/m_Module=") +
                                     c.module + " --set 'CRunModuleDlg/" + c.module + "=" +
                                     c.setting + "' " + in + " " + out("c.tvx"),
                                 m_folder);
        ASSERT_EQ(command.status, 0) << command.err;
        ToolRun run = zytool(std::string("run ") + c.run + " " + in + " " + out("r.tvx"), m_folder);
        ASSERT_EQ(run.status, 0) << run.err;
        TavixReadResult byCommand = TavixReadFile(out("c.tvx"));
        TavixReadResult byRun = TavixReadFile(out("r.tvx"));
        ASSERT_EQ(byCommand.frames.size(), 2u);
        EXPECT_EQ(argbPixels(byCommand.frames[0]), argbPixels(makeFrame(5, 4, 32)))
            << "frame a was not selected";
        EXPECT_EQ(argbPixels(byCommand.frames[1]), argbPixels(byRun.frames[1]));
    }

    const struct {
        std::string settings;
        const char* error;
    } refused[] = {
        {"m_Module=Creep --set CRunModuleDlg/Creep=0xFF0000FF,300",
         "Amount: 300 is outside the range 1 to 255."},
        {"m_Module=HSL --set CRunModuleDlg/HSL=1,2,0xZZ",
         "Mask: '0xZZ' is not a hexadecimal value from 0x00000000 to 0xFFFFFFFF."},
        {"m_Module=FTxMp", "FTxMp needs a second image"},
        {"m_Module=Nope", "No module is named 'Nope'"},
    };
    for (const auto& c : refused) {
        SCOPED_TRACE(c.settings);
        ToolRun bad = zytool("command RunModule --set CRunModuleDlg/" + c.settings + " " + in +
                                 " " + out("x.tvx"),
                             m_folder);
        EXPECT_NE(bad.status, 0);
        EXPECT_NE(bad.err.find(c.error), std::string::npos) << bad.err;
        EXPECT_NE(bad.err.find("was not performed"), std::string::npos) << bad.err;
    }
}

namespace {

// Pixels that vary in every channel, alpha included, with some fully
// transparent ones for Respect Alpha to skip.
TavixFrame noisyFrame(int width, int height, uint32_t seed, const char* name) {
    TavixFrame frame = makeFrame(width, height, 32, name);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            seed = seed * 1664525u + 1013904223u;
            uint32_t v = (seed >> 5) % 7 == 0 ? seed & 0x00FFFFFFu : seed;
            memcpy(frame.pixels.data() + size_t(y) * frame.pitch + 4 * x, &v, 4);
        }
    return frame;
}

// What the editor makes of the frame with the same module and values: its
// image record, the module run on it, and the frame it writes.
TavixFrame editorResult(const TavixFrame& frame, const std::string& module,
                        const std::vector<std::string>& values) {
    std::vector<ModuleValue> parsed;
    const int index = module_find(module.c_str());
    module_select(index);
    ModuleDescriptor* descriptor = module_describe();
    for (size_t i = 0; i < values.size(); ++i) {
        ModuleValue value{};
        EXPECT_TRUE(
            module_value_from_text(i < descriptor->paramCount ? &descriptor->params[i] : nullptr,
                                   values[i].c_str(), &value));
        parsed.push_back(value);
    }
    gfree(descriptor);
    auto image = CTavixImage::FromFrame(frame);
    auto result = image->RunModule(index, parsed.data(), static_cast<int>(parsed.size()));
    EXPECT_NE(result, nullptr);
    return result ? result->ToFrame() : TavixFrame{};
}

} // namespace

// zytool run hands the module the decoded frame directly; the bytes it
// writes are those the editor's images give, at every size.
TEST_F(Zytool, RunSizeWritesWhatTheEditorMakesAtEverySize) {
    struct Case {
        int inW, inH;
        std::vector<std::string> values;
    };
    const Case cases[] = {
        {1, 1, {"1", "1", "0"}},
        {1, 1, {"7", "3", "0"}},
        {37, 23, {"1", "1", "0"}},
        {37, 23, {"11", "5", "0"}},
        {37, 23, {"101", "77", "0"}},
        {37, 23, {"37", "23", "3"}},
        {5, 61, {"3", "9", "1"}},
        {61, 5, {"200", "2", "2"}},
        {64, 64, {"16", "16", "0", "1", "0"}},
        {33, 17, {"19", "41", "6", "1", "0xFF00FF00"}},
        {9, 120, {"4", "13", "0"}},
    };
    for (const Case& c : cases) {
        std::string label = std::to_string(c.inW) + "x" + std::to_string(c.inH);
        std::string text;
        for (const std::string& v : c.values) {
            label += " " + v;
            text += v + " ";
        }
        std::vector<TavixFrame> frames;
        frames.push_back(noisyFrame(c.inW, c.inH, static_cast<uint32_t>(c.inW * 131 + c.inH), "n"));
        const TavixFrame expected = editorResult(frames[0], "Size", c.values);
        std::string in = writeFrames("in.tvx", std::move(frames));
        std::string out = (m_folder / "out.tvx").string();
        // Threads share the result's rows; the bytes stay those of one.
        for (const char* threads : {"1", "3", "64"}) {
            ToolRun run =
                zytool("run Size " + text + in + " " + out + " --threads " + threads, m_folder);
            ASSERT_EQ(run.status, 0) << label << ": " << run.err;
            TavixReadResult back = TavixReadFile(out);
            ASSERT_EQ(back.frames.size(), 1u) << label;
            const TavixFrame& got = back.frames[0];
            EXPECT_EQ(got.info->width, expected.info->width) << label;
            EXPECT_EQ(got.info->height, expected.info->height) << label;
            EXPECT_EQ(got.pitch, expected.pitch) << label;
            EXPECT_EQ(argbPixels(got), argbPixels(expected)) << label << ", threads " << threads;
        }
    }
    for (const char* threads : {"0", "65", "two", ""}) {
        ToolRun refused =
            zytool("run Size 2 2 0 x.tvx y.tvx --threads '" + std::string(threads) + "'", m_folder);
        EXPECT_NE(refused.status, 0) << threads;
        EXPECT_NE(refused.err.find("--threads takes a count from 1 to 64"), std::string::npos)
            << refused.err;
    }
}

// Frames the selection leaves out pass through untouched, including
// indexed ones the module could not take, and every chosen frame is
// resized in turn with its record kept.
TEST_F(Zytool, RunSizeOverSeveralFramesKeepsTheOthersAsTheyWere) {
    std::vector<TavixFrame> frames;
    frames.push_back(noisyFrame(13, 7, 1, "first"));
    frames.push_back(makeFrame(6, 4, 8, "indexed"));
    frames.push_back(noisyFrame(3, 30, 2, "third"));
    const TavixFrame first = editorResult(frames[0], "Size", {"5", "5", "0"});
    const TavixFrame third = editorResult(frames[2], "Size", {"5", "5", "0"});
    const std::vector<uint32_t> indexed = argbPixels(frames[1]);
    std::string in = writeFrames("three.tvx", std::move(frames));
    std::string out = (m_folder / "three_out.tvx").string();
    ToolRun run = zytool("run Size 5 5 0 " + in + " " + out + " --select first,third", m_folder);
    ASSERT_EQ(run.status, 0) << run.err;
    TavixReadResult back = TavixReadFile(out);
    ASSERT_EQ(back.frames.size(), 3u);
    EXPECT_EQ(argbPixels(back.frames[0]), argbPixels(first));
    EXPECT_EQ(argbPixels(back.frames[1]), indexed);
    EXPECT_EQ(back.frames[1].info->bufferbpp, 8);
    EXPECT_EQ(argbPixels(back.frames[2]), argbPixels(third));
    EXPECT_STREQ(back.frames[2].info->framename, "third");

    ToolRun refused = zytool("run Size 5 5 0 " + in + " " + out + " --select indexed", m_folder);
    EXPECT_NE(refused.status, 0);
    EXPECT_NE(refused.err.find("failed on frame 1"), std::string::npos) << refused.err;
}
