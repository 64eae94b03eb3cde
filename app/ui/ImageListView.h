#pragma once
// CImageListView: the shape list, the left-hand view of every document
// window. A virtual list: the model below holds no data of its own and asks
// the document for every cell. The view owns the document's selection and
// focused image as the user sees them (the document's CSelectionModel holds
// the values, so commands read them without a window), steps through the
// images, plays them as an animation, and moves images in and out by drag
// and drop.

#include "app/doc/CRange.h"
#include "app/doc/View.h"
#include "app/ui/CommandTarget.h"

#include <QAbstractTableModel>
#include <QTableView>
#include <QTimer>

#include <functional>
#include <string>
#include <vector>

class CTavixDoc;
class CTavixImage;
class TCaptionStrip;

// The list's model: the document's images as rows of the seven columns.
class CImageListModel : public QAbstractTableModel {
    Q_OBJECT
  public:
    explicit CImageListModel(CTavixDoc* doc, QObject* parent = nullptr);

    // The row count as the view last set it from the document.
    void SetRowCount(int rows);
    // Repaints the cells without changing the rows.
    void RefreshCells();

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    Qt::DropActions supportedDropActions() const override;

  private:
    CTavixDoc* m_Doc;
    int m_Rows = 0;
};

// The private drag type: in-process addresses of image records.
constexpr const char* kImageListMimeType = "application/x-zy-image-list";

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

    // Selection operations.
    void SelectAll();
    void SelectNone();
    void InvertSelection();
    // Returns false (after "Invalid range.") when the expression is invalid.
    bool SelectByExpression(const std::string& expression, int mode);
    void GetSelection(CRange& range) const;
    void SetSelection(const CRange& range);
    int GetFocusIndex() const;
    int IndexOf(const CTavixImage* image) const;
    int FirstSelected() const { return NextSelected(-1); }
    int NextSelected(int after) const;
    int FirstUnselected() const { return NextUnselected(-1); }
    int NextUnselected(int after) const;

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

    // Drops (also reachable without a drag, for the tests).
    void DropImagePointers(const std::vector<CTavixImage*>& images, CTavixDoc* source, int row);
    void DropBitmap(const QImage& image);
    // What files dropped from the desktop do (the application sets it).
    static void SetFileDropHandler(std::function<void(CTavixDoc*, const QStringList&)> handler);

  signals:
    // The view got the keyboard focus: it is now its frame's active view.
    void Activated();

  protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void startDrag(Qt::DropActions supportedActions) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

  private:
    void OnSelectionChanged(const QItemSelection& selected, const QItemSelection& deselected);
    void OnCurrentChanged(const QModelIndex& current, const QModelIndex& previous);
    // Shows the document's selection and focus in the list (no notices).
    void PullSelection();
    // Makes exactly the rows flagged in `rows` selected (one notice).
    void ApplySelection(const std::vector<uint8_t>& rows);
    std::vector<uint8_t> SelectedRows() const;
    void SetRowCountFromDocument();
    void DropFromOtherDocument(const std::vector<CTavixImage*>& images, int row);
    void MoveWithinDocument(int row);
    void StopAnimation();

    CTavixDoc* m_Doc;
    CImageListModel* m_Model;
    TCaptionStrip* m_Caption;
    bool m_Syncing = false;
    QTimer m_AnimTimer;
    int m_AnimDirection = 0;
    CRange m_AnimSet;
    bool m_SelectionCaptured = false;
};

// The last expression and mode of the range-expression dialog, kept while
// the program runs.
struct CSelectWildcardState {
    std::string m_Expression;
    int m_Mode = 0;
};
CSelectWildcardState& SelectWildcardState();
