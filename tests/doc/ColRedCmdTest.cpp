// Colour reduction through the command framework: the Format items, Change
// Color Depth, the wizard's values, shared / unique / existing palettes,
// exact first, refusals, cancel and undo.

#include "DocTestSupport.h"
#include "ScriptedUi.h"

#include "CodecTestSupport.h"
#include "app/cmds/ColRedCmd.h"
#include "app/doc/CommandIds.h"
#include "app/doc/TavixDoc.h"
#include "imaging/galloc.h"
#include "imaging/quant/quant.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <set>

using namespace zytest;
using namespace ZyIds;

namespace {

// Eight well-separated opaque colours, in 4 x 2 blocks.
constexpr uint32_t kEight[8] = {0xFF000000, 0xFFFF0000, 0xFF00FF00, 0xFF0000FF,
                                0xFFFFFF00, 0xFF00FFFF, 0xFFFF00FF, 0xFFFFFFFF};

class ColRedTest : public ::testing::Test {
  protected:
    void SetUp() override {
        bindBuiltLibrary();
        live = galloc_live_count();
    }
    void TearDown() override {
        doc.DeleteContents();
        EXPECT_EQ(galloc_live_count(), live);
    }
    CTavixImage* add(const char* name, int w, int h, const std::function<uint32_t(int, int)>& at) {
        auto* image = new CTavixImage;
        image->Create(w, h, 32);
        image->SetName(name);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                const uint32_t v = at(x, y);
                memcpy(image->GetRow(y) + 4 * x, &v, 4);
            }
        doc.InsertImage(doc.GetImageCount(), image);
        return image;
    }
    // A smooth 64 x 64 gradient: far more than 256 colours.
    CTavixImage* gradient(const char* name) {
        return add(name, 64, 64, [](int x, int y) {
            return 0xFF000000u | uint32_t(x * 4) << 16 | uint32_t(y * 4) << 8 |
                   uint32_t((x + y) * 2);
        });
    }
    CTavixImage* eight(const char* name) {
        return add(name, 16, 8, [](int x, int y) { return kEight[(x / 4) + 4 * (y / 4)]; });
    }
    void selectAll() {
        doc.GetSelectionModel().SelectAll();
        doc.SetFocus(0, false);
    }
    void wizard(std::function<void(CColRedWizData&)> edit) {
        model.ui.dialogs["CColRedWiz"] = [edit](CDialogData& data) {
            edit(static_cast<CColRedWizData&>(data));
            return true;
        };
        doc.OnCmdMsg(ColorDepthWizard);
    }
    CColRedCmd* current() {
        return dynamic_cast<CColRedCmd*>(doc.GetCommandHandler().GetCurrent());
    }
    static std::set<uint32_t> colours(const CTavixImage& image) {
        std::set<uint32_t> seen;
        for (int y = 0; y < image.GetInfo()->height; ++y)
            for (int x = 0; x < image.GetInfo()->width; ++x)
                seen.insert(image.GetPixelValue(x, y));
        return seen;
    }
    static std::vector<uint32_t> palette(const CTavixImage& image) {
        TavixColour entries[256];
        image.GetPalette(entries);
        std::vector<uint32_t> out;
        for (const TavixColour& c : entries)
            out.push_back(uint32_t(c.alpha) << 24 | uint32_t(c.red) << 16 | uint32_t(c.green) << 8 |
                          c.blue);
        return out;
    }

    ScopedModel model;
    CTavixDoc doc;
    int live = 0;
};

TEST_F(ColRedTest, FormatItemsGiveTheirDepthsAndLayouts) {
    struct Case {
        unsigned id;
        int bufferbpp, bpp, numcolours, a, r, g, b;
    } cases[] = {
        {Indexed4, 8, 4, 16, 8, 8, 8, 8},      {Indexed8, 8, 8, 256, 8, 8, 8, 8},
        {Rgb555, 32, 15, 0, 1, 5, 5, 5},       {Rgb565, 32, 16, 0, 0, 5, 6, 5},
        {Rgb32, 32, 32, 0, 8, 8, 8, 8},        {Rgb24, 32, 24, 0, 0, 8, 8, 8},
        {Rgb555Opaque, 32, 15, 0, 0, 5, 5, 5},
    };
    for (const Case& c : cases) {
        doc.DeleteContents();
        gradient("g");
        selectAll();
        doc.OnCmdMsg(c.id);
        const CTavixImage& out = *doc.GetImageAt(0);
        const TavixInfo& info = *out.GetInfo();
        EXPECT_EQ(info.bufferbpp, c.bufferbpp) << c.id;
        EXPECT_EQ(info.bpp, c.bpp) << c.id;
        EXPECT_EQ(info.numcolours, c.numcolours) << c.id;
        EXPECT_EQ(std::vector<int>({info.alphabits, info.redbits, info.greenbits, info.bluebits}),
                  std::vector<int>({c.a, c.r, c.g, c.b}))
            << c.id;
        const std::set<uint32_t> seen = colours(out);
        if (c.bufferbpp == 8) {
            EXPECT_LE(seen.size(), size_t(info.numcolours)) << c.id;
            for (int y = 0; y < info.height; ++y)
                for (int x = 0; x < info.width; ++x)
                    ASSERT_LT(out.GetIndex(x, y), info.numcolours) << c.id;
        } else {
            // Every channel sits on its reduced grid: 5 bits of red leave
            // 32 levels, replicated (0x1F -> 0xFF).
            std::set<uint32_t> reds;
            for (uint32_t v : seen)
                reds.insert((v >> 16) & 0xFF);
            EXPECT_LE(reds.size(), size_t(1) << c.r) << c.id;
            for (uint32_t v : seen)
                EXPECT_EQ(v >> 24, 0xFFu) << c.id << ": opaque stays opaque";
        }
    }
}

TEST_F(ColRedTest, EveryQuantizerFamilyKeepsFewColoursExactly) {
    for (const char* name :
         {"Wu", "Tw", "Wu777", "MQ", "Exact", "4D Wu", "Wu555", "Wu Ve", "Lloyd"}) {
        doc.DeleteContents();
        eight("e");
        selectAll();
        const int index = quant_find(name);
        ASSERT_GT(index, 0) << name;
        wizard([index](CColRedWizData& w) {
            w.m_Type = 0;
            w.m_Depth = 0;
            w.m_Method = index - 1;
            w.m_Operation = 1;
        });
        ASSERT_NE(current(), nullptr) << name;
        EXPECT_EQ(current()->GetUsedMethod(), index) << name;
        const CTavixImage& out = *doc.GetImageAt(0);
        EXPECT_EQ(out.GetInfo()->bufferbpp, 8) << name;
        EXPECT_EQ(colours(out), std::set<uint32_t>(std::begin(kEight), std::end(kEight))) << name;
        EXPECT_EQ(model.profile.GetInt("CColRedCmd", "m_Method", -1), index) << name;
    }
}

TEST_F(ColRedTest, AGradientReducedTo16ColoursStaysCloseToTheSource) {
    gradient("g");
    selectAll();
    const std::string before = imageBytes(*doc.GetImageAt(0));
    CTavixImage source;
    source.SetInformation(*doc.GetImageAt(0)->GetInfo());
    source.LoadPixelRows(doc.GetImageAt(0)->GetEntry());
    doc.OnCmdMsg(Indexed4);
    const CTavixImage& out = *doc.GetImageAt(0);
    double error = 0;
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x) {
            const uint32_t a = source.GetPixelValue(x, y), b = out.GetPixelValue(x, y);
            for (int shift : {0, 8, 16}) {
                const double d = double((a >> shift) & 0xFF) - double((b >> shift) & 0xFF);
                error += d * d;
            }
        }
    // 16 colours over a 3-channel ramp: well under 20 levels RMS.
    EXPECT_LT(error / (64 * 64 * 3), 20.0 * 20.0);
    EXPECT_EQ(colours(out).size(), 16u);
    doc.OnCmdMsg(ID_EDIT_UNDO);
    EXPECT_EQ(imageBytes(*doc.GetImageAt(0)), before);
}

TEST_F(ColRedTest, SharedUniqueAndExistingPalettes) {
    auto reds = [this](const char* name) {
        return add(name, 8, 8, [](int x, int) { return 0xFF000000u | uint32_t(x * 32) << 16; });
    };
    auto blues = [this](const char* name) {
        return add(name, 8, 8, [](int x, int) { return 0xFF000000u | uint32_t(x * 32); });
    };
    // Shared: one palette holding both images' colours.
    reds("r");
    blues("b");
    selectAll();
    wizard([](CColRedWizData& w) {
        w.m_Type = 0;
        w.m_Operation = 0;
    });
    EXPECT_EQ(palette(*doc.GetImageAt(0)), palette(*doc.GetImageAt(1)));
    EXPECT_EQ(colours(*doc.GetImageAt(1)).size(), 8u);
    EXPECT_EQ(model.ui.statusLines.front(), "Building palette with Wu method");

    // Unique: each image its own.
    doc.DeleteContents();
    reds("r");
    blues("b");
    selectAll();
    wizard([](CColRedWizData& w) {
        w.m_Type = 0;
        w.m_Operation = 1;
    });
    EXPECT_NE(palette(*doc.GetImageAt(0)), palette(*doc.GetImageAt(1)));
    EXPECT_EQ(colours(*doc.GetImageAt(0)).size(), 8u);

    // Existing: the focused palette image's palette, entries start .. start + count - 1.
    const std::vector<uint32_t> target = palette(*doc.GetImageAt(0));
    gradient("g");
    doc.GetSelectionModel().SelectAll();
    doc.SetFocus(0, false);
    wizard([](CColRedWizData& w) {
        w.m_Type = 0;
        w.m_Operation = 2;
    });
    ASSERT_EQ(current()->GetOperation(), 2);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(palette(*doc.GetImageAt(i)), target) << i;

    // Existing with a true-colour focus behaves as shared.
    doc.DeleteContents();
    gradient("g");
    reds("r");
    selectAll();
    wizard([](CColRedWizData& w) {
        w.m_Type = 0;
        w.m_Operation = 2;
    });
    EXPECT_EQ(current()->GetOperation(), 0);
    EXPECT_EQ(palette(*doc.GetImageAt(0)), palette(*doc.GetImageAt(1)));
}

TEST_F(ColRedTest, PaletteRecordsFollowTheDepthNotTheColoursMade) {
    add("three", 3, 1, [](int x, int) { return kEight[x]; });
    selectAll();
    doc.OnCmdMsg(Indexed4);
    EXPECT_EQ(doc.GetImageAt(0)->GetInfo()->numcolours, 16);
    EXPECT_EQ(doc.GetImageAt(0)->GetInfo()->bpp, 4);
    doc.OnCmdMsg(ID_EDIT_UNDO);
    doc.OnCmdMsg(Indexed8);
    EXPECT_EQ(doc.GetImageAt(0)->GetInfo()->numcolours, 256);
    EXPECT_EQ(colours(*doc.GetImageAt(0)).size(), 3u);
}

TEST_F(ColRedTest, ChangeColorDepthAppliesTheSavedChoices) {
    struct Case {
        const char* layout; // type 1: ARGB bits; type 0: "bpp"
        int type, bits[4], bpp;
        int wantBpp, wantColours;
    } cases[] = {
        {"1555", 1, {1, 5, 5, 5}, 0, 15, 0},  {"0555", 1, {0, 5, 5, 5}, 0, 15, 0},
        {"0565", 1, {0, 5, 6, 5}, 0, 16, 0},  {"4444", 1, {4, 4, 4, 4}, 0, 16, 0},
        {"8888", 1, {8, 8, 8, 8}, 0, 32, 0},  {"pal 8", 0, {8, 8, 8, 8}, 8, 8, 256},
        {"pal 4", 0, {8, 8, 8, 8}, 4, 4, 16},
    };
    for (const Case& c : cases) {
        doc.DeleteContents();
        gradient("g");
        selectAll();
        model.profile.WriteInt("CColRedCmd", "m_ColRedType", c.type);
        model.profile.WriteInt("CColRedCmd", "m_Bpp", c.bpp);
        const char* keys[4] = {"m_ABits", "m_RBits", "m_GBits", "m_BBits"};
        for (int i = 0; i < 4; ++i)
            model.profile.WriteInt("CColRedCmd", keys[i], c.bits[i]);
        // Outside the handler's range: the window routes it to the registry.
        doc.GetCommandHandler().OnCommandRange(ChangeColorDepth);
        EXPECT_EQ(doc.GetImageAt(0)->GetInfo()->bpp, c.wantBpp) << c.layout;
        EXPECT_EQ(doc.GetImageAt(0)->GetInfo()->numcolours, c.wantColours) << c.layout;
    }
}

TEST_F(ColRedTest, ExactFirstSwitchesToExactWhenFewEnoughColours) {
    model.profile.WriteInt("CColRedCmd", "m_ExactFirst", 1);
    eight("e");
    selectAll();
    doc.OnCmdMsg(Indexed8);
    EXPECT_EQ(current()->GetUsedMethod(), quant_find("Exact"));
    EXPECT_EQ(model.ui.statusLines.front(), "Building palette with Exact method");
    doc.DeleteContents();
    gradient("g");
    selectAll();
    doc.OnCmdMsg(Indexed8);
    EXPECT_EQ(current()->GetUsedMethod(), quant_find("Wu")) << "too many colours for Exact";
}

TEST_F(ColRedTest, WizardWritesItsSettingsAndTheTrueColourPageWorks) {
    gradient("g");
    selectAll();
    wizard([](CColRedWizData& w) {
        w.m_Type = 1;
        w.m_ABits = 4;
        w.m_RBits = 4;
        w.m_GBits = 4;
        w.m_BBits = 4;
        w.m_TrueDither = 2;
    });
    EXPECT_EQ(doc.GetImageAt(0)->GetInfo()->bpp, 16);
    EXPECT_EQ(ColRedLastType(), 1);
    EXPECT_EQ(model.profile.GetInt("CColRedCmd", "m_Dither", -1), 2);
    EXPECT_EQ(model.profile.GetInt("CColRedCmd", "m_ABits", -1), 4);
    EXPECT_FALSE(model.profile.Contains("CColRedCmd", "m_ColRedType"))
        << "the toolbar keeps the type";
    // A 1-bit reduction holds the colour count to what one bit addresses.
    wizard([](CColRedWizData& w) {
        w.m_Type = 0;
        w.m_Depth = 2;
        w.m_Colours = 256;
    });
    EXPECT_EQ(current()->GetBpp(), 1);
    EXPECT_EQ(current()->GetColourCount(), 2);
    EXPECT_LE(colours(*doc.GetImageAt(0)).size(), 2u);
}

TEST_F(ColRedTest, RefusalsAndCancelChangeNothing) {
    gradient("g");
    selectAll();
    const DocSnapshot before = snapshot(doc);
    struct Case {
        const char* what;
        std::function<bool(CDialogData&)> dialog;
        const char* message; // a word of the message shown, or null for none
    } cases[] = {
        {"cancelled wizard", [](CDialogData&) { return false; }, nullptr},
        {"null quantizer",
         [](CDialogData& d) {
             auto& w = static_cast<CColRedWizData&>(d);
             w.m_Type = 0;
             w.m_Method = 4; // quantizer 5, a null entry
             return true;
         },
         "Nil quantizer makes no palette"},
        {"no colour bits",
         [](CDialogData& d) {
             auto& w = static_cast<CColRedWizData&>(d);
             w.m_Type = 1;
             w.m_RBits = w.m_GBits = w.m_BBits = 0;
             return true;
         },
         "at least one bit of red, green or blue"},
    };
    for (const Case& c : cases) {
        model.ui.messages.clear();
        model.ui.dialogs["CColRedWiz"] = c.dialog;
        doc.OnCmdMsg(ColorDepthWizard);
        EXPECT_EQ(doc.GetCommandHandler().GetCurrent(), nullptr) << c.what;
        EXPECT_EQ(snapshot(doc).contents, before.contents) << c.what;
        ASSERT_EQ(model.ui.messages.size(), c.message ? 1u : 0u) << c.what;
        if (c.message) {
            EXPECT_NE(model.ui.messages[0].text.find(c.message), std::string::npos)
                << model.ui.messages[0].text;
        }
    }
}

// Colour-only methods make every palette entry opaque: a sprite with
// transparent pixels keeps them through a menu item and is refused by a
// wizard run that names such a method.
TEST_F(ColRedTest, TransparentPixelsAreNeverMadeOpaque) {
    add("ghost", 8, 4, [](int x, int) { return x < 4 ? 0x00000000u : 0xFF3060C0u; });
    selectAll();
    model.profile.WriteInt("CColRedCmd", "m_Method", quant_find("Wu"));
    doc.OnCmdMsg(Indexed8);
    ASSERT_NE(current(), nullptr);
    EXPECT_EQ(current()->GetUsedMethod(), quant_find("Tw"));
    EXPECT_EQ(doc.GetImageAt(0)->GetInfo()->bufferbpp, 8);
    EXPECT_EQ(doc.GetImageAt(0)->GetPixelValue(0, 0) >> 24, 0u);
    EXPECT_EQ(doc.GetImageAt(0)->GetPixelValue(7, 0), 0xFF3060C0u);

    doc.OnCmdMsg(ID_EDIT_UNDO);
    const DocSnapshot before = snapshot(doc);
    model.ui.messages.clear();
    const int wu = quant_find("Wu");
    wizard([wu](CColRedWizData& w) {
        w.m_Type = 0;
        w.m_Method = wu - 1;
        w.m_Operation = 1;
    });
    EXPECT_EQ(snapshot(doc).contents, before.contents);
    ASSERT_EQ(model.ui.messages.size(), 1u);
    EXPECT_NE(model.ui.messages[0].text.find("'ghost' has transparent pixels"), std::string::npos)
        << model.ui.messages[0].text;
}

TEST_F(ColRedTest, CancelWhileBuildingASharedPaletteChangesNothing) {
    gradient("a");
    gradient("b");
    selectAll();
    const DocSnapshot before = snapshot(doc);
    model.ui.cancelAtStatus = "Building palette with Wu method";
    doc.OnCmdMsg(Indexed8);
    EXPECT_EQ(snapshot(doc).objects, before.objects);
    EXPECT_TRUE(model.ui.messages.empty()) << "a cancel is no failure";
    EXPECT_EQ(model.ui.progressWindowsOpen, 0);
}

TEST_F(ColRedTest, UndoRestoresTheSameObjectsAndRedoTheReduction) {
    gradient("a");
    eight("b");
    gradient("c");
    doc.GetSelectionModel().Select(0);
    doc.GetSelectionModel().Select(2);
    doc.SetFocus(0, false);
    const DocSnapshot before = snapshot(doc);
    doc.OnCmdMsg(Indexed8);
    const DocSnapshot after = snapshot(doc);
    EXPECT_NE(after.contents[0], before.contents[0]);
    EXPECT_EQ(after.objects[1], before.objects[1]) << "unselected images stay";
    doc.OnCmdMsg(ID_EDIT_UNDO);
    EXPECT_EQ(snapshot(doc).objects, before.objects);
    EXPECT_EQ(snapshot(doc).contents, before.contents);
    doc.OnCmdMsg(ID_EDIT_UNDO);
    EXPECT_EQ(snapshot(doc).contents, after.contents);
}

} // namespace
