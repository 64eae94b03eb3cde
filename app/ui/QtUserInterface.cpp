#include "app/ui/QtUserInterface.h"

#include "app/doc/TavixImage.h"
#include "app/ui/Clipboard.h"
#include "app/ui/ColRedWiz.h"
#include "app/ui/ExceptionDlg.h"
#include "app/ui/ExchangeDlg.h"
#include "app/ui/LayoutDlg.h"
#include "app/ui/ImageCmdDlgs.h"
#include "app/ui/FieldFormDlg.h"
#include "app/ui/MainFrame.h"
#include "app/ui/OutputWindow.h"
#include "app/ui/QtProgressWindow.h"
#include "app/ui/SelectWildcardDlg.h"
#include "app/ui/TavixFileDlg.h"

#include <QApplication>
#include <QMessageBox>
#include <QStatusBar>

namespace {

std::map<std::string, CQtUserInterface::DialogRunner>& dialogs() {
    static std::map<std::string, CQtUserInterface::DialogRunner> table = {
        {"CTavixFileDialog",
         [](CDialogData& data, QWidget* parent) {
             return CTavixFileDlg::Run(static_cast<CFileDialogData&>(data), parent);
         }},
        {"CSelectWildcardDlg",
         [](CDialogData& data, QWidget* parent) {
             return RunSelectWildcardDlg(static_cast<CSelectWildcardData&>(data), parent);
         }},
    };
    return table;
}

CQtUserInterface* g_qtUi = nullptr;

QMessageBox::StandardButtons buttonsOf(MsgButtons buttons) {
    switch (buttons) {
    case MsgButtons::OKCancel:
        return QMessageBox::Ok | QMessageBox::Cancel;
    case MsgButtons::YesNo:
        return QMessageBox::Yes | QMessageBox::No;
    case MsgButtons::YesNoCancel:
        return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    case MsgButtons::OK:
        break;
    }
    return QMessageBox::Ok;
}

QMessageBox::Icon iconOf(MsgIcon icon) {
    switch (icon) {
    case MsgIcon::Information:
        return QMessageBox::Information;
    case MsgIcon::Warning:
        return QMessageBox::Warning;
    case MsgIcon::Error:
        return QMessageBox::Critical;
    case MsgIcon::Question:
        return QMessageBox::Question;
    case MsgIcon::None:
        break;
    }
    return QMessageBox::NoIcon;
}

MsgAnswer answerOf(int button) {
    switch (button) {
    case QMessageBox::Cancel:
        return MsgAnswer::Cancel;
    case QMessageBox::Yes:
        return MsgAnswer::Yes;
    case QMessageBox::No:
        return MsgAnswer::No;
    default:
        return MsgAnswer::OK;
    }
}

} // namespace

CQtUserInterface::CQtUserInterface() {
    g_qtUi = this;
    RegisterExchangeDialogs();
    RegisterLayoutDialogs();
    RegisterColRedDialogs();
    RegisterImageCmdDialogs();
}

CQtUserInterface::~CQtUserInterface() {
    if (g_qtUi == this) g_qtUi = nullptr;
}

CQtUserInterface* ZyQtUi() {
    return g_qtUi;
}

QWidget* CQtUserInterface::Parent() const {
    if (m_Frame) return m_Frame;
    return QApplication::activeWindow();
}

MsgAnswer CQtUserInterface::MessageBox(const std::string& text, MsgButtons buttons, MsgIcon icon,
                                       const std::string& caption) {
    if (m_MessageHook)
        if (std::optional<MsgAnswer> answer = m_MessageHook(text, buttons, icon, caption))
            return *answer;
    QMessageBox box(iconOf(icon), QString::fromStdString(caption), QString::fromStdString(text),
                    buttonsOf(buttons), Parent());
    return answerOf(box.exec());
}

bool CQtUserInterface::EditDialog(CDialogData& data) {
    if (m_DialogHook)
        if (std::optional<bool> answer = m_DialogHook(data)) return *answer;
    auto it = dialogs().find(data.GetDialogName());
    // A dialog without a window of its own is shown as a form of its fields.
    if (it == dialogs().end() && !data.GetFields().empty()) return RunFieldForm(data, Parent());
    if (it == dialogs().end()) {
        SetStatusText(std::string("This command's dialog is not available: ") +
                      data.GetDialogName());
        return false;
    }
    return it->second(data, Parent());
}

void CQtUserInterface::RegisterDialog(const std::string& name, DialogRunner runner) {
    dialogs()[name] = std::move(runner);
}

std::unique_ptr<CProgressWindow> CQtUserInterface::CreateProgressWindow(CProgressDlg& dlg) {
    return std::make_unique<CQtProgressWindow>(dlg, Parent());
}

void CQtUserInterface::EnableMainWindow(bool enable) {
    CUserInterface::EnableMainWindow(enable);
    if (m_Frame) m_Frame->SetInputEnabled(enable);
}

void CQtUserInterface::SetStatusText(const std::string& text) {
    if (!m_Frame) return;
    m_Frame->statusBar()->showMessage(QString::fromStdString(text));
    m_Frame->statusBar()->repaint();
}

void CQtUserInterface::ShowExceptionDialog(const CExceptionDlgTexts& texts) {
    if (m_ExceptionHook) {
        m_ExceptionHook(texts);
        return;
    }
    CExceptionDlg dialog(texts, Parent());
    dialog.exec();
}

void CQtUserInterface::Log(const std::string& line) {
    OutputText(QString::fromStdString(line) + '\n');
}

void CQtUserInterface::OfferClipboardImages(const std::vector<const CTavixImage*>& images) {
    ::OfferImagesToClipboard(images);
}

std::vector<std::string> CQtUserInterface::GetClipboardFormats() const {
    return ClipboardImageFormats();
}

std::vector<std::unique_ptr<CTavixImage>>
CQtUserInterface::ReadClipboardImages(const std::string& format) {
    return ::ReadClipboardImages(format);
}
