#include "app/ui/QtProgressWindow.h"

#include "app/doc/ProgressDlg.h"

#include <QApplication>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include <cmath>

namespace {

QString text(const std::string& s) {
    return QString::fromStdString(s);
}

constexpr int kFrames = 12;
constexpr int kFrameMs = 80;

} // namespace

CProgressAnimation::CProgressAnimation(QWidget* parent) : QWidget(parent) {
    setFixedSize(48, 48);
    m_Clock.start();
}

void CProgressAnimation::SetClip(int resource) {
    if (resource == m_Clip) return;
    m_Clip = resource;
    update();
}

void CProgressAnimation::Advance() {
    int frame = static_cast<int>(m_Clock.elapsed() / kFrameMs) % kFrames;
    if (frame == m_Frame) return;
    m_Frame = frame;
    update();
}

void CProgressAnimation::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPointF centre(width() / 2.0, height() / 2.0);
    if (m_Clip == CProgressDlg::kOpenAnimation) {
        // Opening and creating: a sheet that sweeps across a folder.
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(230, 190, 80));
        painter.drawRect(6, 16, 36, 24);
        const double x = 6 + 30.0 * m_Frame / (kFrames - 1);
        painter.setBrush(Qt::white);
        painter.setPen(QColor(60, 60, 60));
        painter.drawRect(QRectF(x, 10, 10, 16));
        return;
    }
    // Working: a ring of dots with one bright dot running round.
    for (int i = 0; i < kFrames; ++i) {
        const double angle = 2 * M_PI * i / kFrames;
        const QPointF at = centre + QPointF(std::cos(angle), std::sin(angle)) * 16;
        const int age = (m_Frame - i + kFrames) % kFrames;
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(0, 0, 128, 255 - age * 18));
        painter.drawEllipse(at, 3.5, 3.5);
    }
}

CQtProgressWindow::CQtProgressWindow(CProgressDlg& dlg, QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::WindowTitleHint | Qt::CustomizeWindowHint), m_Dlg(dlg) {
    setModal(false);
    auto* layout = new QVBoxLayout(this);
    auto* top = new QHBoxLayout;
    m_Animation = new CProgressAnimation;
    top->addWidget(m_Animation, 0, Qt::AlignTop);
    auto* form = new QFormLayout;
    m_Module = new QLabel;
    m_Author = new QLabel;
    m_Version = new QLabel;
    form->addRow("Module:", m_Module);
    form->addRow("Author:", m_Author);
    form->addRow("Version:", m_Version);
    top->addLayout(form, 1);
    layout->addLayout(top);
    m_Status = new QLabel;
    layout->addWidget(m_Status);
    auto* barRow = new QHBoxLayout;
    m_Bar = new QProgressBar;
    m_Bar->setTextVisible(false);
    m_Count = new QLabel;
    m_Count->setMinimumWidth(70);
    m_Count->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    barRow->addWidget(m_Bar, 1);
    barRow->addWidget(m_Count);
    layout->addLayout(barRow);
    m_Cancel = new QPushButton("Cancel");
    layout->addWidget(m_Cancel, 0, Qt::AlignRight);
    connect(m_Cancel, &QPushButton::clicked, this, [this] { m_Dlg.RequestCancel(); });
    setMinimumWidth(360);
    Refresh(dlg);
    show();
}

CQtProgressWindow::~CQtProgressWindow() = default;

void CQtProgressWindow::Refresh(const CProgressDlg& dlg) {
    setWindowTitle(text(dlg.GetCaption()));
    m_Module->setText(text(dlg.GetModuleText()));
    m_Author->setText(text(dlg.GetAuthorText()));
    m_Version->setText(text(dlg.GetVersionText()));
    m_Status->setText(text(dlg.GetStatus()));
    m_Count->setText(text(dlg.GetCountText()));
    m_Animation->SetClip(dlg.GetAnimation());
    const int low = std::min(dlg.GetLower(), dlg.GetUpper());
    const int high = std::max(dlg.GetLower(), dlg.GetUpper());
    m_Bar->setRange(low, high);
    m_Bar->setValue(std::clamp(dlg.GetPos(), low, high));
}

void CQtProgressWindow::Pump(CProgressDlg&) {
    m_Animation->Advance();
    // Everything pending, so that the window repaints and a press on Cancel
    // arrives; user input elsewhere meets a disabled main window.
    QApplication::processEvents(QEventLoop::AllEvents);
}

QString CQtProgressWindow::StatusText() const {
    return m_Status->text();
}

QString CQtProgressWindow::CountText() const {
    return m_Count->text();
}

QString CQtProgressWindow::ModuleText() const {
    return m_Module->text();
}
