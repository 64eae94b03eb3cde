// Photoshop through small scripts standing in for the outside editor: the
// exchange file goes out and comes back at each depth, a resized picture
// comes back resized, and a failing or missing editor is refused.

#include "run_module.h"

#include "imaging/external/editor.h"
#include "tests/support/PrintCapture.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

using V = ModuleValue;

class Photoshop : public ModuleTest {
  protected:
    void SetUp() override {
        ModuleTest::SetUp();
        m_Folder = std::filesystem::temp_directory_path() /
                   ("zy-photoshop-test-" + std::to_string(getpid()));
        std::filesystem::create_directories(m_Folder);
    }
    void TearDown() override {
        external::editor_set_command("");
        std::filesystem::remove_all(m_Folder);
        ModuleTest::TearDown();
    }
    // Makes a script with `body` (the file is "$1") the editor.
    void useEditor(const std::string& body) {
        std::filesystem::path script = m_Folder / "editor.sh";
        std::ofstream(script) << "#!/bin/sh\n" << body << "\n";
        std::filesystem::permissions(script, std::filesystem::perms::owner_all);
        external::editor_set_command(script.c_str());
    }
    std::filesystem::path m_Folder;
};

bool printed(const std::string& words) {
    for (const std::string& line : PrintCapture::lines())
        if (line.find(words) != std::string::npos) return true;
    return false;
}

TEST_F(Photoshop, AnEditorThatSavesNothingGivesThePictureBack) {
    useEditor("exit 0");
    TestImage colour(7, 5, 32, 3), indexed(5, 3, 8, 1);
    for (int32_t depth : {0, 1, 2, 3}) {
        ModuleOutput out, back;
        runModule(out, "Photoshop", colour, {V::ofInt(depth)});
        runModule(back, "Photoshop", indexed, {V::ofInt(depth)});
        ASSERT_TRUE(out.ok && back.ok) << depth;
        for (int32_t y = 0; y < 5; ++y)
            for (int32_t x = 0; x < 7; ++x) {
                uint32_t want = colour.pixel(x, y), got = out.pixel(x, y);
                // Sixteen bits keep five bits per colour and one of alpha.
                if (depth == 1) want = (want & 0x00F8F8F8) | 0xFF000000, got &= 0xFFF8F8F8;
                ASSERT_EQ(got, want) << "depth " << depth << " at " << x << "," << y;
            }
        // Indices come back exactly unless sixteen bits blur neighbouring colours.
        for (int32_t y = 0; y < 3 && depth != 1; ++y)
            for (int32_t x = 0; x < 5; ++x)
                ASSERT_EQ(back.pixel(x, y), indexed.pixel(x, y)) << depth;
    }
}

TEST_F(Photoshop, TheSavedPictureComesBackWithItsSize) {
    if (system("command -v convert >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "ImageMagick is not installed";
    useEditor("convert -size 3x2 xc:'#FF2010' -compress RLE -flip tga:\"$1\"");
    TestImage image(7, 5, 32);
    ModuleOutput out;
    runModule(out, "Photoshop", image, {V::ofInt(3)});
    ASSERT_TRUE(out.ok);
    EXPECT_EQ(out.info()->width, 3);
    EXPECT_EQ(out.info()->height, 2);
    EXPECT_EQ(out.pixel(2, 1), 0xFFFF2010u);
}

TEST_F(Photoshop, AFailingOrMissingEditorIsRefused) {
    TestImage image(3, 3, 32);
    PrintCapture capture;
    useEditor("exit 3");
    ModuleOutput failed;
    runModule(failed, "Photoshop", image);
    EXPECT_FALSE(failed.ok);
    EXPECT_TRUE(printed("ended with status 3"));

    external::editor_set_command("");
    std::string path = getenv("PATH") ? getenv("PATH") : "";
    setenv("PATH", m_Folder.c_str(), 1);
    unsetenv("ZY_EXTERNAL_EDITOR");
    ModuleOutput none;
    runModule(none, "Photoshop", image);
    setenv("PATH", path.c_str(), 1);
    EXPECT_FALSE(none.ok);
    EXPECT_TRUE(printed("install GIMP or name an editor in the settings"));
}

} // namespace
