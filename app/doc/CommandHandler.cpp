#include "app/doc/CommandHandler.h"

#include "app/doc/CmdUI.h"
#include "app/doc/Command.h"
#include "app/doc/CommandIds.h"
#include "app/doc/ExceptionDlg.h"
#include "app/doc/TavixDoc.h"

CCommandHandler::CCommandHandler() = default;
CCommandHandler::~CCommandHandler() = default;

template <typename Fn> void CCommandHandler::Guarded(const char* label, Fn&& fn) {
    try {
        fn();
    } catch (...) {
        // The command that was running when the exception left it; a
        // failure outside any command has no name of its own.
        const std::string name = m_Running.empty() ? std::string("Unnamed Command") : m_Running;
        m_Running.clear();
        ReportProgramError(CrashLine(label, name), CommandExceptionTexts(name));
    }
}

void CCommandHandler::Submit(CCommand* cmd) {
    std::unique_ptr<CCommand> owned(cmd);
    ++m_nSubmitted;
    const std::string outer = m_Running;
    m_Running = owned->GetName();
    // The previous command's undo data is gone from here on, whatever
    // happens next.
    m_pCurrent.reset();
    owned->Do();
    if (owned->MarksModified() && m_pDoc) m_pDoc->SetModifiedFlag(true);
    m_pCurrent = std::move(owned);
    m_bUndone = false;
    m_Running = outer;
}

bool CCommandHandler::Start(CCommand* cmd) {
    const int before = m_nSubmitted;
    Guarded("OnCommand", [this, cmd] {
        CCommandInfo::Start(m_pDoc, cmd, [this](CCommand* c) { return c->Init(m_pDoc); });
    });
    return m_nSubmitted != before;
}

bool CCommandHandler::HasUndoableCommand() const {
    return m_pCurrent && m_pCurrent->CanUndo();
}

bool CCommandHandler::OnCmdMsg(unsigned nID) {
    if (nID == ID_EDIT_UNDO) {
        OnUndo();
        return true;
    }
    if (nID == ID_EDIT_REDO) {
        OnRedo();
        return true;
    }
    if (nID >= kFirstDocCommandId && nID <= kLastDocCommandId) {
        OnCommandRange(nID);
        return true;
    }
    return false;
}

bool CCommandHandler::OnUpdateCmdUI(CCmdUI* ui) {
    if (ui->m_nID == ID_EDIT_UNDO) {
        OnUpdateUndo(ui);
        return true;
    }
    if (ui->m_nID == ID_EDIT_REDO) {
        OnUpdateRedo(ui);
        return true;
    }
    if (ui->m_nID >= kFirstDocCommandId && ui->m_nID <= kLastDocCommandId) {
        OnUpdateCommandRange(ui);
        return true;
    }
    return false;
}

void CCommandHandler::OnUndo() {
    if (!m_pCurrent) return;
    m_Running = m_pCurrent->GetName();
    Guarded("OnUndo", [this] {
        if (!m_bUndone)
            m_pCurrent->Undo();
        else
            m_pCurrent->Redo();
        m_Running.clear();
    });
    m_bUndone = !m_bUndone;
    if (m_pDoc) m_pDoc->OnHistoryChanged();
}

void CCommandHandler::OnRedo() {
    if (m_bUndone && HasUndoableCommand()) OnUndo();
}

void CCommandHandler::OnUpdateRedo(CCmdUI* ui) {
    ui->Enable(m_bUndone && HasUndoableCommand());
}

void CCommandHandler::OnUpdateUndo(CCmdUI* ui) {
    ui->Enable(HasUndoableCommand());
    std::string text;
    if (!HasUndoableCommand())
        text = "Can't Undo";
    else
        text = m_bUndone ? "Redo" : "Undo";
    if (m_pCurrent) {
        text += ' ';
        text += m_pCurrent->GetName();
    }
    text += "\tCtrl+Z";
    ui->SetText(text);
}

void CCommandHandler::OnUpdateCommandRange(CCmdUI* ui) {
    if (CCommandInfo* info = CCommandInfoHandler::Find(ui->m_nID))
        info->OnUpdate(m_pDoc, ui);
    else
        ui->Enable(false);
}

void CCommandHandler::OnCommandRange(unsigned nID) {
    m_Running.clear();
    Guarded("OnCommand", [this, nID] {
        if (CCommandInfo* info = CCommandInfoHandler::Find(nID)) info->Create(m_pDoc, nID);
    });
}

void CCommandHandler::DeleteCurrent() {
    m_pCurrent.reset();
    m_bUndone = false;
}
