// The editor by keyboard, on the offscreen platform with the real main
// frame: every menu's Alt letters lead to one item each, the Properties
// window's labels move the focus without stealing the menu bar's letters,
// and Ctrl+Z pressed in a Properties field after Enter undoes the edit.

#include "UiTestSupport.h"

#include "app/doc/CommandIds.h"
#include "app/ui/ChildFrame.h"
#include "app/ui/MainFrame.h"
#include "app/ui/PropertiesDock.h"
#include "app/ui/Zy.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QSpinBox>
#include <QTest>

#include <functional>
#include <map>

using namespace uitest;
using namespace ZyIds;

namespace {

// The letter after a single "&", lower case; none for "&&" or no mnemonic.
QChar mnemonicOf(QString text) {
    text = text.left(text.indexOf('\t'));
    for (qsizetype i = 0; i + 1 < text.size(); ++i) {
        if (text[i] != '&') continue;
        if (text[i + 1] == '&') {
            ++i;
            continue;
        }
        return text[i + 1].toLower();
    }
    return {};
}

class KeyboardTest : public ::testing::Test {
  protected:
    void SetUp() override {
        m_Script.Attach(*m_Zy->Ui());
        EnsureApplication();
        m_Profile.Profile().WriteInt("CImageView", "m_bAnimateZoom", 0);
    }
    void TearDown() override {
        m_Zy.reset();
        QApplication::processEvents();
    }
    bool Start(const QStringList& files = {}) {
        return m_Zy->InitInstance(files, &m_Profile.Profile());
    }
    CMainFrame* Frame() { return m_Zy->MainFrame(); }
    CPropertiesDock* Properties() { return Frame()->findChild<CPropertiesDock*>(); }
    std::map<QChar, QString> MenuBarLetters() {
        std::map<QChar, QString> letters;
        for (QAction* action : Frame()->menuBar()->actions())
            if (const QChar c = mnemonicOf(action->text()); !c.isNull())
                letters[c] = action->text();
        return letters;
    }

    TempProfile m_Profile;
    ScriptedUi m_Script;
    std::unique_ptr<CZy> m_Zy = std::make_unique<CZy>();
};

TEST_F(KeyboardTest, NoTwoItemsOfOneMenuShareAnAltLetter) {
    ASSERT_TRUE(Start());
    // A shared letter only moves the highlight between the items, and a
    // person typing Alt, I, T lands on whichever comes first.
    std::function<void(const QString&, const QList<QAction*>&)> walk =
        [&](const QString& path, const QList<QAction*>& actions) {
            std::map<QChar, QString> seen;
            for (QAction* action : actions) {
                if (action->isSeparator() || !action->isVisible()) continue;
                const QChar c = mnemonicOf(action->text());
                if (!c.isNull()) {
                    const auto [at, fresh] = seen.emplace(c, action->text());
                    EXPECT_TRUE(fresh) << path.toStdString() << ": \"" << at->second.toStdString()
                                       << "\" and \"" << action->text().toStdString()
                                       << "\" share Alt+" << QString(c).toStdString();
                }
                if (action->menu())
                    walk(path + " > " + action->text().remove('&'), action->menu()->actions());
            }
        };
    walk("menu bar", Frame()->menuBar()->actions());
}

TEST_F(KeyboardTest, PropertiesLabelsMoveTheFocusAndLeaveTheMenuBarLetters) {
    ASSERT_TRUE(Start());
    Frame()->OnCommand(ViewProperties);
    const std::map<QChar, QString> menuBar = MenuBarLetters();
    std::map<QChar, QString> seen;
    auto check = [&](const QString& text) {
        const QChar c = mnemonicOf(text);
        if (c.isNull()) return;
        SCOPED_TRACE(text.toStdString());
        EXPECT_EQ(menuBar.count(c), 0u) << "the menu bar's Alt+" << QString(c).toStdString();
        EXPECT_TRUE(seen.emplace(c, text).second) << "also " << seen[c].toStdString();
    };
    for (QLabel* label : Properties()->findChildren<QLabel*>()) {
        if (mnemonicOf(label->text()).isNull()) continue;
        EXPECT_NE(label->buddy(), nullptr)
            << label->text().toStdString() << " would show its \"&\" and go nowhere";
        check(label->text());
    }
    for (QAbstractButton* button : Properties()->findChildren<QAbstractButton*>())
        check(button->text());
    EXPECT_GE(seen.size(), 10u);
}

TEST_F(KeyboardTest, CtrlZInAPropertiesFieldUndoesTheTypingThenTheEnteredEdit) {
    std::vector<std::unique_ptr<CTavixImage>> images;
    images.push_back(MakeImage(8, 8, 32, "ship"));
    images.back()->GetInfoForWrite()->centerx = 3;
    const std::string path = WriteFile(m_Profile.Folder(), "one.tvx", "tvx", {images[0].get()});
    ASSERT_TRUE(Start({QString::fromStdString(path)}));
    CTavixDoc* doc = Frame()->ActiveChild()->GetDocument();
    Frame()->OnCommand(ViewProperties);
    Frame()->activateWindow();
    QApplication::processEvents();
    QSpinBox* centre = Properties()->CenterX();
    ASSERT_EQ(centre->value(), 3);
    centre->setFocus();
    centre->selectAll();
    ASSERT_EQ(QApplication::focusWidget(), centre);
    const int commands = doc->GetCommandHandler().GetSubmitCount();

    struct Step {
        const char* what;
        std::function<void()> keys;
        int field, record, submitted;
    } steps[] = {
        {"typed, not entered", [&] { QTest::keyClicks(centre, "7"); }, 7, 3, 0},
        {"Ctrl+Z undoes the typing only",
         [&] { QTest::keyClick(centre, Qt::Key_Z, Qt::ControlModifier); }, 3, 3, 0},
        {"typed and entered",
         [&] {
             centre->selectAll();
             QTest::keyClicks(centre, "9");
             QTest::keyClick(centre, Qt::Key_Return);
         },
         9, 9, 1},
        {"Ctrl+Z undoes the entered edit",
         [&] { QTest::keyClick(centre, Qt::Key_Z, Qt::ControlModifier); }, 3, 3, 1},
        {"Ctrl+Y redoes it", [&] { QTest::keyClick(centre, Qt::Key_Y, Qt::ControlModifier); }, 9, 9,
         1},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(step.what);
        step.keys();
        Properties()->Refresh(); // as the frame's idle turn does
        EXPECT_EQ(centre->cleanText().toInt(), step.field);
        EXPECT_EQ(doc->GetImageAt(0)->GetInfo()->centerx, step.record);
        EXPECT_EQ(doc->GetCommandHandler().GetSubmitCount(), commands + step.submitted);
    }
}

} // namespace
