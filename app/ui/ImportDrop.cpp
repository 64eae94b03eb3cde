#include "app/ui/ImportDrop.h"

#include "app/cmds/ImportCmd.h"
#include "app/doc/Exceptions.h"
#include "app/doc/UserInterface.h"

#include <QApplication>

void ImportDroppedFiles(CTavixDoc* doc, const QStringList& paths) {
    std::vector<std::string> files;
    for (const QString& path : paths)
        files.push_back(path.toStdString());
    QApplication::setOverrideCursor(Qt::WaitCursor);
    try {
        CImportCmd::ImportFiles(doc, files);
    } catch (const CFileException&) {
        // The failing read has already told the user.
    } catch (const CException& error) {
        ZyUi().MessageBox(error.GetErrorMessage(), MsgButtons::OK, MsgIcon::Error);
    } catch (const std::exception& error) {
        ZyUi().MessageBox(std::string("The import stopped: ") + error.what(), MsgButtons::OK,
                          MsgIcon::Error);
    }
    QApplication::restoreOverrideCursor();
}
