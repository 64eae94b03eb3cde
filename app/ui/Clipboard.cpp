#include "app/ui/Clipboard.h"

#include "app/doc/ImageListClip.h"
#include "app/doc/TavixImage.h"
#include "app/ui/QtImage.h"

#include <QBuffer>
#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

namespace {

constexpr const char* kPng = "image/png";

QByteArray pngOf(const CTavixImage& image) {
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    ToQImage(image).save(&buffer, "PNG");
    return png;
}

std::unique_ptr<CTavixImage> bitmapFrom(const QMimeData& mime) {
    QImage image;
    if (mime.hasFormat(kPng)) image = QImage::fromData(mime.data(kPng), "PNG");
    if (image.isNull() && mime.hasImage()) image = qvariant_cast<QImage>(mime.imageData());
    return FromQImage(image);
}

} // namespace

void OfferImagesToClipboard(const std::vector<const CTavixImage*>& images) {
    if (images.empty()) return;
    auto* mime = new QMimeData;
    const std::string block = EncodeImageList(images);
    mime->setData(kImageListClipFormat,
                  QByteArray(block.data(), static_cast<qsizetype>(block.size())));
    mime->setData(kPng, pngOf(*images.front()));
    QGuiApplication::clipboard()->setMimeData(mime);
}

std::vector<std::string> ClipboardImageFormats() {
    std::vector<std::string> formats;
    const QMimeData* mime = QGuiApplication::clipboard()->mimeData();
    if (!mime) return formats;
    if (mime->hasFormat(kImageListClipFormat)) formats.emplace_back(kClipFormatImageList);
    if (mime->hasFormat(kPng) || mime->hasImage()) formats.emplace_back(kClipFormatBitmap);
    return formats;
}

std::vector<std::unique_ptr<CTavixImage>> ReadClipboardImages(const std::string& format) {
    std::vector<std::unique_ptr<CTavixImage>> images;
    const QMimeData* mime = QGuiApplication::clipboard()->mimeData();
    if (!mime) return images;
    const bool ownFirst = format.empty() || format == kClipFormatImageList;
    if (ownFirst && mime->hasFormat(kImageListClipFormat)) {
        const QByteArray block = mime->data(kImageListClipFormat);
        images = DecodeImageList(std::string(block.constData(), static_cast<size_t>(block.size())));
        if (!images.empty() || format == kClipFormatImageList) return images;
    }
    if (std::unique_ptr<CTavixImage> image = bitmapFrom(*mime)) images.push_back(std::move(image));
    return images;
}
