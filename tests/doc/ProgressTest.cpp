// The progress rules behind the progress window: texts, range and count,
// the cancel test, and the main window's enabled state.

#include "ScriptedUi.h"

#include "app/doc/ConsoleUi.h"
#include "app/doc/ProgressDlg.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <functional>

using namespace zytest;

TEST(Progress, CountTextFollowsEveryPositionChange) {
    ScopedModel model;
    CProgressDlg dlg("Work");
    dlg.SetRange(10, 30);
    ASSERT_TRUE(dlg.Create(model.ui));
    EXPECT_EQ(dlg.GetPos(), 10); // showing starts at the low end
    EXPECT_EQ(dlg.GetAnimation(), CProgressDlg::kDefaultAnimation);
    struct {
        std::function<void()> change;
        const char* count;
    } steps[] = {{[&] { dlg.SetPos(15); }, "15/20"},
                 {[&] { dlg.OffsetPos(2); }, "17/20"},
                 {[&] {
                      dlg.SetStep(3);
                      dlg.StepIt();
                  },
                  "20/20"},
                 {[&] { dlg.StepIt(); }, "23/20"}};
    for (auto& step : steps) {
        step.change();
        EXPECT_EQ(dlg.GetCountText(), step.count);
    }
}

TEST(Progress, CancelIsReportedOnce) {
    ScopedModel model;
    model.ui.cancelAtStatus = "(2/5)";
    CProgressDlg dlg("Work");
    ASSERT_TRUE(dlg.Create(model.ui));
    dlg.SetStatus("(1/5)");
    EXPECT_FALSE(dlg.CheckCancelButton());
    dlg.SetStatus("(2/5)");
    EXPECT_TRUE(dlg.CheckCancelButton());
    EXPECT_FALSE(dlg.CheckCancelButton());
}

TEST(Progress, MainWindowIsDisabledOnlyWhileTheDialogIsUp) {
    ScopedModel model;
    {
        CProgressDlg dlg("Work");
        ASSERT_TRUE(dlg.Create(model.ui));
        EXPECT_FALSE(model.ui.IsMainWindowEnabled());
        dlg.DestroyWindow();
        EXPECT_TRUE(model.ui.IsMainWindowEnabled());
        dlg.DestroyWindow();
        EXPECT_TRUE(model.ui.IsMainWindowEnabled());
    }
    // Creation that fails leaves the main window enabled and the calls
    // harmless.
    model.ui.failProgressWindows = true;
    CProgressDlg failed("Work");
    EXPECT_FALSE(failed.Create(model.ui));
    EXPECT_TRUE(model.ui.IsMainWindowEnabled());
    failed.SetStatus("Opening");
    failed.StepIt();
    EXPECT_FALSE(failed.CheckCancelButton());
    // A main window that was already disabled stays disabled.
    model.ui.failProgressWindows = false;
    model.ui.EnableMainWindow(false);
    {
        CProgressDlg dlg("Work");
        ASSERT_TRUE(dlg.Create(model.ui));
    }
    EXPECT_FALSE(model.ui.IsMainWindowEnabled());
}

TEST(ConsoleUi, AnswersWithoutEverBlocking) {
    FILE* sink = tmpfile();
    CConsoleUi ui(sink);
    EXPECT_EQ(ui.MessageBox("Delete?", MsgButtons::YesNo, MsgIcon::Warning, "Zy"), MsgAnswer::Yes);
    EXPECT_EQ(ui.MessageBox("Go on?", MsgButtons::OKCancel, MsgIcon::None, "Zy"), MsgAnswer::OK);
    CFileDialogData dialog;
    dialog.m_Path = "kept";
    EXPECT_TRUE(ui.EditDialog(dialog));
    EXPECT_EQ(dialog.m_Path, "kept");
    CProgressDlg dlg("Work");
    ASSERT_TRUE(dlg.Create(ui));
    dlg.SetStatus("(1/1)");
    EXPECT_FALSE(dlg.CheckCancelButton());
    fclose(sink);
}
