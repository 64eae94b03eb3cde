#pragma once
// The command framework: every change to a document is a command object.
//
// CCommand    one operation on a document; it asks its parameters in Init,
//             performs itself in Do and, when it can, reverses itself in
//             Undo and Redo.
// CCommandInfo  one static descriptor per command family: which menu IDs
//             the family takes, when its items are enabled, and how it
//             makes its command. Each descriptor registers itself when it is
//             constructed, so the registry lists the families in the order
//             of their static construction.
// CCommandInfoHandler  the registry.
//
// Ownership: a command belongs to whoever created it until its Init calls
// Submit; from then on the document's command handler owns it (and deletes
// it when the next command is submitted, or at once when its Do throws).
// CCommandInfo::Start deletes a command whose Init returned false or never
// submitted it.

#include "mfx/Object.h"

#include <functional>
#include <string>
#include <vector>

class CCmdUI;
class CDialogData;
class CTavixDoc;

class CCommand : public CObject {
  public:
    CCommand();
    ~CCommand() override;
    CCommand(const CCommand&) = delete;
    CCommand& operator=(const CCommand&) = delete;

    // Collects the parameters and performs the command. The base stores
    // the document, submits and returns true; false means the user
    // cancelled, and the caller deletes the command.
    virtual bool Init(CTavixDoc* doc);
    virtual void Do() {}
    virtual void Undo() {}
    // Performs the command again after an Undo.
    virtual void Redo() { Do(); }

    // Hands the command to its document, which performs and keeps it.
    void Submit();
    std::string GetName() const { return m_Name; }
    bool CanUndo() const { return m_bCanUndo; }
    bool MarksModified() const { return m_bMarksModified; }
    CTavixDoc* GetDocument() const { return m_pDoc; }

  protected:
    // Saved parameters: section = the command's class name, entry = the
    // member's name. Read in the constructor, written in Init after the
    // dialog was confirmed and before Submit.
    static int GetProfileInt(const char* section, const char* entry, int fallback);
    static void WriteProfileInt(const char* section, const char* entry, int value);
    static std::string GetProfileString(const char* section, const char* entry,
                                        const std::string& fallback);
    static void WriteProfileString(const char* section, const char* entry,
                                   const std::string& value);

    std::string m_Name = "Unnamed Command";
    CTavixDoc* m_pDoc = nullptr;
    bool m_bCanUndo = false;
    bool m_bMarksModified = true;
};

class CCommandInfo : public CObject {
  public:
    using Factory = std::function<CCommand*()>;

    // Registers the descriptor. `factory` makes the family's command for
    // the base Create; families that create their commands themselves may
    // pass none.
    explicit CCommandInfo(unsigned commandId, Factory factory = {});
    ~CCommandInfo() override;
    CCommandInfo(const CCommandInfo&) = delete;
    CCommandInfo& operator=(const CCommandInfo&) = delete;

    // Does this family handle `nID`? The base compares with its command ID.
    virtual bool IsCommand(unsigned nID) const;
    // Enabled, unless the family needs images and the document has none.
    virtual void OnUpdate(CTavixDoc* doc, CCmdUI* ui);
    // Makes the command and starts it with Init.
    virtual void Create(CTavixDoc* doc, unsigned nID);

    unsigned GetCommandId() const { return m_nCommandId; }

    // True for families that cannot work without the editor's window (a
    // colour editor, a drawing tool): batch runs refuse them.
    virtual bool NeedsWindow() const { return false; }
    // The settings the family reads, as "Section/key": its saved parameters
    // and the fields of its dialog (section: the dialog's class name).
    virtual std::vector<std::string> GetSettingKeys() const { return {}; }
    // "Section/key" for every field of `data`.
    static std::vector<std::string> DialogKeys(CDialogData& data);

    // Runs `init` on a new command; deletes the command when init returns
    // false, returns without submitting it, or throws before submitting.
    static void Start(CTavixDoc* doc, CCommand* cmd, const std::function<bool(CCommand*)>& init);

  protected:
    bool m_bNeedsImages = true;
    bool m_bReserved1 = false; // kept for families that need a further rule
    bool m_bReserved2 = false;
    unsigned m_nCommandId;
    Factory m_Factory;
};

// The process-wide registry of command descriptors, in registration order.
class CCommandInfoHandler {
  public:
    // Frees the registry list (not the descriptors, which are static).
    ~CCommandInfoHandler();

    static void Add(CCommandInfo* info);
    static void Remove(CCommandInfo* info);
    // The descriptors, or an empty list before the first registration.
    static const std::vector<CCommandInfo*>& GetList();
    // The first descriptor that takes `nID`, or null.
    static CCommandInfo* Find(unsigned nID);
};
