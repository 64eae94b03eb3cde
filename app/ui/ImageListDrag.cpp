#include "app/ui/ImageListDrag.h"

#include "app/doc/ImageListClip.h"
#include "app/doc/TavixDoc.h"
#include "app/ui/QtImage.h"

#include <QBuffer>
#include <QImage>

#include <algorithm>
#include <cstring>
#include <set>

namespace {

std::set<CTavixDoc*>& liveDocuments() {
    static std::set<CTavixDoc*> docs;
    return docs;
}

CTavixDoc* g_dragSourceDoc = nullptr;

} // namespace

void RegisterDragDocument(CTavixDoc* doc) {
    liveDocuments().insert(doc);
}

void UnregisterDragDocument(CTavixDoc* doc) {
    liveDocuments().erase(doc);
    if (g_dragSourceDoc == doc) g_dragSourceDoc = nullptr;
}

CTavixDoc* DragSourceDocument() {
    return g_dragSourceDoc;
}

void SetDragSourceDocument(CTavixDoc* doc) {
    g_dragSourceDoc = doc;
}

QByteArray EncodeImages(const std::vector<CTavixImage*>& images) {
    QByteArray block;
    const uint32_t count = static_cast<uint32_t>(images.size());
    block.append(reinterpret_cast<const char*>(&count), sizeof count);
    for (CTavixImage* image : images) {
        const uint64_t address = reinterpret_cast<uintptr_t>(image);
        block.append(reinterpret_cast<const char*>(&address), sizeof address);
    }
    return block;
}

std::vector<CTavixImage*> DecodeImages(const QByteArray& block, CTavixDoc* source) {
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

QStringList CImageListViewDataSource::formats() const {
    QStringList list = QMimeData::formats();
    if (m_Single) list << "image/png";
    return list;
}

bool CImageListViewDataSource::hasFormat(const QString& type) const {
    return (m_Single && type == "image/png") || QMimeData::hasFormat(type);
}

QVariant CImageListViewDataSource::retrieveData(const QString& type, QMetaType preferred) const {
    if (m_Single && type == "image/png") {
        QByteArray png;
        QBuffer buffer(&png);
        buffer.open(QIODevice::WriteOnly);
        ToQImage(*m_Single).save(&buffer, "PNG");
        return png;
    }
    return QMimeData::retrieveData(type, preferred);
}

bool IsAcceptableDrop(const QMimeData* mime) {
    return mime && (mime->hasFormat(kImageListMimeType) || mime->hasFormat(kImageListClipFormat) ||
                    mime->hasFormat("image/png") || mime->hasImage() || mime->hasUrls());
}
