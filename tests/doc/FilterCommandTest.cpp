// The filter-command runner and the flip family end to end: selection,
// progress, cancel, format check, failures, and undo by swapping objects.

#include "DocTestSupport.h"
#include "ScriptedUi.h"

#include "CodecTestSupport.h"
#include "app/cmds/FlipCmd.h"
#include "app/doc/CommandIds.h"
#include "app/doc/TavixDoc.h"
#include "imaging/galloc.h"

#include <gtest/gtest.h>

#include <cstdlib>

using namespace zytest;

namespace {

constexpr unsigned kUnknownModuleId = 35496;
constexpr unsigned kIndexedOnlyId = 35497;
constexpr unsigned kFailThirdId = 35498;

// A family whose module name no module has: it runs the null module.
class CUnknownModuleTestCmd : public CUndoableCmd {
  public:
    CUnknownModuleTestCmd() {
        m_Name = "Unknown Module";
        FindModule("no-such-module");
    }
};

// A family over "size", which takes true-colour images only.
class CTrueColourOnlyTestCmd : public CUndoableCmd {
  public:
    CTrueColourOnlyTestCmd() {
        m_Name = "Size Test";
        FindModule("size");
    }
};

// A family whose third image fails.
class CFailThirdTestCmd : public CUndoableCmd {
  public:
    CFailThirdTestCmd() { m_Name = "Fails Third"; }
    std::unique_ptr<CTavixImage> FilterImage(CTavixImage* image) override {
        return ++m_Calls == 3 ? nullptr : CUndoableCmd::FilterImage(image);
    }

  private:
    int m_Calls = 0;
};

CCommandInfo g_failThirdInfo(kFailThirdId, [] { return new CFailThirdTestCmd; });
CCommandInfo g_unknownInfo(kUnknownModuleId, [] { return new CUnknownModuleTestCmd; });
CCommandInfo g_sizeInfo(kIndexedOnlyId, [] { return new CTrueColourOnlyTestCmd; });

class FilterTest : public ::testing::Test {
  protected:
    void SetUp() override {
        bindBuiltLibrary();
        const std::string path = (folder / "five.tvx").string();
        writeMixedTvx(path, 5);
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
    CUndoableCmd* current() {
        return dynamic_cast<CUndoableCmd*>(doc.GetCommandHandler().GetCurrent());
    }

    ScopedModel model;
    TempFolder folder;
    CTavixDoc doc;
    RecordingView view;
    int live = 0;
};

// Pixel (x, y) of image `image` after a horizontal flip equals pixel
// (width-1-x, y) before.
void expectMirrored(const CTavixImage& flipped, const CTavixImage& source) {
    ASSERT_EQ(flipped.GetSize(), source.GetSize());
    const int w = source.GetWidth();
    for (int y = 0; y < source.GetHeight(); ++y)
        for (int x = 0; x < w; ++x)
            ASSERT_EQ(flipped.GetPixelValue(x, y), source.GetPixelValue(w - 1 - x, y))
                << x << "," << y;
}

} // namespace

TEST_F(FilterTest, FlipReplacesTheSelectedImagesOnly) {
    select("01010");
    const DocSnapshot before = snapshot(doc);
    doc.OnCmdMsg(ID_IMAGE_FLIP_HORIZONTAL);
    const DocSnapshot after = snapshot(doc);
    for (int i : {0, 2, 4})
        EXPECT_EQ(after.objects[i], before.objects[i]) << i;
    for (int i : {1, 3}) {
        EXPECT_NE(after.objects[i], before.objects[i]);
        expectMirrored(*doc.GetImageAt(i), *before.objects[i]);
    }
    EXPECT_EQ(view.hints, (std::vector<std::string>{"modified 01010", "modified 01010"}));
    EXPECT_EQ(model.ui.progress.front(), "create Filtering Images");
    EXPECT_EQ(model.ui.ProgressStatuses(),
              (std::vector<std::string>{"Starting", "(0/2)", "(1/2)", "Ending"}));
    EXPECT_EQ(model.ui.progress.back(), "destroy");
    EXPECT_TRUE(model.ui.IsMainWindowEnabled());
    EXPECT_EQ(current()->GetSavedCount(), 2);
    EXPECT_EQ(current()->GetName(), "Flip");
}

TEST_F(FilterTest, FlipTwiceGivesBackTheSamePixels) {
    select("11111");
    const DocSnapshot before = snapshot(doc);
    doc.OnCmdMsg(ID_IMAGE_FLIP_VERTICAL);
    doc.OnCmdMsg(ID_IMAGE_FLIP_VERTICAL);
    EXPECT_EQ(snapshot(doc).contents, before.contents);
}

TEST_F(FilterTest, CancelAfterTwoOfFiveKeepsExactlyThoseTwo) {
    select("11111");
    model.ui.cancelAtStatus = "(2/5)";
    const DocSnapshot before = snapshot(doc);
    doc.OnCmdMsg(ID_IMAGE_FLIP_HORIZONTAL);
    const DocSnapshot after = snapshot(doc);
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(after.objects[i] != before.objects[i], i < 2) << i;
    EXPECT_EQ(bits(current()->GetRange()), "11000");
    EXPECT_EQ(view.hints.back(), "modified 11000");
    EXPECT_EQ(model.ui.ProgressStatuses().back(), "Ending");

    doc.OnCmdMsg(ID_EDIT_UNDO);
    EXPECT_EQ(snapshot(doc).objects, before.objects);
    EXPECT_EQ(snapshot(doc).contents, before.contents);
    doc.OnCmdMsg(ID_EDIT_UNDO);
    EXPECT_EQ(snapshot(doc).objects, after.objects);
}

struct Family {
    unsigned id;
    const char* name;
};

class EveryCommand : public FilterTest, public ::testing::WithParamInterface<Family> {};

TEST_P(EveryCommand, UndoRestoresAndRedoRepeats) {
    select("10111");
    const DocSnapshot before = snapshot(doc);
    doc.OnCmdMsg(GetParam().id);
    ASSERT_NE(current(), nullptr);
    EXPECT_EQ(current()->GetName(), GetParam().name);
    const DocSnapshot done = snapshot(doc);

    doc.OnCmdMsg(ID_EDIT_UNDO); // undo gives back the identical document
    EXPECT_EQ(snapshot(doc).objects, before.objects);
    EXPECT_EQ(snapshot(doc).contents, before.contents);
    doc.OnCmdMsg(ID_EDIT_UNDO); // redo equals do
    EXPECT_EQ(snapshot(doc).objects, done.objects);
    EXPECT_EQ(snapshot(doc).contents, done.contents);
    doc.OnCmdMsg(ID_EDIT_UNDO);
    EXPECT_EQ(snapshot(doc).objects, before.objects);
    EXPECT_TRUE(model.ui.exceptionDialogs.empty());
}

INSTANTIATE_TEST_SUITE_P(Families, EveryCommand,
                         ::testing::Values(Family{ID_IMAGE_FLIP_HORIZONTAL, "Flip"},
                                           Family{ID_IMAGE_FLIP_VERTICAL, "Flip"},
                                           Family{kUnknownModuleId, "Unknown Module"}),
                         [](const auto& info) { return std::to_string(info.param.id); });

TEST_F(FilterTest, UnknownModuleCopiesEveryImageAndStaysUndoable) {
    select("11111");
    const DocSnapshot before = snapshot(doc);
    doc.OnCmdMsg(kUnknownModuleId);
    EXPECT_EQ(current()->GetModule(), 0);
    const DocSnapshot after = snapshot(doc);
    EXPECT_EQ(after.contents, before.contents);
    for (int i = 0; i < 5; ++i)
        EXPECT_NE(after.objects[i], before.objects[i]);
    EXPECT_TRUE(doc.GetCommandHandler().HasUndoableCommand());
}

TEST_F(FilterTest, FormatCheckCopiesImagesTheModuleCannotTake) {
    select("11000"); // an 8-bit and a 32-bit image
    const DocSnapshot before = snapshot(doc);
    doc.OnCmdMsg(kIndexedOnlyId);
    EXPECT_EQ(
        model.ui.statusLines,
        std::vector<std::string>{"Could not filter all images because some of them were indexed"});
    const DocSnapshot after = snapshot(doc);
    EXPECT_NE(after.objects[0], before.objects[0]);
    EXPECT_EQ(after.contents[0], before.contents[0]);
    EXPECT_EQ(bits(current()->GetRange()), "11000");
}

TEST_F(FilterTest, ReplacementsKeepTheModifiedMark) {
    select("11000");
    doc.GetImageAt(0)->SetModifiedMark(1);
    doc.GetImageAt(1)->SetModifiedMark(0);
    doc.OnCmdMsg(ID_IMAGE_FLIP_HORIZONTAL);
    EXPECT_EQ(doc.GetImageAt(0)->GetModifiedMark(), 1);
    EXPECT_EQ(doc.GetImageAt(1)->GetModifiedMark(), 0);
}

TEST_F(FilterTest, AModuleRunThatFailsLeavesTheDocumentAsItWas) {
    select("11111");
    const DocSnapshot before = snapshot(doc);
    // One block more than now: the runner's descriptor fits, the module's
    // own blocks do not.
    setenv("GALLOCMAX", std::to_string(galloc_live_count() + 1).c_str(), 1);
    galloc_reload_limit();
    doc.OnCmdMsg(ID_IMAGE_FLIP_HORIZONTAL);
    unsetenv("GALLOCMAX");
    galloc_reload_limit();

    EXPECT_EQ(snapshot(doc).objects, before.objects);
    EXPECT_EQ(snapshot(doc).contents, before.contents);
    EXPECT_TRUE(model.ui.messages.empty());
    EXPECT_TRUE(model.ui.exceptionDialogs.empty());
    EXPECT_TRUE(model.ui.IsMainWindowEnabled());
    // The command is kept, holding nothing; undo changes nothing.
    ASSERT_NE(current(), nullptr);
    EXPECT_EQ(current()->GetSavedCount(), 0);
    EXPECT_EQ(bits(current()->GetRange()), "00000");
    doc.OnCmdMsg(ID_EDIT_UNDO);
    EXPECT_EQ(snapshot(doc).objects, before.objects);
}

TEST_F(FilterTest, NoModuleDescriptionStopsBeforeAnyChange) {
    select("11111");
    const DocSnapshot before = snapshot(doc);
    setenv("GALLOCMAX", std::to_string(galloc_live_count()).c_str(), 1);
    galloc_reload_limit();
    doc.OnCmdMsg(ID_IMAGE_FLIP_HORIZONTAL);
    unsetenv("GALLOCMAX");
    galloc_reload_limit();

    ASSERT_EQ(model.ui.messages.size(), 1u);
    EXPECT_EQ(model.ui.messages[0].text, "Could not access filter information.");
    EXPECT_TRUE(model.ui.progress.empty());
    EXPECT_EQ(snapshot(doc).objects, before.objects);
    ASSERT_NE(current(), nullptr);
    doc.OnCmdMsg(ID_EDIT_UNDO);
    EXPECT_EQ(snapshot(doc).objects, before.objects);
}

TEST_F(FilterTest, AFailedImageEndsTheWalkThere) {
    select("11111");
    const DocSnapshot before = snapshot(doc);
    doc.OnCmdMsg(kFailThirdId);
    const DocSnapshot after = snapshot(doc);
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(after.objects[i] != before.objects[i], i < 2) << i;
    EXPECT_EQ(bits(current()->GetRange()), "11000");
    EXPECT_EQ(current()->GetSavedCount(), 2);
    EXPECT_EQ(model.ui.ProgressStatuses(),
              (std::vector<std::string>{"Starting", "(0/5)", "(1/5)", "(2/5)", "Ending"}));
    doc.OnCmdMsg(ID_EDIT_UNDO);
    EXPECT_EQ(snapshot(doc).objects, before.objects);
}

TEST(FilterEmpty, AnEmptyDocumentRunsStartingAndEndingOnly) {
    ScopedModel model;
    CTavixDoc doc;
    auto* flip = new CFlipCmd;
    flip->Init(&doc, CFlipCmd::Horizontal);
    EXPECT_EQ(model.ui.ProgressStatuses(), (std::vector<std::string>{"Starting", "Ending"}));
    doc.OnCmdMsg(ID_EDIT_UNDO);
    EXPECT_EQ(doc.GetImageCount(), 0);
}
