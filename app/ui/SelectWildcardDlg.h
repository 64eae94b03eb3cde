#pragma once
// CSelectWildcardDlg: "Select document images using a range expression".
// An expression of at most 200 characters and what to do with the images it
// names: a new selection, add to the selection, remove from it.

#include <QDialog>

class QComboBox;
class QLineEdit;

class CSelectWildcardDlg : public QDialog {
    Q_OBJECT
  public:
    enum Mode { NewSelection = 0, AddToSelection = 1, RemoveFromSelection = 2 };
    static constexpr int kMaxExpression = 200;

    CSelectWildcardDlg(const QString& expression, int mode, QWidget* parent = nullptr);

    QString Expression() const;
    int Mode() const;
    QLineEdit* ExpressionEdit() const { return m_Expression; }
    QComboBox* ModeBox() const { return m_Mode; }

  private:
    QLineEdit* m_Expression;
    QComboBox* m_Mode;
};

#include "app/doc/UserInterface.h"

#include <string>

// The values the dialog edits, for CUserInterface::EditDialog.
struct CSelectWildcardData : CDialogData {
    std::string m_Expression;
    int m_Mode = 0;
    const char* GetDialogName() const override { return "CSelectWildcardDlg"; }
};

// Shows the dialog for `data`; true on OK.
bool RunSelectWildcardDlg(CSelectWildcardData& data, QWidget* parent);
