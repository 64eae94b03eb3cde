#pragma once
// The user interface of tools that run without anybody watching (zytool).
// It never blocks: message boxes are printed to stderr, parameter dialogs
// take their fields from the settings store (section: the dialog's name,
// key: the field's name; a field with no setting keeps its value) and count
// as confirmed, progress windows draw nothing and are never cancelled, and
// the status line and the log go to stderr when asked for.
//
// Questions (boxes with Yes/No or OK/Cancel) are answered with the
// affirmative button unless an answer was set; in strict mode a question
// without a set answer is answered negatively and counted, so that the
// tool can say which answer it needs.

#include "app/doc/UserInterface.h"

#include <cstdio>
#include <optional>

class CConsoleUi : public CUserInterface {
  public:
    explicit CConsoleUi(FILE* out = stderr) : m_Out(out) {}

    // Status lines, log lines and progress steps are printed only when on.
    void SetVerbose(bool verbose) { m_Verbose = verbose; }
    // Status lines alone are printed when on (they carry results such as
    // the blend's signal-to-noise ratios).
    void SetShowStatus(bool show) { m_ShowStatus = show; }
    // The answer to every question: true for Yes/OK, false for No/Cancel.
    void SetAnswer(std::optional<bool> yes) { m_Answer = yes; }
    void SetStrictQuestions(bool strict) { m_Strict = strict; }
    // Questions asked in strict mode without a set answer.
    int GetUnansweredCount() const { return m_Unanswered; }
    // Dialog fields whose setting did not fit the field (the dialog was
    // then cancelled).
    int GetRejectedFieldCount() const { return m_Rejected; }

    MsgAnswer MessageBox(const std::string& text, MsgButtons buttons, MsgIcon icon,
                         const std::string& caption) override;
    bool EditDialog(CDialogData& data) override;
    std::unique_ptr<CProgressWindow> CreateProgressWindow(CProgressDlg& dlg) override;
    void SetStatusText(const std::string& text) override;
    void ShowExceptionDialog(const CExceptionDlgTexts& texts) override;
    void Log(const std::string& line) override;

  private:
    bool FillField(const char* section, const CDialogField& field);

    FILE* m_Out;
    bool m_Verbose = false;
    bool m_ShowStatus = false;
    bool m_Strict = false;
    std::optional<bool> m_Answer;
    int m_Unanswered = 0;
    int m_Rejected = 0;
};

// Reads the text `text` into `field`; false when it does not fit (not a
// number, outside the limits, no such choice).
bool SetDialogFieldFromText(const CDialogField& field, const std::string& text);
// The field's value as text (a choice by its number).
std::string DialogFieldText(const CDialogField& field);
