// The application and its main frame, started for real on the offscreen
// platform with a settings file in a temporary folder: start-up and its
// failure, the menus and their enable, check and text rules, undo texts
// after a flip, several documents, the save-time format warning, the window
// placement and bar layout, and the output window.

#include "UiTestSupport.h"

#include "app/doc/CommandHandler.h"
#include "app/ui/ChildFrame.h"
#include "app/ui/HelpWindow.h"
#include "app/ui/ColRedToolbar.h"
#include "app/doc/CommandIds.h"
#include "app/ui/ImageListView.h"
#include "app/ui/MainFrame.h"
#include "app/ui/OutputWindow.h"
#include "app/ui/WindowPlacement.h"
#include "app/ui/Zy.h"
#include "codec/TavixBinding.h"
#include "imaging/galloc.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QGuiApplication>
#include <QMimeData>
#include <QFileInfo>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QTextBrowser>
#include <QStatusBar>
#include <QToolBar>
#include <QUrl>

#include <cstdlib>
#include <functional>

using namespace uitest;
using namespace ZyIds;

namespace {

// Left half red, right half blue: a flip shows.
std::unique_ptr<CTavixImage> halves(const std::string& name) {
    auto image = MakeImage(8, 4, 32, name, 0xFFFF0000);
    for (int y = 0; y < 4; ++y)
        for (int x = 4; x < 8; ++x)
            reinterpret_cast<uint32_t*>(image->GetRow(y))[x] = 0xFF0000FF;
    return image;
}

class FrameTest : public ::testing::Test {
  protected:
    void SetUp() override {
        m_Script.Attach(*m_Zy->Ui());
        EnsureApplication();
        // No zoom animation: it waits 300 ms each time a view appears.
        m_Profile.Profile().WriteInt("CImageView", "m_bAnimateZoom", 0);
    }
    void TearDown() override {
        m_Zy.reset();
        QApplication::processEvents();
    }
    bool Start(const QStringList& files = {}) {
        return m_Zy->InitInstance(files, &m_Profile.Profile());
    }
    QString Write(const std::string& name, int count, const std::string& driver = "tvx") {
        std::vector<std::unique_ptr<CTavixImage>> images;
        std::vector<const CTavixImage*> pointers;
        for (int i = 0; i < count; ++i) {
            images.push_back(halves("img" + std::to_string(i)));
            pointers.push_back(images.back().get());
        }
        return QString::fromStdString(WriteFile(m_Profile.Folder(), name, driver, pointers));
    }
    CMainFrame* Frame() { return m_Zy->MainFrame(); }
    CChildFrame* Child() { return Frame()->ActiveChild(); }
    QAction* Item(unsigned id) {
        QAction* action = Frame()->Action(id);
        EXPECT_NE(action, nullptr) << id;
        Frame()->UpdateAction(action);
        return action;
    }

    TempProfile m_Profile;
    ScriptedUi m_Script;
    std::unique_ptr<CZy> m_Zy = std::make_unique<CZy>();
};

TEST_F(FrameTest, StartsWithANewDocumentMenusBarsAndPanes) {
    ASSERT_TRUE(Start());
    EXPECT_TRUE(Frame()->isVisible());
    ASSERT_EQ(Frame()->Children().size(), 1);
    EXPECT_EQ(Child()->Title(), "Zy1");
    QStringList menus;
    for (QAction* action : Frame()->menuBar()->actions())
        menus << action->text().remove('&');
    EXPECT_EQ(menus,
              QStringList({"File", "Edit", "View", "List", "Image", "Tools", "Window", "Help"}));
    for (const char* bar : {"StandardBar", "WorksheetBar", "AnimationBar", "ChannelBar"})
        EXPECT_NE(Frame()->Toolbar(bar), nullptr) << bar;
    Frame()->UpdatePanes();
    EXPECT_EQ(Frame()->PaneLabel(CMainFrame::IndexPane)->text(), "0/0");
    EXPECT_EQ(Frame()->PaneLabel(CMainFrame::SizePane)->text(), "0KB");
    EXPECT_EQ(Frame()->PaneLabel(CMainFrame::ZoomPane)->text(), "1:1");
    EXPECT_GT(m_Zy->DriverCount(), 0);
    EXPECT_EQ(m_Zy->DriverIndex("tga"), TavixFind("tga"));

    EXPECT_EQ(Frame()->OutputWindow()->windowTitle(), "Output");
    gprintf("library says %d\n", 42);
    EXPECT_TRUE(Frame()->OutputWindow()->Text().contains("library says 42"));
}

TEST_F(FrameTest, WithoutTheCodecLibraryNothingIsShown) {
    const std::string saved = getenv("TAVIX_DRIVERNAME");
    setenv("TAVIX_DRIVERNAME", "/nonexistent/libtavix.so", 1);
    const bool started = Start();
    setenv("TAVIX_DRIVERNAME", saved.c_str(), 1);
    EXPECT_FALSE(started);
    ASSERT_EQ(m_Script.m_Messages.size(), 1u);
    // The loader's own reason, not a guess.
    const std::string& text = m_Script.m_Messages[0];
    EXPECT_EQ(
        text.rfind("Zy cannot run without its codec library:\n\ncannot load the codec library "
                   "/nonexistent/libtavix.so: ",
                   0),
        0u)
        << text;
    EXPECT_NE(text.find("No such file or directory"), std::string::npos) << text;
    EXPECT_EQ(m_Script.m_Captions, std::vector<std::string>{"Zy"});
    EXPECT_EQ(Frame(), nullptr);
}

TEST_F(FrameTest, MenuItemsFollowTheRulesInAnEmptyDocument) {
    ASSERT_TRUE(Start());
    struct Case {
        unsigned id;
        bool enabled;
    } cases[] = {
        {FileNew, true},        {FileOpen, true},        {FileSave, true},
        {FileSaveAs, true},     {FilePreferences, true}, {HelpAbout, true},
        {WindowTile, true},     {WindowNext, true},      {ViewGrid, true},
        {ViewZoomIn, false},    {Undo, false},           {FlipHorizontal, false},
        {Rotate90CW, false},    {MergeSelected, false},  {ChangeColorDepth, false},
        {EditCut, false},       {EditPaste, false},      {NextImage, false},
        {EditSelectAll, false}, {PlayForward, false},    {FileMru1, false},
    };
    for (const Case& c : cases)
        EXPECT_EQ(Item(c.id)->isEnabled(), c.enabled) << c.id;
    EXPECT_EQ(Item(Undo)->text().toStdString(), "Can't Undo\tCtrl+Z");
    EXPECT_FALSE(Item(ViewGrid)->isChecked());
    EXPECT_TRUE(Item(ViewAlpha)->isChecked());

    // Toggles show their state; the colour picker's is kept in "CZy".
    Frame()->OnCommand(ViewGrid);
    EXPECT_TRUE(Item(ViewGrid)->isChecked());
    Frame()->OnCommand(PsxColors);
    EXPECT_TRUE(Item(PsxColors)->isChecked());
    EXPECT_EQ(m_Profile.Profile().GetInt("CZy", "m_PSXColorPicker", 0), 1);
}

TEST_F(FrameTest, FlipThenUndoAndRedoRenameTheUndoItem) {
    const QString path = Write("two.tvx", 2);
    ASSERT_TRUE(Start({path}));
    CTavixDoc* doc = Child()->GetDocument();
    ASSERT_EQ(doc->GetImageCount(), 2);
    EXPECT_TRUE(Item(FlipHorizontal)->isEnabled());
    EXPECT_TRUE(Item(NextImage)->isEnabled());
    Child()->ListView()->First();
    ASSERT_EQ(doc->GetImageAt(0)->GetPixelValue(0, 0), 0xFFFF0000u);

    struct Step {
        unsigned command;
        const char* undoText;
        uint32_t pixel;
    } steps[] = {
        {FlipHorizontal, "Undo Flip\tCtrl+Z", 0xFF0000FF},
        {Undo, "Redo Flip\tCtrl+Z", 0xFFFF0000},
        {Undo, "Undo Flip\tCtrl+Z", 0xFF0000FF},
    };
    for (const Step& step : steps) {
        Frame()->OnCommand(step.command);
        EXPECT_EQ(Item(Undo)->text().toStdString(), step.undoText);
        EXPECT_TRUE(Item(Undo)->isEnabled());
        EXPECT_EQ(doc->GetImageAt(0)->GetPixelValue(0, 0), step.pixel);
    }
    EXPECT_EQ(doc->GetImageAt(1)->GetPixelValue(0, 0), 0xFFFF0000u); // not selected
    EXPECT_TRUE(doc->IsModified());
    EXPECT_TRUE(m_Script.m_Exceptions.empty());
}

// The one action a key sequence triggers in the frame; null when none or several.
QAction* ActionOfKey(QWidget* frame, const QString& key) {
    QAction* found = nullptr;
    for (QAction* action : frame->findChildren<QAction*>()) {
        if (!action->shortcuts().contains(QKeySequence(key))) continue;
        EXPECT_EQ(found, nullptr) << key.toStdString() << " is bound twice";
        found = action;
    }
    return found;
}

TEST_F(FrameTest, TheRedoKeysOnlyRedoAndTheStarFollowsTheSavedState) {
    const QString path = Write("two.tvx", 2);
    ASSERT_TRUE(Start({path}));
    CTavixDoc* doc = Child()->GetDocument();
    Child()->ListView()->First();
    auto press = [&](const char* key) {
        Frame()->UpdateAllActions(); // as the idle time does before a key arrives
        QAction* action = ActionOfKey(Frame(), key);
        ASSERT_NE(action, nullptr) << key;
        action->trigger();
    };
    struct Step {
        const char* what;
        std::function<void()> act;
        uint32_t pixel;
        bool modified;
    } steps[] = {
        {"flip", [&] { Frame()->OnCommand(FlipHorizontal); }, 0xFF0000FF, true},
        {"Ctrl+Y with nothing undone", [&] { press("Ctrl+Y"); }, 0xFF0000FF, true},
        {"Ctrl+Shift+Z with nothing undone", [&] { press("Ctrl+Shift+Z"); }, 0xFF0000FF, true},
        {"Ctrl+Z", [&] { press("Ctrl+Z"); }, 0xFFFF0000, false},
        {"Ctrl+Y", [&] { press("Ctrl+Y"); }, 0xFF0000FF, true},
        {"Ctrl+Z again", [&] { press("Ctrl+Z"); }, 0xFFFF0000, false},
        {"Ctrl+Shift+Z", [&] { press("Ctrl+Shift+Z"); }, 0xFF0000FF, true},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(step.what);
        step.act();
        EXPECT_EQ(doc->GetImageAt(0)->GetPixelValue(0, 0), step.pixel);
        EXPECT_EQ(doc->IsModified(), step.modified);
        EXPECT_EQ(Child()->isWindowModified(), step.modified) << "the title's *";
    }
}

TEST_F(FrameTest, EveryKeyAMenuShowsTriggersThatItem) {
    ASSERT_TRUE(Start());
    std::function<void(QMenu*)> walk = [&](QMenu* menu) {
        for (QAction* action : menu->actions()) {
            if (action->menu()) {
                walk(action->menu());
                continue;
            }
            const QString text = action->text();
            const qsizetype tab = text.indexOf('\t');
            if (tab < 0) continue;
            const QString key = text.mid(tab + 1);
            SCOPED_TRACE(text.toStdString());
            EXPECT_EQ(ActionOfKey(Frame(), key), action);
        }
    };
    for (QMenu* menu : Frame()->menuBar()->findChildren<QMenu*>(Qt::FindDirectChildrenOnly))
        walk(menu);
    // The channel keys as the View menu prints them.
    EXPECT_EQ(ActionOfKey(Frame(), "Alt+3"), Frame()->Action(ViewRed));
    EXPECT_EQ(ActionOfKey(Frame(), "Alt+5"), Frame()->Action(ViewBlue));
}

TEST_F(FrameTest, F1ShowsTheManualInAWindowOfItsOwn) {
    ASSERT_TRUE(Start());
    Frame()->UpdateAllActions();
    QAction* f1 = ActionOfKey(Frame(), "F1");
    ASSERT_NE(f1, nullptr);
    f1->trigger();
    CHelpWindow* help = m_Zy->HelpWindow();
    ASSERT_NE(help, nullptr);
    EXPECT_TRUE(help->isVisible());
    // Rendered, not shown as Markdown source.
    const QString text = help->Browser()->toPlainText();
    EXPECT_TRUE(text.startsWith("The Zy editor")) << text.left(80).toStdString();
    EXPECT_FALSE(text.contains("## Using it"));
    f1->trigger();
    EXPECT_EQ(m_Zy->HelpWindow(), help) << "one window, raised again";

    // A manual that is not there says so instead of showing nothing.
    m_Profile.Profile().WriteString(
        "CZy", "m_DocumentationUrl",
        QUrl::fromLocalFile("/nonexistent/editor.md").toString().toStdString());
    f1->trigger();
    EXPECT_TRUE(help->Browser()->toPlainText().contains("/nonexistent/editor.md cannot be read"));
}

TEST_F(FrameTest, OpensSeveralFilesSideBySideAndRemembersThem) {
    const QString a = Write("a.tvx", 1), b = Write("b.tvx", 3);
    ASSERT_TRUE(Start({a, b}));
    EXPECT_EQ(Frame()->Children().size(), 2);
    EXPECT_EQ(m_Zy->RecentFiles(), QStringList({b, a}));
    EXPECT_EQ(m_Profile.Profile().GetString("Recent File List", "File1", ""), b.toStdString());
    EXPECT_TRUE(Item(FileMru2)->isVisible());
    EXPECT_FALSE(Item(FileMru3)->isVisible());
    EXPECT_NE(m_Zy->OpenDocumentFile(a), nullptr); // already open: no second window
    EXPECT_EQ(Frame()->Children().size(), 2);
    EXPECT_EQ(Child()->Title(), "a.tvx");
    Frame()->OnCommand(WindowNext);
    EXPECT_EQ(Child()->Title(), "b.tvx");
    Frame()->UpdatePanes();
    EXPECT_EQ(Frame()->PaneLabel(CMainFrame::IndexPane)->text(), "1/3 (index 0)");
}

TEST_F(FrameTest, TheWindowMenuListsTheOpenDocuments) {
    const QString a = Write("a.tvx", 1), b = Write("b.tvx", 3);
    ASSERT_TRUE(Start({a, b}));
    QMenu* menu = Frame()->Menu("Window");
    ASSERT_NE(menu, nullptr);
    auto documents = [&] {
        emit menu->aboutToShow();
        std::vector<std::pair<std::string, bool>> items;
        for (QAction* action : menu->actions())
            if (action->isCheckable())
                items.emplace_back(action->text().remove('&').toStdString(), action->isChecked());
        return items;
    };
    const std::string active = Child()->Title().toStdString();
    const std::string other = active == "a.tvx" ? "b.tvx" : "a.tvx";
    using Items = std::vector<std::pair<std::string, bool>>;
    EXPECT_EQ(documents(), (Items{{"1 a.tvx", active == "a.tvx"}, {"2 b.tvx", active == "b.tvx"}}));
    EXPECT_EQ(documents().size(), 2u) << "opening the menu again lists each document once";
    // Choosing an entry activates that document.
    for (QAction* action : menu->actions())
        if (action->text().remove('&').endsWith(QString::fromStdString(other))) action->trigger();
    EXPECT_EQ(Child()->Title().toStdString(), other);
}

TEST_F(FrameTest, TheDocumentACommandOrSaveRanOnStaysActive) {
    const QString d1 = Write("d1.tvx", 2), s1 = Write("s1.tvx", 2);
    ASSERT_TRUE(Start({d1, s1}));
    QMdiArea* area = Frame()->MdiArea();
    CChildFrame* second = nullptr;
    for (CChildFrame* child : Frame()->Children())
        if (child->Title() == "s1.tvx") second = child;
    ASSERT_NE(second, nullptr);
    area->setActiveSubWindow(qobject_cast<QMdiSubWindow*>(second->parentWidget()));
    ASSERT_EQ(Child(), second);
    second->ListView()->First();
    m_Script.m_FilePath = (m_Profile.Folder() + "/s2.tvx").toStdString();
    m_Script.m_FileType = TavixFind("tvx");
    for (unsigned id :
         std::vector<unsigned>{FlipHorizontal, FileSave, Undo, FileSaveAs, FlipVertical}) {
        Frame()->OnCommand(id);
        QApplication::processEvents();
        EXPECT_EQ(Child(), second) << id;
        EXPECT_EQ(area->activeSubWindow(), second->parentWidget()) << id;
    }
    EXPECT_EQ(Child()->Title(), "s2.tvx");
    // The next undo goes to the same document.
    Frame()->OnCommand(Undo);
    EXPECT_TRUE(second->GetDocument()->GetCommandHandler().IsUndone());
    // Showing and closing the output window does not change it either.
    Frame()->OutputWindow()->show();
    Frame()->OutputWindow()->setFocus();
    Frame()->OutputWindow()->close();
    QApplication::processEvents();
    EXPECT_EQ(Child(), second);
}

TEST_F(FrameTest, StartFailsWhenNoNamedFileOpens) {
    EXPECT_FALSE(Start({m_Profile.Folder() + "/missing.tvx"}));
    EXPECT_FALSE(m_Script.m_Messages.empty());
}

TEST_F(FrameTest, SaveAsAnotherFormatWarnsAndCancelLeavesEverything) {
    const QString path = Write("two.tvx", 2);
    ASSERT_TRUE(Start({path}));
    CTavixDoc* doc = Child()->GetDocument();
    const int type = doc->GetFileType();
    const QString target = m_Profile.Folder() + "/two.tga";
    m_Script.m_FilePath = target.toStdString();
    m_Script.m_FileType = TavixFind("tga");
    m_Script.m_Answer = MsgAnswer::Cancel;
    Frame()->OnCommand(FileSaveAs);
    ASSERT_EQ(m_Script.m_Messages.size(), 1u);
    const std::string& warning = m_Script.m_Messages[0];
    EXPECT_EQ(warning.rfind("WARNING: The file format you have chosen does not support all of the "
                            "options present in the current document.\nThe options not supported "
                            "are:\n",
                            0),
              0u);
    EXPECT_NE(warning.find("    - multiple images\n"), std::string::npos);
    EXPECT_FALSE(QFileInfo::exists(target));
    EXPECT_EQ(doc->GetFileType(), type);
    EXPECT_EQ(Child()->Title(), "two.tvx");
}

TEST_F(FrameTest, SaveAsAFormatThatHoldsEverythingWritesAtOnce) {
    const QString path = Write("one.tvx", 1);
    ASSERT_TRUE(Start({path}));
    const QString target = m_Profile.Folder() + "/one.tga";
    m_Script.m_FilePath = target.toStdString();
    m_Script.m_FileType = TavixFind("tga");
    Frame()->OnCommand(FileSaveAs);
    EXPECT_TRUE(m_Script.m_Messages.empty());
    EXPECT_TRUE(QFileInfo::exists(target));
    EXPECT_EQ(Child()->Title(), "one.tga");
    EXPECT_EQ(m_Zy->RecentFiles().front(), target);
}

TEST(WindowPlacementStore, MinimisedAndMaximisedAreNotWritten) {
    TempProfile profile;
    struct Case {
        int showCmd;
        bool written;
    } cases[] = {{CWindowPlacement::Normal, true},
                 {CWindowPlacement::Minimized, false},
                 {CWindowPlacement::Maximized, false}};
    for (const Case& c : cases) {
        CWindowPlacement placement;
        placement.showCmd = c.showCmd;
        placement.left = 10 * c.showCmd;
        const std::string section = std::string("W").append(std::to_string(c.showCmd));
        EXPECT_EQ(WriteWindowPlacement(profile.Profile(), section, placement), c.written);
        EXPECT_EQ(profile.Has(section, "wp.left"), c.written);
        for (const char* key :
             {"wp.showCmd", "wp.flags", "wp.ptMinPosition.x", "wp.ptMinPosition.y",
              "wp.ptMaxPosition.x", "wp.ptMaxPosition.y", "wp.right", "wp.top", "wp.bottom"})
            EXPECT_EQ(profile.Has(section, key), c.written) << key;
    }
    // Reading takes the current values where nothing is stored.
    CWindowPlacement current;
    current.left = 5;
    current.right = 99;
    profile.Profile().WriteInt("Main Window", "wp.left", 7);
    const CWindowPlacement read = ReadWindowPlacement(profile.Profile(), "Main Window", current);
    EXPECT_EQ(read.left, 7);
    EXPECT_EQ(read.right, 99);
}

TEST_F(FrameTest, ClosingKeepsPlacementAndBarLayoutButNotAMaximisedOne) {
    CQtProfile& p = m_Profile.Profile();
    for (auto [key, value] : {std::pair{"wp.showCmd", 1},
                              {"wp.left", 30},
                              {"wp.top", 40},
                              {"wp.right", 830},
                              {"wp.bottom", 640}})
        p.WriteInt("Main Window", key, value);
    ASSERT_TRUE(Start());
    EXPECT_EQ(Frame()->geometry(), QRect(30, 40, 800, 600));
    Frame()->setGeometry(50, 60, 700, 500);
    Frame()->close();
    EXPECT_EQ(p.GetInt("Main Window", "wp.left", 0), 50);
    EXPECT_EQ(p.GetInt("Main Window", "wp.bottom", 0), 560);
    EXPECT_FALSE(p.GetString("ToolBarSettings", "State", "").empty());

    m_Zy = std::make_unique<CZy>();
    m_Script.Attach(*m_Zy->Ui());
    ASSERT_TRUE(Start());
    Frame()->showMaximized();
    QApplication::processEvents();
    Frame()->close();
    EXPECT_EQ(p.GetInt("Main Window", "wp.left", 0), 50);
    EXPECT_EQ(p.GetInt("Main Window", "wp.bottom", 0), 560);
}

} // namespace

TEST_F(FrameTest, CopyAndPasteGoThroughTheSystemClipboard) {
    const QString path = Write("two.tvx", 2);
    ASSERT_TRUE(Start({path}));
    CTavixDoc* doc = Child()->GetDocument();
    QGuiApplication::clipboard()->clear();
    EXPECT_FALSE(Item(EditPaste)->isEnabled());
    Child()->ListView()->First();
    Frame()->OnCommand(EditCopy);
    const QMimeData* offered = QGuiApplication::clipboard()->mimeData();
    ASSERT_NE(offered, nullptr);
    EXPECT_TRUE(offered->hasFormat("application/x-zy-image-list"));
    const QImage png = QImage::fromData(offered->data("image/png"), "PNG");
    EXPECT_EQ(png.pixel(0, 0), doc->GetImageAt(0)->GetPixelValue(0, 0));

    EXPECT_TRUE(Item(EditPaste)->isEnabled());
    Frame()->OnCommand(EditPaste);
    ASSERT_EQ(doc->GetImageCount(), 3);
    EXPECT_EQ(Item(Undo)->text().toStdString(), "Undo Paste\tCtrl+Z");
    Frame()->OnCommand(Undo);
    EXPECT_EQ(doc->GetImageCount(), 2);

    // A bitmap from another program becomes a new image.
    QImage other(3, 2, QImage::Format_ARGB32);
    other.fill(0x80123456u);
    auto* mime = new QMimeData;
    mime->setImageData(other);
    QGuiApplication::clipboard()->setMimeData(mime);
    Frame()->OnCommand(EditPaste);
    ASSERT_EQ(doc->GetImageCount(), 3);
    EXPECT_EQ(doc->GetImageAt(2)->GetSize(), (CSize{3, 2}));
    EXPECT_EQ(doc->GetImageAt(2)->GetPixelValue(2, 1), 0x80123456u);
    EXPECT_TRUE(m_Script.m_Exceptions.empty());
}

TEST_F(FrameTest, ListItemsFollowTheSelection) {
    const QString path = Write("two.tvx", 2);
    ASSERT_TRUE(Start({path}));
    Child()->ListView()->First();
    for (unsigned id : {AddNewImage, Duplicate, Delete, Sort, BringForward, MoveDownFive, AlignLeft,
                        SpaceAcross, CenterVertical, EditCut, EditCopy})
        EXPECT_TRUE(Item(id)->isEnabled()) << id;
    EXPECT_FALSE(Item(BlendImages)->isEnabled()) << "one image selected";
    Frame()->OnCommand(EditSelectAll);
    EXPECT_TRUE(Item(BlendImages)->isEnabled());
    Frame()->OnCommand(Duplicate);
    EXPECT_EQ(Child()->GetDocument()->GetImageCount(), 4);
    EXPECT_EQ(Item(Undo)->text().toStdString(), "Can't Undo Duplicate\tCtrl+Z");
}

namespace {

// Picks the item `text` of the colour reduction bar's list `name` as a user would.
void pick(QToolBar* bar, const char* name, const QString& text) {
    auto* box = bar->findChild<QComboBox*>(name);
    ASSERT_NE(box, nullptr) << name;
    const int index = box->findText(text);
    ASSERT_GE(index, 0) << text.toStdString();
    box->setCurrentIndex(index);
    emit box->activated(index);
}

TEST_F(FrameTest, ColourReductionBarListsDriveChangeColorDepthWithUndo) {
    const QString path = Write("two.tvx", 2);
    ASSERT_TRUE(Start({path}));
    CTavixDoc* doc = Child()->GetDocument();
    QToolBar* bar = Frame()->Toolbar("ColorReductionBar");
    ASSERT_NE(bar, nullptr);
    ASSERT_TRUE(bar->actions().contains(Frame()->Action(ChangeColorDepth)));
    EXPECT_TRUE(Item(ChangeColorDepth)->isEnabled());

    pick(bar, "m_ColRedType", "Change Color Depth");
    pick(bar, "layout", "4444");
    EXPECT_EQ(m_Profile.Profile().GetInt("CColRedCmd", "m_ABits", 0), 4);
    Frame()->OnCommand(ChangeColorDepth);
    EXPECT_EQ(doc->GetImageAt(0)->GetInfo()->bpp, 16);
    EXPECT_EQ(doc->GetImageAt(0)->GetInfo()->alphabits, 4);
    EXPECT_EQ(Item(Undo)->text().toStdString(), "Undo Color Reduction\tCtrl+Z");
    Frame()->OnCommand(Undo);
    EXPECT_EQ(doc->GetImageAt(0)->GetInfo()->bpp, 32);

    pick(bar, "m_ColRedType", "Color Reduction");
    pick(bar, "m_Bpp", "4-bit indexed");
    Frame()->OnCommand(ChangeColorDepth);
    EXPECT_EQ(doc->GetImageAt(0)->GetInfo()->bufferbpp, 8);
    EXPECT_EQ(doc->GetImageAt(0)->GetInfo()->bpp, 4);
    EXPECT_EQ(doc->GetImageAt(0)->GetPixelValue(0, 0), 0xFFFF0000u) << "two colours stay exact";
    EXPECT_EQ(Frame()->statusBar()->currentMessage(), "Building palette with Wu method");

    // The lists show settings that changed elsewhere.
    m_Profile.Profile().WriteInt("CColRedCmd", "m_Dither", 3);
    RefreshColRedToolbarLists(bar);
    EXPECT_EQ(bar->findChild<QComboBox*>("m_Dither")->currentText(), "Stucki");
    EXPECT_TRUE(m_Script.m_Exceptions.empty());
}

} // namespace
