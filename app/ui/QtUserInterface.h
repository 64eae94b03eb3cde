#pragma once
// The model's user interface answered with real Qt windows: message boxes,
// the parameter dialogs, progress windows, the status-bar line, the
// program-error dialog and the log (the output window).
//
// Tests and scripted runs can put a hook in front of the message boxes and
// the dialogs; the hook's answer is used instead of a modal window.

#include "app/doc/UserInterface.h"

#include <functional>
#include <map>
#include <optional>
#include <string>

class QWidget;
class CMainFrame;

class CQtUserInterface : public CUserInterface {
  public:
    using MessageHook = std::function<std::optional<MsgAnswer>(
        const std::string& text, MsgButtons buttons, MsgIcon icon, const std::string& caption)>;
    using DialogHook = std::function<std::optional<bool>(CDialogData& data)>;
    using DialogRunner = std::function<bool(CDialogData& data, QWidget* parent)>;
    using ExceptionHook = std::function<void(const CExceptionDlgTexts& texts)>;

    CQtUserInterface();
    ~CQtUserInterface() override;

    void SetMainFrame(CMainFrame* frame) { m_Frame = frame; }
    CMainFrame* GetMainFrame() const { return m_Frame; }

    MsgAnswer MessageBox(const std::string& text, MsgButtons buttons, MsgIcon icon,
                         const std::string& caption) override;
    bool EditDialog(CDialogData& data) override;
    std::unique_ptr<CProgressWindow> CreateProgressWindow(CProgressDlg& dlg) override;
    void EnableMainWindow(bool enable) override;
    void SetStatusText(const std::string& text) override;
    void ShowExceptionDialog(const CExceptionDlgTexts& texts) override;
    void Log(const std::string& line) override;
    void OfferClipboardImages(const std::vector<const CTavixImage*>& images) override;
    std::vector<std::string> GetClipboardFormats() const override;
    std::vector<std::unique_ptr<CTavixImage>>
    ReadClipboardImages(const std::string& format) override;

    // A dialog for the data named `name` (its GetDialogName()).
    static void RegisterDialog(const std::string& name, DialogRunner runner);

    void SetMessageHook(MessageHook hook) { m_MessageHook = std::move(hook); }
    void SetDialogHook(DialogHook hook) { m_DialogHook = std::move(hook); }
    void SetExceptionHook(ExceptionHook hook) { m_ExceptionHook = std::move(hook); }

  private:
    QWidget* Parent() const;

    CMainFrame* m_Frame = nullptr;
    MessageHook m_MessageHook;
    DialogHook m_DialogHook;
    ExceptionHook m_ExceptionHook;
};

// The application's interface as the front end set it up (null before).
CQtUserInterface* ZyQtUi();
