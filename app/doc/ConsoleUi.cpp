#include "app/doc/ConsoleUi.h"

#include "app/doc/ProgressDlg.h"

namespace {

class CConsoleProgress : public CProgressWindow {
  public:
    CConsoleProgress(FILE* out, bool verbose) : m_Out(out), m_Verbose(verbose) {}
    void Refresh(const CProgressDlg& dlg) override {
        if (!m_Verbose || dlg.GetStatus() == m_Shown) return;
        m_Shown = dlg.GetStatus();
        fprintf(m_Out, "%s: %s\n", dlg.GetCaption().c_str(), m_Shown.c_str());
    }
    void Pump(CProgressDlg&) override {}

  private:
    FILE* m_Out;
    bool m_Verbose;
    std::string m_Shown;
};

} // namespace

MsgAnswer CConsoleUi::MessageBox(const std::string& text, MsgButtons buttons, MsgIcon,
                                 const std::string& caption) {
    fprintf(m_Out, "%s: %s\n", caption.c_str(), text.c_str());
    bool yesNo = buttons == MsgButtons::YesNo || buttons == MsgButtons::YesNoCancel;
    return yesNo ? MsgAnswer::Yes : MsgAnswer::OK;
}

bool CConsoleUi::EditDialog(CDialogData&) {
    return true;
}

std::unique_ptr<CProgressWindow> CConsoleUi::CreateProgressWindow(CProgressDlg&) {
    return std::make_unique<CConsoleProgress>(m_Out, m_Verbose);
}

void CConsoleUi::SetStatusText(const std::string& text) {
    if (m_Verbose) fprintf(m_Out, "%s\n", text.c_str());
}

void CConsoleUi::ShowExceptionDialog(const CExceptionDlgTexts& texts) {
    fprintf(m_Out, "%s\nWhat: %s\nScope: %s\nAction: %s\n", texts.m_Caption.c_str(),
            texts.m_What.c_str(), texts.m_Scope.c_str(), texts.m_Action.c_str());
}

void CConsoleUi::Log(const std::string& line) {
    if (m_Verbose) fprintf(m_Out, "%s\n", line.c_str());
}
