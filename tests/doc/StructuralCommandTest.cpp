// The structural list commands through the document's menu route, with the
// scripted interface: what they do to the list, the selection, the hints,
// the questions they ask and the Undo item after them.

#include "DocTestSupport.h"
#include "ScriptedUi.h"

#include "CodecTestSupport.h"
#include "app/cmds/BlendCmd.h"
#include "app/cmds/InsertCmd.h"
#include "app/cmds/OrderCmd.h"
#include "app/cmds/SortCmd.h"
#include "app/cmds/SpaceCmd.h"
#include "app/doc/CmdUI.h"
#include "app/doc/CommandIds.h"
#include "app/doc/TavixDoc.h"
#include "imaging/galloc.h"

#include <gtest/gtest.h>

using namespace zytest;

namespace {

class StructuralTest : public ::testing::Test {
  protected:
    void SetUp() override {
        bindBuiltLibrary();
        path = (folder / "five.tvx").string();
        writeMixedTvx(path, 5); // img0 .. img4, 5+i x 3+i
        ASSERT_TRUE(doc.OnOpenDocument(path));
        doc.AddView(&view);
        model.ui = ScriptedUi();
        live = galloc_live_count();
    }
    void TearDown() override { EXPECT_EQ(galloc_live_count(), live); }
    void select(const char* marks) {
        for (int i = 0; marks[i]; ++i)
            doc.GetSelectionModel().Select(i, marks[i] == '1');
    }
    std::string names() const {
        std::string text;
        for (int i = 0; i < doc.GetImageCount(); ++i)
            text += doc.GetImageAt(i)->GetName().substr(3);
        return text;
    }
    std::string selection() { return bits(doc.GetSelectionModel().GetSelection()); }
    std::string undoText() {
        CCmdUI ui(ID_EDIT_UNDO);
        doc.OnUpdateCmdUI(&ui);
        return (ui.m_bEnabled ? "on " : "off ") + ui.m_strText;
    }
    void place(int index, int x, int y) { doc.GetImageAt(index)->SetDefaultPoint({x, y}); }
    CRect placeOf(int index) const { return doc.GetImageAt(index)->GetPlacementRect(); }

    ScopedModel model;
    TempFolder folder;
    std::string path;
    CTavixDoc doc;
    RecordingView view;
    int live = 0;
};

TEST_F(StructuralTest, AlignRightLinesUpRightEdgesWithTheFocusedImage) {
    place(1, 40, 3);
    place(3, 7, 9);
    select("01010");
    doc.SetFocus(3, false); // 8 wide at x 7: right edge 15
    doc.OnCmdMsg(ID_ALIGN_RIGHT);
    EXPECT_EQ(placeOf(1).right, 15);
    EXPECT_EQ(placeOf(3).right, 15);
    EXPECT_EQ(placeOf(1).top, 3);
    EXPECT_EQ(undoText(), "on Undo Alignment\tCtrl+Z");
    EXPECT_EQ(view.hints.back(), "modified 01010");
    doc.OnCmdMsg(ID_EDIT_UNDO);
    EXPECT_EQ(placeOf(1).left, 40);
}

struct AlignCase {
    unsigned id;
    CRect expected; // of image 0 (5x3) with image 2 (7x5) at (10, 20) focused
};

class AlignSides : public StructuralTest, public ::testing::WithParamInterface<AlignCase> {};

TEST_P(AlignSides, MoveTheEdgeOnly) {
    place(0, 1, 2);
    place(2, 10, 20);
    select("10100");
    doc.SetFocus(2, false);
    doc.OnCmdMsg(GetParam().id);
    EXPECT_EQ(placeOf(0), GetParam().expected);
    EXPECT_EQ(placeOf(2), (CRect{10, 20, 17, 25}));
}

INSTANTIATE_TEST_SUITE_P(Sides, AlignSides,
                         ::testing::Values(AlignCase{ID_ALIGN_LEFT, {10, 2, 15, 5}},
                                           AlignCase{ID_ALIGN_RIGHT, {12, 2, 17, 5}},
                                           AlignCase{ID_ALIGN_TOP, {1, 20, 6, 23}},
                                           AlignCase{ID_ALIGN_BOTTOM, {1, 22, 6, 25}}));

TEST_F(StructuralTest, CenterRoundsTowardZero) {
    model.profile.WriteInt("CImageView", "m_ScreenWidth", 10);
    model.profile.WriteInt("CImageView", "m_ScreenHeight", 4);
    place(0, 50, 60);
    place(4, 50, 60);
    select("10001"); // 5x3 and 9x7
    doc.OnCmdMsg(ID_CENTER_HORIZONTAL);
    EXPECT_EQ(placeOf(0).left, 2); // (10 - 5) / 2
    EXPECT_EQ(placeOf(4).left, 0); // (10 - 9) / 2
    EXPECT_EQ(placeOf(0).top, 60);
    doc.OnCmdMsg(ID_CENTER_VERTICAL);
    EXPECT_EQ(placeOf(0).top, 0);  // (4 - 3) / 2
    EXPECT_EQ(placeOf(4).top, -1); // (4 - 7) / 2 = -1.5
    EXPECT_EQ(undoText(), "on Undo Centering\tCtrl+Z");
}

TEST(SpacedCoordinates, FirstAndLastStayAndGapsAreEqual) {
    struct Case {
        std::vector<int> starts, lengths, expected;
    };
    const Case cases[] = {
        {{0, 3, 30}, {10, 10, 10}, {0, 15, 30}},       // gap 5
        {{30, 0, 3}, {10, 10, 10}, {30, 0, 15}},       // by coordinate, not list order
        {{0, 1, 2, 20}, {5, 5, 5, 5}, {0, 7, 14, 20}}, // 5 free over 3 gaps: 2, 2, 1
        {{0, 2, 10}, {8, 8, 4}, {0, 5, 10}},           // wider than the room: gaps of -3
        {{0, 5}, {1, 1}, {0, 5}},                      // fewer than 3: unchanged
    };
    for (const Case& c : cases)
        EXPECT_EQ(SpacedCoordinates(c.starts, c.lengths), c.expected);
}

TEST_F(StructuralTest, SpaceNeedsThreeImages) {
    select("11000");
    doc.OnCmdMsg(ID_SPACE_ACROSS);
    EXPECT_EQ(doc.GetCommandHandler().GetCurrent(), nullptr);
    EXPECT_TRUE(model.ui.messages.empty());
}

TEST_F(StructuralTest, SpaceDownMovesTheMiddleImages) {
    place(0, 0, 0);  // 3 high
    place(1, 0, 4);  // 4 high
    place(2, 0, 20); // 5 high: ends at 25, 13 free, gaps 7 and 6
    select("11100");
    doc.OnCmdMsg(ID_SPACE_DOWN);
    EXPECT_EQ(placeOf(0).top, 0);
    EXPECT_EQ(placeOf(1).top, 10);
    EXPECT_EQ(placeOf(2).top, 20);
    EXPECT_EQ(undoText(), "on Undo Spacing\tCtrl+Z");
}

TEST_F(StructuralTest, DeleteAsksAndRemovesFromTheTop) {
    select("01001");
    model.ui.answers.push_back(MsgAnswer::No);
    doc.OnCmdMsg(ID_LIST_DELETE);
    EXPECT_EQ(doc.GetImageCount(), 5);
    ASSERT_EQ(model.ui.messages.size(), 1u);
    EXPECT_EQ(
        model.ui.messages[0].text,
        "You are about to delete 2 images.  This operation cannot be undone.  Are you sure you "
        "want to delete 2 images?");
    EXPECT_EQ(model.ui.messages[0].buttons, MsgButtons::YesNo);
    EXPECT_EQ(model.ui.messages[0].icon, MsgIcon::Warning);

    doc.OnCmdMsg(ID_LIST_DELETE); // answered Yes
    EXPECT_EQ(names(), "023");
    EXPECT_EQ(view.hints.back(), "delete 01001");
    EXPECT_EQ(undoText(), "off Can't Undo Delete\tCtrl+Z");
    EXPECT_TRUE(doc.IsModified());
}

TEST_F(StructuralTest, DuplicateAppendsCopiesInListOrder) {
    select("10110");
    doc.OnCmdMsg(ID_LIST_DUPLICATE);
    EXPECT_EQ(names(), "01234023");
    EXPECT_EQ(view.hints.back(), "insert 5 3");
    EXPECT_EQ(imageBytes(*doc.GetImageAt(6)), imageBytes(*doc.GetImageAt(2)));
    EXPECT_NE(doc.GetImageAt(6), doc.GetImageAt(2));
    EXPECT_EQ(undoText(), "off Can't Undo Duplicate\tCtrl+Z");
}

struct OrderCase {
    unsigned id;
    const char* marks;
    const char* names;     // after the move
    const char* selection; // after the move
};

class Ordering : public StructuralTest, public ::testing::WithParamInterface<OrderCase> {};

TEST_P(Ordering, MovesTheSelectionWithItsImages) {
    select(GetParam().marks);
    doc.OnCmdMsg(GetParam().id);
    EXPECT_EQ(names(), GetParam().names);
    EXPECT_EQ(selection(), GetParam().selection);
    EXPECT_EQ(undoText(), "off Can't Undo Ordering\tCtrl+Z");
}

INSTANTIATE_TEST_SUITE_P(
    Operations, Ordering,
    ::testing::Values(OrderCase{ID_ORDER_BRING_FORWARD, "00101", "02143", "01010"},
                      OrderCase{ID_ORDER_BRING_FORWARD, "10100", "01234",
                                "10100"}, // first selected: no step
                      OrderCase{ID_ORDER_SEND_BACK, "01010", "02143", "00101"},
                      OrderCase{ID_ORDER_BRING_TO_FRONT, "00101", "20413", "10100"},
                      OrderCase{ID_ORDER_SEND_TO_BOTTOM, "11000", "23401", "00011"},
                      OrderCase{ID_ORDER_MOVE_UP_FIVE, "00001", "40123", "10000"},
                      OrderCase{ID_ORDER_MOVE_DOWN_FIVE, "01000", "02341", "00001"}));

TEST_F(StructuralTest, OrderingKeepsTheFocusOnItsImage) {
    select("00100");
    doc.SetFocus(2, false);
    doc.OnCmdMsg(ID_ORDER_BRING_TO_FRONT);
    EXPECT_EQ(doc.GetFocusIndex(), 0);
    EXPECT_EQ(doc.GetFocusImage()->GetName(), "img2");
}

TEST(SortedOrder, KeyAndDirection) {
    const std::vector<std::string> names = {"b", "a", "ab", "c"};
    EXPECT_EQ(SortedOrder(names, 1, true),
              (std::vector<int>{1, 2, 0, 3})); // "a" and "ab" tie: list order
    EXPECT_EQ(SortedOrder(names, 1, false), (std::vector<int>{3, 0, 2, 1}));
    EXPECT_EQ(SortedOrder(names, 0, true), (std::vector<int>{0, 1, 2, 3}));
    EXPECT_EQ(SortedOrder(names, 0, false), (std::vector<int>{3, 2, 1, 0}));
    EXPECT_EQ(SortedOrder({"\xE9", "z"}, 1, true), (std::vector<int>{1, 0})); // unsigned bytes
}

TEST_F(StructuralTest, SortFollowsTheListsSortState) {
    model.profile.WriteInt("CImageListView", "m_SortAscending", 0);
    select("01000");
    doc.OnCmdMsg(ID_LIST_SORT);
    EXPECT_EQ(names(), "43210");
    EXPECT_EQ(selection(), "00010");
    EXPECT_EQ(undoText(), "off Can't Undo Sort Images\tCtrl+Z");
}

TEST_F(StructuralTest, InsertAsksTheSizeAndRemembersIt) {
    doc.SetFocus(1, false);
    model.ui.dialogs["CInsertDlg"] = [](CDialogData& data) {
        auto& insert = dynamic_cast<CInsertDlgData&>(data);
        insert.m_Width = 12;
        insert.m_Height = 7;
        insert.m_Depth = 0; // 8 bits
        return true;
    };
    doc.OnCmdMsg(ID_LIST_INSERT_NEW_IMAGE);
    ASSERT_EQ(doc.GetImageCount(), 6);
    EXPECT_EQ(doc.GetImageAt(2)->GetSize(), (CSize{12, 7}));
    EXPECT_EQ(doc.GetImageAt(2)->GetBpp(), 8);
    EXPECT_EQ(doc.GetFocusIndex(), 2);
    EXPECT_EQ(view.hints.front(), "insert 2 1");

    int width = 0, depth = -1;
    model.ui.dialogs["CInsertDlg"] = [&](CDialogData& data) {
        auto& insert = dynamic_cast<CInsertDlgData&>(data);
        width = insert.m_Width;
        depth = insert.m_Depth;
        return true;
    };
    doc.OnCmdMsg(ID_LIST_ADD_NEW_IMAGE);
    EXPECT_EQ(width, 12);
    EXPECT_EQ(depth, 0);
    EXPECT_EQ(doc.GetImageAt(6)->GetSize(), (CSize{12, 7}));
    EXPECT_EQ(undoText(), "off Can't Undo Insert\tCtrl+Z");
}

TEST_F(StructuralTest, InsertWorksOnAnEmptyDocument) {
    CTavixDoc empty;
    CCmdUI ui(ID_LIST_ADD_NEW_IMAGE);
    empty.OnUpdateCmdUI(&ui);
    EXPECT_TRUE(ui.m_bEnabled);
    empty.OnCmdMsg(ID_LIST_ADD_NEW_IMAGE);
    EXPECT_EQ(empty.GetImageCount(), 1);
}

TEST_F(StructuralTest, RevertAsksThenReadsTheFileAgain) {
    doc.OnCmdMsg(ID_LIST_SORT);
    model.profile.WriteInt("CImageListView", "m_SortAscending", 0);
    doc.OnCmdMsg(ID_LIST_SORT);
    doc.SetFocus(3, false);
    model.ui.answers.push_back(MsgAnswer::Cancel);
    doc.OnCmdMsg(ID_FILE_REVERT);
    EXPECT_EQ(names(), "43210");
    doc.OnCmdMsg(ID_FILE_REVERT);
    EXPECT_EQ(names(), "01234");
    EXPECT_FALSE(doc.IsModified());
    EXPECT_EQ(doc.GetFocusIndex(), 3);
    EXPECT_EQ(model.ui.messages.back().buttons, MsgButtons::OKCancel);
    EXPECT_EQ(undoText(), "off Can't Undo Revert\tCtrl+Z");
}

} // namespace

namespace {

TEST_F(StructuralTest, BlendAddsTheLayeredImageAtTheEnd) {
    CCmdUI one(ID_IMAGE_BLEND);
    select("01000");
    doc.OnUpdateCmdUI(&one);
    EXPECT_FALSE(one.m_bEnabled) << "needs two images";

    select("01010"); // the two 32-bit images, 6x4 and 8x6
    place(3, 1, 1);
    model.ui.dialogs["CBlendMethodDlg"] = [](CDialogData& data) {
        dynamic_cast<CBlendMethodDlgData&>(data).m_Method = 1; // Paste
        return true;
    };
    doc.OnCmdMsg(ID_IMAGE_BLEND);
    ASSERT_EQ(doc.GetImageCount(), 6);
    const CTavixImage& blended = *doc.GetImageAt(5);
    EXPECT_EQ(blended.GetSize(), (CSize{9, 7}));
    EXPECT_EQ(blended.GetPixelValue(0, 0), doc.GetImageAt(1)->GetPixelValue(0, 0));
    EXPECT_EQ(blended.GetPixelValue(8, 6), doc.GetImageAt(3)->GetPixelValue(7, 5));
    EXPECT_EQ(doc.GetFocusIndex(), 5);
    EXPECT_EQ(model.profile.GetInt("CBlendCmd", "blendmethod", -1), 1);
    EXPECT_EQ(undoText(), "off Can't Undo Blend Images\tCtrl+Z");
    EXPECT_TRUE(model.ui.statusLines.empty());
}

TEST_F(StructuralTest, PsnrBlendReportsTheRatios) {
    select("01010");
    model.profile.WriteInt("CBlendCmd", "blendmethod", 5);
    doc.OnCmdMsg(ID_IMAGE_BLEND);
    ASSERT_EQ(model.ui.statusLines.size(), 1u);
    EXPECT_EQ(model.ui.statusLines[0].rfind("PSNR ", 0), 0u) << model.ui.statusLines[0];
    EXPECT_NE(model.ui.statusLines[0].find("all images:"), std::string::npos);
}

TEST_F(StructuralTest, ARefusedBlendSaysWhyInItsMessage) {
    select("11000"); // img0 holds palette indices, img1 colours
    model.profile.WriteInt("CBlendCmd", "blendmethod", 0);
    doc.OnCmdMsg(ID_IMAGE_BLEND);
    EXPECT_EQ(doc.GetImageCount(), 5);
    ASSERT_EQ(model.ui.messages.size(), 1u);
    EXPECT_EQ(model.ui.messages[0].text,
              "The images could not be blended: one image holds palette indices and the other "
              "colours; give both the same depth.");
}

TEST_F(StructuralTest, CancelledBlendChangesNothing) {
    select("01010");
    model.ui.dialogs["CBlendMethodDlg"] = [](CDialogData&) { return false; };
    doc.OnCmdMsg(ID_IMAGE_BLEND);
    EXPECT_EQ(doc.GetImageCount(), 5);
    EXPECT_FALSE(model.profile.Contains("CBlendCmd", "blendmethod"));
}

} // namespace
