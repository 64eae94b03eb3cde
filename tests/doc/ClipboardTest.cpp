// Cut, Copy and Paste of images through the model and Zy's own image list
// format: what travels, what undo gives back, and damaged blocks.

#include "DocTestSupport.h"
#include "ScriptedUi.h"

#include "CodecTestSupport.h"
#include "app/cmds/ClipboardCmd.h"
#include "app/doc/CmdUI.h"
#include "app/doc/CommandIds.h"
#include "app/doc/ImageListClip.h"
#include "app/doc/TavixDoc.h"
#include "imaging/galloc.h"

#include <gtest/gtest.h>

using namespace zytest;

namespace {

class ClipboardTest : public ::testing::Test {
  protected:
    void SetUp() override {
        bindBuiltLibrary();
        const std::string path = (folder / "five.tvx").string();
        writeMixedTvx(path, 5);
        ASSERT_TRUE(doc.OnOpenDocument(path));
        TavixInfo* info = doc.GetImageAt(1)->GetInfoForWrite();
        info->centerx = 3;
        info->numhotspots = 2;
        info->hotspots[1] = {7, -4};
        snprintf(info->comment, sizeof info->comment, "kept");
        doc.AddView(&view);
        model.ui = ScriptedUi();
    }
    void select(const char* marks) {
        for (int i = 0; marks[i]; ++i)
            doc.GetSelectionModel().Select(i, marks[i] == '1');
    }
    bool enabled(unsigned id) {
        CCmdUI ui(id);
        doc.OnUpdateCmdUI(&ui);
        return ui.m_bEnabled;
    }

    ScopedModel model;
    TempFolder folder;
    CTavixDoc doc;
    RecordingView view;
};

TEST_F(ClipboardTest, CopyThenPasteIntoAnotherDocumentKeepsWholeRecords) {
    select("01100");
    EXPECT_FALSE(enabled(ID_EDIT_PASTE));
    doc.OnCmdMsg(ID_EDIT_COPY);
    EXPECT_EQ(doc.GetCommandHandler().GetCurrent(), nullptr) << "copy is no command";

    CTavixDoc other;
    CCmdUI paste(ID_EDIT_PASTE);
    other.OnUpdateCmdUI(&paste);
    EXPECT_TRUE(paste.m_bEnabled) << "an empty document takes a paste";
    other.OnCmdMsg(ID_EDIT_PASTE);
    ASSERT_EQ(other.GetImageCount(), 2);
    EXPECT_EQ(imageBytes(*other.GetImageAt(0)), imageBytes(*doc.GetImageAt(1)));
    EXPECT_EQ(imageBytes(*other.GetImageAt(1)), imageBytes(*doc.GetImageAt(2)));
    EXPECT_EQ(other.GetImageAt(0)->GetHotSpot(1).y, -4);

    other.OnCmdMsg(ID_EDIT_UNDO);
    EXPECT_EQ(other.GetImageCount(), 0);
    other.OnCmdMsg(ID_EDIT_UNDO);
    EXPECT_EQ(other.GetImageCount(), 2);
}

TEST_F(ClipboardTest, CutRemovesAndUndoPutsTheSameObjectsBack) {
    select("10010");
    const DocSnapshot before = snapshot(doc);
    doc.OnCmdMsg(ID_EDIT_CUT);
    EXPECT_EQ(doc.GetImageCount(), 3);
    EXPECT_EQ(view.hints.back(), "delete 10010");
    CCmdUI undo(ID_EDIT_UNDO);
    doc.OnUpdateCmdUI(&undo);
    EXPECT_EQ(undo.m_strText, "Undo Cut\tCtrl+Z");

    doc.OnCmdMsg(ID_EDIT_UNDO);
    EXPECT_EQ(snapshot(doc).objects, before.objects);
    doc.OnCmdMsg(ID_EDIT_UNDO); // redo
    EXPECT_EQ(doc.GetImageCount(), 3);

    doc.OnCmdMsg(ID_EDIT_PASTE); // the cut images come back at the end
    ASSERT_EQ(doc.GetImageCount(), 5);
    EXPECT_EQ(imageBytes(*doc.GetImageAt(3)), before.contents[0]);
    EXPECT_EQ(imageBytes(*doc.GetImageAt(4)), before.contents[3]);
    EXPECT_EQ(doc.GetFocusIndex(), 3);
}

TEST_F(ClipboardTest, PasteSpecialOffersTheFormats) {
    select("10000");
    doc.OnCmdMsg(ID_EDIT_COPY);
    std::string choices;
    model.ui.dialogs["CPasteSpecialDlg"] = [&](CDialogData& data) {
        for (const CDialogField& field : data.GetFields())
            choices = field.m_Choices;
        return true;
    };
    doc.OnCmdMsg(ID_EDIT_PASTE_SPECIAL);
    EXPECT_EQ(choices, "Zy Image List");
    EXPECT_EQ(doc.GetImageCount(), 6);
}

TEST_F(ClipboardTest, DamagedBlocksAreRefusedWhole) {
    const std::string block = EncodeImageList({doc.GetImageAt(0), doc.GetImageAt(1)});
    ASSERT_EQ(DecodeImageList(block).size(), 2u);
    for (size_t cut = 0; cut < block.size(); cut += 97)
        EXPECT_TRUE(DecodeImageList(block.substr(0, cut)).empty()) << cut;
    EXPECT_TRUE(DecodeImageList(block + "x").empty());
    std::string wrongSize = block;
    wrongSize[12 + 4 + offsetof(TavixInfo, size)] ^= 0x40; // the first record's size field
    EXPECT_TRUE(DecodeImageList(wrongSize).empty());
    std::string huge = block;
    const int32_t width = 1 << 30;
    memcpy(&huge[12 + 4 + offsetof(TavixInfo, width)], &width, sizeof width);
    EXPECT_TRUE(DecodeImageList(huge).empty());
}

} // namespace
