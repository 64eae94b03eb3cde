// Editing on the worksheet by hand, offscreen: clicks select, a drag moves
// the selected images as one undoable command, the rubber band selects,
// arrow keys nudge, and the centre marker can be dragged.

#include "UiTestSupport.h"

#include "app/doc/Command.h"
#include "app/doc/CommandIds.h"
#include "app/ui/ImageView.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>

using namespace uitest;

namespace {

class WorksheetEditTest : public ::testing::Test {
  protected:
    void SetUp() override {
        EnsureApplication();
        m_Profile.Profile().WriteInt("CImageView", "m_bAnimateZoom", 0);
        m_Doc = MakeDocument(3);
        m_Doc->GetImageAt(1)->SetDefaultPoint({20, 0});
        m_Doc->GetImageAt(2)->SetDefaultPoint({40, 30});
        m_Doc->SetFocus(0, false);
        m_View = std::make_unique<CImageView>(m_Doc.get());
        m_View->resize(300, 300);
    }
    void Send(QEvent::Type type, QPoint at, Qt::KeyboardModifiers mods = Qt::NoModifier) {
        const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        const Qt::MouseButtons held = type == QEvent::MouseButtonRelease
                                          ? Qt::MouseButtons(Qt::NoButton)
                                          : Qt::MouseButtons(Qt::LeftButton);
        QMouseEvent event(type, at, m_View->viewport()->mapToGlobal(at), button, held, mods);
        QApplication::sendEvent(m_View->viewport(), &event);
    }
    void Drag(QPoint from, QPoint to, Qt::KeyboardModifiers mods = Qt::NoModifier) {
        Send(QEvent::MouseButtonPress, from, mods);
        Send(QEvent::MouseMove, (from + to) / 2, mods);
        Send(QEvent::MouseMove, to, mods);
        Send(QEvent::MouseButtonRelease, to, mods);
    }
    void Key(int key, Qt::KeyboardModifiers mods = Qt::NoModifier) {
        QKeyEvent event(QEvent::KeyPress, key, mods);
        QApplication::sendEvent(m_View.get(), &event);
    }
    CPoint At(int i) const { return m_Doc->GetImageAt(i)->GetDefaultPoint(); }
    std::string Selected() const {
        std::string marks;
        for (int i = 0; i < m_Doc->GetImageCount(); ++i)
            marks += m_Doc->GetSelectionModel().IsSelected(i) ? '1' : '0';
        return marks;
    }

    TempProfile m_Profile;
    ScriptedUi m_Ui;
    std::unique_ptr<CTavixDoc> m_Doc;
    std::unique_ptr<CImageView> m_View;
};

TEST_F(WorksheetEditTest, ClicksSelectAndExtend) {
    struct Step {
        QPoint at;
        Qt::KeyboardModifiers mods;
        const char* selected;
        int focus;
    };
    const Step steps[] = {
        {{22, 3}, Qt::NoModifier, "010", 1},      {{2, 3}, Qt::ControlModifier, "110", 0},
        {{22, 3}, Qt::ControlModifier, "100", 1}, {{45, 33}, Qt::ShiftModifier, "101", 2},
        {{2, 3}, Qt::NoModifier, "101", 0}, // a selected image keeps the others for a drag
        {{200, 200}, Qt::NoModifier, "000", 0},
    };
    for (const Step& step : steps) {
        Send(QEvent::MouseButtonPress, step.at, step.mods);
        Send(QEvent::MouseButtonRelease, step.at, step.mods);
        EXPECT_EQ(Selected(), step.selected) << step.at.x() << "," << step.at.y();
        EXPECT_EQ(m_Doc->GetFocusIndex(), step.focus);
    }
}

TEST_F(WorksheetEditTest, DraggingMovesTheSelectedImagesInOneUndoableCommand) {
    m_Doc->GetSelectionModel().Select(0);
    m_Doc->GetSelectionModel().Select(2);
    const int before = m_Doc->GetCommandHandler().GetSubmitCount();
    Drag({3, 3}, {13, 8});
    EXPECT_EQ(At(0), CPoint(10, 5));
    EXPECT_EQ(At(2), CPoint(50, 35));
    EXPECT_EQ(At(1), CPoint(20, 0)) << "not selected";
    EXPECT_EQ(m_Doc->GetCommandHandler().GetSubmitCount(), before + 1);
    EXPECT_EQ(m_Doc->GetCommandHandler().GetCurrent()->GetName(), "Move Images");
    m_Doc->GetCommandHandler().OnUndo();
    EXPECT_EQ(At(0), CPoint(0, 0));
    EXPECT_EQ(At(2), CPoint(40, 30));

    struct Nudge {
        int key;
        Qt::KeyboardModifiers mods;
        CPoint expected;
    };
    const Nudge nudges[] = {{Qt::Key_Right, Qt::NoModifier, {1, 0}},
                            {Qt::Key_Down, Qt::ShiftModifier, {1, 8}},
                            {Qt::Key_Left, Qt::ShiftModifier, {-7, 8}},
                            {Qt::Key_Up, Qt::NoModifier, {-7, 7}}};
    for (const Nudge& nudge : nudges) {
        Key(nudge.key, nudge.mods);
        EXPECT_EQ(At(0), nudge.expected);
    }
    m_Doc->GetCommandHandler().OnUndo();
    EXPECT_EQ(At(0), CPoint(-7, 8)) << "one key press, one command";
}

TEST_F(WorksheetEditTest, TheRubberBandSelectsWhatItTouches) {
    Drag({100, 100}, {25, 5});
    EXPECT_EQ(Selected(), "011");
    Drag({200, 200}, {250, 250});
    EXPECT_EQ(Selected(), "000");
    Drag({200, 200}, {5, 5}, Qt::ShiftModifier);
    EXPECT_EQ(Selected(), "111");
}

TEST_F(WorksheetEditTest, TheCentreMarkerDragsWhenPointsAreShown) {
    m_View->OnCmdMsg(ZyIds::ViewPoints);
    m_Doc->SetFocus(1, false);
    Drag({20, 0}, {24, 3});
    EXPECT_EQ(m_Doc->GetImageAt(1)->GetCenterPoint(), CPoint(4, 3));
    EXPECT_EQ(m_Doc->GetImageAt(0)->GetCenterPoint(), CPoint(0, 0));
    EXPECT_EQ(At(1), CPoint(20, 0)) << "the image itself stays";
    m_Doc->GetCommandHandler().OnUndo();
    EXPECT_EQ(m_Doc->GetImageAt(1)->GetCenterPoint(), CPoint(0, 0));
}

} // namespace

namespace {

TEST_F(WorksheetEditTest, ZoomToFitAndGoToSelectedShowTheSelection) {
    m_Doc->GetSelectionModel().Select(2); // 8 x 8 at (40, 30)
    m_View->OnCmdMsg(ZyIds::ViewZoomToFit);
    EXPECT_EQ(m_View->GetZoom(), 16.0);
    const QRect shown = m_View->viewport()->rect();
    EXPECT_TRUE(shown.contains(m_View->FromWorksheet({40, 30})));
    EXPECT_TRUE(shown.contains(m_View->FromWorksheet({47, 37})));
    m_Doc->GetSelectionModel().SelectAll(false);
    m_Doc->GetImageAt(1)->SetDefaultPoint({900, 700});
    m_Doc->GetSelectionModel().Select(1);
    m_View->OnCmdMsg(ZyIds::ViewGoToSelected);
    EXPECT_EQ(m_View->GetZoom(), 16.0) << "going there keeps the zoom";
    EXPECT_TRUE(shown.contains(m_View->FromWorksheet({904, 704})));
}

} // namespace
