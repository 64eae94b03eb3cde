#pragma once
// CImageListView: the shape list, the left-hand view of every document
// window. It shows the document's images (CImageListModel asks the
// document for every cell) and lets the user edit the document's selection
// and focus, which the document's CSelectionModel holds so that commands
// read them without a window. It steps through the images, plays them as
// an animation, and turns drags and drops into commands on the document:
// a move within the list, images from another document, a bitmap. Files
// dropped from the desktop leave as the FilesDropped signal, and the
// context menu as ContextMenuRequested: the frame above decides what they
// do.

#include "app/doc/CRange.h"
#include "app/doc/View.h"
#include "app/ui/CommandTarget.h"

#include <QStringList>
#include <QTableView>
#include <QTimer>

#include <string>
#include <vector>

class CCommand;
class CImageListModel;
class CTavixDoc;
class QMimeData;
class CTavixImage;
class TCaptionStrip;

class CImageListView : public QTableView, public CView, public CCommandTarget {
    Q_OBJECT
  public:
    enum { kAnimationTimerId = 71 };

    explicit CImageListView(CTavixDoc* doc, QWidget* parent = nullptr);
    ~CImageListView() override;

    CTavixDoc* GetDocument() const { return m_Doc; }
    TCaptionStrip* Caption() const { return m_Caption; }
    CImageListModel* Model() const { return m_Model; }

    // CView
    void OnUpdate(CView* sender, long lHint, CObject* hint) override;
    // CCommandTarget
    bool OnCmdMsg(unsigned id) override;
    bool OnUpdateCmdUI(CUiCmdUI& ui) override;

    // Selection operations (the document's selection model does the work;
    // the view shows the result and tells the other views).
    void SelectAll();
    void SelectNone();
    void InvertSelection();
    // Returns false (after "Invalid range.") when the expression is invalid.
    bool SelectByExpression(const std::string& expression, int mode);
    void GetSelection(CRange& range) const;
    void SetSelection(const CRange& range);
    int GetFocusIndex() const;

    // Navigation.
    void Next();
    void Previous();
    void First();
    void Last();
    void MoveFocus(int target, bool clearFirst, bool select);

    // Animation: direction -1 backward, +1 forward, 0 stopped.
    void Play(int direction);
    int AnimationDirection() const { return m_AnimDirection; }
    bool IsSelectionCaptured() const { return m_SelectionCaptured; }
    // One step of the animation (what each timer tick does).
    void AnimationTick();
    int AnimationInterval() const { return m_AnimTimer.interval(); }

    // Status-bar panes.
    std::string IndexPaneText() const;
    std::string SizePaneText() const;

    // Drops, each submitted as a command (also reachable without a drag,
    // for the tests). `row` is the row dropped on, -1 below the last.
    void DropImagePointers(const std::vector<CTavixImage*>& images, CTavixDoc* source, int row);
    void DropBitmap(const QImage& image);
    // What a drop of `mime` above `row` (-1: below the last) does.
    void DropMime(const QMimeData* mime, int row);

    // Starts editing the focused image's name in place (F2).
    void EditFocusedName();

    // Thumbnails beside the names (setting "CImageListView"/"m_Thumbnails",
    // default on; the frame's View item switches every list).
    bool ThumbnailsShown() const { return m_Thumbnails; }
    void ShowThumbnails(bool shown);
    static bool ThumbnailsSetting();
    static void WriteThumbnailsSetting(bool shown);

  signals:
    // The view got the keyboard focus: it is now its frame's active view.
    void Activated();
    // Files were dropped from the desktop onto the list.
    void FilesDropped(const QStringList& paths);
    // The user asked for the context menu at `globalPos`.
    void ContextMenuRequested(const QPoint& globalPos);

  protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void startDrag(Qt::DropActions supportedActions) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    // Every edit of a row edits its name, wherever the row was clicked.
    bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;

  private:
    void OnSelectionChanged(const QItemSelection& selected, const QItemSelection& deselected);
    void OnCurrentChanged(const QModelIndex& current, const QModelIndex& previous);
    // Shows the document's selection and focus in the list (no notices).
    void PullSelection();
    // After the selection model changed: show it and tell the other views.
    void SelectionEdited();
    void SetRowCountFromDocument();
    // Widens the Name column to its longest name (never below its default,
    // never beyond a third of a wide screen's worth).
    void FitNameColumn();
    void StopAnimation();
    // Runs a list command on the document; true when it was submitted.
    bool Run(CCommand* cmd);
    void ScrollToFocus();

    CTavixDoc* m_Doc;
    CImageListModel* m_Model;
    TCaptionStrip* m_Caption;
    bool m_Syncing = false;
    QTimer m_AnimTimer;
    int m_AnimDirection = 0;
    CRange m_AnimSet;
    bool m_SelectionCaptured = false;
    bool m_Thumbnails = true;
};

// The last expression and mode of the range-expression dialog, kept while
// the program runs.
struct CSelectWildcardState {
    std::string m_Expression;
    int m_Mode = 0;
};
CSelectWildcardState& SelectWildcardState();
