#pragma once
// A user interface for tests: it answers from a script and records
// everything the model showed, in order.

#include "app/doc/Profile.h"
#include "app/doc/UserInterface.h"

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace zytest {

struct ShownMessage {
    std::string text;
    MsgButtons buttons;
    MsgIcon icon;
    std::string caption;
};

class ScriptedUi : public CUserInterface {
  public:
    // ---- Script --------------------------------------------------------
    // Answers for the next message boxes, in order; when none is queued the
    // box gets OK (or Yes for Yes/No boxes).
    std::deque<MsgAnswer> answers;
    // Dialog handlers by dialog name; a dialog without one is confirmed
    // unchanged. Values the dialog refuses (CDialogData::Validate) are shown
    // as a message and the dialog is cancelled.
    std::map<std::string, std::function<bool(CDialogData&)>> dialogs;
    // Press Cancel when a progress window shows this status.
    std::string cancelAtStatus;
    // Throw a std::logic_error (an unexpected failure, not one of the
    // editor's exceptions) when a progress window shows this status.
    std::string throwAtStatus;
    // Refuse to make progress windows.
    bool failProgressWindows = false;
    // Also send crash lines through the real channel (CrashReport.h).
    bool forwardCrashReports = false;
    CCurrentColour colours[8];
    // The clipboard: Zy's own image list block, empty for none.
    std::string clipboard;

    // ---- Record --------------------------------------------------------
    std::vector<ShownMessage> messages;
    std::vector<std::string> dialogsShown;
    // "create <caption>", "status <text>", "animation <n>", "destroy".
    std::vector<std::string> progress;
    std::vector<std::string> statusLines;
    std::vector<CExceptionDlgTexts> exceptionDialogs;
    std::vector<std::string> logLines;
    std::vector<std::string> crashLines;
    int progressWindowsOpen = 0;

    // The "status ..." entries of `progress` without the prefix.
    std::vector<std::string> ProgressStatuses() const;

    MsgAnswer MessageBox(const std::string& text, MsgButtons buttons, MsgIcon icon,
                         const std::string& caption) override;
    bool EditDialog(CDialogData& data) override;
    std::unique_ptr<CProgressWindow> CreateProgressWindow(CProgressDlg& dlg) override;
    void SetStatusText(const std::string& text) override;
    void ShowExceptionDialog(const CExceptionDlgTexts& texts) override;
    void Log(const std::string& line) override;
    void ReportCrash(const std::string& line) override;
    CCurrentColour GetCurrentColour(int number) const override;
    void OfferClipboardImages(const std::vector<const CTavixImage*>& images) override;
    std::vector<std::string> GetClipboardFormats() const override;
    std::vector<std::unique_ptr<CTavixImage>>
    ReadClipboardImages(const std::string& format) override;
};

// Installs a fresh ScriptedUi and an empty in-memory profile for the life
// of the object, and puts the previous ones back afterwards.
class ScopedModel {
  public:
    ScopedModel();
    ~ScopedModel();
    ScriptedUi ui;
    CMemoryProfile profile;

  private:
    CUserInterface* m_previousUi;
    CProfile* m_previousProfile;
};

} // namespace zytest
