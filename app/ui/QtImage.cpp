#include "app/ui/QtImage.h"

#include "app/doc/TavixImage.h"

#include <cstring>

QImage ToQImage(const CTavixImage& image) {
    const int width = image.GetWidth(), height = image.GetHeight();
    if (width <= 0 || height <= 0 || !image.GetBits()) return {};
    QImage out(width, height, QImage::Format_ARGB32);
    const uint32_t* palette = reinterpret_cast<const uint32_t*>(image.GetInfo()->colours);
    for (int y = 0; y < height; ++y) {
        const uint8_t* row = image.GetRow(y);
        auto* target = reinterpret_cast<uint32_t*>(out.scanLine(y));
        if (image.GetPixelBytes() == 4)
            memcpy(target, row, static_cast<size_t>(width) * 4);
        else
            for (int x = 0; x < width; ++x)
                target[x] = palette[row[x]];
    }
    return out;
}

std::unique_ptr<CTavixImage> FromQImage(const QImage& source) {
    if (source.isNull() || source.width() <= 0 || source.height() <= 0) return nullptr;
    const QImage argb = source.convertToFormat(QImage::Format_ARGB32);
    auto image = std::make_unique<CTavixImage>();
    image->Create(argb.width(), argb.height(), 32);
    for (int y = 0; y < argb.height(); ++y)
        memcpy(image->GetRow(y), argb.constScanLine(y), static_cast<size_t>(argb.width()) * 4);
    return image;
}
