#include "app/ui/CaptionStrip.h"

#include <QPainter>
#include <QVBoxLayout>

TCaptionStrip::TCaptionStrip(const QString& text, int height, QWidget* view, QWidget* parent)
    : QWidget(parent), m_Text(text), m_Height(height), m_View(view) {
    setFixedHeight(std::max(0, height) + (height > 0 ? 1 : 0));
    setVisible(height > 0);
    QFont small = font();
    small.setPixelSize(std::max(9, height - 3));
    setFont(small);
}

void TCaptionStrip::SetText(const QString& text) {
    m_Text = text;
    update();
}

void TCaptionStrip::SetActive(bool active) {
    if (active == m_Active) return;
    m_Active = active;
    update();
}

QSize TCaptionStrip::sizeHint() const {
    return {100, m_Height + 1};
}

void TCaptionStrip::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    // Dark blue when active; the classic inactive caption colours otherwise.
    const QColor fill = m_Active ? QColor(0, 0, 128) : QColor(128, 128, 128);
    const QColor ink = m_Active ? QColor(Qt::white) : QColor(212, 208, 200);
    painter.setPen(Qt::black);
    painter.setBrush(fill);
    painter.drawRect(QRect(0, 0, width() - 1, m_Height));
    painter.setPen(ink);
    painter.drawText(QRect(2, 0, width() - 4, m_Height + 1), Qt::AlignVCenter | Qt::AlignLeft,
                     m_Text);
}

void TCaptionStrip::mousePressEvent(QMouseEvent*) {
    if (m_View) m_View->setFocus(Qt::MouseFocusReason);
}

QWidget* WrapWithCaption(TCaptionStrip* strip, QWidget* view, QWidget* parent) {
    auto* pane = new QWidget(parent);
    auto* layout = new QVBoxLayout(pane);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(strip);
    layout->addWidget(view, 1);
    return pane;
}
