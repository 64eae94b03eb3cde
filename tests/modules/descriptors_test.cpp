// Every module's descriptor read back through the framework: fixed fields,
// names and texts exactly as callers know them, parameter encodings.

#include "test_image.h"

#include "imaging/module/module.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace {

struct ExpectedParam {
    const char* name;
    const char* choices; // null: not fixed by the module's users
};

struct ExpectedModule {
    int index;
    const char* name;
    const char* description;
    const char* version;
    const char* magic;
    uint32_t flags;
    uint32_t images;
    uint32_t secondCount;
    bool prefixOnly; // the module declares more parameters than listed here
    std::vector<ExpectedParam> params;
};

// clang-format off
const std::vector<ExpectedModule> kExpected = {
    {0, "FNil", "Nil", "1.01", "FLIP", 3, 1, 0, false, {}},
    {1, "FYI", "FYI Adjust Luma/Chroma/Alpha", "1.00", "FYIQ", 3, 1, 0, false, {{"Luminance Scale", nullptr}, {"Luminance Offset", nullptr}, {"Chrominance Scale", nullptr}, {"Chrominance Offset", nullptr}, {"Alpha Scale", nullptr}}},
    {2, "Acenter", "Auto Center", "1.00", "ACNT", 3, 1, 0, false, {}},
    {3, "alphacomment", "Imbed comment in alpha", "1.00", "ACMT", 3, 1, 0, false, {{"", "addextract"}}},
    {4, "ACopy", "Alpha Copy", "1.02", "ACPY", 3, 1, 0, false, {{"method", "rgb,alpha"}}},
    {5, "Blend", "Composite Blend", "1.23", "BLND", 2, 2, 2, false, {{"Method", "Alpha,Paste,Sub,Add,Remove,psnr,prealpha,multiple,screen,overlay,tmask"}, {"Colour", nullptr}, {"Foreground Percentage", nullptr}, {"Background Percentage", nullptr}, {"Mask", nullptr}, {"Palette Method", "Combine,Background,Foreground"}}},
    {6, "Psnr", "Psnr", "1.27", "PSNR", 3, 2, 2, false, {}},
    {7, "Blur", "Gausian Blur", "1.00", "BLUR", 3, 1, 0, false, {}},
    {8, "FChanmap", "Chanmap", "1.01", "FLIP", 3, 1, 0, false, {}},
    {9, "Chroma", "Chroma Key", "1.00", "", 3, 1, 1, false, {{"Tolerance", nullptr}}},
    {10, "ColBal", "Color Balance", "1.00", "HSL", 3, 1, 0, false, {{"Green", nullptr}, {"Blue", nullptr}, {"Preserve Luminance", nullptr}}},
    {11, "Contrast", "Contrast", "1.00", "CONT", 3, 1, 0, false, {{"Brightness", nullptr}}},
    {12, "Creep", "Creep Image", "1.00", "CREP", 3, 1, 0, false, {{"Colour", nullptr}, {"Amount", nullptr}}},
    {13, "Crop", "Crop", "1.04", "CROP", 3, 1, 0, false, {{"Width", nullptr}, {"Height", nullptr}, {"Colour", nullptr}, {"ClampX", "Fill,Clamp,Wrap,Mirror"}, {"ClampY", nullptr}, {"Layered Flag", nullptr}}},
    {14, "CSMap", "Color Space Remap", "1.00", "HMAP", 3, 1, 0, false, {}},
    {15, "Deband", "Deband", "1.00", "DBND", 3, 1, 0, false, {{"RGB distance", nullptr}, {"Image step", nullptr}, {"Block size", nullptr}, {"Block step", nullptr}, {"Colour area", nullptr}}},
    {16, "Deinterlace", "Deinterlace", "1.00", "DINT", 3, 1, 0, false, {{"Scan Line", "Odd,Even"}}},
    {17, "Dilate", "Dilate (Maximize)", "1.00", "DLAT", 3, 1, 0, false, {}},
    {18, "Doubled", "Doubled ARGB", "1.00", "DUBD", 3, 1, 0, false, {{"abits", nullptr}, {"rbits", nullptr}, {"gbits", nullptr}, {"bbits", nullptr}}},
    {19, "Edge", "Clean Edges", "1.03", "CLNE", 3, 1, 0, false, {{"Back Color", nullptr}, {"Num Pixels", nullptr}, {"Operation", "Spikes and Pits,Spikes,Pits"}}},
    {20, "Erode", "Erode (Minimize)", "1.00", "EROD", 3, 1, 0, false, {}},
    {21, "Equalize", "Equalize Image", "1.04", "GREY", 3, 1, 0, false, {{"Levels", nullptr}, {"BlendAlpha", nullptr}}},
    {22, "Fill", "Fill Image", "1.04", "FILL", 3, 1, 0, false, {{"Colour", nullptr}, {"Tolerance", nullptr}}},
    {23, "Halfsize", "Halfsize Image", "1.08", "HALF", 3, 1, 0, false, {{"direction", nullptr}, {"vscale", nullptr}, {"hscale", nullptr}, {"vstep", nullptr}, {"hstep", nullptr}, {"edge", nullptr}, {"dot3", nullptr}}},
    {24, "Outline", "Outline Image", "1.01", "OUTL", 3, 1, 0, false, {{"Width", nullptr}, {"Height", nullptr}, {"Colour", nullptr}}},
    {25, "Flip", "Flip", "1.04", "FLIP", 3, 1, 0, false, {{"Direction", "None,Horizontal,Vertical,Both"}}},
    {26, "Gamma", "Gamma Correct", "1.00", "GAMA", 3, 1, 0, false, {{"AlphaGamma", nullptr}, {"RedGamma", nullptr}, {"GreenGamma", nullptr}, {"BlueGamma", nullptr}}},
    {27, "Grb", "Grb", "1.00", "GURB", 3, 1, 0, false, {{"Direction", "None,Horizontal,Vertical,Both"}}},
    {28, "grey", "Grey Scale ARGB", "1.06", "GREY", 3, 1, 0, false, {}},
    {29, "Grid", "Draw Grid", "1.00", "RECT", 3, 1, 0, false, {{"Width", nullptr}, {"Height", nullptr}, {"Colour", nullptr}}},
    {30, "HSL", "HSL Adjust", "1.03", "FHSV", 3, 1, 0, false, {{"Saturation", nullptr}, {"Lightness", nullptr}, {"Mask", nullptr}}},
    {31, "HSV", "HSV Adjust", "1.02", "FHSV", 3, 1, 0, false, {{"Saturation", nullptr}, {"Brightness", nullptr}, {"Value", nullptr}}},
    {32, "invert", "Invert ARGB", "1.01", "FINV", 3, 1, 0, false, {{"mask", nullptr}}},
    {33, "tedge", "Transparent Edge Extrude", "1.01", "TEDG", 3, 1, 0, false, {{"method", nullptr}}},
    {34, "Line", "Line Image", "1.01", "LINE", 3, 1, 0, false, {{"Colour", nullptr}}},
    {35, "Median", "Gausian Median", "1.00", "MEDI", 3, 1, 0, false, {}},
    {36, "PalSort", "Palette Sort", "1.08", "PSRT", 3, 1, 0, false, {{"Method", "Count,ARGB,HVS,WHVS,ICOUNT,YUV"}, {"ForceBlack", "No,Yes"}}},
    {37, "Pixel", "Pixel Expression", "1.12", "PIXL", 3, 1, 0, false, {{"Expression Handle", nullptr}, {"Alpha Expression", nullptr}, {"Red Expression", nullptr}, {"Green Expression", nullptr}, {"Blue Expression", nullptr}, {"Index Expression", nullptr}, {"X Expression", nullptr}, {"Y Expression", nullptr}}},
    {38, "Preten", "Preattenuate ARGB", "1.00", "ATEN", 3, 1, 0, false, {{"method", "preattenuate,unattenuate"}}},
    {39, "PSort", "Palette Sort", "1.00", "PSRT", 3, 1, 0, false, {{"SortParms", nullptr}}},
    {40, "RadFill", "Radius Fill", "1.02", "RFIL", 3, 1, 0, false, {{"Hue+", nullptr}, {"Hue-", nullptr}, {"Sat+", nullptr}, {"Sat-", nullptr}, {"Val+", nullptr}, {"Val-", nullptr}, {"Fill Color", nullptr}}},
    {41, "Rect", "Rect Image", "1.02", "RECT", 3, 1, 0, false, {{"Width", nullptr}, {"Height", nullptr}, {"Colour", nullptr}}},
    {42, "Remap", "Remap 32 to 8", "1.04", "REMP", 3, 1, 0, false, {}},
    {43, "Rot", "Rotate", "1.00", "FROT", 3, 1, 0, false, {{"Rot", "0,90,180,-90"}}},
    {44, "Rotate", "Rotate", "1.04", "", 3, 1, 0, false, {{"Angle", nullptr}, {"Colour", nullptr}, {"Interpolate", nullptr}}},
    {45, "safe", "Safe ARGB", "1.02", "SAFE", 3, 1, 0, false, {{"method", "grey"}}},
    {46, "Scale", "Scale Image", "1.03", "SCAL", 3, 1, 0, false, {{"Width", nullptr}, {"Height", nullptr}}},
    {47, "shade", "Shade ARGB", "1.00", "SHAD", 3, 1, 0, false, {{"argbnew", nullptr}, {"argbold", nullptr}}},
    {48, "Sharpen", "Sharpen", "1.01", "SHRP", 3, 1, 0, false, {{"Method", nullptr}}},
    {49, "Shrink", "Shrink To Fit", "1.02", "SHNK", 3, 1, 0, false, {{"method", "transparent,upperleft"}}},
    {50, "Size", "Image Size", "1.13", "", 2, 1, 0, false, {{"Width", nullptr}, {"Height", nullptr}, {"Filter Function", "Lanczos3,Mitchell,Cubic,Linear,Point,Bell,B-Spline,Quadratic"}, {"Respect Alpha", nullptr}, {"Chromakey Colour", nullptr}, {"X Sharpness", nullptr}, {"Scale Ratio Y", nullptr}}},
    {51, "Smooth", "Smooth Edges", "1.00", "", 3, 1, 1, false, {{"Threshold", nullptr}}},
    {52, "Stereo", "Stereo Image", "1.00", "STAR", 3, 1, 0, false, {{"focus", nullptr}, {"range", nullptr}}},
    {53, "Embm", "Embm NormalMap", "1.07", "EMBM", 3, 1, 0, false, {{"embm type", nullptr}, {"height scale", nullptr}, {"filter method", nullptr}}},
    {54, "Swap", "Swap Colours", "1.00", "SWAP", 3, 1, 0, false, {{"Colour1", nullptr}, {"Colour2", nullptr}}},
    {55, "Texture", "Texture Map", "1.00", "FTEX", 3, 1, 0, false, {{"NumVertices", nullptr}, {"Vertices", nullptr}}},
    {56, "Wrap", "Wrap Image", "1.01", "WRAP", 3, 1, 0, false, {{"X", nullptr}, {"Y", nullptr}}},
    {57, "Xcolour", "Xcolour Image", "1.02", "XCOL", 3, 1, 0, false, {{"Search", nullptr}, {"Replace", nullptr}, {"SearchMask", nullptr}, {"ReplaceMask", nullptr}, {"SearchNot", nullptr}}},
    {58, "Zoom", "Bicubic Zoom", "1.06", "ZOOM", 3, 1, 0, false, {{"Width", nullptr}, {"Height", nullptr}, {"Edge Extend", "Solid,Boundary"}, {"Solid Colour", nullptr}, {"Kernel Width", nullptr}}},
    {59, "Screen", "Screen Mask", "1.00", "SCRN", 3, 1, 0, false, {{"screen colour", nullptr}, {"orientation", nullptr}}},
    {60, "mipmont", "Mipmont Image", "1.00", "MONT", 3, 1, 0, false, {{"IsVbt", nullptr}}},
    {61, "Warp", "Warp Image along control lines", "1.01", "WARP", 3, 1, 0, true, {{"Type:Def/Wave/ContLines", nullptr}, {"Clamp X/VertWave/NA", nullptr}, {"Clamp Y/HorzWave/NA", nullptr}, {"FillColour/NA/NA", nullptr}, {"ToPointX/NA/numlinepairs", nullptr}, {"ToPointY/NA/X1.1", nullptr}, {"FromPointX/NA/Y1.1", nullptr}, {"FromPointY/NA/X1.2", nullptr}, {"NA/NA/Y1.2", nullptr}, {"NA/NA/X1.3", nullptr}, {"NA/NA/Y1.3", nullptr}, {"NA/NA/X1.4", nullptr}}},
    {62, "UnEmbm", "UnEmbm Image", "1.01", "EMBM", 3, 1, 0, false, {{"mode", nullptr}}},
    {63, "Trans", "transposeImage", "1.00", "TRAN", 3, 1, 0, false, {}},
    {64, "DropS", "Drop Shadow", "1.05", "DROP", 3, 1, 0, false, {{"TexPlaneOffest", nullptr}, {"ShadowPlaneOffset", nullptr}, {"LightLocx", nullptr}, {"LightLocy", nullptr}, {"LightLocz", nullptr}, {"CamLookx", nullptr}, {"CamLooky", nullptr}, {"CamLookz", nullptr}, {"LightType", nullptr}, {"LightDirx", nullptr}, {"LightDiry", nullptr}, {"Falloff", nullptr}, {"FadePower", nullptr}, {"FadeDist", nullptr}, {"ArAxis1x", nullptr}, {"ArAxis1y", nullptr}, {"ArAxis1z", nullptr}, {"ArAxis2x", nullptr}, {"ArAxis2y", nullptr}, {"ArAxis2z", nullptr}, {"AreaNumLightW", nullptr}, {"AreaNumLightH", nullptr}, {"ShadowColourR", nullptr}, {"ShadowColourG", nullptr}, {"ShadowColourB", nullptr}, {"CamLocX", nullptr}, {"CamLocY", nullptr}, {"CamLocZ", nullptr}, {"LightCoefficient", nullptr}, {"NumPasses", nullptr}, {"MulSuperSample", nullptr}}},
    {65, "Dot3", "Dot3 NormalMap", "1.06", "DOT3", 3, 1, 0, false, {{"height scale", nullptr}, {"filter method", nullptr}}},
    {66, "UnDot3", "UnDot3 NormalMap to height", "1.00", "UDOT", 3, 1, 0, false, {{"mode", nullptr}}},
    {67, "FTxMp", "Facial Texture Map", "1.00", "TXMP", 2, 2, 2, false, {}},
    {68, "Mipmap", "Mipmap", "1.00", "MIPM", 3, 1, 0, false, {{"Method", nullptr}, {"Levels", nullptr}, {"MinLevels", nullptr}, {"Width", nullptr}, {"Height", nullptr}, {"ClearLastN", nullptr}, {"Background Colour", nullptr}, {"Transparency Flag", nullptr}, {"Mipmap Collapse Flag", nullptr}}},
    {69, "Photoshop", "Photoshop Filters", "1.00", "SHOP", 3, 1, 0, false, {{"Colour Reduce", "8,16,24,32"}}},
};
// clang-format on

struct DescriptorDeleter {
    void operator()(ModuleDescriptor* d) const { gfree(d); }
};
using Descriptor = std::unique_ptr<ModuleDescriptor, DescriptorDeleter>;

Descriptor describeAt(int32_t index) {
    module_select(index);
    return Descriptor(module_describe());
}

std::string magicText(uint32_t magic) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8)
        if (char c = static_cast<char>((magic >> shift) & 0xFF)) text += c;
    return text;
}

bool allZero(const void* p, size_t n) {
    const auto* b = static_cast<const uint8_t*>(p);
    return std::all_of(b, b + n, [](uint8_t v) { return v == 0; });
}

size_t choiceCount(const char* choices) {
    return *choices ? 1 + std::count(choices, choices + strlen(choices), ',') : 0;
}

class Descriptors : public ModuleTest, public ::testing::WithParamInterface<ExpectedModule> {};

TEST_P(Descriptors, ReadBackAsDeclared) {
    const ExpectedModule& want = GetParam();
    Descriptor d = describeAt(want.index);
    ASSERT_TRUE(d);
    EXPECT_STREQ(d->name, want.name);
    EXPECT_STREQ(d->description, want.description);
    EXPECT_STREQ(d->version, want.version);
    EXPECT_EQ(magicText(d->magic), want.magic);
    EXPECT_EQ(d->size, 11328u);
    EXPECT_EQ(d->interfaceVersion, 109u);
    EXPECT_EQ(d->flags, want.flags);
    EXPECT_EQ(d->minImages, 1u);
    EXPECT_EQ(d->images, want.images);
    EXPECT_EQ(d->reserved, 0u);
    EXPECT_EQ(d->secondCount, want.secondCount);
    EXPECT_GT(strlen(d->author), 0u);
    EXPECT_EQ(d->pad, 0u);

    if (want.prefixOnly)
        EXPECT_GT(d->paramCount, want.params.size());
    else
        EXPECT_EQ(d->paramCount, want.params.size());
    ASSERT_LE(d->paramCount, 35u);
    for (size_t i = 0; i < want.params.size() && i < d->paramCount; ++i) {
        SCOPED_TRACE(want.params[i].name);
        EXPECT_STREQ(d->params[i].name, want.params[i].name);
        if (want.params[i].choices) {
            EXPECT_STREQ(d->params[i].choices, want.params[i].choices);
        }
    }
    for (uint32_t i = 0; i < d->paramCount; ++i) {
        const ModuleParam& p = d->params[i];
        SCOPED_TRACE(p.name);
        EXPECT_TRUE((p.type & 3) == 1 || (p.type & 3) == 2) << std::hex << p.type;
        EXPECT_EQ(p.pad, 0u);
        // A choice list names the values 0 .. maximum, one each.
        if (p.choices[0] && (p.type & 3) == 1) {
            EXPECT_EQ(p.minimum.asInt(), 0);
            EXPECT_EQ(static_cast<size_t>(p.maximum.asInt()), choiceCount(p.choices) - 1);
        }
    }
    for (uint32_t i = d->paramCount; i < 35; ++i)
        EXPECT_TRUE(allZero(&d->params[i], sizeof(ModuleParam))) << "record " << i;
}

INSTANTIATE_TEST_SUITE_P(AllModules, Descriptors, ::testing::ValuesIn(kExpected),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(ModuleTest, TableHasSeventyModulesWithUniqueNames) {
    ASSERT_EQ(module_count(), 70);
    ASSERT_EQ(kExpected.size(), 70u);
    std::set<std::string> folded;
    for (int32_t i = 0; i < module_count(); ++i) {
        Descriptor d = describeAt(i);
        ASSERT_TRUE(d);
        std::string name = d->name;
        std::transform(name.begin(), name.end(), name.begin(),
                       [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        EXPECT_TRUE(folded.insert(name).second) << "duplicate name " << d->name;
    }
}

struct Encoding {
    const char* module;
    int param;
    uint32_t type;
    double minimum, maximum, defaultValue; // integers compared as 32-bit words
};

// The encodings that callers and generic dialogs depend on.
const Encoding kEncodings[] = {
    {"Flip", 0, 0x201, 0, 3, 1},
    {"Blend", 0, 0x1, 0, 10, 0},
    {"Blend", 1, 0x1801, 0, 0xFFFFFFFF, 0},
    {"Blend", 2, 0x2, -200.0, 200.0, 100.0},
    {"Blend", 3, 0x2, -200.0, 200.0, 100.0},
    {"Blend", 4, 0x801, 0, 0xFFFFFFFF, 0xFFFFFFFF},
    {"Blend", 5, 0x1, 0, 2, 0},
    {"Size", 0, 0x1, 1, 0, 0},
    {"Size", 1, 0x1, 1, 0, 0},
    {"Size", 2, 0x201, 0, 7, 0},
    {"Size", 3, 0x1, 0, 1, 0},
    {"Size", 4, 0x801, 0, 0xFFFFFFFF, 0},
    {"Size", 5, 0x2, 0.0, 1.0, 1.0},
    {"Size", 6, 0x2, 1e-7, 999999.0, 1.0},
    {"Xcolour", 0, 0x801, 0, 0xFFFFFFFF, 0},
    {"Xcolour", 3, 0x801, 0, 0xFFFFFFFF, 0},
    {"Xcolour", 4, 0x1, 0, 1, 0},
    {"Mipmap", 0, 0x1, 1, 5, 1},
    {"Mipmap", 1, 0x1, 1, 200, 10},
    {"Mipmap", 3, 0x1, 1, 2147483647, 100},
    {"Mipmap", 5, 0x1, 0, 199, 0},
    {"Halfsize", 0, 0x1, 0, 3, 3},
    {"Halfsize", 4, 0x1, 0, 2, 0},
    {"Halfsize", 6, 0x1, 0, 1, 0},
    {"Wrap", 0, 0x1, -2147483648.0, 2147483647, 0},
    {"Pixel", 0, 0x8001, 0, 0, 0},
};

TEST_F(ModuleTest, ParameterEncodings) {
    for (const Encoding& e : kEncodings) {
        SCOPED_TRACE(std::string(e.module) + " " + std::to_string(e.param));
        Descriptor d = describeAt(module_find(e.module));
        ASSERT_TRUE(d);
        ASSERT_LT(static_cast<uint32_t>(e.param), d->paramCount);
        const ModuleParam& p = d->params[e.param];
        EXPECT_EQ(p.type, e.type);
        if ((e.type & 3) == 2) {
            EXPECT_DOUBLE_EQ(p.minimum.asReal(), e.minimum);
            EXPECT_DOUBLE_EQ(p.maximum.asReal(), e.maximum);
            EXPECT_DOUBLE_EQ(p.defaultValue.asReal(), e.defaultValue);
        } else {
            auto word = [](double v) { return static_cast<uint32_t>(static_cast<int64_t>(v)); };
            EXPECT_EQ(p.minimum.asUint(), word(e.minimum));
            EXPECT_EQ(p.maximum.asUint(), word(e.maximum));
            EXPECT_EQ(p.defaultValue.asUint(), word(e.defaultValue));
            // Integers use the first four bytes of the slot only.
            EXPECT_TRUE(allZero(p.maximum.bytes + 4, 4));
        }
    }
}

TEST_F(ModuleTest, MagicReadsAsBigEndianText) {
    Descriptor d = describeAt(module_find("Flip"));
    ASSERT_TRUE(d);
    EXPECT_EQ(d->magic, 0x464C4950u); // 'F' in the top byte
    d = describeAt(module_find("ColBal"));
    EXPECT_EQ(d->magic, 0x0048534Cu); // three characters: "HSL"
    d = describeAt(module_find("Rotate"));
    EXPECT_EQ(d->magic, 0u);
}

} // namespace
