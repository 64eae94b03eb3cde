// The bitmap and the image record: geometry, palette, pixels, hot spots and
// module runs.

#include "DocTestSupport.h"
#include "ScriptedUi.h"

#include "CodecTestSupport.h"
#include "app/doc/Exceptions.h"
#include "app/doc/TavixImage.h"
#include "imaging/galloc.h"
#include "imaging/module/module.h"
#include "tavix/RecordLimits.h"

#include <gtest/gtest.h>

#include <cstring>

using namespace zytest;

namespace {

TavixColour colour(uint8_t b, uint8_t g, uint8_t r, uint8_t a) {
    return {b, g, r, a};
}

std::unique_ptr<CTavixImage> imageFrom(const TavixFrame& frame) {
    return CTavixImage::FromFrame(frame);
}

} // namespace

// ---- CDIB ----------------------------------------------------------------------

struct DibShape {
    int width, height, bits;
    bool valid;
    int pitch, pixelBytes, colours;
};

class DibGeometry : public ::testing::TestWithParam<DibShape> {};

TEST_P(DibGeometry, CreateGivesPaddedTopDownRows) {
    const DibShape s = GetParam();
    CDIB dib;
    ASSERT_EQ(dib.Create(s.width, s.height, s.bits), s.valid);
    EXPECT_EQ(dib.IsValid(), s.valid);
    if (!s.valid) return;
    EXPECT_EQ(dib.GetPitch(), s.pitch);
    EXPECT_EQ(dib.GetPitch() % 4, 0);
    EXPECT_EQ(dib.GetPixelBytes(), s.pixelBytes);
    EXPECT_EQ(dib.GetColorCount(), s.colours);
    EXPECT_EQ(dib.GetRow(1) - dib.GetRow(0), s.pitch);
    EXPECT_EQ(dib.GetPixelAddress(s.width - 1, 0) - dib.GetBits(), (s.width - 1) * s.pixelBytes);
    EXPECT_EQ(dib.GetPixelAddress(s.width, 0), nullptr);
    EXPECT_EQ(dib.GetRow(s.height), nullptr);
}

INSTANTIATE_TEST_SUITE_P(
    Shapes, DibGeometry,
    ::testing::Values(DibShape{5, 3, 8, true, 8, 1, 256}, DibShape{5, 3, 4, true, 8, 1, 16},
                      DibShape{1, 2, 1, true, 4, 1, 2}, DibShape{5, 3, 32, true, 20, 4, 0},
                      DibShape{3, 2, 16, true, 12, 4, 0}, DibShape{-1, 3, 8, false, 0, 0, 0},
                      DibShape{3, 3, 0, false, 0, 0, 0}, DibShape{3, 3, 33, false, 0, 0, 0},
                      DibShape{100000, 100000, 32, false, 0, 0, 0}));

TEST(Dib, CopyPixelsNeedsTheSameShape) {
    CDIB a, b, c;
    ASSERT_TRUE(a.Create(3, 2, 8));
    ASSERT_TRUE(b.Create(3, 2, 8));
    ASSERT_TRUE(c.Create(3, 2, 32));
    a.GetRow(1)[2] = 77;
    CDIBColour red{0, 0, 255, 0};
    a.SetColorTable(77, 1, &red);
    ASSERT_TRUE(b.CopyPixels(a));
    EXPECT_EQ(b.GetRow(1)[2], 77);
    EXPECT_EQ(b.GetColorTable()[77].red, 255);
    EXPECT_FALSE(c.CopyPixels(a));
    // Table ranges are cut to the 256 entries.
    CDIBColour many[4] = {};
    a.SetColorTable(254, 4, many);
    a.GetColorTable(-2, 4, many);
    EXPECT_EQ(many[2].blue, 0);
}

// ---- Create and Set information --------------------------------------------------

TEST(ImageRecord, CreateWithDepth8InstallsTheGaudyPalette) {
    ScopedModel model;
    CTavixImage image;
    ASSERT_TRUE(image.Create(4, 2, 8));
    const TavixInfo& info = *image.GetInfo();
    EXPECT_EQ(info.size, kTavixInfoSize);
    EXPECT_EQ(info.version, 200);
    EXPECT_EQ(info.startcolour, 0);
    EXPECT_EQ(info.numcolours, 256);
    EXPECT_EQ(info.quality, 100);
    EXPECT_EQ(info.alphabits + info.redbits + info.greenbits + info.bluebits, 32);
    struct {
        int index;
        uint8_t blue, green, red;
    } expected[] = {
        {0, 0, 0, 0}, {1, 177, 2, 3}, {80, 0, 160, 240}, {100, 208, 200, 44}, {255, 81, 254, 253}};
    for (const auto& e : expected) {
        SCOPED_TRACE(e.index);
        EXPECT_EQ(info.colours[e.index].blue, e.blue);
        EXPECT_EQ(info.colours[e.index].green, e.green);
        EXPECT_EQ(info.colours[e.index].red, e.red);
        EXPECT_EQ(info.colours[e.index].alpha, 255);
    }
    EXPECT_EQ(memcmp(info.colours, image.GetColorTable(), sizeof info.colours), 0);
}

TEST(ImageRecord, CreateDeeperThan8LeavesThePaletteEmpty) {
    ScopedModel model;
    for (int depth : {16, 32}) {
        CTavixImage image;
        ASSERT_TRUE(image.Create(3, 3, depth));
        const TavixInfo& info = *image.GetInfo();
        EXPECT_EQ(info.numcolours, 0);
        EXPECT_EQ(info.colours[7].alpha, 0);
        EXPECT_EQ(info.bufferbpp, depth);
        EXPECT_EQ(info.redbits, 8);
        EXPECT_EQ(image.GetBitCount(), depth);
    }
}

TEST(ImageRecord, SetInformationCopiesThePaletteOnlyForBufferDepth8) {
    ScopedModel model;
    TavixInfo info{};
    info.size = kTavixInfoSize;
    info.width = 6;
    info.height = 2;
    info.colours[9] = colour(1, 2, 3, 4);
    for (int depth : {4, 8}) {
        info.bufferbpp = depth;
        CTavixImage image;
        image.SetInformation(info);
        EXPECT_EQ(image.GetBitCount(), depth);
        EXPECT_EQ(image.GetColorTable()[9].red, depth == 8 ? 3 : 0);
        EXPECT_EQ(image.GetIndex(5, 1), 0);
    }
}

TEST(ImageRecord, RecordTailTravelsWithEveryCopy) {
    ScopedModel model;
    std::vector<uint32_t> block((kTavixInfoSize + 16) / 4, 0);
    auto* info = reinterpret_cast<TavixInfo*>(block.data());
    info->size = kTavixInfoSize + 16;
    info->width = info->height = 2;
    info->bufferbpp = 32;
    block.back() = 0xCAFEF00D;
    CTavixImage image;
    image.SetInformation(*info);
    ASSERT_EQ(image.GetInfoSize(), kTavixInfoSize + 16);
    auto copy = image.Duplicate();
    ASSERT_TRUE(copy);
    ASSERT_EQ(copy->GetInfoSize(), kTavixInfoSize + 16);
    EXPECT_EQ(imageBytes(*copy), imageBytes(image));
    // A record claiming less than the fixed size is still copied whole.
    info->size = 100;
    image.SetInformation(*info);
    EXPECT_EQ(image.GetInfo()->size, kTavixInfoSize);
}

TEST(ImageRecord, RecordsUpToTheCodecsLimitInstall) {
    // A 4096 x 4096 DXT5 frame keeps 16 MiB of stored blocks in its tail.
    ScopedModel model;
    const int32_t big = kTavixInfoSize + (16 << 20) + 64;
    std::vector<uint32_t> block(static_cast<size_t>(big) / 4, 0);
    auto* info = reinterpret_cast<TavixInfo*>(block.data());
    info->size = big;
    info->width = info->height = 4;
    info->bufferbpp = 32;
    block.back() = 0x600DF00D;
    CTavixImage image;
    image.SetInformation(*info);
    ASSERT_EQ(image.GetInfoSize(), big);
    EXPECT_EQ(reinterpret_cast<const uint32_t*>(image.GetInfo())[big / 4 - 1], 0x600DF00Du);
    // Beyond the limit the size field is corrupt: refused, the image unchanged
    // (the check comes before any byte past the fixed record is read).
    info->size = kTavixMaxInfoSize + 4;
    EXPECT_THROW(image.SetInformation(*info), CInvalidArgException);
    EXPECT_EQ(image.GetInfoSize(), big);
}

// ---- Palette and pixels -------------------------------------------------------------

TEST(ImageRecord, PaletteSettersKeepRecordAndColourTableEqual) {
    ScopedModel model;
    CTavixImage image;
    image.Create(2, 2, 8);
    image.TakeModifiedMark();
    image.SetPaletteEntry(200, colour(10, 20, 30, 40));
    EXPECT_TRUE(image.TakeModifiedMark());
    EXPECT_EQ(image.GetColorTable()[200].green, 20);
    image.GetBits()[1] = 200;
    EXPECT_EQ(image.GetIndex(1, 0), 200);
    EXPECT_EQ(image.GetPixelValue(1, 0), 0x281E140Au);

    TavixColour all[256];
    for (int i = 0; i < 256; ++i)
        all[i] = colour(static_cast<uint8_t>(i), 1, 2, 3);
    image.SetPalette(all);
    TavixColour back[256];
    image.GetPalette(back);
    EXPECT_EQ(memcmp(back, all, sizeof all), 0);
    EXPECT_EQ(memcmp(image.GetInfo()->colours, image.GetColorTable(), sizeof all), 0);
}

TEST(ImageRecord, TrueColourPixelsAreStoredWords) {
    ScopedModel model;
    CTavixImage image;
    image.Create(2, 1, 32);
    const uint32_t argb = 0x80FF1020;
    memcpy(image.GetPixelAddress(1, 0), &argb, 4);
    EXPECT_EQ(image.GetPixelValue(1, 0), argb);
    EXPECT_EQ(image.GetIndex(1, 0), 0);
    EXPECT_EQ(image.GetPixelValue(2, 0), 0u);
}

TEST(ImageRecord, CopyPixelsBringsThePaletteIntoTheRecord) {
    ScopedModel model;
    CTavixImage from, to;
    from.Create(2, 2, 8);
    to.Create(2, 2, 8);
    from.SetPaletteEntry(3, colour(9, 9, 9, 9));
    ASSERT_TRUE(to.CopyPixels(from));
    EXPECT_EQ(to.GetInfo()->colours[3].red, 9);
}

TEST(ImageRecord, NameIsFormattedIntoTheFieldAndPlacementIsTheDefaultPoint) {
    ScopedModel model;
    CTavixImage image;
    image.Create(10, 4, 32);
    image.SetDefaultPoint({-3, 7});
    EXPECT_EQ(image.GetPlacementRect(), (CRect{-3, 7, 7, 11}));
    image.SetName(std::string(600, 'n'));
    EXPECT_EQ(image.GetName().size(), 511u);
}

// ---- Hot spots ---------------------------------------------------------------------------

struct HotSpotCase {
    const char* text;
    std::vector<CPoint> spots;
};

class HotSpotText : public ::testing::TestWithParam<HotSpotCase> {};

TEST_P(HotSpotText, ScanStoresPairsUpToTheEndOfText) {
    ScopedModel model;
    CTavixImage image;
    image.Create(1, 1, 32);
    image.SetHotSpotsFromText(GetParam().text);
    ASSERT_EQ(image.GetHotSpotCount(), static_cast<int>(GetParam().spots.size()));
    for (size_t i = 0; i < GetParam().spots.size(); ++i)
        EXPECT_EQ(image.GetHotSpot(static_cast<int>(i)), GetParam().spots[i]) << i;
}

INSTANTIATE_TEST_SUITE_P(Texts, HotSpotText,
                         ::testing::Values(HotSpotCase{"1,2 ; 3,4", {{1, 2}, {3, 4}}},
                                           HotSpotCase{"", {}}, HotSpotCase{"-5,6", {{-5, 6}}},
                                           HotSpotCase{"1,2 ;", {{1, 2}}},
                                           // A segment without numbers repeats the previous pair.
                                           HotSpotCase{"7,8;;9,10", {{7, 8}, {7, 8}, {9, 10}}},
                                           HotSpotCase{"7,8; x ;9,10", {{7, 8}, {7, 8}, {9, 10}}},
                                           HotSpotCase{"abc", {{0, 0}}},
                                           HotSpotCase{"5", {{5, 0}}}));

TEST(HotSpots, TextIsLimitedTo1024PairsAndFormatsBack) {
    ScopedModel model;
    CTavixImage image;
    image.Create(1, 1, 32);
    // 1023 pairs, the 1024th and a 1025th: well inside the 10000-character
    // buffer the text is handled in.
    std::string text;
    for (int i = 0; i < 1023; ++i)
        text += "1,2 ; ";
    text += "9,-9 ; 7,7";
    image.SetHotSpotsFromText(text);
    EXPECT_EQ(image.GetHotSpotCount(), 1024);
    EXPECT_EQ(image.GetHotSpot(1023), (CPoint{9, -9}));

    image.SetHotSpotsFromText("1,2;3,4");
    EXPECT_EQ(image.GetHotSpotsText(), "1,2 ; 3,4");
    image.SetHotSpotsFromText("");
    EXPECT_EQ(image.GetHotSpotsText(), "");
}

// ---- Module runs ---------------------------------------------------------------------------

TEST(ImageModules, BadModuleIndexShowsTheMessageAndGivesNothing) {
    ScopedModel model;
    CTavixImage image;
    image.Create(2, 2, 8);
    for (int index : {-1, module_count()}) {
        model.ui.messages.clear();
        EXPECT_EQ(image.RunModule(index, nullptr, 0), nullptr);
        EXPECT_FALSE(image.RunModuleInPlace(index, nullptr, 0));
        ASSERT_EQ(model.ui.messages.size(), 2u);
        EXPECT_EQ(model.ui.messages[0].text,
                  "The filter ID is bad, or the selected filter is unavailable.");
        EXPECT_EQ(model.ui.messages[0].icon, MsgIcon::Information);
    }
}

TEST(ImageModules, DuplicateIsIdenticalAndKeepsTheWorksheetFlag) {
    ScopedModel model;
    const int live = galloc_live_count();
    for (int depth : {8, 32}) {
        auto image = imageFrom(makeFrame(7, 5, depth, "dup"));
        image->m_OnWorksheet = 1;
        image->SetModifiedMark(0);
        auto copy = image->Duplicate();
        ASSERT_TRUE(copy);
        EXPECT_EQ(imageBytes(*copy), imageBytes(*image));
        EXPECT_EQ(copy->m_OnWorksheet, 1);
        EXPECT_EQ(copy->GetModifiedMark(), 0);
    }
    EXPECT_EQ(galloc_live_count(), live);
}

TEST(ImageModules, NewImagesTakeTheWorksheetSetting) {
    ScopedModel model;
    EXPECT_EQ(CTavixImage().m_OnWorksheet, 0);
    model.profile.WriteInt("CTavixImage", "m_OnWorksheet", 1);
    EXPECT_EQ(CTavixImage().m_OnWorksheet, 1);
}

TEST(ImageModules, FlipIntoNewImageAndInPlace) {
    ScopedModel model;
    auto image = imageFrom(makeFrame(4, 2, 32));
    const ModuleValue horizontal = ModuleValue::ofInt(1);
    auto flipped = image->RunModule(module_find("flip"), &horizontal, 1);
    ASSERT_TRUE(flipped);
    for (int x = 0; x < 4; ++x)
        EXPECT_EQ(flipped->GetPixelValue(x, 1), image->GetPixelValue(3 - x, 1)) << x;
    ASSERT_TRUE(flipped->RunModuleInPlace(module_find("flip"), &horizontal, 1));
    // In place only the pixels change; the record stays as it was.
    for (int x = 0; x < 4; ++x)
        EXPECT_EQ(flipped->GetPixelValue(x, 1), image->GetPixelValue(x, 1)) << x;
    EXPECT_EQ(flipped->GetCenterPoint(), (CPoint{4 - image->GetCenterPoint().x, 0}));
}

TEST(ImageModules, FrameRoundTrip) {
    ScopedModel model;
    for (int depth : {8, 32}) {
        TavixFrame frame = makeFrame(5, 3, depth, "rt");
        auto image = imageFrom(frame);
        ASSERT_TRUE(image);
        EXPECT_EQ(image->GetName(), "rt");
        TavixFrame back = image->ToFrame();
        EXPECT_EQ(argbPixels(back), argbPixels(frame));
        EXPECT_EQ(memcmp(back.info.get(), frame.info.get(), kTavixInfoSize), 0);
    }
}
