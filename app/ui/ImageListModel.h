#pragma once
// CImageListModel: the shape list's Qt model. It holds no data of its own:
// every cell is asked of the document's image records. The Name column is
// editable in place; an edit becomes a rename command on the document.
//
// ThumbnailRole gives a small picture of a row's image (Thumbnail.h). The
// pictures are made only when a row asks (the list paints only the rows it
// shows) and kept per image until the view says the image changed.

#include <QAbstractTableModel>
#include <QImage>

#include <cstdint>
#include <unordered_map>

class CRange;
class CTavixDoc;
class CTavixImage;

class CImageListModel : public QAbstractTableModel {
    Q_OBJECT
  public:
    enum { ThumbnailRole = Qt::UserRole + 1 };
    // The longer side of a thumbnail, in pixels.
    static constexpr int kThumbnailSize = 32;

    explicit CImageListModel(CTavixDoc* doc, QObject* parent = nullptr);

    // The row count as the view last set it from the document.
    void SetRowCount(int rows);
    // Repaints the cells without changing the rows.
    void RefreshCells();

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    Qt::DropActions supportedDropActions() const override;

    // Forgets the thumbnails of the images at the positions set in `range`.
    void InvalidateThumbnails(const CRange& range);
    // Forgets the thumbnails of images the document no longer holds.
    void PruneThumbnails();
    // How many thumbnails were made so far (each cache miss makes one).
    int ThumbnailRenderCount() const { return m_ThumbnailRenders; }

  private:
    QImage Thumbnail(const CTavixImage& image) const;

    CTavixDoc* m_Doc;
    int m_Rows = 0;
    struct CachedThumbnail {
        uint64_t stamp;
        QImage image;
    };
    mutable std::unordered_map<const CTavixImage*, CachedThumbnail> m_Thumbnails;
    mutable int m_ThumbnailRenders = 0;
};
