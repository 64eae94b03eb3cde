#include "app/ui/ImageListView.h"

#include "app/doc/Command.h"
#include "app/doc/CommandHandler.h"
#include "app/doc/Hints.h"
#include "app/doc/ImageListClip.h"
#include "app/doc/ListEditCmds.h"
#include "app/doc/Profile.h"
#include "app/doc/TavixDoc.h"
#include "app/doc/TavixImage.h"
#include "app/doc/UserInterface.h"
#include "app/ui/CaptionStrip.h"
#include "app/doc/CommandIds.h"
#include "app/ui/ImageListDrag.h"
#include "app/ui/ImageListFormat.h"
#include "app/ui/ImageListModel.h"
#include "app/ui/QtImage.h"
#include "app/ui/SelectWildcardDlg.h"

#include <QContextMenuEvent>
#include <QDrag>
#include <QFontMetrics>
#include <QHeaderView>
#include <QMimeData>
#include <QPainter>
#include <QStyle>
#include <QStyledItemDelegate>
#include <QUrl>

#include <algorithm>

using namespace ZyIds;

namespace {

constexpr const char* kListSection = "CImageListView";
constexpr int kThumbnailGap = 4;

// The Name column with the image's thumbnail in a fixed slot before the
// eye icon and the name. Only painted rows ask for their thumbnails, so a
// long list costs no more than the rows on screen.
class CThumbnailDelegate : public QStyledItemDelegate {
  public:
    explicit CThumbnailDelegate(CImageListView* view) : QStyledItemDelegate(view), m_View(view) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        if (!m_View->ThumbnailsShown()) {
            QStyledItemDelegate::paint(painter, option, index);
            return;
        }
        constexpr int slot = CImageListModel::kThumbnailSize + kThumbnailGap;
        // The selection colour spans the whole cell, thumbnail included.
        QStyleOptionViewItem background = option;
        initStyleOption(&background, index);
        background.text.clear();
        background.icon = QIcon();
        background.state &= ~QStyle::State_HasFocus; // the name part draws the focus
        m_View->style()->drawControl(QStyle::CE_ItemViewItem, &background, painter, m_View);
        const QImage picture = index.data(CImageListModel::ThumbnailRole).value<QImage>();
        if (!picture.isNull()) {
            const QRect cell = option.rect;
            const QPoint at(cell.left() + kThumbnailGap / 2 +
                                (CImageListModel::kThumbnailSize - picture.width()) / 2,
                            cell.top() + (cell.height() - picture.height()) / 2);
            painter->drawImage(at, picture);
        }
        QStyleOptionViewItem rest = option;
        rest.rect.setLeft(option.rect.left() + slot);
        QStyledItemDelegate::paint(painter, rest, index);
    }

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        QSize size = QStyledItemDelegate::sizeHint(option, index);
        if (m_View->ThumbnailsShown()) {
            size.rwidth() += CImageListModel::kThumbnailSize + kThumbnailGap;
            size.setHeight(std::max(size.height(), CImageListModel::kThumbnailSize + 2));
        }
        return size;
    }

  private:
    const CImageListView* m_View;
};

} // namespace

CSelectWildcardState& SelectWildcardState() {
    static CSelectWildcardState state;
    return state;
}

CImageListView::CImageListView(CTavixDoc* doc, QWidget* parent) : QTableView(parent), m_Doc(doc) {
    RegisterDragDocument(doc);
    m_Caption = new TCaptionStrip("Shape List", kCaptionHeight, this);
    m_Model = new CImageListModel(doc, this);
    setModel(m_Model);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setSortingEnabled(false);
    setShowGrid(false);
    setWordWrap(false);
    setIconSize(QSize(16, 16));
    setItemDelegateForColumn(0, new CThumbnailDelegate(this));
    m_Thumbnails = ThumbnailsSetting();
    // F2 and a double click edit a name in place; the edit is a command.
    setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::DoubleClicked);
    verticalHeader()->hide();
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 4);
    horizontalHeader()->setSectionsClickable(false);
    horizontalHeader()->setHighlightSections(false);
    for (int c = 0; c < kListColumnCount; ++c)
        setColumnWidth(c, kListColumns[c].width);
    horizontalHeader()->setStretchLastSection(true);
    setDragEnabled(true);
    setAcceptDrops(true);
    setDropIndicatorShown(false);
    setDragDropMode(QAbstractItemView::DragDrop);
    setDefaultDropAction(Qt::CopyAction);
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &CImageListView::OnSelectionChanged);
    connect(selectionModel(), &QItemSelectionModel::currentChanged, this,
            &CImageListView::OnCurrentChanged);
    m_AnimTimer.setTimerType(Qt::PreciseTimer);
    connect(&m_AnimTimer, &QTimer::timeout, this, &CImageListView::AnimationTick);
    m_Doc->AddView(this);
    ShowThumbnails(m_Thumbnails);
    OnUpdate(nullptr, 0, nullptr);
}

bool CImageListView::ThumbnailsSetting() {
    return ZyProfile().GetInt(kListSection, "m_Thumbnails", 1) != 0;
}

void CImageListView::WriteThumbnailsSetting(bool shown) {
    ZyProfile().WriteInt(kListSection, "m_Thumbnails", shown ? 1 : 0);
}

void CImageListView::ShowThumbnails(bool shown) {
    m_Thumbnails = shown;
    const int textRow = fontMetrics().height() + 4;
    verticalHeader()->setDefaultSectionSize(
        shown ? std::max(textRow, CImageListModel::kThumbnailSize + 2) : textRow);
    FitNameColumn();
    viewport()->update();
}

CImageListView::~CImageListView() {
    m_AnimTimer.stop();
    m_Doc->RemoveView(this);
    UnregisterDragDocument(m_Doc);
}

// ---- Selection mirror --------------------------------------------------------------

void CImageListView::PullSelection() {
    const CSelectionModel& model = m_Doc->GetSelectionModel();
    QItemSelection selection;
    const int rows = m_Model->rowCount();
    for (int i = 0; i < rows;) {
        if (!model.IsSelected(i)) {
            ++i;
            continue;
        }
        int end = i;
        while (end + 1 < rows && model.IsSelected(end + 1))
            ++end;
        selection.select(m_Model->index(i, 0), m_Model->index(end, kListColumnCount - 1));
        i = end + 1;
    }
    m_Syncing = true;
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    const int focus = model.GetFocus();
    if (focus >= 0 && focus < rows)
        selectionModel()->setCurrentIndex(m_Model->index(focus, 0), QItemSelectionModel::NoUpdate);
    else
        selectionModel()->clearCurrentIndex();
    m_Syncing = false;
}

void CImageListView::SelectionEdited() {
    PullSelection();
    viewport()->update();
    m_Doc->UpdateAllViews(nullptr);
}

void CImageListView::OnSelectionChanged(const QItemSelection& selected,
                                        const QItemSelection& deselected) {
    if (m_Syncing) return;
    CSelectionModel& model = m_Doc->GetSelectionModel();
    const int count = m_Doc->GetImageCount();
    CRange changed(count);
    auto mark = [&](const QItemSelection& ranges, bool on) {
        for (const QItemSelectionRange& range : ranges)
            for (int row = range.top(); row <= range.bottom(); ++row) {
                if (row >= count || model.IsSelected(row) == on) continue;
                model.Select(row, on);
                changed.SetAt(row, 1);
            }
    };
    mark(deselected, false);
    mark(selected, true);
    if (changed.Count() == 0) return;
    // The worksheet shows the selected images: it repaints those that came
    // and went.
    CModifiedHint hint(changed);
    m_Doc->UpdateAllViews(this, 0, &hint);
}

void CImageListView::OnCurrentChanged(const QModelIndex& current, const QModelIndex&) {
    if (m_Syncing || !current.isValid()) return;
    const int row = current.row();
    const int count = m_Doc->GetImageCount();
    if (row >= count) return;
    CRange range(count);
    range.SetAt(row, 1);
    const int old = GetFocusIndex();
    if (old < count) range.SetAt(old, 1);
    CModifiedHint hint(range);
    m_Doc->UpdateAllViews(this, 0, &hint);
    m_Doc->SetFocus(row, false);
}

// ---- Operations -----------------------------------------------------------------------

void CImageListView::SelectAll() {
    m_Doc->GetSelectionModel().SelectAll(true);
    SelectionEdited();
}

void CImageListView::SelectNone() {
    m_Doc->GetSelectionModel().SelectAll(false);
    SelectionEdited();
}

void CImageListView::InvertSelection() {
    m_Doc->GetSelectionModel().Invert();
    SelectionEdited();
}

bool CImageListView::SelectByExpression(const std::string& expression, int mode) {
    std::vector<std::string> names;
    for (const CTavixImage* image : m_Doc->GetImages())
        names.push_back(image->GetName());
    if (!m_Doc->GetSelectionModel().SelectByExpression(expression, names, mode)) {
        ZyUi().MessageBox("Invalid range.", MsgButtons::OK, MsgIcon::Warning);
        return false;
    }
    SelectionEdited();
    return true;
}

void CImageListView::GetSelection(CRange& range) const {
    range = m_Doc->GetSelectionModel().GetSelection();
}

void CImageListView::SetSelection(const CRange& range) {
    m_Doc->GetSelectionModel().SetSelection(range);
    PullSelection();
    viewport()->update();
    CModifiedHint hint(CRange(m_Doc->GetImageCount()));
    hint.m_Range.SetAll(1);
    m_Doc->UpdateAllViews(this, 0, &hint);
}

int CImageListView::GetFocusIndex() const {
    const int count = m_Model->rowCount();
    if (count <= 0) return 0;
    return std::clamp(m_Doc->GetSelectionModel().GetFocus(), 0, count - 1);
}

// ---- Navigation ------------------------------------------------------------------------

void CImageListView::MoveFocus(int target, bool clearFirst, bool select) {
    const int count = m_Model->rowCount();
    if (target < 0 || target >= count) return;
    if (target == GetFocusIndex() && m_Doc->GetSelectionModel().GetFocus() >= 0) return;
    if (clearFirst) {
        selectionModel()->clearSelection();
        viewport()->update();
    }
    const QModelIndex index = m_Model->index(target, 0);
    selectionModel()->setCurrentIndex(index, select ? QItemSelectionModel::Select |
                                                          QItemSelectionModel::Rows
                                                    : QItemSelectionModel::NoUpdate);
    scrollTo(index, QAbstractItemView::EnsureVisible);
}

void CImageListView::Next() {
    const int count = m_Model->rowCount();
    if (count < 1) return;
    const int focus = GetFocusIndex();
    MoveFocus(focus + 1 >= count ? 0 : focus + 1, true, true);
}

void CImageListView::Previous() {
    const int count = m_Model->rowCount();
    if (count < 1) return;
    const int focus = GetFocusIndex();
    MoveFocus(focus - 1 < 0 ? count - 1 : focus - 1, true, true);
}

void CImageListView::First() {
    MoveFocus(0, true, true);
}

void CImageListView::Last() {
    MoveFocus(m_Model->rowCount() - 1, true, true);
}

// ---- Animation ---------------------------------------------------------------------------

void CImageListView::StopAnimation() {
    m_AnimDirection = 0;
    m_AnimTimer.stop();
    if (m_SelectionCaptured) {
        SetSelection(m_AnimSet);
        m_SelectionCaptured = false;
    }
}

void CImageListView::Play(int direction) {
    if (m_AnimDirection != 0) {
        StopAnimation();
        return;
    }
    m_AnimDirection = direction;
    int rate = ZyProfile().GetInt("CImageListView", "m_FrameRate", 15);
    // A stored rate of 0 (or less) would divide by zero: play at the default.
    if (rate <= 0) rate = 15;
    m_AnimTimer.start(std::max(1, 1000 / rate));
    GetSelection(m_AnimSet);
    m_SelectionCaptured = true;
    if (m_AnimSet.Count() <= 1) {
        m_SelectionCaptured = false;
        m_AnimSet.SetAll(1);
    }
}

void CImageListView::AnimationTick() {
    const int count = m_Doc->GetImageCount();
    if (count < 2) {
        m_AnimTimer.stop();
        m_AnimDirection = 0;
        return;
    }
    if (m_AnimDirection == 0) return;
    int target = GetFocusIndex();
    for (int step = 0; step < count; ++step) {
        target += m_AnimDirection;
        if (target < 0) target = count - 1;
        if (target >= count) target = 0;
        if (target < m_AnimSet.GetSize() && m_AnimSet.IsSelected(target)) break;
    }
    MoveFocus(target, true, true);
}

// ---- Panes --------------------------------------------------------------------------------

std::string CImageListView::IndexPaneText() const {
    return ::IndexPaneText(GetFocusIndex(), m_Model->rowCount());
}

std::string CImageListView::SizePaneText() const {
    return ::SizePaneText(DocumentByteSize(*m_Doc));
}

// ---- Updates --------------------------------------------------------------------------------

void CImageListView::SetRowCountFromDocument() {
    const int count = m_Doc->GetImageCount();
    CSelectionModel& model = m_Doc->GetSelectionModel();
    if (model.GetItemCount() != count) model.SetItemCount(count);
    // The focus starts on the first image.
    if (model.GetFocus() < 0 && count > 0) model.SetFocus(0);
    if (m_Model->rowCount() != count) {
        m_Syncing = true;
        m_Model->SetRowCount(count);
        m_Syncing = false;
    } else {
        m_Model->RefreshCells();
    }
    FitNameColumn();
}

void CImageListView::FitNameColumn() {
    constexpr int kMaxNameWidth = 480;
    const QFontMetrics metrics(font());
    int widest = 0;
    for (int row = 0; row < m_Model->rowCount(); ++row)
        widest = std::max(widest,
                          metrics.horizontalAdvance(
                              m_Model->data(m_Model->index(row, 0), Qt::DisplayRole).toString()));
    // The eye icon, its gap and the cell's margins come before the text.
    const int wanted = widest + iconSize().width() +
                       3 * style()->pixelMetric(QStyle::PM_FocusFrameHMargin) + 12 +
                       (m_Thumbnails ? CImageListModel::kThumbnailSize + kThumbnailGap : 0);
    setColumnWidth(0, std::clamp(wanted, kListColumns[0].width, kMaxNameWidth));
}

void CImageListView::OnUpdate(CView*, long, CObject* hint) {
    if (auto* modified = dynamic_cast<CModifiedHint*>(hint)) {
        // Only what the hint names is drawn again; with the whole-document
        // mark (or an empty range) every thumbnail may be stale.
        if (modified->m_Range.GetSize() > 0)
            m_Model->InvalidateThumbnails(modified->m_Range);
        else
            m_Model->PruneThumbnails();
        m_Model->RefreshCells();
        FitNameColumn(); // a rename may have made a name longer
        viewport()->update();
        return;
    }
    // Images came or went: forget those that went, so that a new image made
    // where an old one lay never shows the old picture.
    m_Model->PruneThumbnails();
    if (dynamic_cast<CDeleteHint*>(hint)) {
        const int oldFocus = GetFocusIndex();
        SetRowCountFromDocument();
        const int count = m_Doc->GetImageCount();
        if (count > 0) {
            CSelectionModel& model = m_Doc->GetSelectionModel();
            model.SelectAll(false);
            const int focus = std::min(oldFocus, count - 1);
            model.Select(focus);
            model.SetFocus(focus);
        }
        PullSelection();
        viewport()->update();
        return;
    }
    SetRowCountFromDocument();
    PullSelection();
    viewport()->update();
}

// ---- Commands -------------------------------------------------------------------------------

bool CImageListView::OnCmdMsg(unsigned id) {
    switch (id) {
    case EditSelectAll:
        SelectAll();
        return true;
    case EditSelectNone:
        SelectNone();
        return true;
    case EditInvertSelection:
        InvertSelection();
        return true;
    case EditSelectRange: {
        CSelectWildcardData data;
        data.m_Expression = SelectWildcardState().m_Expression;
        data.m_Mode = SelectWildcardState().m_Mode;
        if (ZyUi().EditDialog(data)) {
            SelectWildcardState() = {data.m_Expression, data.m_Mode};
            SelectByExpression(data.m_Expression, data.m_Mode);
        }
        return true;
    }
    case NextImage:
        Next();
        return true;
    case PreviousImage:
        Previous();
        return true;
    case FirstImage:
        First();
        return true;
    case LastImage:
        Last();
        return true;
    case PlayBackward:
        Play(-1);
        return true;
    case PlayForward:
        Play(1);
        return true;
    case ListShow:
        m_Doc->AddSelectedToWorksheet();
        return true;
    case ListHide:
        m_Doc->RemoveSelectedFromWorksheet();
        return true;
    default:
        return false;
    }
}

bool CImageListView::OnUpdateCmdUI(CUiCmdUI& ui) {
    const int count = m_Model->rowCount();
    switch (ui.m_nID) {
    case NextImage:
    case PreviousImage:
    case FirstImage:
    case LastImage:
        ui.Enable(count > 1);
        return true;
    case EditSelectAll:
    case EditSelectNone:
    case EditInvertSelection:
    case EditSelectRange:
    case ListShow:
    case ListHide:
        ui.Enable(m_Doc->GetImageCount() >= 1);
        return true;
    case PlayBackward:
        ui.Enable(m_Doc->GetImageCount() > 1);
        ui.SetCheck(m_AnimDirection == -1);
        return true;
    case PlayForward:
        ui.Enable(m_Doc->GetImageCount() > 1);
        ui.SetCheck(m_AnimDirection == 1);
        return true;
    default:
        return false;
    }
}

// ---- Context menu and activation ---------------------------------------------------------------

void CImageListView::contextMenuEvent(QContextMenuEvent* event) {
    emit ContextMenuRequested(event->globalPos());
}

void CImageListView::focusInEvent(QFocusEvent* event) {
    QTableView::focusInEvent(event);
    emit Activated();
}

bool CImageListView::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) {
    if (!index.isValid()) return QTableView::edit(index, trigger, event);
    return QTableView::edit(index.sibling(index.row(), 0), trigger, event);
}

void CImageListView::EditFocusedName() {
    if (m_Doc->GetImageCount() < 1) return;
    const QModelIndex index = m_Model->index(GetFocusIndex(), 0);
    scrollTo(index);
    QAbstractItemView::edit(index);
}

// ---- Drag and drop ----------------------------------------------------------------------------

void CImageListView::startDrag(Qt::DropActions) {
    std::vector<CTavixImage*> images;
    const CSelectionModel& selection = m_Doc->GetSelectionModel();
    for (int i = selection.FirstSelected(); i >= 0; i = selection.NextSelected(i))
        if (CTavixImage* image = m_Doc->GetImageAt(i)) images.push_back(image);
    if (images.empty()) return;
    auto* mime = new CImageListViewDataSource(images.size() == 1 ? images.front() : nullptr);
    mime->setData(kImageListMimeType, EncodeImages(images));
    const std::vector<const CTavixImage*> records(images.begin(), images.end());
    mime->setData(kImageListClipFormat, QByteArray::fromStdString(EncodeImageList(records)));
    SetDragSourceDocument(m_Doc);
    auto* drag = new QDrag(this);
    drag->setMimeData(mime);
    drag->exec(Qt::CopyAction | Qt::MoveAction, Qt::CopyAction);
    SetDragSourceDocument(nullptr);
}

void CImageListView::dragEnterEvent(QDragEnterEvent* event) {
    if (!IsAcceptableDrop(event->mimeData())) {
        event->ignore();
        return;
    }
    event->setDropAction(Qt::CopyAction);
    event->accept();
}

void CImageListView::dragMoveEvent(QDragMoveEvent* event) {
    if (!IsAcceptableDrop(event->mimeData())) {
        event->ignore();
        return;
    }
    event->setDropAction(Qt::CopyAction);
    event->accept();
}

void CImageListView::dropEvent(QDropEvent* event) {
    event->setDropAction(Qt::CopyAction);
    event->accept();
    const QModelIndex target = indexAt(event->position().toPoint());
    DropMime(event->mimeData(), target.isValid() ? target.row() : -1);
}

void CImageListView::DropMime(const QMimeData* mime, int row) {
    if (mime->hasFormat(kImageListMimeType) && DragSourceDocument()) {
        CTavixDoc* source = DragSourceDocument();
        DropImagePointers(DecodeImages(mime->data(kImageListMimeType), source), source, row);
        return;
    }
    if (mime->hasFormat(kImageListClipFormat)) {
        // Whole records from another Zy process.
        auto images = DecodeImageList(mime->data(kImageListClipFormat).toStdString());
        if (!images.empty()) Run(new CInsertImagesCmd(std::move(images), row, "Drop Images"));
        return;
    }
    if (mime->hasFormat("image/png")) {
        DropBitmap(QImage::fromData(mime->data("image/png"), "PNG"));
        return;
    }
    if (mime->hasImage()) {
        DropBitmap(qvariant_cast<QImage>(mime->imageData()));
        return;
    }
    if (mime->hasUrls()) {
        QStringList paths;
        for (const QUrl& url : mime->urls())
            if (url.isLocalFile()) paths << url.toLocalFile();
        if (!paths.isEmpty()) emit FilesDropped(paths);
    }
}

bool CImageListView::Run(CCommand* cmd) {
    StopAnimation();
    const bool submitted = m_Doc->GetCommandHandler().Start(cmd);
    if (submitted) ScrollToFocus();
    return submitted;
}

void CImageListView::ScrollToFocus() {
    if (m_Model->rowCount() > 0)
        scrollTo(m_Model->index(GetFocusIndex(), 0), QAbstractItemView::EnsureVisible);
}

void CImageListView::DropBitmap(const QImage& bitmap) {
    std::unique_ptr<CTavixImage> image = FromQImage(bitmap);
    if (!image) return;
    std::vector<std::unique_ptr<CTavixImage>> images;
    images.push_back(std::move(image));
    Run(new CInsertImagesCmd(std::move(images), -1, "Drop Bitmap"));
}

void CImageListView::DropImagePointers(const std::vector<CTavixImage*>& images, CTavixDoc* source,
                                       int row) {
    if (images.empty() || !source) return;
    if (source == m_Doc) {
        // The drag carries the selection; a move takes it from the model.
        Run(new CMoveImagesCmd(row));
        return;
    }
    std::vector<std::unique_ptr<CTavixImage>> copies;
    try {
        copies = CopyImages(images);
    } catch (...) {
        ZyUi().MessageBox("The dragged images could not be copied.", MsgButtons::OK,
                          MsgIcon::Error);
        return;
    }
    Run(new CInsertImagesCmd(std::move(copies), row));
}
