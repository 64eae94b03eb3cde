#pragma once
// CCommandHandler: the per-document undo holder and the dispatcher of the
// document's menu commands. It keeps exactly one command, the most recently
// submitted one: undo is one level deep, and Undo again redoes it.
//
// Routing (first match wins, so ID_EDIT_UNDO never reaches the registry):
//   command   35001          OnUndo
//   command   35000          OnRedo
//   update    35001          OnUpdateUndo
//   update    35000          OnUpdateRedo
//   update    35000..35499   OnUpdateCommandRange
//   command   35000..35499   OnCommandRange
//
// Every command and every undo runs inside the program-error guard: an
// exception is caught, the crash line "Zy, crash, OnCommand, <name>" (or
// OnUndo) goes to the log and the crash-report channel, the program-error
// dialog is shown, and the document stays as the failed code left it.

#include <memory>
#include <string>

class CCmdUI;
class CCommand;
class CTavixDoc;

class CCommandHandler {
  public:
    CCommandHandler();
    ~CCommandHandler();
    CCommandHandler(const CCommandHandler&) = delete;
    CCommandHandler& operator=(const CCommandHandler&) = delete;

    // Called once by the owning document.
    void SetDocument(CTavixDoc* doc) { m_pDoc = doc; }

    // Takes ownership of `cmd`: deletes the current command, performs
    // `cmd`, marks the document modified when the command says so, and
    // keeps it as the current command. When Do throws, `cmd` is deleted and
    // there is no current command.
    void Submit(CCommand* cmd);
    bool HasUndoableCommand() const;

    // The message map: true when the message was handled here.
    bool OnCmdMsg(unsigned nID);
    bool OnUpdateCmdUI(CCmdUI* ui);

    void OnUndo();
    void OnUpdateUndo(CCmdUI* ui);
    // Redoes the current command when it is undone; otherwise nothing.
    void OnRedo();
    void OnUpdateRedo(CCmdUI* ui);
    void OnUpdateCommandRange(CCmdUI* ui);
    // The registry dispatch, also for IDs outside the range (the palette
    // well's commands arrive here directly).
    void OnCommandRange(unsigned nID);

    // Deletes the current command (the document is being emptied).
    void DeleteCurrent();

    CCommand* GetCurrent() const { return m_pCurrent.get(); }
    bool IsUndone() const { return m_bUndone; }
    // How many commands were ever submitted here: lets a caller tell
    // whether a command it started has changed hands.
    int GetSubmitCount() const { return m_nSubmitted; }
    // The command that is running now (from its start to the end of its
    // Init, or while its Do, Undo or Redo runs): the one a crash line
    // names. Cleared when it ends normally, so that a cancelled command is
    // never blamed for a later failure.
    void NoteStarting(const std::string& name) { m_Running = name; }
    void NoteFinished() { m_Running.clear(); }

    // Starts `cmd` (made outside the registry: drops, in-place edits) under
    // the program-error guard: Init, and through it Submit. A command that
    // was not submitted is deleted. True when it was submitted.
    bool Start(CCommand* cmd);

  private:
    template <typename Fn> void Guarded(const char* label, Fn&& fn);

    std::unique_ptr<CCommand> m_pCurrent;
    bool m_bUndone = false;
    CTavixDoc* m_pDoc = nullptr;
    int m_nSubmitted = 0;
    std::string m_Running; // the command running now, empty between commands
};
