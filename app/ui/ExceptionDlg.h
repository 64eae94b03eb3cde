#pragma once
// CExceptionDlg: the modal "Zy Program Error" dialog that every guard
// (command, undo, open, save) shows when unexpected code failed. Three
// headings, "What:", "Scope:" and "Action:", each over its text, and OK.

#include "app/doc/UserInterface.h"

#include <QDialog>

class QLabel;

class CExceptionDlg : public QDialog {
    Q_OBJECT
  public:
    explicit CExceptionDlg(const CExceptionDlgTexts& texts, QWidget* parent = nullptr);

    QString WhatText() const;
    QString ScopeText() const;
    QString ActionText() const;

  private:
    QLabel* m_What;
    QLabel* m_Scope;
    QLabel* m_Action;
};
