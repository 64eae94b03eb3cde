// The shape drivers through the real libtavix.so and the program's binding:
// the demo samples hold what the generator drew, and every frame of them
// reads back equal after a save in each shape variant.

#include "codec/FrameIO.h"
#include "codec/TavixBinding.h"
#include "imaging/galloc.h"
#include "tavix/drivers/shape/ShapeTail.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

class ShapeLibrary : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        setenv("TAVIX_DRIVERNAME", ZY_TAVIX_LIBRARY, 1);
        ASSERT_TRUE(TavixBind());
    }
    static void TearDownTestSuite() { TavixUnbind(); }

    void SetUp() override {
        m_folder = fs::temp_directory_path() / ("zy-shape-" + std::to_string(getpid()));
        fs::create_directories(m_folder);
        m_live = galloc_live_count();
    }
    void TearDown() override {
        fs::remove_all(m_folder);
        EXPECT_EQ(galloc_live_count(), m_live)
            << "blocks left behind by the library or the binding";
    }

    fs::path m_folder;
    int32_t m_live = 0;
};

std::string sample(const char* name) {
    return std::string(ZY_SAMPLES_DIR) + "/" + name;
}

std::vector<uint32_t> argbOf(const TavixFrame& f) {
    std::vector<uint32_t> out;
    for (int y = 0; y < f.info->height; ++y)
        for (int x = 0; x < f.info->width; ++x) {
            const uint8_t* row = f.pixels.data() + static_cast<size_t>(y) * f.pitch;
            if (f.info->bufferbpp <= 8) {
                const TavixColour& c = f.info->colours[row[x]];
                out.push_back(uint32_t(c.alpha) << 24 | c.red << 16 | c.green << 8 | c.blue);
            } else {
                uint32_t v;
                memcpy(&v, row + 4 * x, 4);
                out.push_back(v);
            }
        }
    return out;
}

TEST_F(ShapeLibrary, DemoSamplesHoldWhatTheGeneratorDrew) {
    TavixReadResult fsh = TavixReadFile(sample("demo.fsh"));
    ASSERT_TRUE(fsh.ok) << fsh.error;
    EXPECT_EQ(fsh.driver, TavixFind("newfsh"));
    struct {
        const char* name;
        int subtype;
        bool mip;
        bool packed;
    } expected[] = {
        {"ship_with_alpha", 0x7D, false, false},
        {"coin_spin_0", 0x7B, false, false},
        {"coin_spin_1", 0x7B, false, false},
        {"coin_spin_2", 0x7B, false, false},
        {"coin_spin_3", 0x7B, false, false},
        {"!pal", 0x2A, false, false},
        {"checker_texture", 0x60, false, false},
        {"mm1", 0x60, true, false},
        {"mm2", 0x60, true, false},
        {"mm3", 0x60, true, false},
        {"mm4", 0x60, true, false},
        {"mm5", 0x60, true, false},
        {"mm6", 0x60, true, false},
        {"packed_banner", 0x7D, false, true},
        {"hud_icon_16", 0x7A, false, false},
    };
    ASSERT_EQ(fsh.frames.size(), std::size(expected));
    for (size_t i = 0; i < fsh.frames.size(); ++i) {
        const TavixInfo& info = *fsh.frames[i].info;
        EXPECT_STREQ(info.framename, expected[i].name);
        EXPECT_EQ(info.subtype, expected[i].subtype) << expected[i].name;
        EXPECT_EQ((info.attributes & kAttrMipLevel) != 0, expected[i].mip) << expected[i].name;
        EXPECT_EQ(info.packed != 0, expected[i].packed) << expected[i].name;
        char summary[256];
        EXPECT_GT(ShapeTailSummary(&info, summary, sizeof summary), 0u) << expected[i].name;
    }
    const TavixInfo& ship = *fsh.frames[0].info;
    EXPECT_EQ(ship.numhotspots, 2);
    EXPECT_EQ(ship.hotspots[1].y, 60);
    EXPECT_STRNE(ship.comment, "");
    EXPECT_EQ(fsh.frames[1].info->numcolours, 256);
    EXPECT_EQ(fsh.frames[14].info->bpp, 4);

    TavixReadResult ssh = TavixReadFile(sample("demo.ssh"));
    ASSERT_TRUE(ssh.ok) << ssh.error;
    ASSERT_EQ(ssh.frames.size(), fsh.frames.size());
    EXPECT_EQ(ssh.frames[0].info->subtype, 0x05);
    EXPECT_EQ(ssh.frames[1].info->subtype, 0x02);
    EXPECT_EQ(ssh.frames[6].info->subtype, 0x05);
}

TEST_F(ShapeLibrary, AboutRecordsStateWhatTheDriversDo) {
    struct {
        const char* name;
        const char* description;
        const char* extension;
        uint32_t id;
    } drivers[] = {{"newfsh", "FSH - PC Shape File", ".fsh", 0x46534800},
                   {"newssh", "SSH - PS2 Shape File", ".ssh", 0x53534800},
                   {"newxsh", "XSH - XBOX Shape File", ".xsh", 0x58534800},
                   {"newgsh", "GSH - GameCube Shape File", ".gsh", 0x47534800}};
    for (const auto& d : drivers) {
        TavixSet(TavixFind(d.name));
        TavixAboutPtr about(TavixAboutDriver());
        ASSERT_TRUE(about) << d.name;
        EXPECT_EQ(about->formatid, d.id);
        EXPECT_STREQ(about->description, d.description);
        EXPECT_STREQ(about->extensions[0], d.extension);
        EXPECT_STREQ(about->extensions[1], "");
        // Writes palette and true-colour images, many per file, packed; no
        // start colour, at most 256 colours, any name length; keeps the mip
        // bit but not the rotation and transpose bits.
        EXPECT_EQ(about->caps, kCapRead | kCapWrite | kCapPalette | kCapTrueColour |
                                   kCapMultiImage | kCapPacked);
        EXPECT_EQ(about->colourlimit, 256);
        EXPECT_EQ(about->namelimit, 0);
    }
    TavixSet(TavixFind("newgsh"));
    TavixAboutPtr gsh(TavixAboutDriver());
    EXPECT_NE(std::string(gsh->notes).find("Experimental"), std::string::npos);
}

class ShapeLibraryVariants : public ShapeLibrary,
                             public ::testing::WithParamInterface<const char*> {};

TEST_P(ShapeLibraryVariants, EveryDemoFrameReadsBackAfterASave) {
    const bool ps2 = std::string(GetParam()) == "newssh";
    TavixReadResult original = TavixReadFile(sample("demo.fsh"));
    ASSERT_TRUE(original.ok) << original.error;
    std::vector<const TavixFrame*> frames;
    for (const TavixFrame& f : original.frames)
        frames.push_back(&f);
    const std::string path = (m_folder / (std::string("demo.") + (GetParam() + 3))).string();
    std::string error;
    ASSERT_TRUE(TavixWriteFile(path, TavixFind(GetParam()), frames, error)) << error;
    TavixReadResult again = TavixReadFile(path);
    ASSERT_TRUE(again.ok) << again.error;
    EXPECT_EQ(again.driver, TavixFind(GetParam()));
    ASSERT_EQ(again.frames.size(), original.frames.size());
    for (size_t i = 0; i < original.frames.size(); ++i) {
        const TavixInfo& a = *original.frames[i].info;
        const TavixInfo& b = *again.frames[i].info;
        EXPECT_STREQ(b.framename, a.framename);
        EXPECT_EQ(b.width, a.width);
        EXPECT_EQ(b.height, a.height);
        EXPECT_EQ(b.attributes & kAttrMipLevel, a.attributes & kAttrMipLevel) << a.framename;
        EXPECT_STREQ(b.comment, a.comment);
        EXPECT_EQ(b.numhotspots, a.numhotspots);
        const std::vector<uint32_t> before = argbOf(original.frames[i]),
                                    after = argbOf(again.frames[i]);
        ASSERT_EQ(before.size(), after.size());
        for (size_t p = 0; p < before.size(); ++p) {
            if (ps2) {
                // The PS2 keeps alpha as 0..0x80: one step of rounding.
                EXPECT_EQ(after[p] & 0xFFFFFF, before[p] & 0xFFFFFF)
                    << a.framename << " pixel " << p;
                EXPECT_LE(std::abs(int(after[p] >> 24) - int(before[p] >> 24)), 1)
                    << a.framename << " pixel " << p;
            } else {
                ASSERT_EQ(after[p], before[p]) << a.framename << " pixel " << p;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Drivers, ShapeLibraryVariants,
                         ::testing::Values("newfsh", "newssh", "newxsh", "newgsh"),
                         [](const auto& info) { return std::string(info.param); });

TEST_F(ShapeLibrary, UneditedSampleSavesByteForByte) {
    for (const char* name : {"demo.fsh", "demo.ssh"}) {
        TavixReadResult read = TavixReadFile(sample(name));
        ASSERT_TRUE(read.ok) << read.error;
        std::vector<const TavixFrame*> frames;
        for (const TavixFrame& f : read.frames)
            frames.push_back(&f);
        const std::string path = (m_folder / name).string();
        std::string error;
        ASSERT_TRUE(TavixWriteFile(path, read.driver, frames, error)) << error;
        std::ifstream a(sample(name), std::ios::binary), b(path, std::ios::binary);
        const std::string before((std::istreambuf_iterator<char>(a)), {}),
            after((std::istreambuf_iterator<char>(b)), {});
        EXPECT_TRUE(before == after) << name;
    }
}

} // namespace
