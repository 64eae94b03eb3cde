#include "app/ui/OutputWindow.h"

#include "imaging/galloc.h"

#include <QFontDatabase>
#include <QPlainTextEdit>

#include <cstdio>

namespace {

COutputWindow* g_window = nullptr;

// Text that arrived while no window was open.
QString& pending() {
    static QString text;
    return text;
}

void outputHook(const char* format, va_list args) {
    char buffer[8192];
    vsnprintf(buffer, sizeof buffer, format, args);
    OutputText(QString::fromLocal8Bit(buffer));
}

} // namespace

COutputWindow::COutputWindow(QWidget* parent) : QDockWidget("Output", parent) {
    setObjectName("OutputWindow");
    m_Edit = new QPlainTextEdit;
    m_Edit->setReadOnly(true);
    m_Edit->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_Edit->setMaximumBlockCount(5000);
    setWidget(m_Edit);
    g_window = this;
    if (!pending().isEmpty()) {
        Append(pending());
        pending().clear();
    }
}

COutputWindow::~COutputWindow() {
    if (g_window == this) g_window = nullptr;
}

void COutputWindow::Append(const QString& text) {
    // The libraries print whole and partial lines; keep them as they come.
    m_Edit->moveCursor(QTextCursor::End);
    m_Edit->insertPlainText(text);
    m_Edit->moveCursor(QTextCursor::End);
}

QString COutputWindow::Text() const {
    return m_Edit->toPlainText();
}

// Qt's own warnings and debug lines are the program's debug output too.
void qtMessageHandler(QtMsgType, const QMessageLogContext&, const QString& message) {
    fprintf(stderr, "%s\n", message.toLocal8Bit().constData());
    OutputText(message + '\n');
}

void InstallOutputPrintHook() {
    gsetprinthook(outputHook);
    qInstallMessageHandler(qtMessageHandler);
}

void RemoveOutputPrintHook() {
    gsetprinthook(nullptr);
    qInstallMessageHandler(nullptr);
}

void OutputText(const QString& text) {
    if (g_window)
        g_window->Append(text);
    else
        pending() += text;
}
