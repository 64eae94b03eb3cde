#pragma once
// The dialogs of import and export: "Export Selected Images" (CExportDlg),
// the choice of frames of a multi-frame file (CImportFramesDlg) and the
// multi-select file dialog of File > Import (CImportFileDlg).

#include "app/cmds/ExportCmd.h"
#include "app/cmds/ImportCmd.h"

#include <QDialog>

class QComboBox;
class QLineEdit;
class QListWidget;
class QWidget;

class CExportDlg : public QDialog {
    Q_OBJECT
  public:
    CExportDlg(const CExportDlgData& data, QWidget* parent);
    void Store(CExportDlgData& data) const;

  private:
    void Browse();

    QLineEdit* m_Folder;
    QComboBox* m_Format;
    QComboBox* m_NameFormat;
};

bool RunExportDlg(CExportDlgData& data, QWidget* parent);
bool RunImportFramesDlg(CImportFramesDlgData& data, QWidget* parent);
bool RunImportFileDlg(CImportFileDlgData& data, QWidget* parent);

// Adds the three to the user interface's dialog table.
void RegisterExchangeDialogs();
