// The colour editor, the colour bar, the worksheet's pixel read-out and
// picker, and the shape list's thumbnails, on the offscreen platform with
// the real codec library: hue, saturation and value kept in step with the
// channels, the hex field's good and bad input, palette entries edited as
// undoable commands, current colours in the settings store (and the fill
// colour a rotation uses), and thumbnails made lazily and made again after
// an edit.

#include "UiTestSupport.h"

#include "app/doc/ColourSelection.h"
#include "app/doc/Command.h"
#include "app/doc/CommandHandler.h"
#include "app/doc/CommandIds.h"
#include "app/doc/CurrentColours.h"
#include "app/doc/Hints.h"
#include "app/ui/ChildFrame.h"
#include "app/ui/ColourEditor.h"
#include "app/ui/ColourPicker.h"
#include "app/ui/ImageListModel.h"
#include "app/ui/ImageListView.h"
#include "app/ui/ImageView.h"
#include "app/ui/MainFrame.h"
#include "app/ui/Zy.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QSpinBox>
#include <QToolButton>

#include <cstring>

using namespace uitest;

namespace {

uint32_t argbOf(const TavixColour& c) {
    return static_cast<uint32_t>(c.alpha) << 24 | static_cast<uint32_t>(c.red) << 16 |
           static_cast<uint32_t>(c.green) << 8 | c.blue;
}

uint32_t entryOf(const CTavixImage& image, int index) {
    TavixColour palette[256];
    image.GetPalette(palette);
    return argbOf(palette[index]);
}

// The record and the colour table of an image, as bytes.
std::vector<uint8_t> recordBytes(const CTavixImage& image) {
    std::vector<uint8_t> bytes(static_cast<size_t>(image.GetInfoSize()));
    memcpy(bytes.data(), image.GetInfo(), bytes.size());
    const auto* table = reinterpret_cast<const uint8_t*>(image.GetColorTable());
    bytes.insert(bytes.end(), table, table + 4 * kDIBColourTableSize);
    return bytes;
}

void TypeHexInto(CColourEditorWidget* editor, const QString& text) {
    editor->HexEdit()->setText(text);
    emit editor->HexEdit()->editingFinished();
}

// Puts `image` at the end of the document.
void append(CTavixDoc& doc, std::unique_ptr<CTavixImage> image) {
    doc.InsertImage(doc.GetImageCount(), image.release());
}

class ColourEditorTest : public ::testing::Test {
  protected:
    void SetUp() override {
        EnsureApplication();
        ZyColourSelection().Clear();
        ZyColourPicker().SetArmed(false);
        m_Profile.Profile().WriteInt("CImageView", "m_bAnimateZoom", 0);
    }
    void TearDown() override {
        ZyColourSelection().Clear();
        ZyColourPicker().SetArmed(false);
    }
    // Types into a spin box and presses Enter (the box commits then).
    static void Type(QSpinBox* box, int value) {
        box->setValue(value); // keyboard tracking is off: one commit
    }
    static void TypeHex(QLineEdit* edit, const QString& text) {
        edit->setText(text);
        emit edit->editingFinished();
    }
    std::string Fields(const CColourEditorWidget& editor) const {
        std::string out;
        for (char c : {'A', 'R', 'G', 'B', 'H', 'S', 'V'})
            out += std::string(1, c) + std::to_string(editor.Channel(c)->value()) + " ";
        return out + editor.HexEdit()->text().toStdString();
    }
    CCurrentColour Stored(int number) { return CCurrentColours::Get(m_Profile.Profile(), number); }

    TempProfile m_Profile;
    ScriptedUi m_Ui;
};

TEST_F(ColourEditorTest, ChannelsAndHueSaturationValueFollowEachOther) {
    CColourEditorWidget editor;
    editor.EditCurrentColour(1);
    ASSERT_TRUE(editor.CanEdit());
    // A colour given as hex: every field shows it.
    struct FromRgb {
        const char* hex;
        const char* fields;
    } fromRgb[] = {
        {"#FF102030", "A255 R16 G32 B48 H210 S170 V48 #FF102030"},
        {"#FFFF0000", "A255 R255 G0 B0 H0 S255 V255 #FFFF0000"},
        {"#FF00FF80", "A255 R0 G255 B128 H150 S255 V255 #FF00FF80"},
        {"#80FFFFFF", "A128 R255 G255 B255 H150 S0 V255 #80FFFFFF"}, // a grey keeps the hue shown
        {"#00808080", "A0 R128 G128 B128 H150 S0 V128 #00808080"},
    };
    for (const FromRgb& c : fromRgb) {
        TypeHex(editor.HexEdit(), c.hex);
        EXPECT_EQ(Fields(editor), c.fields) << c.hex;
        EXPECT_EQ(Stored(1).m_Argb, CColourEditorWidget::ParseHex(c.hex).value()) << c.hex;
    }
    // Hue, saturation and value typed: the channels follow, alpha stays,
    // and the typed fields stay as typed.
    struct FromHsv {
        int h, s, v;
        uint32_t argb;
    } fromHsv[] = {
        {120, 255, 255, 0x0000FF00}, {240, 255, 128, 0x00000080}, {300, 255, 255, 0x00FF00FF},
        {300, 0, 77, 0x004D4D4D},    {30, 0, 0, 0x00000000},
    };
    TypeHex(editor.HexEdit(), "#00000000");
    for (const FromHsv& c : fromHsv) {
        Type(editor.Channel('H'), c.h);
        Type(editor.Channel('S'), c.s);
        Type(editor.Channel('V'), c.v);
        EXPECT_EQ(editor.Colour(), c.argb) << c.h << "," << c.s << "," << c.v;
        EXPECT_EQ(Stored(1).m_Argb, c.argb);
        EXPECT_EQ(editor.Channel('H')->value(), c.h);
        EXPECT_EQ(editor.Channel('S')->value(), c.s);
        EXPECT_EQ(editor.Channel('V')->value(), c.v);
        EXPECT_EQ(editor.Channel('R')->value(), static_cast<int>(c.argb >> 16 & 0xFF));
    }
}

TEST_F(ColourEditorTest, HexFieldTakesGoodTextAndRefusesBadTextWithTheReason) {
    struct Case {
        const char* text;
        bool good;
        uint32_t argb;
        const char* reason;
    } cases[] = {
        {"#FF102030", true, 0xFF102030, ""},   {"80abcdef", true, 0x80ABCDEF, ""},
        {"  #102030 ", true, 0xFF102030, ""},  {"#12G45678", false, 0, "not hexadecimal digits"},
        {"#12345", false, 0, "has 5 digits"},  {"#123456789", false, 0, "has 9 digits"},
        {"", false, 0, "No colour was given"}, {"#", false, 0, "No colour was given"},
    };
    CColourEditorWidget editor;
    editor.EditCurrentColour(2);
    TypeHex(editor.HexEdit(), "#FF010203");
    for (const Case& c : cases) {
        m_Ui.m_Messages.clear();
        QString error;
        const std::optional<uint32_t> parsed = CColourEditorWidget::ParseHex(c.text, &error);
        EXPECT_EQ(parsed.has_value(), c.good) << c.text;
        const uint32_t before = Stored(2).m_Argb;
        TypeHex(editor.HexEdit(), c.text);
        if (c.good) {
            EXPECT_EQ(*parsed, c.argb);
            EXPECT_EQ(Stored(2).m_Argb, c.argb) << c.text;
            EXPECT_TRUE(m_Ui.m_Messages.empty()) << c.text;
        } else {
            EXPECT_EQ(Stored(2).m_Argb, before) << c.text << ": nothing written";
            ASSERT_EQ(m_Ui.m_Messages.size(), 1u) << c.text;
            EXPECT_NE(m_Ui.m_Messages[0].find(c.reason), std::string::npos) << m_Ui.m_Messages[0];
            EXPECT_EQ(m_Ui.m_Messages[0].find(std::string("\"") + c.text + "\" is not a colour"),
                      0u)
                << m_Ui.m_Messages[0];
            EXPECT_EQ(CColourEditorWidget::ParseHex(editor.HexEdit()->text()), before)
                << "the field shows the stored colour again";
        }
    }
}

TEST_F(ColourEditorTest, PaletteEntryEditsAreOneUndoableCommandEachAndUndoRestoresExactly) {
    CTavixDoc doc;
    append(doc, MakeImage(4, 4, 32, "deep"));
    append(doc, MakeImage(4, 4, 8, "pal"));
    doc.SetFocus(1, false);
    CTavixImage& image = *doc.GetImageAt(1);
    const std::vector<uint8_t> original = recordBytes(image);
    const uint32_t entry5 = entryOf(image, 5);

    CColourEditorWidget editor;
    editor.SetDocument(&doc);
    ZyColourSelection().Select(5); // picking an entry in the well edits it
    ASSERT_EQ(editor.Target(), CColourEditorWidget::kPaletteEntry);
    ASSERT_TRUE(editor.CanEdit());
    EXPECT_EQ(editor.TargetLabel()->text(), "Palette entry 5 of image 2");
    EXPECT_EQ(editor.Colour(), entry5);

    CCommandHandler& handler = doc.GetCommandHandler();
    const int before = handler.GetSubmitCount();
    editor.HexEdit()->setText("#FF00FF00"); // typing alone commits nothing
    EXPECT_EQ(handler.GetSubmitCount(), before);
    emit editor.HexEdit()->editingFinished();
    ASSERT_EQ(handler.GetSubmitCount(), before + 1);
    EXPECT_EQ(handler.GetCurrent()->GetName(), "Edit Palette Entry");
    CCmdUI undo(ID_EDIT_UNDO);
    handler.OnUpdateCmdUI(&undo);
    EXPECT_EQ(undo.m_strText, "Undo Edit Palette Entry\tCtrl+Z");
    EXPECT_EQ(entryOf(image, 5), 0xFF00FF00u);
    EXPECT_EQ(image.GetColorTable()[5].green, 0xFF) << "the colour table follows the record";
    Type(editor.Channel('A'), 0x40);
    EXPECT_EQ(handler.GetSubmitCount(), before + 2);
    const std::vector<uint8_t> edited = recordBytes(image);
    EXPECT_EQ(entryOf(image, 5), 0x4000FF00u);

    // The same colour again is no change and no command.
    TypeHex(editor.HexEdit(), "#4000FF00");
    EXPECT_EQ(handler.GetSubmitCount(), before + 2);

    handler.OnUndo();
    EXPECT_EQ(entryOf(image, 5), 0xFF00FF00u);
    editor.Refresh();
    EXPECT_EQ(editor.Colour(), 0xFF00FF00u) << "the editor shows what Undo put back";
    handler.OnRedo();
    EXPECT_EQ(recordBytes(image), edited);
    handler.OnUndo();
    // Undo is one level: the first edit stays; put it back by hand and
    // compare with the untouched record.
    TypeHex(editor.HexEdit(), QString("#%1").arg(entry5, 8, 16, QChar('0')));
    handler.OnUndo();
    handler.OnUndo();
    EXPECT_EQ(entryOf(image, 5), entry5);
    EXPECT_EQ(recordBytes(image).size(), original.size());
    EXPECT_EQ(recordBytes(image), original);

    // A true-colour focused image has no entries to edit.
    doc.SetFocus(0, false);
    editor.Refresh();
    EXPECT_FALSE(editor.CanEdit());
    EXPECT_EQ(editor.TargetLabel()->text(),
              "Palette entry: the focused image is true colour and has no palette.");
    EXPECT_TRUE(m_Ui.m_Messages.empty());
}

TEST_F(ColourEditorTest, CurrentColoursPersistAndTheFillColourIsNumberFour) {
    {
        CColourEditorWidget editor;
        editor.EditCurrentColour(CCurrentColours::kFillNumber);
        EXPECT_NE(editor.TargetLabel()->text().indexOf("fill colour"), -1);
        TypeHex(editor.HexEdit(), "#FF00FF00");
        Type(editor.IndexSpin(), 7);
        editor.EditCurrentColour(0);
        TypeHex(editor.HexEdit(), "#FF112233");
    }
    EXPECT_EQ(m_Profile.Profile().GetInt("CCurrentColours", "m_Background", 0),
              static_cast<int>(0xFF00FF00));
    EXPECT_EQ(m_Profile.Profile().GetInt("CCurrentColours", "m_BackgroundIndex", 0), 7);
    EXPECT_EQ(m_Profile.Profile().GetInt("CCurrentColours", "m_Foreground", 0),
              static_cast<int>(0xFF112233));
    // A new editor (a new session) starts from what was stored.
    CColourEditorWidget again;
    again.EditCurrentColour(CCurrentColours::kFillNumber);
    EXPECT_EQ(again.Colour(), 0xFF00FF00u);
    EXPECT_EQ(again.IndexSpin()->value(), 7);
    EXPECT_EQ(again.CurrentSwatch(0)->Colour(), 0xFF112233u);

    // The arbitrary rotation fills the corners it uncovers with colour 4:
    // its ARGB value in deep images, its index in indexed ones.
    CTavixDoc doc;
    append(doc, MakeImage(4, 4, 32, "deep", 0xFFFFFFFF));
    append(doc, MakeImage(4, 4, 8, "pal"));
    doc.GetSelectionModel().Select(0);
    doc.GetSelectionModel().Select(1);
    m_Profile.Profile().WriteString("CRotateArbitraryCmd", "m_AngleString", "45");
    m_Profile.Profile().WriteInt("CRotateArbitraryCmd", "m_Interplolate", 0);
    doc.OnCmdMsg(ZyIds::ArbitraryRotate);
    ASSERT_TRUE(m_Ui.m_Exceptions.empty());
    EXPECT_EQ(doc.GetImageAt(0)->GetPixelValue(0, 0), 0xFF00FF00u);
    EXPECT_EQ(doc.GetImageAt(1)->GetIndex(0, 0), 7);
}

class WorksheetPixelTest : public ColourEditorTest {
  protected:
    void SetUp() override {
        ColourEditorTest::SetUp();
        // An indexed image at (10, 20) whose pixel (3, 4) is index 17, and a
        // true-colour one at (40, 20) whose pixel (1, 2) is 0x80123456.
        auto indexed = MakeImage(8, 8, 8, "");
        indexed->GetRow(4)[3] = 17;
        TavixColour c{0x30, 0x20, 0x10, 0xFF}; // blue, green, red, alpha
        indexed->SetPaletteEntry(17, c);
        indexed->SetDefaultPoint({10, 20});
        auto deep = MakeImage(8, 8, 32, "deep", 0xFF000000);
        reinterpret_cast<uint32_t*>(deep->GetRow(2))[1] = 0x80123456;
        deep->SetDefaultPoint({40, 20});
        append(m_Doc, std::move(deep));
        append(m_Doc, std::move(indexed));
        m_Doc.GetSelectionModel().Select(0);
        m_Doc.GetSelectionModel().Select(1);
        m_View = std::make_unique<CImageView>(&m_Doc);
        m_View->resize(300, 300);
    }
    void TearDown() override {
        m_View.reset();
        ColourEditorTest::TearDown();
    }
    void Mouse(QEvent::Type type, QPoint at) {
        const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        const Qt::MouseButtons held = type == QEvent::MouseButtonPress
                                          ? Qt::MouseButtons(Qt::LeftButton)
                                          : Qt::MouseButtons(Qt::NoButton);
        QMouseEvent event(type, at, m_View->viewport()->mapToGlobal(at), button, held,
                          Qt::NoModifier);
        QApplication::sendEvent(m_View->viewport(), &event);
    }

    CTavixDoc m_Doc;
    std::unique_ptr<CImageView> m_View;
};

TEST_F(WorksheetPixelTest, StatusTextNamesThePixelItsIndexAndColour) {
    struct Case {
        double zoom;
        QPoint viewPoint;
        const char* text;
    } cases[] = {
        {1.0, {13, 24}, "Pixel 3,4 of image 2: index 17, ARGB FF102030"},
        {1.0, {41, 22}, "Pixel 1,2 of deep: ARGB 80123456"},
        {2.0, {27, 49}, "Pixel 3,4 of image 2: index 17, ARGB FF102030"},
        {1.0, {5, 5}, ""}, // the background
        {1.0, {60, 60}, ""},
    };
    for (const Case& c : cases) {
        ASSERT_TRUE(m_View->SetZoom(c.zoom));
        QString signalled = "(none)";
        auto connection = QObject::connect(m_View.get(), &CImageView::PixelInfoChanged,
                                           [&](const QString& text) { signalled = text; });
        Mouse(QEvent::MouseMove, c.viewPoint);
        QObject::disconnect(connection);
        EXPECT_EQ(m_View->PixelInfoText().toStdString(), c.text) << c.zoom;
        EXPECT_EQ(signalled.toStdString(), c.text);
    }
}

TEST_F(WorksheetPixelTest, PickingTakesTheClickedColourAndLeavesTheSelectionAlone) {
    CColourEditorWidget editor;
    editor.EditCurrentColour(3);
    editor.PickButton()->setChecked(true);
    EXPECT_TRUE(ZyColourPicker().IsArmed());
    const int submitted = m_Doc.GetCommandHandler().GetSubmitCount();
    Mouse(QEvent::MouseButtonPress, {13, 24});
    Mouse(QEvent::MouseButtonRelease, {13, 24});
    EXPECT_EQ(Stored(3).m_Argb, 0xFF102030u);
    EXPECT_EQ(Stored(3).m_Index, 17) << "an indexed pixel gives its index too";
    Mouse(QEvent::MouseButtonPress, {41, 22});
    Mouse(QEvent::MouseButtonRelease, {41, 22});
    EXPECT_EQ(Stored(3).m_Argb, 0x80123456u);
    EXPECT_EQ(Stored(3).m_Index, 17) << "a true-colour pixel has no index to give";
    EXPECT_TRUE(m_Doc.GetSelectionModel().IsSelected(0));
    EXPECT_TRUE(m_Doc.GetSelectionModel().IsSelected(1));
    EXPECT_EQ(m_Doc.GetCommandHandler().GetSubmitCount(), submitted) << "no move, no command";
    editor.PickButton()->setChecked(false);
    EXPECT_FALSE(ZyColourPicker().IsArmed());
}

TEST_F(ColourEditorTest, ThumbnailsKeepTheAspectAreMadeLazilyAndFollowEdits) {
    CTavixDoc doc;
    struct Shape {
        int width, height, bpp;
        QSize expected;
    } shapes[] = {
        {64, 32, 32, {32, 16}},
        {8, 8, 8, {32, 32}},
        {3, 300, 32, {1, 32}},
        {100, 40, 8, {32, 13}},
    };
    for (const Shape& s : shapes)
        append(doc, MakeImage(s.width, s.height, s.bpp, "", 0xFF0000FF));
    for (int i = 0; i < 300; ++i)
        append(doc, MakeImage(16, 16, 32, "", 0xFF00FF00));
    CImageListView view(&doc);
    view.resize(300, 200);
    CImageListModel* model = view.Model();
    EXPECT_EQ(model->ThumbnailRenderCount(), 0) << "nothing is drawn before it is shown";
    view.grab(); // one paint: only the rows on screen
    const int painted = model->ThumbnailRenderCount();
    EXPECT_GT(painted, 0);
    EXPECT_LT(painted, 20);

    auto thumbnail = [&](int row) {
        return model->data(model->index(row, 0), CImageListModel::ThumbnailRole).value<QImage>();
    };
    for (size_t i = 0; i < std::size(shapes); ++i)
        EXPECT_EQ(thumbnail(static_cast<int>(i)).size(), shapes[i].expected) << i;
    // Opaque blue stays blue; an indexed image shows its palette colours.
    EXPECT_EQ(thumbnail(0).pixel(5, 5), 0xFF0000FFu);
    const int before = model->ThumbnailRenderCount();
    thumbnail(0);
    EXPECT_EQ(model->ThumbnailRenderCount(), before) << "asked again: from the cache";

    // An edit of the palette through a command: the list hears the hint and
    // the next thumbnail shows the new colour.
    doc.SetFocus(1, false);
    CColourEditorWidget editor;
    editor.SetDocument(&doc);
    ZyColourSelection().Select(0);
    TypeHex(editor.HexEdit(), "#FFFF0000");
    EXPECT_EQ(thumbnail(1).pixel(10, 10), 0xFFFF0000u);
    doc.GetCommandHandler().OnUndo();
    EXPECT_EQ(thumbnail(1).pixel(10, 10), 0xFF000000u) << "entry 0 of the new palette is black";

    // Transparent pixels show the checkerboard.
    Fill(*doc.GetImageAt(0), 0x00000000);
    CModifiedHint hint(0, doc.GetImageCount());
    doc.UpdateAllViews(nullptr, 0, &hint);
    const QImage clear = thumbnail(0);
    EXPECT_NE(clear.pixel(0, 0), clear.pixel(4, 0));

    view.ShowThumbnails(false);
    EXPECT_LT(view.verticalHeader()->defaultSectionSize(), CImageListModel::kThumbnailSize);
}

} // namespace

namespace {

// The editor and the colour bar inside the real main frame.
class ColourEditorFrameTest : public ::testing::Test {
  protected:
    void SetUp() override {
        EnsureApplication();
        ZyColourSelection().Clear();
        m_Script.Attach(*m_Zy->Ui());
        m_Profile.Profile().WriteInt("CImageView", "m_bAnimateZoom", 0);
    }
    void TearDown() override {
        m_Zy.reset();
        ZyColourSelection().Clear();
        QApplication::processEvents();
    }
    CMainFrame* Frame() { return m_Zy->MainFrame(); }
    QAction* Item(unsigned id) {
        QAction* action = Frame()->Action(id);
        EXPECT_NE(action, nullptr) << id;
        if (action) Frame()->UpdateAction(action);
        return action;
    }

    TempProfile m_Profile;
    ScriptedUi m_Script;
    std::unique_ptr<CZy> m_Zy = std::make_unique<CZy>();
};

TEST_F(ColourEditorFrameTest, MenuItemBarSwatchesUndoTextAndThumbnailSwitch) {
    auto image = MakeImage(4, 4, 8, "pal");
    const std::string path = WriteFile(m_Profile.Folder(), "pal.tvx", "tvx", {image.get()});
    ASSERT_TRUE(m_Zy->InitInstance({QString::fromStdString(path)}, &m_Profile.Profile()));
    CColourEditor* dock = Frame()->ColourEditor();
    ASSERT_NE(dock, nullptr);
    EXPECT_FALSE(dock->isVisible());
    ASSERT_TRUE(Item(ZyIds::ViewColorEditor)->isEnabled());
    Frame()->OnCommand(ZyIds::ViewColorEditor);
    EXPECT_TRUE(dock->isVisible());

    // The bar shows the foreground and the fill colour and follows the
    // settings store; a click edits that colour.
    CCurrentColourBar* bar = Frame()->CurrentColourBar();
    ASSERT_NE(bar, nullptr);
    CCurrentColours::Set(m_Profile.Profile(), 4, {3, 0xFF405060});
    bar->Refresh();
    EXPECT_EQ(bar->Swatch(4)->Colour(), 0xFF405060u);
    EXPECT_NE(bar->Swatch(4)->toolTip().indexOf("fill colour"), -1);
    emit bar->Swatch(4)->Clicked();
    EXPECT_EQ(dock->Editor()->Target(), 4);
    EXPECT_EQ(dock->Editor()->Colour(), 0xFF405060u);
    emit bar->Swatch(0)->Clicked();
    TypeHexInto(dock->Editor(), "#FFABCDEF");
    EXPECT_EQ(bar->Swatch(0)->Colour(), 0xFFABCDEFu) << "the bar hears of the edit at once";

    // A palette entry edit names itself in the Undo item.
    ZyColourSelection().Select(9);
    ASSERT_TRUE(dock->Editor()->CanEdit());
    TypeHexInto(dock->Editor(), "#FF00FF00");
    EXPECT_EQ(Item(ZyIds::Undo)->text().toStdString(), "Undo Edit Palette Entry\tCtrl+Z");
    Frame()->OnCommand(ZyIds::Undo);
    EXPECT_EQ(entryOf(*Frame()->ActiveChild()->GetDocument()->GetImageAt(0), 9),
              entryOf(*image, 9));

    // Thumbnails: on by default, switched off for every list and remembered.
    QAction* thumbnails = Item(ZyIds::ViewThumbnails);
    EXPECT_TRUE(thumbnails->isChecked());
    Frame()->OnCommand(ZyIds::ViewThumbnails);
    EXPECT_FALSE(Item(ZyIds::ViewThumbnails)->isChecked());
    EXPECT_FALSE(Frame()->ActiveChild()->ListView()->ThumbnailsShown());
    EXPECT_EQ(m_Profile.Profile().GetInt("CImageListView", "m_Thumbnails", 1), 0);
}

} // namespace
