// The palette well on the offscreen platform: what it shows for each kind
// of focused image, how clicks with and without Shift and Ctrl change the
// colour selection, the hover text, what it paints, and a drag that moves
// colours through an undoable command.

#include "UiTestSupport.h"

#include "app/doc/ColourSelection.h"
#include "app/doc/Command.h"
#include "app/ui/PaletteWell.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QMouseEvent>

using namespace uitest;

namespace {

class PaletteWellTest : public ::testing::Test {
  protected:
    void SetUp() override {
        EnsureApplication();
        ZyColourSelection().Clear();
        auto image = MakeImage(8, 8, 8, "pal");
        for (int y = 0; y < 8; ++y)
            for (int x = 0; x < 8; ++x)
                image->GetRow(y)[x] = static_cast<uint8_t>(x + 8 * y);
        m_Doc.InsertImage(0, image.release());
        m_Doc.SetFocus(0, false);
        m_Well.resize(16 * 12 + 1, 16 * 12 + 1);
        m_Well.SetDocument(&m_Doc);
    }
    void TearDown() override {
        m_Well.SetDocument(nullptr);
        ZyColourSelection().Clear();
    }
    QPoint Centre(int index) const { return m_Well.SwatchRect(index).center(); }
    void Mouse(QEvent::Type type, int index, Qt::KeyboardModifiers mods = Qt::NoModifier) {
        const QPoint at = Centre(index);
        const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        const Qt::MouseButtons held =
            type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::MouseButtons(Qt::LeftButton);
        QMouseEvent event(type, at, m_Well.mapToGlobal(at), button,
                          type == QEvent::MouseMove && !m_Held ? Qt::NoButton : held, mods);
        QApplication::sendEvent(&m_Well, &event);
    }
    void Click(int index, Qt::KeyboardModifiers mods = Qt::NoModifier) {
        Mouse(QEvent::MouseButtonPress, index, mods);
        Mouse(QEvent::MouseButtonRelease, index, mods);
    }
    uint32_t Entry(int index) const {
        TavixColour palette[256];
        m_Doc.GetImageAt(0)->GetPalette(palette);
        const TavixColour& c = palette[index];
        return static_cast<uint32_t>(c.alpha) << 24 | c.red << 16 | c.green << 8 | c.blue;
    }

    TempProfile m_Profile;
    ScriptedUi m_Ui;
    CTavixDoc m_Doc;
    CPaletteWellWidget m_Well;
    bool m_Held = false;
};

TEST_F(PaletteWellTest, ClicksPickSingleRangeAndToggledEntries) {
    ASSERT_EQ(m_Well.EntryCount(), 256);
    struct Step {
        int index;
        Qt::KeyboardModifiers mods;
        const char* selection;
    };
    const Step steps[] = {
        {3, Qt::NoModifier, "3"},
        {6, Qt::ShiftModifier, "3-6"},
        {4, Qt::ControlModifier, "3,5-6"},
        {9, Qt::ShiftModifier | Qt::ControlModifier, "3-9"}, // adds 4..9 from the last click
        {200, Qt::ShiftModifier, "4-200"},                   // a new range from the same anchor
        {12, Qt::NoModifier, "12"},
        {12, Qt::ControlModifier, ""},
    };
    for (const Step& step : steps) {
        Click(step.index, step.mods);
        EXPECT_EQ(ZyColourSelection().ToText(), step.selection) << step.index;
    }
    EXPECT_EQ(m_Well.IndexAt(QPoint(-1, 5)), -1);
    EXPECT_EQ(m_Well.IndexAt(QPoint(16 * 12 + 5, 5)), -1);
}

TEST_F(PaletteWellTest, HoverShowsIndexAndArgb) {
    Mouse(QEvent::MouseMove, 37);
    EXPECT_EQ(m_Well.HoverText(),
              "Index 37: ARGB " + QString::number(Entry(37), 16).rightJustified(8, '0').toUpper());
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&m_Well, &leave);
    EXPECT_TRUE(m_Well.HoverText().isEmpty());
}

TEST_F(PaletteWellTest, PaintsColoursOverACheckerboardAndTheSelection) {
    m_Doc.GetImageAt(0)->SetPaletteEntry(20, TavixColour{0, 0, 255, 0}); // transparent red
    m_Well.Refresh();
    Click(5);
    const QImage shot = m_Well.grab().toImage();
    EXPECT_EQ(shot.pixel(Centre(7)) & 0xFFFFFFu, Entry(7) & 0xFFFFFFu);
    const QRgb under = shot.pixel(Centre(20));
    EXPECT_TRUE(under == qRgb(255, 255, 255) || under == qRgb(0xC0, 0xC0, 0xC0))
        << std::hex << under;
    // The picked swatch is framed black and white inside its border.
    const QRect picked = m_Well.SwatchRect(5);
    EXPECT_EQ(shot.pixel(picked.topLeft() + QPoint(1, picked.height() / 2)), qRgb(0, 0, 0));
    EXPECT_EQ(shot.pixel(picked.topLeft() + QPoint(2, picked.height() / 2)), qRgb(255, 255, 255));
}

TEST_F(PaletteWellTest, ShowsSixteenForFourBitsAndNoneForTrueColour) {
    CTavixDoc doc;
    doc.InsertImage(0, MakeImage(4, 4, 4, "four").release());
    doc.InsertImage(0, MakeImage(4, 4, 32, "deep").release()); // after the first
    doc.SetFocus(0, false);
    m_Well.SetDocument(&doc);
    EXPECT_EQ(m_Well.EntryCount(), 16);
    doc.SetFocus(1, false);
    m_Well.Refresh();
    EXPECT_EQ(m_Well.EntryCount(), 0);
    m_Well.SetDocument(nullptr);
    EXPECT_EQ(m_Well.EntryCount(), 0);
}

TEST_F(PaletteWellTest, DraggingPickedEntriesMovesTheirPixelsUndoably) {
    Click(1);
    Click(2, Qt::ShiftModifier);
    m_Held = true;
    Mouse(QEvent::MouseButtonPress, 1);
    Mouse(QEvent::MouseMove, 20);
    Mouse(QEvent::MouseMove, 40);
    Mouse(QEvent::MouseButtonRelease, 40);
    m_Held = false;
    CTavixImage* moved = m_Doc.GetImageAt(0);
    EXPECT_EQ(moved->GetIndex(1, 0), 40);
    EXPECT_EQ(moved->GetIndex(2, 0), 40);
    EXPECT_EQ(moved->GetIndex(3, 0), 3);
    ASSERT_TRUE(m_Doc.GetCommandHandler().GetCurrent());
    EXPECT_EQ(m_Doc.GetCommandHandler().GetCurrent()->GetName(), "Move Colors");
    EXPECT_EQ(ZyColourSelection().ToText(), "1-2") << "the selection stays for the next step";
    m_Doc.GetCommandHandler().OnUndo();
    EXPECT_EQ(m_Doc.GetImageAt(0)->GetIndex(1, 0), 1);
    EXPECT_EQ(m_Doc.GetImageAt(0)->GetIndex(2, 0), 2);
}

} // namespace
