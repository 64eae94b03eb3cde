#include "app/ui/ImageListModel.h"

#include "app/doc/Command.h"
#include "app/doc/ListEditCmds.h"
#include "app/doc/TavixDoc.h"
#include "app/doc/TavixImage.h"
#include "app/ui/IconFactory.h"
#include "app/ui/ImageListFormat.h"
#include "app/ui/Thumbnail.h"
#include "app/doc/CRange.h"

#include <algorithm>

namespace {

int alignmentOf(int column) {
    return static_cast<int>(
        (kListColumns[column].align == ColumnAlign::Right ? Qt::AlignRight : Qt::AlignLeft) |
        Qt::AlignVCenter);
}

} // namespace

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
    case Qt::EditRole:
        // The editor starts from the stored name, not the "image %d" stand-in.
        if (index.column() == 0) return QString::fromStdString(image->GetName());
        return {};
    case Qt::DecorationRole:
        if (index.column() == 0) return VisibilityIcon(image->m_OnWorksheet != 0);
        return {};
    case Qt::TextAlignmentRole:
        return alignmentOf(index.column());
    case ThumbnailRole:
        return Thumbnail(*image);
    default:
        return {};
    }
}

bool CImageListModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (role != Qt::EditRole || index.column() != 0 || !m_Doc->GetImageAt(index.row()))
        return false;
    const int before = m_Doc->GetCommandHandler().GetSubmitCount();
    CCommandInfo::Start(m_Doc, new CRenameImageCmd(index.row(), value.toString().toStdString()),
                        [this](CCommand* cmd) { return cmd->Init(m_Doc); });
    return m_Doc->GetCommandHandler().GetSubmitCount() != before;
}

QVariant CImageListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= kListColumnCount) return {};
    if (role == Qt::DisplayRole) return kListColumns[section].header;
    if (role == Qt::TextAlignmentRole) return alignmentOf(section);
    return {};
}

Qt::ItemFlags CImageListModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) return Qt::ItemIsDropEnabled;
    Qt::ItemFlags flags =
        Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled | Qt::ItemIsDropEnabled;
    if (index.column() == 0) flags |= Qt::ItemIsEditable;
    return flags;
}

Qt::DropActions CImageListModel::supportedDropActions() const {
    return Qt::CopyAction | Qt::MoveAction;
}

QImage CImageListModel::Thumbnail(const CTavixImage& image) const {
    const uint64_t stamp = ThumbnailStamp(image);
    auto found = m_Thumbnails.find(&image);
    if (found != m_Thumbnails.end() && found->second.stamp == stamp) return found->second.image;
    ++m_ThumbnailRenders;
    QImage picture = RenderThumbnail(image, kThumbnailSize);
    m_Thumbnails[&image] = {stamp, picture};
    return picture;
}

void CImageListModel::InvalidateThumbnails(const CRange& range) {
    for (int i = 0; i < range.GetSize(); ++i)
        if (range.IsSelected(i))
            if (const CTavixImage* image = m_Doc->GetImageAt(i)) m_Thumbnails.erase(image);
}

void CImageListModel::PruneThumbnails() {
    if (m_Thumbnails.empty()) return;
    std::unordered_map<const CTavixImage*, CachedThumbnail> kept;
    for (int i = 0; i < m_Doc->GetImageCount(); ++i) {
        const CTavixImage* image = m_Doc->GetImageAt(i);
        auto found = m_Thumbnails.find(image);
        if (found != m_Thumbnails.end()) kept.insert(*found);
    }
    m_Thumbnails.swap(kept);
}
