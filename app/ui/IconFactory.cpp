#include "app/ui/IconFactory.h"

#include "app/doc/CommandIds.h"

#include <QApplication>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QStyle>

#include <map>

using namespace ZyIds;

namespace {

QPixmap canvas() {
    QPixmap pixmap(16, 16);
    pixmap.fill(Qt::transparent);
    return pixmap;
}

QIcon tile(const QString& text, QColor colour) {
    QPixmap pixmap = canvas();
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(colour.darker(160));
    p.setBrush(colour);
    p.drawRoundedRect(QRectF(0.5, 0.5, 15, 15), 3, 3);
    QFont font = QApplication::font();
    font.setPixelSize(text.size() > 2 ? 7 : text.size() > 1 ? 8 : 11);
    font.setBold(true);
    p.setFont(font);
    p.setPen(Qt::white);
    p.drawText(QRect(0, 0, 16, 16), Qt::AlignCenter, text);
    return QIcon(pixmap);
}

QIcon arrow(bool right, bool bar, bool doubled = false) {
    QPixmap pixmap = canvas();
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(0, 0, 128));
    auto triangle = [&](double x) {
        QPainterPath path;
        if (right) {
            path.moveTo(x, 3);
            path.lineTo(x + 6, 8);
            path.lineTo(x, 13);
        } else {
            path.moveTo(x + 6, 3);
            path.lineTo(x, 8);
            path.lineTo(x + 6, 13);
        }
        p.drawPath(path);
    };
    triangle(doubled ? 2 : 5);
    if (doubled) triangle(8);
    if (bar) p.drawRect(right ? QRectF(12, 3, 2, 10) : QRectF(2, 3, 2, 10));
    return QIcon(pixmap);
}

QIcon standard(QStyle::StandardPixmap which) {
    return QApplication::style()->standardIcon(which);
}

QIcon channel(const QString& text, QColor colour, bool write) {
    QPixmap pixmap = canvas();
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(Qt::black);
    p.setBrush(colour);
    if (write)
        p.drawRect(QRectF(0.5, 0.5, 15, 15));
    else
        p.drawEllipse(QRectF(0.5, 0.5, 15, 15));
    QFont font = QApplication::font();
    font.setPixelSize(9);
    font.setBold(true);
    p.setFont(font);
    p.setPen(colour.lightness() > 140 ? Qt::black : Qt::white);
    p.drawText(QRect(0, 0, 16, 16), Qt::AlignCenter, text);
    return QIcon(pixmap);
}

} // namespace

QIcon CommandIcon(unsigned id) {
    switch (id) {
    case FileNew:
        return standard(QStyle::SP_FileIcon);
    case FileOpen:
        return standard(QStyle::SP_DialogOpenButton);
    case FileSave:
        return standard(QStyle::SP_DialogSaveButton);
    case HelpAbout:
        return tile("?", QColor(0, 0, 128));
    case Undo:
        return standard(QStyle::SP_ArrowBack);
    case EditCut:
        return tile("X", QColor(120, 120, 120));
    case EditCopy:
        return tile("C", QColor(120, 120, 120));
    case EditPaste:
        return tile("P", QColor(120, 120, 120));
    case ViewZoomIn:
        return tile("+", QColor(0, 110, 60));
    case ViewZoomOut:
        return tile("-", QColor(0, 110, 60));
    case ViewZoomNormal:
        return tile("1:1", QColor(0, 110, 60));
    case ViewGrid:
        return tile("#", QColor(90, 90, 90));
    case ViewPoints:
        return tile("+", QColor(180, 150, 0));
    case ViewSelectionEdges:
        return tile("[]", QColor(50, 90, 200));
    case OverlapWarning:
        return tile("!", QColor(200, 0, 0));
    case VramView:
        return tile("PSX", QColor(70, 70, 140));
    case FirstImage:
        return arrow(false, true);
    case PreviousImage:
        return arrow(false, false);
    case PlayBackward:
        return arrow(false, false, true);
    case PlayForward:
        return arrow(true, false, true);
    case NextImage:
        return arrow(true, false);
    case LastImage:
        return arrow(true, true);
    case ViewAlpha:
        return channel("A", QColor(230, 230, 230), false);
    case ViewRGB:
        return channel("C", QColor(120, 60, 160), false);
    case ViewRed:
        return channel("R", QColor(220, 0, 0), false);
    case ViewGreen:
        return channel("G", QColor(0, 170, 0), false);
    case ViewBlue:
        return channel("B", QColor(0, 0, 220), false);
    case WriteAlpha:
        return channel("A", QColor(230, 230, 230), true);
    case WriteRGB:
        return channel("C", QColor(120, 60, 160), true);
    case WriteRed:
        return channel("R", QColor(220, 0, 0), true);
    case WriteGreen:
        return channel("G", QColor(0, 170, 0), true);
    case WriteBlue:
        return channel("B", QColor(0, 0, 220), true);
    case Indexed4:
        return tile("4", QColor(150, 80, 0));
    case Indexed8:
        return tile("8", QColor(150, 80, 0));
    case Rgb565:
        return tile("16", QColor(150, 80, 0));
    case Rgb24:
        return tile("24", QColor(150, 80, 0));
    case Rgb32:
        return tile("32", QColor(150, 80, 0));
    case ColorDepthWizard:
        return tile("W", QColor(150, 80, 0));
    case AlignLeft:
        return tile("|<", QColor(60, 100, 100));
    case AlignRight:
        return tile(">|", QColor(60, 100, 100));
    case AlignTop:
        return tile("T", QColor(60, 100, 100));
    case AlignBottom:
        return tile("_", QColor(60, 100, 100));
    case RotateToggle:
        return tile("R", QColor(60, 100, 100));
    case Transpose:
        return tile("Tr", QColor(60, 100, 100));
    case FlipHorizontal:
        return tile("<>", QColor(100, 60, 120));
    case FlipVertical:
        return tile("^v", QColor(100, 60, 120));
    case Rotate90CW:
        return tile("CW", QColor(100, 60, 120));
    case Rotate90CCW:
        return tile("CCW", QColor(100, 60, 120));
    default:
        return {};
    }
}

QIcon VisibilityIcon(bool visible) {
    static std::map<bool, QIcon> cache;
    auto it = cache.find(visible);
    if (it != cache.end()) return it->second;
    QPixmap pixmap = canvas();
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    if (visible) {
        // An open eye.
        p.setPen(QPen(QColor(0, 0, 0), 1.2));
        p.setBrush(Qt::white);
        QPainterPath eye;
        eye.moveTo(1, 8);
        eye.quadTo(8, 1, 15, 8);
        eye.quadTo(8, 15, 1, 8);
        p.drawPath(eye);
        p.setBrush(QColor(0, 0, 128));
        p.drawEllipse(QPointF(8, 8), 2.5, 2.5);
    } else {
        // A closed one.
        p.setPen(QPen(QColor(128, 128, 128), 1.2));
        p.setBrush(Qt::NoBrush);
        QPainterPath lid;
        lid.moveTo(1, 8);
        lid.quadTo(8, 14, 15, 8);
        p.drawPath(lid);
    }
    p.end();
    return cache[visible] = QIcon(pixmap);
}
