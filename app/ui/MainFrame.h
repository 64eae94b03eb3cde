#pragma once
// CMainFrame: the top-level window. A menu bar built from the menu table,
// the toolbars, the status bar with its panes, the MDI area that holds the
// document windows, and the output window. Menu and toolbar commands go to
// the active document window first and then to the application; the same
// route decides whether each item is enabled and checked.

#include "app/ui/CommandTarget.h"

#include <QMainWindow>
#include <QPointer>
#include <QTimer>

#include <map>

class CChildFrame;
class CColourEditor;
class CCurrentColourBar;
class COutputWindow;
class CPaletteWell;
class CPropertiesDock;
class CZy;
class QLabel;
class QMdiArea;
class QMdiSubWindow;
class QMenu;
class QToolBar;
struct CMenuItem;

class CMainFrame : public QMainWindow {
    Q_OBJECT
  public:
    enum Pane { IndexPane, SizePane, PositionPane, ZoomPane, PaneCount };

    explicit CMainFrame(CZy* app);
    ~CMainFrame() override;

    // Builds the bars and windows, restores the placement of "Main Window"
    // and the bar layout of "ToolBarSettings". False when a part failed.
    bool Create();

    QMdiArea* MdiArea() const { return m_MdiArea; }
    CChildFrame* ActiveChild() const;
    QList<CChildFrame*> Children() const;
    QMdiSubWindow* AddChild(CChildFrame* child);
    COutputWindow* OutputWindow() const { return m_Output; }
    CPaletteWell* PaletteWell() const { return m_PaletteWell; }
    CPropertiesDock* Properties() const { return m_Properties; }
    CColourEditor* ColourEditor() const { return m_ColourEditor; }
    CCurrentColourBar* CurrentColourBar() const { return m_ColourBar; }
    // Shows the colour editor on current colour `number`.
    void EditCurrentColour(int number);
    // The status-bar pane with the pixel under the pointer.
    QLabel* PixelPane() const { return m_PixelPane; }

    QAction* Action(unsigned id) const;
    QMenu* Menu(const QString& title) const;
    QToolBar* Toolbar(const QString& name) const;
    QLabel* PaneLabel(Pane pane) const { return m_Panes[pane]; }

    void OnCommand(unsigned id);
    // Asks the command route for the item's state and shows it.
    void UpdateAction(QAction* action);
    void UpdateAllActions();
    void UpdatePanes();
    void SetRecentFiles(const QStringList& paths);
    // Disables or enables every input of the frame (menus, bars, documents)
    // while a progress window is up.
    void SetInputEnabled(bool enabled);

    // The bar layout and the placement, as the frame writes them on close.
    void SaveFrameState();

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    QAction* MakeAction(unsigned id, const char* text, const char* prompt, const char* shortcut,
                        bool checkable);
    void BuildMenu(QMenu* menu, const std::vector<CMenuItem>& items);
    void BuildMenus();
    void BuildToolbars();
    void BuildStatusBar();
    void BuildExtraActions();
    // The Window menu's list of open documents, made afresh each time the
    // menu opens: "1 name" ... with a check on the active one.
    void ListDocumentsInWindowMenu();
    void OnSubWindowActivated(QMdiSubWindow* window);
    // Makes `child` the active document window again.
    void ActivateChild(CChildFrame* child);
    // The shape list's context menu: its items are this frame's actions.
    void ShowContextMenu(const QPoint& globalPos);
    void OnIdle();
    // Points the palette well at the active document's focused image.
    void RefreshPaletteWell();

    CZy* m_App;
    QMdiArea* m_MdiArea = nullptr;
    COutputWindow* m_Output = nullptr;
    CPaletteWell* m_PaletteWell = nullptr;
    CPropertiesDock* m_Properties = nullptr;
    CColourEditor* m_ColourEditor = nullptr;
    CCurrentColourBar* m_ColourBar = nullptr;
    QLabel* m_PixelPane = nullptr;
    // The frame's own items (the docked windows); true when `id` is one.
    bool FrameCommand(unsigned id);
    bool FrameUpdate(CUiCmdUI& ui);
    std::map<unsigned, QAction*> m_Actions;
    std::vector<QToolBar*> m_Toolbars;
    QMenu* m_ToolbarsMenu = nullptr;
    std::vector<QAction*> m_DocumentItems; // in the Window menu
    QLabel* m_Panes[PaneCount] = {};
    QTimer m_IdleTimer;
    QPointer<QMdiSubWindow> m_LastActive;
};
