#include "app/ui/HelpWindow.h"

#include <QFileInfo>
#include <QTextBrowser>
#include <QUrl>
#include <QVBoxLayout>

CHelpWindow::CHelpWindow(QWidget* parent)
    : QWidget(parent, Qt::Window), m_Browser(new QTextBrowser) {
    setWindowTitle("Zy Documentation");
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_Browser);
    // Links to the other notes open here; web links go to the browser.
    m_Browser->setOpenExternalLinks(true);
    resize(760, 640);
}

bool CHelpWindow::ShowFile(const QString& path) {
    const QFileInfo file(path);
    if (!file.isFile() || !file.isReadable()) {
        m_Browser->setPlainText("The manual is not installed: " + path + " cannot be read.");
        return false;
    }
    m_Browser->setSource(QUrl::fromLocalFile(file.absoluteFilePath()),
                         QTextDocument::MarkdownResource);
    return true;
}
