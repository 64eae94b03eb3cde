#include "app/ui/AboutDlg.h"

#include "codec/TavixBinding.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QVBoxLayout>

#include <cstring>

namespace {

template <size_t N> QString field(const char (&text)[N]) {
    return QString::fromLatin1(text, static_cast<qsizetype>(strnlen(text, N)));
}

} // namespace

QString CAboutDlg::LibraryText(const TavixAbout* about, const QString& path, int drivers) {
    if (!about) return QString("Codec library: %1\n(it carries no about record)").arg(path);
    QString text =
        QString("Codec library: %1\n%2\nAuthor: %3\nVersion: %4")
            .arg(path, field(about->description), field(about->author), field(about->version));
    if (about->notes[0]) text += "\n" + field(about->notes);
    text += QString("\nDrivers: %1").arg(drivers);
    return text;
}

CAboutDlg::CAboutDlg(QWidget* parent) : QDialog(parent) {
    setWindowTitle("About Zy");
    auto* layout = new QVBoxLayout(this);
    auto* title = new QLabel(QString("<b>Zy</b> %1<br>Shape file editor").arg(ZY_VERSION));
    layout->addWidget(title);
    m_Text =
        LibraryText(TavixLibraryAbout(), QString::fromStdString(TavixLibraryPath()), TavixCount());
    auto* library = new QLabel(m_Text);
    library->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(library);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    layout->addWidget(buttons);
}
