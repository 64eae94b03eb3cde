#include "app/ui/ImageListView.h"

#include "app/doc/Hints.h"
#include "app/doc/RangeExpression.h"
#include "app/doc/TavixDoc.h"
#include "app/doc/TavixImage.h"
#include "app/doc/UserInterface.h"
#include "app/ui/CaptionStrip.h"
#include "app/ui/CommandIds.h"
#include "app/ui/IconFactory.h"
#include "app/ui/ImageListFormat.h"
#include "app/ui/MainFrame.h"
#include "app/ui/QtImage.h"
#include "app/ui/QtUserInterface.h"
#include "app/ui/SelectWildcardDlg.h"

#include "app/doc/Profile.h"

#include <QBuffer>
#include <QContextMenuEvent>
#include <QDrag>
#include <QHeaderView>
#include <QMenu>
#include <QMimeData>
#include <QUrl>

#include <algorithm>
#include <cstring>
#include <set>

using namespace ZyIds;

namespace {

// Documents whose shape list is open: a dragged block is trusted only when
// its source is one of them.
std::set<CTavixDoc*>& liveDocuments() {
    static std::set<CTavixDoc*> docs;
    return docs;
}

// The drag in progress in this process: its document and first image.
CTavixDoc* g_dragSourceDoc = nullptr;
CTavixImage* g_dragFirstImage = nullptr;

std::function<void(CTavixDoc*, const QStringList&)>& fileDropHandler() {
    static std::function<void(CTavixDoc*, const QStringList&)> handler;
    return handler;
}

QByteArray encodeImages(const std::vector<CTavixImage*>& images) {
    QByteArray block;
    const uint32_t count = static_cast<uint32_t>(images.size());
    block.append(reinterpret_cast<const char*>(&count), sizeof count);
    for (CTavixImage* image : images) {
        const uint64_t address = reinterpret_cast<uintptr_t>(image);
        block.append(reinterpret_cast<const char*>(&address), sizeof address);
    }
    return block;
}

// The images of a dragged block, each checked against its source document;
// empty when the block is not one of ours.
std::vector<CTavixImage*> decodeImages(const QByteArray& block, CTavixDoc* source) {
    std::vector<CTavixImage*> images;
    uint32_t count = 0;
    if (!source || !liveDocuments().count(source) || block.size() < 4) return images;
    memcpy(&count, block.constData(), sizeof count);
    if (static_cast<qsizetype>(4 + 8 * static_cast<uint64_t>(count)) != block.size()) return images;
    const CTavixImageList& owned = source->GetImages();
    for (uint32_t i = 0; i < count; ++i) {
        uint64_t address = 0;
        memcpy(&address, block.constData() + 4 + 8 * i, sizeof address);
        auto* image = reinterpret_cast<CTavixImage*>(static_cast<uintptr_t>(address));
        if (std::find(owned.begin(), owned.end(), image) == owned.end()) return {};
        images.push_back(image);
    }
    return images;
}

// Offers the one dragged image as PNG, rendered only when a receiver asks.
class CImageListViewDataSource : public QMimeData {
  public:
    explicit CImageListViewDataSource(CTavixImage* single) : m_Single(single) {}
    QStringList formats() const override {
        QStringList list = QMimeData::formats();
        if (m_Single) list << "image/png";
        return list;
    }
    bool hasFormat(const QString& type) const override {
        return (m_Single && type == "image/png") || QMimeData::hasFormat(type);
    }

  protected:
    QVariant retrieveData(const QString& type, QMetaType preferred) const override {
        if (m_Single && type == "image/png") {
            QByteArray png;
            QBuffer buffer(&png);
            buffer.open(QIODevice::WriteOnly);
            ToQImage(*m_Single).save(&buffer, "PNG");
            return png;
        }
        return QMimeData::retrieveData(type, preferred);
    }

  private:
    CTavixImage* m_Single;
};

bool acceptable(const QMimeData* mime) {
    return mime && (mime->hasFormat(kImageListMimeType) || mime->hasFormat("image/png") ||
                    mime->hasImage() || mime->hasUrls());
}

} // namespace

// ---- Model ---------------------------------------------------------------------

CImageListModel::CImageListModel(CTavixDoc* doc, QObject* parent)
    : QAbstractTableModel(parent), m_Doc(doc) {}

void CImageListModel::SetRowCount(int rows) {
    beginResetModel();
    m_Rows = std::max(0, rows);
    endResetModel();
}

void CImageListModel::RefreshCells() {
    if (m_Rows > 0) emit dataChanged(index(0, 0), index(m_Rows - 1, kListColumnCount - 1));
}

int CImageListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : m_Rows;
}

int CImageListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : kListColumnCount;
}

QVariant CImageListModel::data(const QModelIndex& index, int role) const {
    const CTavixImage* image = m_Doc->GetImageAt(index.row());
    if (!image || !index.isValid()) return {};
    switch (role) {
    case Qt::DisplayRole:
        return QString::fromStdString(ImageCellText(*image, index.row(), index.column()));
    case Qt::DecorationRole:
        if (index.column() == 0) return VisibilityIcon(image->m_OnWorksheet != 0);
        return {};
    case Qt::TextAlignmentRole:
        return static_cast<int>((kListColumns[index.column()].align == ColumnAlign::Right
                                     ? Qt::AlignRight
                                     : Qt::AlignLeft) |
                                Qt::AlignVCenter);
    default:
        return {};
    }
}

QVariant CImageListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= kListColumnCount) return {};
    if (role == Qt::DisplayRole) return kListColumns[section].header;
    if (role == Qt::TextAlignmentRole)
        return static_cast<int>(kListColumns[section].align == ColumnAlign::Right
                                    ? Qt::AlignRight | Qt::AlignVCenter
                                    : Qt::AlignLeft | Qt::AlignVCenter);
    return {};
}

Qt::ItemFlags CImageListModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) return Qt::ItemIsDropEnabled;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled | Qt::ItemIsDropEnabled;
}

Qt::DropActions CImageListModel::supportedDropActions() const {
    return Qt::CopyAction | Qt::MoveAction;
}

// ---- View ------------------------------------------------------------------------

CSelectWildcardState& SelectWildcardState() {
    static CSelectWildcardState state;
    return state;
}

void CImageListView::SetFileDropHandler(
    std::function<void(CTavixDoc*, const QStringList&)> handler) {
    fileDropHandler() = std::move(handler);
}

CImageListView::CImageListView(CTavixDoc* doc, QWidget* parent) : QTableView(parent), m_Doc(doc) {
    liveDocuments().insert(doc);
    m_Caption = new TCaptionStrip("Shape List", kCaptionHeight, this);
    m_Model = new CImageListModel(doc, this);
    setModel(m_Model);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setSortingEnabled(false);
    setShowGrid(false);
    setWordWrap(false);
    setIconSize(QSize(16, 16));
    setEditTriggers(QAbstractItemView::NoEditTriggers);
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
    OnUpdate(nullptr, 0, nullptr);
}

CImageListView::~CImageListView() {
    m_AnimTimer.stop();
    m_Doc->RemoveView(this);
    liveDocuments().erase(m_Doc);
    if (g_dragSourceDoc == m_Doc) g_dragSourceDoc = nullptr;
}

// ---- Selection mirror --------------------------------------------------------------

std::vector<uint8_t> CImageListView::SelectedRows() const {
    const CSelectionModel& model = m_Doc->GetSelectionModel();
    std::vector<uint8_t> rows(static_cast<size_t>(m_Model->rowCount()), 0);
    for (int i = 0; i < static_cast<int>(rows.size()); ++i)
        rows[static_cast<size_t>(i)] = model.IsSelected(i) ? 1 : 0;
    return rows;
}

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

void CImageListView::ApplySelection(const std::vector<uint8_t>& rows) {
    QItemSelection selection;
    const int count = std::min(static_cast<int>(rows.size()), m_Model->rowCount());
    for (int i = 0; i < count;) {
        if (!rows[static_cast<size_t>(i)]) {
            ++i;
            continue;
        }
        int end = i;
        while (end + 1 < count && rows[static_cast<size_t>(end + 1)])
            ++end;
        selection.select(m_Model->index(i, 0), m_Model->index(end, kListColumnCount - 1));
        i = end + 1;
    }
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
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
    ApplySelection(std::vector<uint8_t>(static_cast<size_t>(m_Model->rowCount()), 1));
    m_Doc->UpdateAllViews(nullptr);
}

void CImageListView::SelectNone() {
    ApplySelection({});
    m_Doc->UpdateAllViews(nullptr);
}

void CImageListView::InvertSelection() {
    std::vector<uint8_t> rows = SelectedRows();
    for (uint8_t& row : rows)
        row = !row;
    ApplySelection(rows);
    m_Doc->UpdateAllViews(nullptr);
}

bool CImageListView::SelectByExpression(const std::string& expression, int mode) {
    const int count = m_Model->rowCount();
    if (!RangeExpression::Validate(expression, 0, count - 1)) {
        ZyUi().MessageBox("Invalid range.", MsgButtons::OK, MsgIcon::Warning);
        return false;
    }
    std::vector<uint8_t> rows = SelectedRows();
    if (mode == CSelectWildcardDlg::NewSelection) std::fill(rows.begin(), rows.end(), 0);
    auto invert = [&rows] {
        for (uint8_t& row : rows)
            row = !row;
    };
    if (mode == CSelectWildcardDlg::RemoveFromSelection) invert();
    for (int i = 0; i < count; ++i) {
        const CTavixImage* image = m_Doc->GetImageAt(i);
        if (image && RangeExpression::Match(expression, image->GetName(), i))
            rows[static_cast<size_t>(i)] = 1;
    }
    if (mode == CSelectWildcardDlg::RemoveFromSelection) invert();
    ApplySelection(rows);
    m_Doc->UpdateAllViews(nullptr);
    return true;
}

void CImageListView::GetSelection(CRange& range) const {
    range.SetSize(m_Model->rowCount());
    range.SetAll(0);
    const CSelectionModel& model = m_Doc->GetSelectionModel();
    for (int i = 0; i < range.GetSize(); ++i)
        if (model.IsSelected(i)) range.SetAt(i, 1);
}

void CImageListView::SetSelection(const CRange& range) {
    std::vector<uint8_t> rows(static_cast<size_t>(m_Model->rowCount()), 0);
    for (int i = 0; i < static_cast<int>(rows.size()) && i < range.GetSize(); ++i)
        rows[static_cast<size_t>(i)] = range.IsSelected(i) ? 1 : 0;
    ApplySelection(rows);
    viewport()->update();
}

int CImageListView::GetFocusIndex() const {
    const int count = m_Model->rowCount();
    if (count <= 0) return 0;
    return std::clamp(m_Doc->GetSelectionModel().GetFocus(), 0, count - 1);
}

int CImageListView::IndexOf(const CTavixImage* image) const {
    const CTavixImageList& images = m_Doc->GetImages();
    auto it = std::find(images.begin(), images.end(), image);
    return it == images.end() ? -1 : static_cast<int>(it - images.begin());
}

int CImageListView::NextSelected(int after) const {
    const CSelectionModel& model = m_Doc->GetSelectionModel();
    for (int i = after + 1; i < m_Model->rowCount(); ++i)
        if (model.IsSelected(i)) return i;
    return -1;
}

int CImageListView::NextUnselected(int after) const {
    const CSelectionModel& model = m_Doc->GetSelectionModel();
    for (int i = after + 1; i < m_Model->rowCount(); ++i)
        if (!model.IsSelected(i)) return i;
    return -1;
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
}

void CImageListView::OnUpdate(CView*, long, CObject* hint) {
    if (dynamic_cast<CModifiedHint*>(hint)) {
        m_Model->RefreshCells();
        viewport()->update();
        return;
    }
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
    CMainFrame* frame = ZyQtUi() ? ZyQtUi()->GetMainFrame() : nullptr;
    if (!frame) return;
    QMenu menu("Right Click Menu", this);
    const unsigned items[] = {EditCut,  EditCopy, EditPaste, 0,
                              ListShow, ListHide, 0,         ViewProperties};
    for (unsigned id : items) {
        if (!id) {
            menu.addSeparator();
            continue;
        }
        if (QAction* action = frame->Action(id)) {
            frame->UpdateAction(action);
            menu.addAction(action);
        }
    }
    menu.exec(event->globalPos());
}

void CImageListView::focusInEvent(QFocusEvent* event) {
    QTableView::focusInEvent(event);
    emit Activated();
}

void CImageListView::focusOutEvent(QFocusEvent* event) {
    QTableView::focusOutEvent(event);
}

// ---- Drag and drop
// ---------------------------------------------------------------------------------

void CImageListView::startDrag(Qt::DropActions) {
    std::vector<CTavixImage*> images;
    for (int i = FirstSelected(); i >= 0; i = NextSelected(i))
        if (CTavixImage* image = m_Doc->GetImageAt(i)) images.push_back(image);
    if (images.empty()) return;
    auto* mime = new CImageListViewDataSource(images.size() == 1 ? images.front() : nullptr);
    mime->setData(kImageListMimeType, encodeImages(images));
    g_dragSourceDoc = m_Doc;
    g_dragFirstImage = images.front();
    auto* drag = new QDrag(this);
    drag->setMimeData(mime);
    drag->exec(Qt::CopyAction | Qt::MoveAction, Qt::CopyAction);
    g_dragSourceDoc = nullptr;
    g_dragFirstImage = nullptr;
}

void CImageListView::dragEnterEvent(QDragEnterEvent* event) {
    if (!acceptable(event->mimeData())) {
        event->ignore();
        return;
    }
    event->setDropAction(Qt::CopyAction);
    event->accept();
}

void CImageListView::dragMoveEvent(QDragMoveEvent* event) {
    if (!acceptable(event->mimeData())) {
        event->ignore();
        return;
    }
    event->setDropAction(Qt::CopyAction);
    event->accept();
}

void CImageListView::dropEvent(QDropEvent* event) {
    const QMimeData* mime = event->mimeData();
    event->setDropAction(Qt::CopyAction);
    event->accept();
    if (mime->hasFormat(kImageListMimeType)) {
        std::vector<CTavixImage*> images =
            decodeImages(mime->data(kImageListMimeType), g_dragSourceDoc);
        const QModelIndex target = indexAt(event->position().toPoint());
        DropImagePointers(images, g_dragSourceDoc, target.isValid() ? target.row() : -1);
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
    if (mime->hasUrls() && fileDropHandler()) {
        QStringList paths;
        for (const QUrl& url : mime->urls())
            if (url.isLocalFile()) paths << url.toLocalFile();
        if (!paths.isEmpty()) fileDropHandler()(m_Doc, paths);
    }
}

void CImageListView::DropBitmap(const QImage& bitmap) {
    std::unique_ptr<CTavixImage> image = FromQImage(bitmap);
    if (!image) return;
    m_Doc->InsertImage(m_Doc->GetImageCount(), image.release());
    m_Doc->SetModifiedFlag(true);
    m_Doc->UpdateAllViews(nullptr);
    Last();
    m_Doc->UpdateAllViews(nullptr);
}

void CImageListView::DropImagePointers(const std::vector<CTavixImage*>& images, CTavixDoc* source,
                                       int row) {
    if (images.empty() || !source) return;
    if (source != m_Doc)
        DropFromOtherDocument(images, row);
    else
        MoveWithinDocument(row);
}

void CImageListView::DropFromOtherDocument(const std::vector<CTavixImage*>& images, int row) {
    const int count = m_Doc->GetImageCount();
    const int n = static_cast<int>(images.size());
    const int p = row < 0 || row > count ? count : row;
    std::vector<std::unique_ptr<CTavixImage>> copies;
    try {
        for (CTavixImage* image : images) {
            copies.push_back(image->Duplicate());
            if (!copies.back()) throw std::runtime_error("copy");
        }
    } catch (...) {
        ZyUi().MessageBox("The dragged images could not be copied.", MsgButtons::OK,
                          MsgIcon::Error);
        return;
    }
    std::vector<CTavixImage*> order(m_Doc->GetImages().begin(), m_Doc->GetImages().end());
    std::vector<CTavixImage*> added;
    for (auto& copy : copies)
        added.push_back(copy.release());
    order.insert(order.begin() + p, added.begin(), added.end());
    m_Doc->SetImages(static_cast<int>(order.size()), order.data(), false);
    CSelectionModel& model = m_Doc->GetSelectionModel();
    model.SelectAll(false);
    for (int i = p; i < p + n; ++i)
        model.Select(i);
    model.SetFocus(p);
    m_Doc->UpdateAllViews(nullptr);
    scrollTo(m_Model->index(p, 0), QAbstractItemView::EnsureVisible);
}

void CImageListView::MoveWithinDocument(int row) {
    const int count = m_Doc->GetImageCount();
    const std::vector<uint8_t> selected = SelectedRows();
    std::vector<CTavixImage*> kept, moved;
    for (int i = 0; i < count; ++i)
        (selected[static_cast<size_t>(i)] ? moved : kept).push_back(m_Doc->GetImageAt(i));
    if (moved.empty() || kept.empty()) return;
    int p = static_cast<int>(kept.size());
    if (row >= 0 && row < count) {
        if (!selected[static_cast<size_t>(row)]) {
            // The target's own row before the move, bounded by the rows that
            // stay (selected rows above it would carry it past the end).
            p = std::min(row, static_cast<int>(kept.size()));
        } else {
            const int next = NextUnselected(row);
            if (next >= 0)
                p = static_cast<int>(std::find(kept.begin(), kept.end(), m_Doc->GetImageAt(next)) -
                                     kept.begin());
        }
    }
    std::vector<CTavixImage*> order(kept.begin(), kept.begin() + p);
    order.insert(order.end(), moved.begin(), moved.end());
    order.insert(order.end(), kept.begin() + p, kept.end());
    m_Doc->SetImages(count, order.data(), false);
    CSelectionModel& model = m_Doc->GetSelectionModel();
    model.SelectAll(false);
    for (int i = p; i < p + static_cast<int>(moved.size()); ++i)
        model.Select(i);
    model.SetFocus(p);
    m_Doc->UpdateAllViews(nullptr);
    scrollTo(m_Model->index(p, 0), QAbstractItemView::EnsureVisible);
}
