// The properties window offscreen: it shows the focused image's record,
// each finished edit is one undoable command for every selected image,
// and it follows changes made elsewhere.

#include "UiTestSupport.h"

#include "app/doc/Command.h"
#include "app/ui/PropertiesDock.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>
#include <QTableWidget>

using namespace uitest;

namespace {

class PropertiesDockTest : public ::testing::Test {
  protected:
    void SetUp() override {
        EnsureApplication();
        m_Doc = MakeDocument(3);
        m_Doc->GetSelectionModel().Select(0);
        m_Doc->GetSelectionModel().Select(1);
        m_Doc->SetFocus(1, false);
        m_Dock.SetDocument(m_Doc.get());
    }
    void TearDown() override { m_Dock.SetDocument(nullptr); }
    const TavixInfo& Info(int i) const { return *m_Doc->GetImageAt(i)->GetInfo(); }

    TempProfile m_Profile;
    ScriptedUi m_Ui;
    std::unique_ptr<CTavixDoc> m_Doc;
    CPropertiesDock m_Dock;
};

TEST_F(PropertiesDockTest, ShowsTheFocusedRecordAndEditsAllSelectedOneCommandEach) {
    EXPECT_EQ(m_Dock.NameEdit()->text(), "img1");
    EXPECT_EQ(m_Dock.SizeLabel()->text(), "8 x 8, 32 bpp (buffer 32)");
    const int before = m_Doc->GetCommandHandler().GetSubmitCount();
    m_Dock.CenterX()->setValue(5);
    EXPECT_EQ(Info(0).centerx, 5);
    EXPECT_EQ(Info(1).centerx, 5);
    EXPECT_EQ(Info(2).centerx, 0) << "not selected";
    m_Dock.Attribute(3)->setChecked(true); // DOT3
    EXPECT_EQ(Info(0).attributes & kAttrDot3, static_cast<uint32_t>(kAttrDot3));
    m_Dock.NameEdit()->setText("hero");
    emit m_Dock.NameEdit()->editingFinished();
    EXPECT_EQ(m_Doc->GetImageAt(0)->GetName(), "hero");
    m_Dock.AddHotSpot();
    m_Dock.HotSpots()->item(0, 0)->setText("3");
    EXPECT_EQ(m_Doc->GetImageAt(0)->GetHotSpotsText(), "3,0");
    EXPECT_EQ(m_Doc->GetCommandHandler().GetSubmitCount(), before + 5);
    EXPECT_EQ(m_Doc->GetCommandHandler().GetCurrent()->GetName(), "Shape Properties");

    m_Doc->GetCommandHandler().OnUndo();
    EXPECT_EQ(m_Doc->GetImageAt(1)->GetHotSpotsText(), "0,0");
    m_Dock.Refresh();
    EXPECT_EQ(m_Dock.HotSpots()->item(0, 0)->text(), "0") << "the window follows the undo";
}

TEST_F(PropertiesDockTest, FitsADockOfAThirdOfTheScreenWithoutScrollingSideways) {
    // The window docks beside the worksheet; wider than that it hides the
    // hot spots' Y column behind a scroll bar.
    QWidget* body = m_Dock.NameEdit()->parentWidget();
    EXPECT_LE(body->minimumSizeHint().width(), 420);
}

TEST_F(PropertiesDockTest, FollowsTheFocusAndHasNothingToEditWithoutAnImage) {
    m_Doc->SetFocus(2, false);
    m_Dock.Refresh();
    EXPECT_EQ(m_Dock.NameEdit()->text(), "img2");
    m_Dock.SetDocument(nullptr);
    EXPECT_FALSE(m_Dock.NameEdit()->isEnabled());
}

} // namespace
