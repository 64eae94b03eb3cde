#include "app/ui/PreviewPane.h"

#include "app/doc/TavixImage.h"
#include "app/ui/QtImage.h"

#include <QGridLayout>
#include <QLabel>
#include <QPainter>

namespace {

constexpr int kBox = 160; // each picture's box, in pixels
constexpr int kChecker = 8;

// The picture scaled to fit the box (whole pixels when enlarging, so
// sprites stay crisp) over a checkerboard that shows transparency.
QPixmap picture(const CTavixImage& image) {
    const QImage source = ToQImage(image);
    QPixmap box(kBox, kBox);
    QPainter painter(&box);
    for (int y = 0; y < kBox; y += kChecker)
        for (int x = 0; x < kBox; x += kChecker)
            painter.fillRect(x, y, kChecker, kChecker,
                             ((x + y) / kChecker) % 2 ? QColor(0xB0, 0xB0, 0xB0) : Qt::white);
    if (source.isNull()) return box;
    QSize size = source.size();
    if (size.width() <= kBox / 2 && size.height() <= kBox / 2) {
        const int factor = std::max(1, std::min(kBox / size.width(), kBox / size.height()));
        size *= factor;
    } else {
        size.scale(kBox, kBox, Qt::KeepAspectRatio);
    }
    const QImage scaled = source.scaled(size, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    painter.drawImage((kBox - size.width()) / 2, (kBox - size.height()) / 2, scaled);
    return box;
}

} // namespace

CPreviewPane::CPreviewPane(const CTavixImage& source, Filter filter, QWidget* parent)
    : QWidget(parent), m_Source(source), m_Filter(std::move(filter)) {
    setObjectName("PreviewPane");
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->addWidget(new QLabel("Before"), 0, 0, Qt::AlignHCenter);
    grid->addWidget(new QLabel("After"), 0, 1, Qt::AlignHCenter);
    m_BeforeLabel = new QLabel;
    m_AfterLabel = new QLabel;
    m_AfterLabel->setObjectName("PreviewAfter");
    m_AfterLabel->setAlignment(Qt::AlignCenter);
    m_AfterLabel->setMinimumSize(kBox, kBox);
    grid->addWidget(m_BeforeLabel, 1, 0);
    grid->addWidget(m_AfterLabel, 1, 1);
    Show(m_BeforeLabel, &m_Source);
}

CPreviewPane::~CPreviewPane() = default;

void CPreviewPane::Refresh() {
    m_After = m_Filter ? m_Filter(m_Source) : nullptr;
    Show(m_AfterLabel, m_After.get());
}

void CPreviewPane::Show(QLabel* label, const CTavixImage* image) {
    if (!image) {
        label->setPixmap(QPixmap());
        label->setText("No preview\nfor these values");
        return;
    }
    label->setPixmap(picture(*image));
}
