#include "app/ui/TavixFileDlg.h"

#include <QFileDialog>
#include <QFileInfo>

QStringList CTavixFileDlg::NameFilters(const TavixFileFilter& filter) {
    QStringList filters;
    for (const TavixFilterEntry& entry : filter.entries) {
        QString text = QString::fromStdString(entry.text);
        QString pattern = QString::fromStdString(entry.pattern);
        // "All Files (*.*)" already names its pattern.
        filters << (text.contains('(') ? text : text + " (" + pattern + ")");
    }
    return filters;
}

QString CTavixFileDlg::AllSupported(const TavixFileFilter& filter) {
    QStringList patterns;
    for (const TavixFilterEntry& entry : filter.entries)
        if (entry.driver >= 0) patterns << QString::fromStdString(entry.pattern);
    return "All supported files (" + patterns.join(' ') + ")";
}

int CTavixFileDlg::SaveDriver(const std::string& path, const CTavixFileTypesList& rows,
                              int filterDriver) {
    const int typed = rows.DriverOfPath(path);
    return typed >= 0 ? typed : filterDriver;
}

std::string CTavixFileDlg::WithExtension(const std::string& path, const CTavixFileTypesList& rows,
                                         int driver) {
    if (path.empty() || !QFileInfo(QString::fromStdString(path)).suffix().isEmpty()) return path;
    const std::string extension = rows.FirstExtension(driver);
    return extension.empty() ? path : path + "." + extension;
}

bool CTavixFileDlg::Run(CFileDialogData& data, QWidget* parent) {
    CTavixFileTypesList rows;
    rows.Build();
    const TavixFileFilter filter =
        TavixBuildFileFilter(rows, data.m_Open, data.m_Path, data.m_Open ? -1 : data.m_FileType);
    QStringList filters = NameFilters(filter);
    // Opening starts on every format at once: the driver is found by content.
    if (data.m_Open) filters.prepend(AllSupported(filter));
    QFileDialog dialog(parent, data.m_Open ? "Open" : "Save As");
    dialog.setAcceptMode(data.m_Open ? QFileDialog::AcceptOpen : QFileDialog::AcceptSave);
    dialog.setFileMode(data.m_Open ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    dialog.setNameFilters(filters);
    int start = data.m_Open ? data.m_FilterIndex : filter.initialIndex;
    if (start >= 1 && start <= filters.size()) dialog.selectNameFilter(filters[start - 1]);
    if (!data.m_Path.empty()) dialog.selectFile(QString::fromStdString(data.m_Path));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return false;

    data.m_FilterIndex = static_cast<int>(filters.indexOf(dialog.selectedNameFilter())) + 1;
    data.m_Path = dialog.selectedFiles().first().toStdString();
    if (data.m_Open) {
        data.m_FileType = TavixFilterDriver(filter, data.m_FilterIndex - 1);
        return true;
    }
    data.m_FileType = SaveDriver(data.m_Path, rows, TavixFilterDriver(filter, data.m_FilterIndex));
    data.m_Path = WithExtension(data.m_Path, rows, data.m_FileType);
    return true;
}
