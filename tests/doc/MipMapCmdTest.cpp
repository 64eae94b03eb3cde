// Create Mip Maps, headless: levels, names, marks, order, thin images, the
// saved count, the method question for palette images, and undo.

#include "DocTestSupport.h"
#include "ScriptedUi.h"

#include "CodecTestSupport.h"
#include "app/cmds/MipMapCmd.h"
#include "app/doc/CommandIds.h"
#include "app/doc/TavixDoc.h"
#include "imaging/galloc.h"

#include <gtest/gtest.h>

using namespace zytest;

namespace {

class MipMapTest : public ::testing::Test {
  protected:
    void SetUp() override {
        bindBuiltLibrary();
        live = galloc_live_count();
    }
    void TearDown() override {
        doc.DeleteContents();
        EXPECT_EQ(galloc_live_count(), live);
    }
    void add(int w, int h, int bpp, const char* name) {
        auto* image = new CTavixImage;
        image->Create(w, h, bpp);
        image->SetName(name);
        doc.InsertImage(doc.GetImageCount(), image);
    }
    void run(int count) {
        model.ui.dialogs["CMipMapDlg"] = [count](CDialogData& data) {
            static_cast<CMipMapDlgData&>(data).m_Count = count;
            return true;
        };
        doc.OnCmdMsg(ID_CREATE_MIP_MAPS);
    }
    // "name WxH mark" per image.
    std::vector<std::string> listing() const {
        std::vector<std::string> rows;
        for (int i = 0; i < doc.GetImageCount(); ++i) {
            const TavixInfo& info = *doc.GetImageAt(i)->GetInfo();
            rows.push_back(std::string(info.framename) + " " + std::to_string(info.width) + "x" +
                           std::to_string(info.height) +
                           ((info.attributes & kAttrMipLevel) ? " mip" : ""));
        }
        return rows;
    }

    ScopedModel model;
    CTavixDoc doc;
    int live = 0;
};

TEST_F(MipMapTest, LevelsFollowTheirSourcesAndThinImagesGetFewer) {
    add(16, 8, 32, "wide");
    add(5, 5, 32, "other");
    add(4, 32, 8, "thin");
    doc.GetSelectionModel().Select(0);
    doc.GetSelectionModel().Select(2);
    run(3);
    EXPECT_EQ(listing(), (std::vector<std::string>{"wide 16x8 mip", "mm1 8x4 mip", "mm2 4x2 mip",
                                                   "mm3 2x1 mip", "other 5x5", "thin 4x32 mip",
                                                   "mm1 2x16 mip", "mm2 1x8 mip"}));
    EXPECT_EQ(model.ui.dialogsShown, (std::vector<std::string>{"CMipMapDlg", "CMipMapMeth"}));
    EXPECT_EQ(doc.GetImageAt(6)->GetInfo()->bufferbpp, 8) << "palette levels stay palette images";

    const std::vector<std::string> done = listing();
    doc.OnCmdMsg(ID_EDIT_UNDO);
    EXPECT_EQ(listing(), (std::vector<std::string>{"wide 16x8", "other 5x5", "thin 4x32"}));
    doc.OnCmdMsg(ID_EDIT_UNDO);
    EXPECT_EQ(listing(), done);
}

TEST_F(MipMapTest, CountIsRememberedAndKeptInItsRange) {
    EXPECT_EQ(CMipMapCmd().GetCount(), 1);
    add(256, 256, 32, "big");
    run(500);
    EXPECT_EQ(model.profile.GetInt("CMipMapCmd", "m_Count", 0), 100);
    EXPECT_EQ(doc.GetImageCount(), 9) << "256 halves eight times down to 1";
    model.profile.WriteInt("CMipMapCmd", "m_Count", 2);
    EXPECT_EQ(CMipMapCmd().GetCount(), 2);
    model.ui.dialogs["CMipMapDlg"] = [](CDialogData& data) {
        EXPECT_EQ(static_cast<CMipMapDlgData&>(data).m_Count, 2);
        return true;
    };
    doc.GetSelectionModel().Select(0);
    doc.OnCmdMsg(ID_CREATE_MIP_MAPS);
    EXPECT_EQ(doc.GetImageCount(), 9 + 2);
}

TEST_F(MipMapTest, CancelInEitherDialogChangesNothing) {
    add(8, 8, 8, "pal");
    for (const char* dialog : {"CMipMapDlg", "CMipMapMeth"}) {
        model.ui.dialogs.clear();
        model.ui.dialogs[dialog] = [](CDialogData&) { return false; };
        doc.OnCmdMsg(ID_CREATE_MIP_MAPS);
        EXPECT_EQ(listing(), std::vector<std::string>{"pal 8x8"}) << dialog;
        EXPECT_FALSE(model.profile.Contains("CMipMapCmd", "m_Count")) << dialog;
        EXPECT_EQ(doc.GetCommandHandler().GetCurrent(), nullptr);
    }
}

TEST_F(MipMapTest, EveryMethodForPaletteImages) {
    for (int method = 0; method < kMipMapMethodCount; ++method) {
        doc.DeleteContents();
        add(8, 4, 8, "pal");
        model.ui.dialogs["CMipMapMeth"] = [method](CDialogData& data) {
            static_cast<CMipMapMethData&>(data).m_Method = method;
            return true;
        };
        run(2);
        EXPECT_EQ(listing(),
                  (std::vector<std::string>{"pal 8x4 mip", "mm1 4x2 mip", "mm2 2x1 mip"}))
            << method;
        EXPECT_EQ(model.profile.GetInt("CMipMapMeth", "m_Method", -1), method);
    }
}

} // namespace
