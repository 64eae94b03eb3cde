// Geometric modules against ImageMagick on real sprite art: zytool's
// result and convert's must agree on every pixel and channel. Skips when
// ImageMagick or the supertux-data sprites are not installed.

#include "CodecTestSupport.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

using namespace zytest;

namespace {

const char* kSprite = "/usr/share/games/supertux2/images/creatures/snowball/captain-left-0.png";

std::string shell(const std::string& command) {
    std::string out;
    FILE* pipe = popen((command + " 2>&1").c_str(), "r");
    char buffer[256];
    while (pipe && fgets(buffer, sizeof buffer, pipe))
        out += buffer;
    if (pipe) pclose(pipe);
    return out;
}

class Reference : public ::testing::Test {
  protected:
    void SetUp() override {
        if (system("command -v convert >/dev/null 2>&1 && command -v compare >/dev/null 2>&1") != 0)
            GTEST_SKIP() << "ImageMagick is not installed";
        if (!std::filesystem::exists(kSprite)) GTEST_SKIP() << "supertux-data is not installed";
    }

    std::string path(const std::string& name) const { return (m_folder / name).string(); }

    // Pixels differing in any channel, as ImageMagick counts them.
    std::string differing(const std::string& zytoolArgs, const std::string& convertArgs) {
        std::string ours = path("ours.png"), theirs = path("theirs.png");
        std::string ran = shell(std::string(ZY_BIN_DIR) + "/zytool run " + zytoolArgs + " " +
                                kSprite + " " + ours);
        EXPECT_EQ(ran, "");
        shell(std::string("convert ") + kSprite + " " + convertArgs + " " + theirs);
        return shell("compare -channel RGBA -metric AE " + ours + " " + theirs + " null:");
    }

    TempFolder m_folder;
};

TEST_F(Reference, RotMatchesRotate) {
    EXPECT_EQ(differing("Rot 1", "-rotate 90"), "0");
    EXPECT_EQ(differing("Rot 2", "-rotate 180"), "0");
    EXPECT_EQ(differing("Rot -1", "-rotate 270"), "0");
}

TEST_F(Reference, CropMatchesExtentAndVirtualPixels) {
    EXPECT_EQ(differing("Crop -10 -7 70 60 0 0 0", "-background none -extent 70x60-10-7"), "0");
    const char* rules[] = {"Transparent", "Edge", "Tile", "Mirror"};
    for (int rule = 0; rule < 4; ++rule) {
        std::string r = std::to_string(rule);
        EXPECT_EQ(differing("Crop -10 -7 70 60 0 " + r + " " + r,
                            std::string("-virtual-pixel ") + rules[rule] +
                                " -filter point -set option:distort:viewport 70x60-10-7 -distort "
                                "SRT 0 +repage"),
                  "0")
            << rules[rule];
    }
}

} // namespace
