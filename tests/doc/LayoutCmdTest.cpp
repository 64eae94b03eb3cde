// The layout wizard and the layout plug-in command, headless: placement
// without overlap, page edges, the fallback row, turning, settings, undo,
// and plug-ins that are missing, incomplete or throwing.

#include "DocTestSupport.h"
#include "ScriptedUi.h"

#include "CodecTestSupport.h"
#include "app/cmds/LayoutCmd.h"
#include "app/cmds/LayoutPropertiesCmd.h"
#include "app/doc/CommandIds.h"
#include "app/doc/TavixDoc.h"
#include "imaging/galloc.h"

#include <gtest/gtest.h>

using namespace zytest;

namespace {

constexpr const char* kNotAll =
    "Not all of the images could fit in the given area.  Shapes that could not be placed "
    "are placed along the bottom edge of VRAM at y location 512";

class LayoutTest : public ::testing::Test {
  protected:
    void SetUp() override {
        bindBuiltLibrary();
        live = galloc_live_count();
    }
    void TearDown() override {
        doc.DeleteContents();
        EXPECT_EQ(galloc_live_count(), live);
    }
    // An image whose pixel (x, y) holds x + 16 * y, so turns can be checked.
    CTavixImage* add(int w, int h, int bpp = 32) {
        auto* image = new CTavixImage;
        image->Create(w, h, bpp);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                uint8_t* p = image->GetPixelAddress(x, y);
                if (bpp == 8)
                    *p = static_cast<uint8_t>(x + 16 * y);
                else
                    *reinterpret_cast<uint32_t*>(p) =
                        0xFF000000u | static_cast<uint32_t>(x + 16 * y);
            }
        image->SetDefaultPoint({-5, -5});
        doc.InsertImage(doc.GetImageCount(), image);
        return image;
    }
    // Runs the wizard with `edit` applied to the dialog's values.
    void layout(const std::function<void(CLayoutDlgData&)>& edit) {
        model.ui.dialogs["CLayoutDlg"] = [edit](CDialogData& data) {
            edit(static_cast<CLayoutDlgData&>(data));
            return true;
        };
        doc.OnCmdMsg(ID_IMAGE_LAYOUT_WIZARD);
    }
    void expectNoOverlap() {
        for (int i = 0; i < doc.GetImageCount(); ++i)
            for (int j = 0; j < i; ++j) {
                const CRect a = doc.GetImageAt(i)->GetPlacementRect(),
                            b = doc.GetImageAt(j)->GetPlacementRect();
                EXPECT_FALSE(a.left < b.right && b.left < a.right && a.top < b.bottom &&
                             b.top < a.bottom)
                    << j << " and " << i << " overlap";
            }
    }

    ScopedModel model;
    CTavixDoc doc;
    int live = 0;
};

TEST_F(LayoutTest, PlacesEveryShapeInsideTheRectangleAndUndoes) {
    for (int i = 0; i < 12; ++i)
        add(20 + 3 * i, 30 - i, i % 2 ? 8 : 32);
    const DocSnapshot before = snapshot(doc);
    layout([](CLayoutDlgData& d) {
        d.m_X = 100;
        d.m_Y = 40;
        d.m_Width = 128;
        d.m_Height = 128;
    });
    expectNoOverlap();
    for (int i = 0; i < doc.GetImageCount(); ++i) {
        const CRect r = doc.GetImageAt(i)->GetPlacementRect();
        EXPECT_GE(r.left, 100);
        EXPECT_GE(r.top, 40);
        EXPECT_LE(r.right, 228);
        EXPECT_LE(r.bottom, 168);
    }
    EXPECT_TRUE(model.ui.messages.empty());
    EXPECT_TRUE(doc.IsModified());
    const DocSnapshot done = snapshot(doc);
    doc.OnCmdMsg(ID_EDIT_UNDO);
    EXPECT_EQ(snapshot(doc).contents, before.contents);
    doc.OnCmdMsg(ID_EDIT_UNDO);
    EXPECT_EQ(snapshot(doc).contents, done.contents);
}

TEST_F(LayoutTest, ShapesThatDoNotFitGoAlongY512) {
    add(64, 64);
    add(64, 64);
    add(40, 10);
    layout([](CLayoutDlgData& d) {
        d.m_Width = 64;
        d.m_Height = 64;
    });
    EXPECT_EQ(doc.GetImageAt(0)->GetDefaultPoint(), (CPoint{0, 0}));
    EXPECT_EQ(doc.GetImageAt(1)->GetDefaultPoint(), (CPoint{0, 512}));
    EXPECT_EQ(doc.GetImageAt(2)->GetDefaultPoint(), (CPoint{64, 512}));
    ASSERT_EQ(model.ui.messages.size(), 1u);
    EXPECT_EQ(model.ui.messages[0].text, kNotAll);
}

TEST_F(LayoutTest, PageEdgesOfThePlatformAreKeptFree) {
    struct Case {
        int checkUVs, checkEdges;
        bool fits;
    };
    // Pages of 64 x 64 (platform 5); a 64-wide shape touches a page edge.
    for (Case c : {Case{1, 1, false}, Case{1, 0, true}, Case{0, 1, true}}) {
        doc.DeleteContents();
        model.ui.messages.clear();
        add(64, 20);
        add(63, 63);
        layout([c](CLayoutDlgData& d) {
            d.m_Platform = 5;
            d.m_Width = 128;
            d.m_Height = 64;
            d.m_CheckUVs = c.checkUVs;
            d.m_CheckEdges = c.checkEdges;
        });
        EXPECT_EQ(doc.GetImageAt(0)->GetDefaultPoint().y != 512, c.fits)
            << c.checkUVs << c.checkEdges;
        const CRect r = doc.GetImageAt(1)->GetPlacementRect();
        if (c.checkUVs) {
            EXPECT_EQ(r.left / 64, (r.right - 1) / 64) << "the shape stays inside one page";
        }
        EXPECT_EQ(model.ui.messages.size(), c.fits ? 0u : 1u);
    }
}

TEST_F(LayoutTest, TurnedShapesAreNewImagesTurnedAQuarter) {
    CTavixImage* tall = add(6, 40, 8);
    const std::string original = imageBytes(*tall);
    layout([](CLayoutDlgData& d) {
        d.m_Width = 50;
        d.m_Height = 10;
        d.m_Rotate = 1;
    });
    CTavixImage* turned = doc.GetImageAt(0);
    ASSERT_NE(turned, tall);
    EXPECT_EQ(turned->GetSize(), (CSize{40, 6}));
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 40; ++x)
            ASSERT_EQ(turned->GetIndex(x, y), tall->GetIndex(y, 39 - x)) << x << "," << y;
    EXPECT_TRUE(model.ui.messages.empty());
    doc.OnCmdMsg(ID_EDIT_UNDO);
    EXPECT_EQ(doc.GetImageAt(0), tall);
    EXPECT_EQ(imageBytes(*tall), original);
}

TEST_F(LayoutTest, SettingsSurviveARestartAndCancelChangesNothing) {
    add(10, 10);
    layout([](CLayoutDlgData& d) {
        d.m_X = 7;
        d.m_Y = 9;
        d.m_Width = 300;
        d.m_Height = 200;
        d.m_Rotate = 1;
        d.m_Platform = 2;
        d.m_CheckUVs = 0;
        d.m_CheckEdges = 0;
        d.m_AllShapes = 0;
    });
    CLayoutCmd fresh; // as after a restart: the constructor reads the profile
    const CLayoutDlgData& s = fresh.GetSettings();
    EXPECT_EQ((std::vector<int>{s.m_X, s.m_Y, s.m_Width, s.m_Height, s.m_Rotate, s.m_Platform,
                                s.m_CheckUVs, s.m_CheckEdges}),
              (std::vector<int>{7, 9, 300, 200, 1, 2, 0, 0}));
    EXPECT_EQ(model.profile.GetInt("CLayoutCmd", "m_AllShapes", 1), 0);

    const CPoint before = doc.GetImageAt(0)->GetDefaultPoint();
    model.ui.dialogs["CLayoutDlg"] = [](CDialogData&) { return false; };
    model.profile.WriteInt("CLayoutCmd", "m_X", 50);
    doc.OnCmdMsg(ID_IMAGE_LAYOUT_WIZARD);
    EXPECT_EQ(doc.GetImageAt(0)->GetDefaultPoint(), before);
    EXPECT_EQ(model.profile.GetInt("CLayoutCmd", "m_X", 0), 50);
}

TEST_F(LayoutTest, WithoutAllShapesOnlyTheSelectionMoves) {
    add(10, 10);
    add(10, 10);
    add(10, 10);
    doc.GetSelectionModel().Select(1);
    layout([](CLayoutDlgData& d) {
        d.m_AllShapes = 0;
        d.m_X = 30;
    });
    EXPECT_EQ(doc.GetImageAt(0)->GetDefaultPoint(), (CPoint{-5, -5}));
    EXPECT_EQ(doc.GetImageAt(1)->GetDefaultPoint(), (CPoint{30, 0}));
    EXPECT_EQ(doc.GetImageAt(2)->GetDefaultPoint(), (CPoint{-5, -5}));
}

// ---- Layout plug-in ------------------------------------------------------

class LayoutPluginTest : public LayoutTest {
  protected:
    void TearDown() override {
        CLayoutPropertiesCmd::SetLibraryName("layout");
        LayoutTest::TearDown();
    }
    void usePlugin(const char* file) {
        CLayoutPropertiesCmd::SetLibraryName(std::string(ZY_TEST_PLUGIN_DIR "/") + file);
    }
};

TEST_F(LayoutPluginTest, NoPluginMeansTheItemDoesNothing) {
    add(5, 5);
    usePlugin("liblayout-none.so");
    doc.OnCmdMsg(ID_LAYOUT_PROPERTIES);
    EXPECT_EQ(doc.GetCommandHandler().GetCurrent(), nullptr);
    EXPECT_TRUE(model.ui.messages.empty());
    EXPECT_FALSE(doc.IsModified());
}

TEST_F(LayoutPluginTest, TheExamplePluginDrawsABorderUndoably) {
    CTavixImage* image = add(5, 4);
    const std::string original = imageBytes(*image);
    CLayoutPropertiesCmd::SetLibraryName(ZY_EXAMPLE_PLUGIN);
    doc.OnCmdMsg(ID_LAYOUT_PROPERTIES);
    const CTavixImage* edited = doc.GetImageAt(0);
    ASSERT_NE(edited, image);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 5; ++x) {
            const bool edge = x == 0 || y == 0 || x == 4 || y == 3;
            EXPECT_EQ(edited->GetPixelValue(x, y), edge ? 0xFFFF00FFu : 0xFF000000u | (x + 16 * y))
                << x << "," << y;
        }
    doc.OnCmdMsg(ID_EDIT_UNDO);
    EXPECT_EQ(doc.GetImageAt(0), image);
    EXPECT_EQ(imageBytes(*image), original);
}

TEST_F(LayoutPluginTest, IncompleteOrThrowingPluginsLeaveIdenticalCopies) {
    struct Case {
        const char* file;
        size_t messages;
    };
    for (Case c : {Case{"liblayout-noexport.so", 0}, Case{"liblayout-throws.so", 2}}) {
        doc.DeleteContents();
        model.ui.messages.clear();
        add(5, 5);
        add(3, 7, 8);
        doc.GetSelectionModel().SelectAll();
        usePlugin(c.file);
        const DocSnapshot before = snapshot(doc);
        doc.OnCmdMsg(ID_LAYOUT_PROPERTIES);
        const DocSnapshot after = snapshot(doc);
        EXPECT_EQ(after.contents, before.contents) << c.file;
        EXPECT_NE(after.objects, before.objects) << c.file;
        ASSERT_EQ(model.ui.messages.size(), c.messages) << c.file;
        for (const ShownMessage& m : model.ui.messages)
            EXPECT_EQ(
                m.text,
                "There is an error in the layout library.  Contact the author of the library.");
        EXPECT_TRUE(doc.GetCommandHandler().HasUndoableCommand());
        EXPECT_TRUE(model.ui.exceptionDialogs.empty());
    }
}

} // namespace
