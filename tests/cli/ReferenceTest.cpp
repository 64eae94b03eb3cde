// Modules against ImageMagick on real sprite art: zytool's result and
// convert's, from the same sprite, compared with ImageMagick's own compare.
// Skips when ImageMagick or the supertux-data sprites are not installed.
//
// convert writes its results with 16 bits a channel: ImageMagick 6.9 cuts
// (not rounds) its 16-bit values when it writes 8-bit files, which would
// put one level between two correct answers. Against the 16-bit values,
// "exact" means no difference at all where ImageMagick's answer is a whole
// level (AE, differing pixels), and within half a level where it falls
// between levels (PAE, the largest difference, in levels of 255): ours is
// then ImageMagick's value rounded to the nearest level.

#include "CodecTestSupport.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <string>

using namespace zytest;

namespace {

const char* kSprite = "/usr/share/games/supertux2/images/creatures/snowball/captain-left-0.png";
// A larger, mostly opaque tile with a ragged transparent edge.
const char* kTile = "/usr/share/games/supertux2/images/tiles/forest/rock2.png";
const char* const kArt[] = {kSprite, kTile};

// Half a level, and the 16-bit rounding of ImageMagick's own values.
constexpr double kRounding = 0.5 + 255.0 / 65535;

std::string shell(const std::string& command) {
    std::string out;
    FILE* pipe = popen((command + " 2>&1").c_str(), "r");
    char buffer[256];
    while (pipe && fgets(buffer, sizeof buffer, pipe))
        out += buffer;
    if (pipe) pclose(pipe);
    return out;
}

// One comparison. `input` (convert options, may be empty) first makes the
// picture both tools start from out of the sprite; zytool runs `module`
// on it and convert `magick`; `ours` (convert options) is applied to
// zytool's result before the two are compared on `channels` by `metric`.
struct Check {
    const char* module;
    const char* magick;
    const char* metric; // AE: differing pixels; PAE, RMSE: levels of 255
    double limit;
    const char* channels = "RGBA";
    const char* input = "";
    const char* ours = "";
};

class Reference : public ::testing::Test {
  protected:
    void SetUp() override {
        if (system("command -v convert >/dev/null 2>&1 && command -v compare >/dev/null 2>&1") != 0)
            GTEST_SKIP() << "ImageMagick is not installed";
        // Debian's own name for ImageMagick 6's convert, which a wrapper
        // earlier on PATH may shadow.
        if (system("command -v convert-im6.q16 >/dev/null 2>&1") == 0)
            m_convert = "convert-im6.q16 ";
        for (const char* art : kArt)
            if (!std::filesystem::exists(art)) GTEST_SKIP() << "supertux-data is not installed";
    }

    std::string path(const std::string& name) const { return (m_folder / name).string(); }

    std::string run(const std::string& zytoolArgs, const std::string& in, const std::string& out) {
        return shell(std::string(ZY_BIN_DIR) + "/zytool run " + zytoolArgs + " " + in + " " + out);
    }

    // Pixels differing in any channel, as ImageMagick counts them.
    std::string differing(const std::string& zytoolArgs, const std::string& convertArgs) {
        std::string ours = path("ours.png"), theirs = path("theirs.png");
        EXPECT_EQ(run(zytoolArgs, kSprite, ours), "");
        shell(m_convert + kSprite + " " + convertArgs + " " + theirs);
        return shell("compare -channel RGBA -metric AE " + ours + " " + theirs + " null:");
    }

    // The difference `check` measures on `art`, or -1 when compare gives
    // no figure (its message then goes to the test's output).
    double measure(const Check& check, const char* art) {
        std::string in = art, ours = path("ours.png"), theirs = path("theirs.png");
        if (*check.input) {
            in = path("input.png");
            shell(m_convert + art + " " + check.input + " " + in);
        }
        EXPECT_EQ(run(check.module, in, ours), "") << check.module;
        if (*check.ours) shell(m_convert + ours + " " + check.ours + " -depth 16 " + ours);
        shell(m_convert + in + " " + check.magick + " -depth 16 " + theirs);
        std::string said = shell(std::string("compare -channel ") + check.channels + " -metric " +
                                 check.metric + " " + ours + " " + theirs + " null:");
        // AE prints a count; PAE and RMSE a 16-bit figure and, in brackets,
        // the same as a fraction of the full range.
        size_t open = said.find('(');
        char* end = nullptr;
        const char* figure = said.c_str() + (open == std::string::npos ? 0 : open + 1);
        double value = strtod(figure, &end);
        if (end == figure) {
            ADD_FAILURE() << "compare said: " << said;
            return -1;
        }
        if (open != std::string::npos) value *= 255;
        printf("%-28s | %-58s | %-5s %-4s | %.3f\n", check.module, check.magick, check.metric,
               check.channels, value);
        return value;
    }

    void expectWithin(const Check* checks, size_t count) {
        for (const char* art : kArt)
            for (size_t i = 0; i < count; ++i) {
                const Check& c = checks[i];
                EXPECT_LE(measure(c, art), c.limit)
                    << art << "\nzytool run " << c.module << "\nconvert " << c.magick;
            }
    }

    TempFolder m_folder;
    std::string m_convert = "convert ";
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

// Rotate by no angle gives the sprite back; by a quarter turn it lands on
// ImageMagick's, edges included: at exactly 90 degrees every sample falls
// on a pixel centre, so interpolation has nothing to blend. Positive angles
// turn counter-clockwise; the editor passes its degrees times a rounded
// pi / 180, which must not matter.
TEST_F(Reference, RotateByZeroAndByAQuarter) {
    const Check checks[] = {
        {"Rotate 0 0 0", "", "AE", 0},
        {"Rotate 0 0 1", "", "AE", 0},
        {"Rotate -1.5707963267948966 0 0", "-rotate 90", "AE", 0},
        {"Rotate -1.5707963267948966 0 1", "-rotate 90", "AE", 0},
        {"Rotate -1.5707963270000001 0 1", "-rotate 90", "AE", 0},
        {"Rotate 1.5707963267948966 0 1", "-rotate -90", "AE", 0},
    };
    expectWithin(checks, std::size(checks));
}

// Point operations. invert flips the colours and keeps alpha by default,
// as -negate does; with the full mask it flips alpha too. grey weighs by
// BT.601 luma (0.299, 0.587, 0.114), which -fx states exactly; ImageMagick's
// own "-grayscale Rec601Luma" uses 0.298839, 0.586811 and 0.114350, so a
// few pixels (11 of the 2112 of the snowball) round the other way - within
// 0.53 of a level. (-colorspace Gray weighs by Rec. 709, 0.2126, 0.7152 and
// 0.0722, whatever -intensity says, and is no match.) HSL turns hue and
// lowers saturation as -modulate does in its default HSL; raising it
// differs on purpose: ours holds saturation at full, where ImageMagick lets
// it pass 1 and clips the channels, which brightens saturated dark reds of
// the snowball by up to 51 levels.
TEST_F(Reference, PointOperationsAreExact) {
    const Check checks[] = {
        {"invert", "-negate", "AE", 0},
        {"invert 0xFFFFFFFF", "-channel RGBA -negate", "AE", 0},
        {"grey", "-channel RGB -fx 'round(255*(0.299*r+0.587*g+0.114*b))/255'", "AE", 0},
        {"grey 256 1", "-channel RGB -fx 'round(255*(r+g+b)/3)/255'", "AE", 0},
        {"grey", "-grayscale Rec601Luma", "PAE", 0.6},
        {"Gamma 1 2.2 2.2 2.2", "-gamma 2.2", "PAE", kRounding},
        {"Gamma 1 2.2 1.5 0.7", "-gamma 2.2,1.5,0.7", "PAE", kRounding},
        {"Gamma 1 0.45 0.45 0.45", "-gamma 0.45", "PAE", kRounding},
        {"HSL 0 0 0xFFFFFFFF 30", "-modulate 100,100,116.666667", "PAE", kRounding},
        {"HSL -50 0 0xFFFFFFFF 0", "-modulate 100,50,100", "PAE", kRounding},
    };
    expectWithin(checks, std::size(checks));
}

// 3x3 rank filters repeat the edge pixels outward, as ImageMagick's default
// virtual pixels do, and work on each channel alone: exact.
TEST_F(Reference, RankFiltersAreExact) {
    const Check checks[] = {
        {"Median", "-channel RGBA -statistic Median 3x3", "AE", 0},
        {"Dilate", "-channel RGBA -morphology Dilate Square:1", "AE", 0},
        {"Erode", "-channel RGBA -morphology Erode Square:1", "AE", 0},
    };
    expectWithin(checks, std::size(checks));
}

// Blur stops its kernel at 3 sigma (ImageMagick carries it further, to
// where its weights vanish at 16 bits) and works in floats, so values that
// are whole levels apart in the end may differ by the rounding: on opaque
// art the largest difference measured is 0.83 of a level at sigma 3 (0.55
// at sigma 1.5), RMSE 0.3. Blur weights colours by alpha and ImageMagick's
// does not, so on the sprite the colours are compared premultiplied
// (flattened onto black, where ImageMagick blurs the flattened sprite):
// our colour and alpha are each rounded before they are multiplied, which
// adds up to half a level more there (0.95 measured).
TEST_F(Reference, BlurIsWithinALevelOfGaussianBlur) {
    const char* opaque = "-background '#4080c0' -alpha remove";
    const char* black = "-background black -alpha remove";
    const Check checks[] = {
        {"Blur 1.5", "-gaussian-blur 0x1.5", "PAE", 1, "RGBA", opaque},
        {"Blur 3", "-gaussian-blur 0x3", "PAE", 1, "RGBA", opaque},
        {"Blur 3", "-gaussian-blur 0x3", "RMSE", 0.35, "RGBA", opaque},
        {"Blur 1.5", "-channel RGBA -gaussian-blur 0x1.5", "PAE", 1, "A"},
        {"Blur 3", "-channel RGBA -gaussian-blur 0x3", "PAE", 1, "A"},
        {"Blur 3", "-channel RGBA -gaussian-blur 0x3", "RMSE", 0.35, "A"},
        {"Blur 1.5", "-background black -alpha remove -gaussian-blur 0x1.5", "PAE", 1, "RGB", "",
         black},
        {"Blur 3", "-background black -alpha remove -gaussian-blur 0x3", "PAE", 1, "RGB", "",
         black},
    };
    expectWithin(checks, std::size(checks));
}

} // namespace
