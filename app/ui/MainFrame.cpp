#include "app/ui/MainFrame.h"

#include "app/doc/Profile.h"
#include "app/doc/UserInterface.h"
#include "app/ui/ChildFrame.h"
#include "app/ui/ColRedToolbar.h"
#include "app/ui/ColourEditor.h"
#include "app/ui/ImageListView.h"
#include "app/ui/ImageView.h"
#include "app/doc/CommandIds.h"
#include "app/ui/IconFactory.h"
#include "app/ui/MenuTable.h"
#include "app/ui/OutputWindow.h"
#include "app/ui/PaletteWell.h"
#include "app/ui/PropertiesDock.h"
#include "app/ui/WindowPlacement.h"
#include "app/ui/Zy.h"

#include <QCloseEvent>
#include <QFileInfo>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QPointer>
#include <QMenuBar>
#include <QGuiApplication>
#include <QScreen>
#include <QStatusBar>
#include <QToolBar>

using namespace ZyIds;

namespace {

constexpr const char* kMainWindowSection = "Main Window";
constexpr const char* kToolBarSection = "ToolBarSettings";

// A pane just wide enough for its widest text.
QLabel* makePane(const QString& sizing) {
    auto* label = new QLabel;
    label->setAlignment(Qt::AlignCenter);
    label->setMinimumWidth(label->fontMetrics().horizontalAdvance(sizing) + 10);
    label->setFrameStyle(QFrame::Panel | QFrame::Sunken);
    return label;
}

} // namespace

CMainFrame::CMainFrame(CZy* app) : m_App(app) {
    setObjectName("MainFrame");
    setWindowTitle("Zy");
}

CMainFrame::~CMainFrame() {
    // The document windows go while this frame is still whole: their
    // going activates others, which this frame hears of.
    m_IdleTimer.stop();
    if (m_MdiArea) {
        disconnect(m_MdiArea, nullptr, this, nullptr);
        for (QMdiSubWindow* window : m_MdiArea->subWindowList())
            delete window;
    }
}

bool CMainFrame::Create() {
    m_MdiArea = new QMdiArea;
    m_MdiArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    m_MdiArea->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setCentralWidget(m_MdiArea);
    connect(m_MdiArea, &QMdiArea::subWindowActivated, this, &CMainFrame::OnSubWindowActivated);

    m_Output = new COutputWindow(this);
    addDockWidget(Qt::BottomDockWidgetArea, m_Output);
    m_Output->hide();

    // The palette well follows the active document's focused image.
    m_PaletteWell = new CPaletteWell(this);
    addDockWidget(Qt::RightDockWidgetArea, m_PaletteWell);
    connect(m_PaletteWell->Well(), &CPaletteWellWidget::CommandRun, this, [this] {
        if (CChildFrame* child = ActiveChild()) child->RefreshTitle();
        UpdateAllActions();
    });
    connect(m_PaletteWell->Well(), &CPaletteWellWidget::HoverChanged, this,
            [this](const QString& text) {
                if (!text.isEmpty()) statusBar()->showMessage(text);
            });
    m_Properties = new CPropertiesDock(this);
    addDockWidget(Qt::RightDockWidgetArea, m_Properties);
    m_Properties->hide();
    connect(m_Properties, &CPropertiesDock::CommandRun, this, [this] {
        if (CChildFrame* child = ActiveChild()) child->RefreshTitle();
        UpdateAllActions();
    });

    // The colour editor edits the active document's palette entries and the
    // current colours; the colour bar shows two of the latter.
    m_ColourEditor = new CColourEditor(this);
    addDockWidget(Qt::RightDockWidgetArea, m_ColourEditor);
    m_ColourEditor->hide();
    connect(m_ColourEditor->Editor(), &CColourEditorWidget::CommandRun, this, [this] {
        if (CChildFrame* child = ActiveChild()) child->RefreshTitle();
        UpdateAllActions();
    });
    connect(m_ColourEditor->Editor(), &CColourEditorWidget::CurrentColoursChanged, this, [this] {
        if (m_ColourBar) m_ColourBar->Refresh();
    });

    BuildMenus();
    if (QMenu* window = Menu("Window"))
        connect(window, &QMenu::aboutToShow, this, &CMainFrame::ListDocumentsInWindowMenu);
    BuildExtraActions();
    BuildToolbars();
    BuildStatusBar();
    setDockOptions(QMainWindow::AnimatedDocks | QMainWindow::AllowTabbedDocks);

    // A first start fills most of the screen.
    if (const QScreen* screen = QGuiApplication::primaryScreen())
        resize(screen->availableGeometry().size() * 0.95);
    else
        resize(1200, 800);
    ApplyPlacement(*this, ReadWindowPlacement(ZyProfile(), kMainWindowSection, PlacementOf(*this)));
    const std::string state = ZyProfile().GetString(kToolBarSection, "State", "");
    if (!state.empty()) restoreState(QByteArray::fromBase64(QByteArray::fromStdString(state)));

    connect(&m_IdleTimer, &QTimer::timeout, this, &CMainFrame::OnIdle);
    m_IdleTimer.start(200);
    UpdateAllActions();
    return true;
}

// ---- Menus, bars and actions --------------------------------------------------------------

QAction* CMainFrame::MakeAction(unsigned id, const char* text, const char* prompt,
                                const char* shortcut, bool checkable) {
    auto found = m_Actions.find(id);
    if (found != m_Actions.end()) return found->second;
    auto* action = new QAction(QString::fromUtf8(text), this);
    action->setData(id);
    action->setIcon(CommandIcon(id));
    action->setIconVisibleInMenu(false);
    if (prompt) {
        const QStringList parts = QString::fromUtf8(prompt).split('\n');
        action->setStatusTip(parts.front());
        action->setToolTip(parts.size() > 1 ? parts[1] : parts.front());
    }
    if (shortcut) action->setShortcut(QKeySequence(QString::fromUtf8(shortcut)));
    action->setCheckable(checkable);
    connect(action, &QAction::triggered, this, [this, id] { OnCommand(id); });
    m_Actions[id] = action;
    addAction(action); // keys work wherever the focus is in the frame
    return action;
}

void CMainFrame::BuildMenu(QMenu* menu, const std::vector<CMenuItem>& items) {
    for (const CMenuItem& item : items) {
        switch (item.kind) {
        case CMenuItem::Separator:
            menu->addSeparator();
            break;
        case CMenuItem::Section:
            menu->addSection(QString::fromUtf8(item.text));
            break;
        case CMenuItem::Submenu: {
            QMenu* sub = menu->addMenu(QString::fromUtf8(item.text));
            if (item.children.empty() && QString(item.text).contains("Toolbars"))
                m_ToolbarsMenu = sub;
            BuildMenu(sub, item.children);
            break;
        }
        case CMenuItem::RecentFiles:
            for (unsigned id = FileMru1; id <= FileMru4; ++id) {
                QAction* recent = MakeAction(id, "", nullptr, nullptr, false);
                recent->setVisible(false);
                menu->addAction(recent);
            }
            break;
        case CMenuItem::Item:
            menu->addAction(
                MakeAction(item.id, item.text, item.prompt, item.shortcut, item.checkable));
            break;
        }
    }
    connect(menu, &QMenu::aboutToShow, this, [this, menu] {
        for (QAction* action : menu->actions())
            if (!action->menu() && !action->isSeparator()) UpdateAction(action);
    });
}

void CMainFrame::BuildMenus() {
    for (const CMenuItem& top : MainMenuTable()) {
        QMenu* menu = menuBar()->addMenu(QString::fromUtf8(top.text));
        menu->setObjectName(QString::fromUtf8(top.text).remove('&'));
        BuildMenu(menu, top.children);
    }
}

void CMainFrame::BuildExtraActions() {
    for (const CExtraAction& extra : ExtraActionTable())
        MakeAction(extra.id, extra.text, extra.prompt, nullptr, extra.checkable);
    for (const CKeyBinding& key : ExtraKeyTable()) {
        // A key of its own for an existing item: a separate action, so that
        // the item keeps its own label and key.
        auto* shortcut = new QAction(this);
        shortcut->setShortcut(QKeySequence(QString::fromUtf8(key.key)));
        const unsigned id = key.id;
        connect(shortcut, &QAction::triggered, this, [this, id] { OnCommand(id); });
        addAction(shortcut);
        if (!m_Actions.count(id)) MakeAction(id, key.key, nullptr, nullptr, false);
    }
}

void CMainFrame::BuildToolbars() {
    for (const CToolbarDef& toolbar : ToolbarTable()) {
        // The colour reduction bar's lists are wide: it starts a second row
        // rather than vanish behind the first row's overflow arrow.
        if (QString(toolbar.name) == "ColorReductionBar") {
            // The current colours close the first row, where there is room.
            m_ColourBar = new CCurrentColourBar(this);
            addToolBar(m_ColourBar);
            addToolBarBreak();
        }
        QToolBar* bar = addToolBar(QString::fromUtf8(toolbar.title));
        bar->setObjectName(toolbar.name);
        bar->setIconSize(QSize(16, 16));
        for (unsigned id : toolbar.ids) {
            if (!id) {
                bar->addSeparator();
                continue;
            }
            if (QAction* action = Action(id)) bar->addAction(action);
        }
        if (QString(toolbar.name) == "ColorReductionBar")
            AddColRedToolbarLists(bar, Action(ZyIds::ChangeColorDepth));
        m_Toolbars.push_back(bar);
        if (m_ToolbarsMenu) m_ToolbarsMenu->addAction(bar->toggleViewAction());
    }
    if (!m_ColourBar) {
        m_ColourBar = new CCurrentColourBar(this);
        addToolBar(m_ColourBar);
    }
    connect(m_ColourBar, &CCurrentColourBar::EditRequested, this, &CMainFrame::EditCurrentColour);
    m_Toolbars.push_back(m_ColourBar);
    if (m_ToolbarsMenu) m_ToolbarsMenu->addAction(m_ColourBar->toggleViewAction());
    if (m_ToolbarsMenu) {
        m_ToolbarsMenu->addSeparator();
        QAction* status = m_ToolbarsMenu->addAction("&Status Bar");
        status->setCheckable(true);
        status->setChecked(true);
        connect(status, &QAction::toggled, this, [this](bool on) { statusBar()->setVisible(on); });
        m_ToolbarsMenu->addAction(m_Output->toggleViewAction());
        m_ToolbarsMenu->addAction(m_PaletteWell->toggleViewAction());
        m_ToolbarsMenu->addAction(m_Properties->toggleViewAction());
        m_ToolbarsMenu->addAction(m_ColourEditor->toggleViewAction());
    }
}

void CMainFrame::BuildStatusBar() {
    QStatusBar* bar = statusBar();
    m_Panes[IndexPane] = makePane("999/999 (index 999)");
    m_Panes[SizePane] = makePane("999KB");
    m_Panes[PositionPane] = makePane("-9999,-9999");
    m_Panes[ZoomPane] = makePane("16:1");
    m_PixelPane = new QLabel;
    m_PixelPane->setObjectName("PixelPane");
    m_PixelPane->setMinimumWidth(m_PixelPane->fontMetrics().horizontalAdvance(
        "Pixel 9999,9999 of image 999: index 255, ARGB FFFFFFFF"));
    bar->addPermanentWidget(m_PixelPane);
    for (QLabel* pane : m_Panes)
        bar->addPermanentWidget(pane);
    bar->showMessage("Ready");
}

QAction* CMainFrame::Action(unsigned id) const {
    auto it = m_Actions.find(id);
    return it == m_Actions.end() ? nullptr : it->second;
}

QMenu* CMainFrame::Menu(const QString& title) const {
    for (QAction* action : menuBar()->actions())
        if (action->menu() && action->text().remove('&') == title) return action->menu();
    return nullptr;
}

QToolBar* CMainFrame::Toolbar(const QString& name) const {
    for (QToolBar* bar : m_Toolbars)
        if (bar->objectName() == name) return bar;
    return nullptr;
}

// ---- Command route --------------------------------------------------------------------------

CChildFrame* CMainFrame::ActiveChild() const {
    if (!m_MdiArea) return nullptr;
    QMdiSubWindow* window = m_MdiArea->activeSubWindow();
    // While another window (a dialog, the output window) has the focus the
    // area has no active window: the last one the user had is meant.
    if (!window && m_LastActive && m_MdiArea->subWindowList().contains(m_LastActive.data()))
        window = m_LastActive;
    if (!window) window = m_MdiArea->currentSubWindow();
    if (!window && !m_MdiArea->subWindowList().isEmpty())
        window = m_MdiArea->subWindowList().back();
    return window ? qobject_cast<CChildFrame*>(window->widget()) : nullptr;
}

QList<CChildFrame*> CMainFrame::Children() const {
    QList<CChildFrame*> children;
    if (!m_MdiArea) return children;
    for (QMdiSubWindow* window : m_MdiArea->subWindowList())
        if (auto* child = qobject_cast<CChildFrame*>(window->widget())) children << child;
    return children;
}

QMdiSubWindow* CMainFrame::AddChild(CChildFrame* child) {
    connect(child, &CChildFrame::ContextMenuRequested, this, &CMainFrame::ShowContextMenu);
    // The well must not keep a closed document.
    // The next idle turn points it at whichever document is active then.
    // The windows themselves are the context: the frame may be half gone
    // when its last documents close.
    CPaletteWellWidget* well = m_PaletteWell->Well();
    connect(child, &QObject::destroyed, well, [well] { well->SetDocument(nullptr); });
    CPropertiesDock* properties = m_Properties;
    connect(child, &QObject::destroyed, properties,
            [properties] { properties->SetDocument(nullptr); });
    CColourEditorWidget* editor = m_ColourEditor->Editor();
    connect(child, &QObject::destroyed, editor, [editor] { editor->SetDocument(nullptr); });
    connect(child->ImageView(), &CImageView::PixelInfoChanged, m_PixelPane, &QLabel::setText);
    QMdiSubWindow* window = m_MdiArea->addSubWindow(child);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->resize(child->size());
    child->show();
    m_MdiArea->setActiveSubWindow(window);
    OnSubWindowActivated(window);
    return window;
}

void CMainFrame::EditCurrentColour(int number) {
    m_ColourEditor->Editor()->EditCurrentColour(number);
    m_ColourEditor->show();
    m_ColourEditor->raise();
}

bool CMainFrame::FrameCommand(unsigned id) {
    if (id == ViewColorEditor) {
        m_ColourEditor->show();
        m_ColourEditor->raise();
        RefreshPaletteWell();
        return true;
    }
    if (id == ViewThumbnails) {
        const bool shown = !CImageListView::ThumbnailsSetting();
        CImageListView::WriteThumbnailsSetting(shown);
        for (CChildFrame* child : Children())
            child->ListView()->ShowThumbnails(shown);
        return true;
    }
    if (id != ViewProperties && id != ShapeProperties) return false;
    m_Properties->show();
    m_Properties->raise();
    RefreshPaletteWell();
    return true;
}

bool CMainFrame::FrameUpdate(CUiCmdUI& ui) {
    if (ui.m_nID == ViewColorEditor) {
        ui.Enable(true);
        return true;
    }
    if (ui.m_nID == ViewThumbnails) {
        ui.Enable(true);
        ui.SetCheck(CImageListView::ThumbnailsSetting());
        return true;
    }
    if (ui.m_nID != ViewProperties && ui.m_nID != ShapeProperties) return false;
    ui.Enable(true);
    return true;
}

void CMainFrame::OnCommand(unsigned id) {
    if (FrameCommand(id)) {
        UpdateAllActions();
        return;
    }
    QPointer<CChildFrame> child = ActiveChild();
    if (child && child->OnCmdMsg(id)) {
        // Progress windows and message boxes take the activation while a
        // command runs; the document it ran on stays the active one.
        if (child) ActivateChild(child);
        UpdateAllActions();
        return;
    }
    m_App->OnCmdMsg(id);
    UpdateAllActions();
}

void CMainFrame::ListDocumentsInWindowMenu() {
    QMenu* menu = Menu("Window");
    if (!menu) return;
    for (QAction* item : m_DocumentItems) {
        menu->removeAction(item);
        item->deleteLater();
    }
    m_DocumentItems.clear();
    const QList<CChildFrame*> children = Children();
    if (children.isEmpty()) return;
    m_DocumentItems.push_back(menu->addSeparator());
    const CChildFrame* active = ActiveChild();
    int number = 0;
    for (CChildFrame* child : children) {
        ++number;
        // The first nine take their number as the mnemonic; "&&" keeps a name's own "&".
        QString name = child->Title();
        name.replace('&', "&&");
        QAction* item = menu->addAction(
            (number <= 9 ? QString("&%1 ").arg(number) : QString("%1 ").arg(number)) + name);
        item->setCheckable(true);
        item->setChecked(child == active);
        connect(item, &QAction::triggered, this, [this, child = QPointer<CChildFrame>(child)] {
            if (child) ActivateChild(child);
        });
        m_DocumentItems.push_back(item);
    }
}

void CMainFrame::ActivateChild(CChildFrame* child) {
    auto* window = qobject_cast<QMdiSubWindow*>(child->parentWidget());
    if (!window || !m_MdiArea->subWindowList().contains(window)) return;
    if (m_MdiArea->activeSubWindow() != window) m_MdiArea->setActiveSubWindow(window);
    m_LastActive = window;
}

void CMainFrame::ShowContextMenu(const QPoint& globalPos) {
    QMenu menu("Right Click Menu", this);
    const unsigned items[] = {EditCut,  EditCopy, EditPaste, 0,
                              ListShow, ListHide, 0,         ViewProperties};
    for (unsigned id : items) {
        if (!id) {
            menu.addSeparator();
            continue;
        }
        if (QAction* action = Action(id)) {
            UpdateAction(action);
            menu.addAction(action);
        }
    }
    menu.exec(globalPos);
}

void CMainFrame::UpdateAction(QAction* action) {
    bool ok = false;
    const unsigned id = action->data().toUInt(&ok);
    if (!ok || !id) return;
    CUiCmdUI ui(id);
    CChildFrame* child = ActiveChild();
    const bool handled =
        FrameUpdate(ui) || (child && child->OnUpdateCmdUI(ui)) || m_App->OnUpdateCmdUI(ui);
    action->setEnabled(handled && ui.m_bEnabled);
    if (action->isCheckable()) action->setChecked(handled && ui.m_bCheckSet && ui.m_bChecked);
    if (handled && ui.m_bTextSet) action->setText(QString::fromStdString(ui.m_strText));
}

void CMainFrame::UpdateAllActions() {
    for (auto& [id, action] : m_Actions)
        UpdateAction(action);
}

void CMainFrame::UpdatePanes() {
    CChildFrame* child = ActiveChild();
    auto set = [this](Pane pane, const std::string& text) {
        const QString value = QString::fromStdString(text);
        if (m_Panes[pane]->text() != value) m_Panes[pane]->setText(value);
    };
    const CChildFrame::PaneTexts texts = child ? child->Panes() : CChildFrame::PaneTexts{};
    set(IndexPane, texts.index);
    set(SizePane, texts.size);
    set(PositionPane, texts.position);
    set(ZoomPane, texts.zoom);
}

void CMainFrame::OnIdle() {
    if (!isEnabled() || !menuBar()->isEnabled()) return;
    // Toolbar buttons show their state without a menu being opened.
    for (QToolBar* bar : m_Toolbars)
        if (bar->isVisible())
            for (QAction* action : bar->actions())
                if (!action->isSeparator()) UpdateAction(action);
    if (QToolBar* bar = Toolbar("ColorReductionBar"); bar && bar->isVisible())
        RefreshColRedToolbarLists(bar);
    UpdatePanes();
    if (CChildFrame* child = ActiveChild()) child->RefreshTitle();
    RefreshPaletteWell();
}

void CMainFrame::RefreshPaletteWell() {
    if (!m_PaletteWell) return;
    CChildFrame* child = ActiveChild();
    m_PaletteWell->Well()->SetDocument(child ? child->GetDocument() : nullptr);
    if (m_Properties) m_Properties->SetDocument(child ? child->GetDocument() : nullptr);
    if (m_ColourEditor)
        m_ColourEditor->Editor()->SetDocument(child ? child->GetDocument() : nullptr);
    if (m_ColourBar) m_ColourBar->Refresh();
}

void CMainFrame::OnSubWindowActivated(QMdiSubWindow* window) {
    if (window) m_LastActive = window;
    for (CChildFrame* child : Children())
        child->SetFrameActive(window && window->widget() == child);
    UpdatePanes();
    RefreshPaletteWell();
}

void CMainFrame::SetRecentFiles(const QStringList& paths) {
    for (unsigned i = 0; i < 4; ++i) {
        QAction* action = Action(FileMru1 + i);
        if (!action) continue;
        const bool used = static_cast<int>(i) < paths.size();
        action->setVisible(used);
        if (used)
            action->setText(
                QString("&%1 %2").arg(i + 1).arg(QFileInfo(paths[static_cast<int>(i)]).fileName()));
    }
}

void CMainFrame::SetInputEnabled(bool enabled) {
    menuBar()->setEnabled(enabled);
    for (QToolBar* bar : m_Toolbars)
        bar->setEnabled(enabled);
    if (m_MdiArea) m_MdiArea->setEnabled(enabled);
}

// ---- Closing
// -------------------------------------------------------------------------------------

void CMainFrame::SaveFrameState() {
    ZyProfile().WriteString(kToolBarSection, "State", saveState().toBase64().toStdString());
    WriteWindowPlacement(ZyProfile(), kMainWindowSection, PlacementOf(*this));
}

void CMainFrame::closeEvent(QCloseEvent* event) {
    if (!m_App->CloseAllDocuments()) {
        event->ignore();
        return;
    }
    m_IdleTimer.stop();
    SaveFrameState();
    m_Output->close();
    event->accept();
}
