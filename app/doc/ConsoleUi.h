#pragma once
// The user interface of tools that run without anybody watching (zytool).
// It never blocks: message boxes are printed to stderr and answered with
// the affirmative button (OK or Yes), parameter dialogs keep the values
// they were given and count as confirmed, progress windows draw nothing
// and are never cancelled, and the status line and the log go to stderr
// when verbose.

#include "app/doc/UserInterface.h"

#include <cstdio>

class CConsoleUi : public CUserInterface {
  public:
    explicit CConsoleUi(FILE* out = stderr) : m_Out(out) {}

    // Status lines, log lines and progress steps are printed only when on.
    void SetVerbose(bool verbose) { m_Verbose = verbose; }

    MsgAnswer MessageBox(const std::string& text, MsgButtons buttons, MsgIcon icon,
                         const std::string& caption) override;
    bool EditDialog(CDialogData& data) override;
    std::unique_ptr<CProgressWindow> CreateProgressWindow(CProgressDlg& dlg) override;
    void SetStatusText(const std::string& text) override;
    void ShowExceptionDialog(const CExceptionDlgTexts& texts) override;
    void Log(const std::string& line) override;

  private:
    FILE* m_Out;
    bool m_Verbose = false;
};
