#include "app/ui/ExchangeDlg.h"

#include "app/ui/QtUserInterface.h"
#include "app/ui/TavixFileDlg.h"
#include "codec/FileTypes.h"
#include "codec/FrameIO.h"
#include "codec/TavixBinding.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

QDialogButtonBox* okCancel(QDialog* dialog) {
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    return buttons;
}

} // namespace

CExportDlg::CExportDlg(const CExportDlgData& data, QWidget* parent) : QDialog(parent) {
    setWindowTitle("Export Selected Images");
    setObjectName("CExportDlg");
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel("Folder to place exported images:"));
    auto* folderRow = new QHBoxLayout;
    m_Folder = new QLineEdit(QString::fromStdString(data.m_Folder));
    auto* browse = new QPushButton("&Browse...");
    connect(browse, &QPushButton::clicked, this, &CExportDlg::Browse);
    folderRow->addWidget(m_Folder);
    folderRow->addWidget(browse);
    layout->addLayout(folderRow);

    auto* form = new QFormLayout;
    m_Format = new QComboBox;
    for (int driver = 0; driver < TavixCount(); ++driver) {
        TavixSet(driver);
        TavixAboutPtr about(TavixAboutDriver());
        if (!about || !(about->caps & kCapWrite)) continue;
        m_Format->addItem(QString::fromUtf8(about->description), driver);
        if (driver == data.m_TavixModule) m_Format->setCurrentIndex(m_Format->count() - 1);
    }
    form->addRow("File format:", m_Format);
    m_NameFormat = new QComboBox;
    m_NameFormat->addItems({"Image name", "Number (0000, 0001 ...)", "Image name in UPPER CASE",
                            "Image name in lower case"});
    m_NameFormat->setCurrentIndex(std::clamp(data.m_NameFormat, 0, 3));
    form->addRow("Name format:", m_NameFormat);
    layout->addLayout(form);
    layout->addWidget(okCancel(this));
}

void CExportDlg::Browse() {
    const QString folder =
        QFileDialog::getExistingDirectory(this, "Select a Folder", m_Folder->text());
    if (!folder.isEmpty()) m_Folder->setText(folder);
}

void CExportDlg::Store(CExportDlgData& data) const {
    data.m_Folder = m_Folder->text().toStdString();
    data.m_TavixModule = m_Format->currentData().toInt();
    data.m_NameFormat = m_NameFormat->currentIndex();
}

bool RunExportDlg(CExportDlgData& data, QWidget* parent) {
    CExportDlg dialog(data, parent);
    if (dialog.exec() != QDialog::Accepted) return false;
    dialog.Store(data);
    return true;
}

bool RunImportFramesDlg(CImportFramesDlgData& data, QWidget* parent) {
    QDialog dialog(parent);
    dialog.setWindowTitle("Import Frames");
    dialog.setObjectName("CImportFramesDlg");
    auto* layout = new QVBoxLayout(&dialog);
    layout->addWidget(new QLabel(QString("%1 holds %2 images. Import the checked ones:")
                                     .arg(QString::fromStdString(data.m_File))
                                     .arg(data.m_Names.size())));
    auto* list = new QListWidget;
    for (size_t i = 0; i < data.m_Names.size(); ++i) {
        auto* item = new QListWidgetItem(QString::fromStdString(data.m_Names[i]), list);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(i < data.m_Import.size() && data.m_Import[i] ? Qt::Checked
                                                                         : Qt::Unchecked);
    }
    layout->addWidget(list);
    layout->addWidget(okCancel(&dialog));
    if (dialog.exec() != QDialog::Accepted) return false;
    data.m_Import.assign(data.m_Names.size(), 0);
    for (int i = 0; i < list->count(); ++i)
        data.m_Import[static_cast<size_t>(i)] = list->item(i)->checkState() == Qt::Checked;
    return true;
}

bool RunImportFileDlg(CImportFileDlgData& data, QWidget* parent) {
    CTavixFileTypesList rows;
    rows.Build();
    const TavixFileFilter filter = TavixBuildFileFilter(rows, true, {}, -1);
    QStringList filters = CTavixFileDlg::NameFilters(filter);
    filters.prepend(CTavixFileDlg::AllSupported(filter));
    QFileDialog dialog(parent, "Import");
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::ExistingFiles);
    dialog.setNameFilters(filters);
    if (dialog.exec() != QDialog::Accepted) return false;
    data.m_Paths.clear();
    for (const QString& file : dialog.selectedFiles())
        data.m_Paths.push_back(file.toStdString());
    return !data.m_Paths.empty();
}

void RegisterExchangeDialogs() {
    CQtUserInterface::RegisterDialog("CExportDlg", [](CDialogData& data, QWidget* parent) {
        return RunExportDlg(static_cast<CExportDlgData&>(data), parent);
    });
    CQtUserInterface::RegisterDialog("CImportFramesDlg", [](CDialogData& data, QWidget* parent) {
        return RunImportFramesDlg(static_cast<CImportFramesDlgData&>(data), parent);
    });
    CQtUserInterface::RegisterDialog("CImportFileDlg", [](CDialogData& data, QWidget* parent) {
        return RunImportFileDlg(static_cast<CImportFileDlgData&>(data), parent);
    });
}
