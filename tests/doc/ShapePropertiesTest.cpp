// The shape properties command: only the changed fields reach every
// selected image, the dialog path without a window, and undo and redo of
// the records.

#include "DocTestSupport.h"
#include "ScriptedUi.h"

#include "CodecTestSupport.h"
#include "app/cmds/ShapePropertiesCmd.h"
#include "app/doc/CommandIds.h"
#include "app/doc/TavixDoc.h"

#include <gtest/gtest.h>

using namespace zytest;

namespace {

class ShapePropertiesTest : public ::testing::Test {
  protected:
    void SetUp() override {
        bindBuiltLibrary();
        for (int i = 0; i < 3; ++i) {
            TavixFrame frame =
                makeFrame(4 + i, 3, i == 1 ? 32 : 8, ("img" + std::to_string(i)).c_str());
            frame.info->centerx = 10 * i;
            frame.info->centery = 20 * i;
            frame.info->attributes = i == 2 ? static_cast<uint32_t>(kAttrRotated) : 0u;
            doc.InsertImage(doc.GetImageCount() - 1, CTavixImage::FromFrame(frame).release());
        }
        doc.GetSelectionModel().Select(0);
        doc.GetSelectionModel().Select(2);
        doc.SetFocus(0, false);
    }
    void TearDown() override { doc.DeleteContents(); }
    bool Start(const CShapeEdit& edit) {
        auto* cmd = new CShapePropertiesCmd;
        cmd->PresetEdit(edit);
        return doc.GetCommandHandler().Start(cmd);
    }
    const TavixInfo& Info(int i) const { return *doc.GetImageAt(i)->GetInfo(); }

    ScopedModel model;
    CTavixDoc doc;
};

TEST_F(ShapePropertiesTest, OnlyTheChangedFieldReachesEverySelectedImage) {
    const DocSnapshot before = snapshot(doc);
    CShapeEdit edit;
    edit.m_CenterX = 7;
    ASSERT_TRUE(Start(edit));
    EXPECT_EQ(Info(0).centerx, 7);
    EXPECT_EQ(Info(2).centerx, 7);
    EXPECT_EQ(Info(1).centerx, 10) << "not selected";
    EXPECT_EQ(Info(0).centery, 0);
    EXPECT_EQ(Info(2).centery, 40) << "its own centre y stays";
    EXPECT_EQ(doc.GetImageAt(2)->GetName(), "img2");

    CShapeEdit flags;
    flags.m_AttrSet = kAttrDot3;
    ASSERT_TRUE(Start(flags));
    EXPECT_EQ(Info(0).attributes, static_cast<uint32_t>(kAttrDot3));
    EXPECT_EQ(Info(2).attributes, static_cast<uint32_t>(kAttrDot3 | kAttrRotated));

    // Undo puts the records back, Redo the change again; the image objects
    // never change.
    doc.GetCommandHandler().OnUndo();
    EXPECT_EQ(Info(2).attributes, static_cast<uint32_t>(kAttrRotated));
    EXPECT_EQ(Info(2).centerx, 7) << "the earlier command is not undone by this one";
    doc.GetCommandHandler().OnUndo();
    EXPECT_EQ(Info(2).attributes, static_cast<uint32_t>(kAttrDot3 | kAttrRotated));
    EXPECT_EQ(snapshot(doc).objects, before.objects);
}

TEST_F(ShapePropertiesTest, UndoRestoresTheWholeRecords) {
    const DocSnapshot before = snapshot(doc);
    CShapeEdit edit;
    edit.m_Name = "hero";
    edit.m_HotSpots = "1,2 ; 3,4";
    edit.m_Comment = "walk cycle";
    edit.m_DefaultX = -5;
    ASSERT_TRUE(Start(edit));
    EXPECT_EQ(doc.GetImageAt(2)->GetName(), "hero");
    EXPECT_EQ(doc.GetImageAt(2)->GetHotSpotsText(), "1,2 ; 3,4");
    EXPECT_STREQ(Info(0).comment, "walk cycle");
    EXPECT_EQ(doc.GetImageAt(0)->GetPlacementRect().left, -5);
    EXPECT_TRUE(doc.IsModified());
    doc.GetCommandHandler().OnUndo();
    EXPECT_EQ(snapshot(doc).contents, before.contents);
    EXPECT_FALSE(Start(CShapeEdit())) << "no change, no command";
}

TEST_F(ShapePropertiesTest, TheDialogPathAppliesTheFieldsThatDiffer) {
    model.ui.dialogs["CShapePropertiesDlg"] = [](CDialogData& data) {
        auto& dialog = static_cast<CShapePropertiesDlgData&>(data);
        EXPECT_EQ(dialog.m_Name, "img0") << "starts from the focused image";
        dialog.m_CenterY = 9;
        dialog.m_Transposed = 1;
        return true;
    };
    doc.GetCommandHandler().OnCommandRange(ZyIds::ShapeProperties);
    EXPECT_EQ(Info(0).centery, 9);
    EXPECT_EQ(Info(2).centery, 9);
    EXPECT_EQ(Info(2).centerx, 20);
    EXPECT_EQ(Info(2).attributes, static_cast<uint32_t>(kAttrRotated | kAttrTransposed));
    EXPECT_EQ(doc.GetImageAt(2)->GetName(), "img2");
}

} // namespace
