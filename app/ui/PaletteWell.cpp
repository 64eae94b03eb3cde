#include "app/ui/PaletteWell.h"

#include "app/cmds/MoveColorCmd.h"
#include "app/doc/ColourSelection.h"
#include "app/doc/TavixDoc.h"
#include "app/doc/TavixImage.h"

#include <QApplication>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QVBoxLayout>

namespace {

constexpr int kMinCell = 10;
constexpr int kCheck = 4; // checkerboard square under transparent colours

uint32_t argbOf(const TavixColour& c) {
    return static_cast<uint32_t>(c.alpha) << 24 | static_cast<uint32_t>(c.red) << 16 |
           static_cast<uint32_t>(c.green) << 8 | c.blue;
}

} // namespace

CPaletteWellWidget::CPaletteWellWidget(QWidget* parent) : QWidget(parent) {
    setObjectName("PaletteWellGrid");
    setMouseTracking(true);
    m_Listener = ZyColourSelection().AddListener([this] { update(); });
}

CPaletteWellWidget::~CPaletteWellWidget() {
    ZyColourSelection().RemoveListener(m_Listener);
}

void CPaletteWellWidget::SetDocument(CTavixDoc* doc) {
    m_Doc = doc;
    Refresh();
}

void CPaletteWellWidget::Refresh() {
    const CTavixImage* image = m_Doc ? m_Doc->GetFocusImage() : nullptr;
    std::array<uint32_t, 256> colours{};
    int count = 0, start = 0, used = 0;
    if (image && image->GetBitCount() <= 8) {
        count = image->GetColorCount() <= 16 ? 16 : 256;
        TavixColour palette[256];
        image->GetPalette(palette);
        for (int i = 0; i < 256; ++i)
            colours[static_cast<size_t>(i)] = argbOf(palette[i]);
        start = image->GetInfo()->startcolour;
        used = image->GetInfo()->numcolours;
    }
    if (image == m_Image && colours == m_Colours && count == m_Count && start == m_Start &&
        used == m_Used)
        return;
    m_Image = image;
    m_Colours = colours;
    m_Count = count;
    m_Start = start;
    m_Used = used;
    updateGeometry();
    update();
    SetHover(m_Hover < m_Count ? m_Hover : -1);
}

int CPaletteWellWidget::Cell() const {
    return std::max(kMinCell, (width() - 1) / Columns());
}

QRect CPaletteWellWidget::SwatchRect(int index) const {
    if (index < 0 || index >= m_Count) return {};
    const int cell = Cell();
    return QRect((index % Columns()) * cell, (index / Columns()) * cell, cell, cell);
}

int CPaletteWellWidget::IndexAt(const QPoint& pos) const {
    if (pos.x() < 0 || pos.y() < 0) return -1;
    const int cell = Cell();
    const int column = pos.x() / cell, row = pos.y() / cell;
    if (column >= Columns()) return -1;
    const int index = row * Columns() + column;
    return index < m_Count ? index : -1;
}

QSize CPaletteWellWidget::sizeHint() const {
    return {16 * 14 + 1, 16 * 14 + 1};
}

QSize CPaletteWellWidget::minimumSizeHint() const {
    const int rows = std::max(1, m_Count / Columns());
    return {16 * kMinCell + 1, rows * kMinCell + 1};
}

void CPaletteWellWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().window());
    if (m_Count == 0) {
        painter.drawText(rect().adjusted(4, 4, -4, -4),
                         Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap,
                         m_Image ? "The focused image has no palette (true colour)." : "No image.");
        return;
    }
    const CColourSelection& selection = ZyColourSelection();
    for (int i = 0; i < m_Count; ++i) {
        const QRect r = SwatchRect(i);
        // Checkerboard, then the colour with its alpha over it.
        for (int y = r.top(); y <= r.bottom(); y += kCheck)
            for (int x = r.left(); x <= r.right(); x += kCheck) {
                const bool dark = ((x - r.left()) / kCheck + (y - r.top()) / kCheck) % 2;
                painter.fillRect(QRect(x, y, std::min(kCheck, r.right() - x + 1),
                                       std::min(kCheck, r.bottom() - y + 1)),
                                 dark ? QColor(0xC0, 0xC0, 0xC0) : QColor(0xFF, 0xFF, 0xFF));
            }
        const uint32_t c = m_Colours[static_cast<size_t>(i)];
        painter.fillRect(r, QColor(c >> 16 & 0xFF, c >> 8 & 0xFF, c & 0xFF, c >> 24));
        painter.setPen(QColor(0x40, 0x40, 0x40));
        painter.drawRect(r.adjusted(0, 0, 0, 0));
        // Entries outside the used range are struck through.
        if (i < m_Start || i >= m_Start + m_Used) {
            painter.setPen(QPen(QColor(0x80, 0x80, 0x80), 1));
            painter.drawLine(r.bottomLeft(), r.topRight());
        }
        if (i == m_Start) {
            const QPoint corner = r.topLeft() + QPoint(1, 1);
            const QPoint tri[3] = {corner, corner + QPoint(r.width() / 2, 0),
                                   corner + QPoint(0, r.height() / 2)};
            painter.setPen(Qt::NoPen);
            painter.setBrush(Qt::black);
            painter.drawPolygon(tri, 3);
            painter.setBrush(Qt::NoBrush);
        }
        if (selection.IsSelected(i)) {
            painter.setPen(QPen(Qt::black, 1));
            painter.drawRect(r.adjusted(1, 1, -1, -1));
            painter.setPen(QPen(Qt::white, 1));
            painter.drawRect(r.adjusted(2, 2, -2, -2));
        }
    }
    if (m_Dragging && m_DropIndex >= 0) {
        painter.setPen(QPen(QColor(0xFF, 0x40, 0x00), 2));
        painter.drawRect(SwatchRect(m_DropIndex).adjusted(1, 1, -1, -1));
    }
}

void CPaletteWellWidget::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    const int index = IndexAt(event->position().toPoint());
    if (index < 0) return;
    CColourSelection& selection = ZyColourSelection();
    const Qt::KeyboardModifiers mods = event->modifiers();
    m_PressIndex = -1;
    if (mods & Qt::ShiftModifier) {
        std::array<uint8_t, 256> flags =
            (mods & Qt::ControlModifier) ? selection.GetFlags() : std::array<uint8_t, 256>{};
        const int anchor = m_Anchor >= 0 ? m_Anchor : index;
        for (int i = std::min(anchor, index); i <= std::max(anchor, index); ++i)
            flags[static_cast<size_t>(i)] = 1;
        selection.SetFlags(flags);
    } else if (mods & Qt::ControlModifier) {
        selection.Toggle(index);
        m_Anchor = index;
    } else if (selection.IsSelected(index)) {
        // A press on a picked entry may start a drag; a plain click picks
        // it alone on release.
        m_PressIndex = index;
        m_PressPos = event->position().toPoint();
    } else {
        std::array<uint8_t, 256> flags{};
        flags[static_cast<size_t>(index)] = 1;
        selection.SetFlags(flags);
        m_Anchor = index;
        m_PressIndex = index;
        m_PressPos = event->position().toPoint();
    }
}

void CPaletteWellWidget::mouseMoveEvent(QMouseEvent* event) {
    const QPoint pos = event->position().toPoint();
    SetHover(IndexAt(pos));
    if (m_PressIndex < 0 || !(event->buttons() & Qt::LeftButton)) return;
    if (!m_Dragging && (pos - m_PressPos).manhattanLength() >= QApplication::startDragDistance())
        m_Dragging = true;
    if (m_Dragging) {
        const int drop = IndexAt(pos);
        if (drop != m_DropIndex) {
            m_DropIndex = drop;
            update();
        }
    }
}

void CPaletteWellWidget::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    const int press = m_PressIndex;
    const bool dragged = m_Dragging;
    const int drop = IndexAt(event->position().toPoint());
    m_PressIndex = -1;
    m_Dragging = false;
    m_DropIndex = -1;
    update();
    if (press < 0) return;
    if (!dragged) {
        std::array<uint8_t, 256> flags{};
        flags[static_cast<size_t>(press)] = 1;
        ZyColourSelection().SetFlags(flags);
        m_Anchor = press;
        return;
    }
    if (drop < 0 || drop == press || !m_Doc || m_Doc->GetImageCount() == 0) return;
    auto* cmd = new CMoveColorCmd;
    cmd->PresetTarget(drop);
    m_Doc->GetCommandHandler().Start(cmd);
    Refresh();
    emit CommandRun();
}

void CPaletteWellWidget::leaveEvent(QEvent*) {
    SetHover(-1);
}

void CPaletteWellWidget::SetHover(int index) {
    m_Hover = index;
    QString text;
    if (index >= 0 && index < m_Count)
        text = QString("Index %1: ARGB %2")
                   .arg(index)
                   .arg(QString::number(m_Colours[static_cast<size_t>(index)], 16)
                            .rightJustified(8, '0')
                            .toUpper());
    if (text == m_HoverText) return;
    m_HoverText = text;
    setToolTip(text);
    emit HoverChanged(text);
}

CPaletteWell::CPaletteWell(QWidget* parent) : QDockWidget("Palette", parent) {
    setObjectName("PaletteWell");
    auto* body = new QWidget;
    auto* layout = new QVBoxLayout(body);
    layout->setContentsMargins(4, 4, 4, 4);
    m_Well = new CPaletteWellWidget;
    m_Info = new QLabel(" ");
    m_Info->setObjectName("PaletteWellInfo");
    layout->addWidget(m_Well, 1);
    layout->addWidget(m_Info);
    setWidget(body);
    connect(m_Well, &CPaletteWellWidget::HoverChanged, m_Info,
            [this](const QString& text) { m_Info->setText(text.isEmpty() ? " " : text); });
}
