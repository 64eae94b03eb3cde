#include "ScriptedUi.h"

#include "app/doc/ImageListClip.h"
#include "app/doc/TavixImage.h"

#include "app/doc/ProgressDlg.h"

#include <stdexcept>

namespace zytest {

namespace {

class ScriptedProgress : public CProgressWindow {
  public:
    explicit ScriptedProgress(ScriptedUi& ui) : m_ui(ui) { ++m_ui.progressWindowsOpen; }
    ~ScriptedProgress() override {
        m_ui.progress.push_back("destroy");
        --m_ui.progressWindowsOpen;
    }
    void Refresh(const CProgressDlg& dlg) override {
        if (dlg.GetStatus() != m_status) {
            m_status = dlg.GetStatus();
            m_ui.progress.push_back("status " + m_status);
            m_cancelPending = !m_ui.cancelAtStatus.empty() && m_status == m_ui.cancelAtStatus;
            if (!m_ui.throwAtStatus.empty() && m_status == m_ui.throwAtStatus)
                throw std::logic_error("scripted failure at " + m_status);
        }
        if (dlg.GetAnimation() != m_animation) {
            m_animation = dlg.GetAnimation();
            m_ui.progress.push_back("animation " + std::to_string(m_animation));
        }
    }
    // The press arrives with the next pump after the status was shown, as
    // a real click would.
    void Pump(CProgressDlg& dlg) override {
        if (m_cancelPending) dlg.RequestCancel();
        m_cancelPending = false;
    }

  private:
    ScriptedUi& m_ui;
    std::string m_status;
    int m_animation = -1;
    bool m_cancelPending = false;
};

} // namespace

std::vector<std::string> ScriptedUi::ProgressStatuses() const {
    std::vector<std::string> out;
    for (const std::string& entry : progress)
        if (entry.rfind("status ", 0) == 0) out.push_back(entry.substr(7));
    return out;
}

MsgAnswer ScriptedUi::MessageBox(const std::string& text, MsgButtons buttons, MsgIcon icon,
                                 const std::string& caption) {
    messages.push_back({text, buttons, icon, caption});
    if (!answers.empty()) {
        MsgAnswer answer = answers.front();
        answers.pop_front();
        return answer;
    }
    bool yesNo = buttons == MsgButtons::YesNo || buttons == MsgButtons::YesNoCancel;
    return yesNo ? MsgAnswer::Yes : MsgAnswer::OK;
}

bool ScriptedUi::EditDialog(CDialogData& data) {
    dialogsShown.push_back(data.GetDialogName());
    auto it = dialogs.find(data.GetDialogName());
    if (it != dialogs.end() && !it->second(data)) return false;
    // A refused entry is shown as the window would show it; the script
    // cannot type anything else, so the dialog is then cancelled.
    const std::string refusal = data.Validate();
    if (refusal.empty()) return true;
    MessageBox(refusal, MsgButtons::OK, MsgIcon::Warning, "Zy");
    return false;
}

std::unique_ptr<CProgressWindow> ScriptedUi::CreateProgressWindow(CProgressDlg& dlg) {
    if (failProgressWindows) return nullptr;
    progress.push_back("create " + dlg.GetCaption());
    return std::make_unique<ScriptedProgress>(*this);
}

void ScriptedUi::SetStatusText(const std::string& text) {
    statusLines.push_back(text);
}

void ScriptedUi::ShowExceptionDialog(const CExceptionDlgTexts& texts) {
    exceptionDialogs.push_back(texts);
}

void ScriptedUi::Log(const std::string& line) {
    logLines.push_back(line);
}

void ScriptedUi::ReportCrash(const std::string& line) {
    crashLines.push_back(line);
    if (forwardCrashReports) CUserInterface::ReportCrash(line);
}

CCurrentColour ScriptedUi::GetCurrentColour(int number) const {
    return number >= 0 && number < 8 ? colours[number] : CCurrentColour{};
}

ScopedModel::ScopedModel()
    : m_previousUi(ZySetUi(&ui)), m_previousProfile(ZySetProfile(&profile)) {}

ScopedModel::~ScopedModel() {
    ZySetUi(m_previousUi);
    ZySetProfile(m_previousProfile);
}

void ScriptedUi::OfferClipboardImages(const std::vector<const CTavixImage*>& images) {
    clipboard = EncodeImageList(images);
}

std::vector<std::string> ScriptedUi::GetClipboardFormats() const {
    if (clipboard.empty()) return {};
    return {"Zy Image List"};
}

std::vector<std::unique_ptr<CTavixImage>> ScriptedUi::ReadClipboardImages(const std::string&) {
    return DecodeImageList(clipboard);
}

} // namespace zytest
