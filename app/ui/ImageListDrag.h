#pragma once
// What the shape list puts on a drag: the private type that carries the
// dragged image records between the documents of this process, the whole
// records in the clipboard format (app/doc/ImageListClip.h) for another Zy
// process, and, for a single image, a PNG that other programs can take.
//
// The private block holds addresses, meaningful only inside this process;
// a block is trusted only while its source document has a shape list open
// and still holds every image it names.

#include <QByteArray>
#include <QMimeData>

#include <vector>

class CTavixDoc;
class CTavixImage;

// The private drag type: in-process addresses of image records. Its own
// name, so that no one mistakes a block of addresses for whole records.
constexpr const char* kImageListMimeType = "application/x-zy-image-drag";

// Documents with an open shape list, and the drag under way in this
// process (its source document; null when none).
void RegisterDragDocument(CTavixDoc* doc);
void UnregisterDragDocument(CTavixDoc* doc);
CTavixDoc* DragSourceDocument();
void SetDragSourceDocument(CTavixDoc* doc);

// A 32-bit count followed by one 64-bit address per image.
QByteArray EncodeImages(const std::vector<CTavixImage*>& images);
// The images of a block from `source`, each checked against it; empty when
// the block is not one of ours or names an image the source no longer has.
std::vector<CTavixImage*> DecodeImages(const QByteArray& block, CTavixDoc* source);

// Offers the one dragged image as PNG, rendered only when a receiver asks.
class CImageListViewDataSource : public QMimeData {
  public:
    explicit CImageListViewDataSource(CTavixImage* single) : m_Single(single) {}
    QStringList formats() const override;
    bool hasFormat(const QString& type) const override;

  protected:
    QVariant retrieveData(const QString& type, QMetaType preferred) const override;

  private:
    CTavixImage* m_Single;
};

// Whether a drop of `mime` is something the shape list takes.
bool IsAcceptableDrop(const QMimeData* mime);
