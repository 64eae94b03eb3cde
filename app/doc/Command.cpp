#include "app/doc/Command.h"

#include "app/doc/CmdUI.h"
#include "app/doc/CommandHandler.h"
#include "app/doc/Profile.h"
#include "app/doc/TavixDoc.h"
#include "app/doc/UserInterface.h"

#include <algorithm>

namespace {

// Allocated by the first registration. A plain pointer is constant-
// initialised, so descriptors constructed during static initialisation in
// any order find it in a defined state.
std::vector<CCommandInfo*>* g_infoList = nullptr;

} // namespace

// ---- CCommand --------------------------------------------------------------

CCommand::CCommand() = default;
CCommand::~CCommand() = default;

bool CCommand::Init(CTavixDoc* doc) {
    m_pDoc = doc;
    Submit();
    return true;
}

void CCommand::Submit() {
    m_pDoc->Submit(this);
}

int CCommand::GetProfileInt(const char* section, const char* entry, int fallback) {
    return ZyProfile().GetInt(section, entry, fallback);
}

void CCommand::WriteProfileInt(const char* section, const char* entry, int value) {
    ZyProfile().WriteInt(section, entry, value);
}

std::string CCommand::GetProfileString(const char* section, const char* entry,
                                       const std::string& fallback) {
    return ZyProfile().GetString(section, entry, fallback);
}

void CCommand::WriteProfileString(const char* section, const char* entry,
                                  const std::string& value) {
    ZyProfile().WriteString(section, entry, value);
}

// ---- CCommandInfo ----------------------------------------------------------

CCommandInfo::CCommandInfo(unsigned commandId, Factory factory)
    : m_nCommandId(commandId), m_Factory(std::move(factory)) {
    CCommandInfoHandler::Add(this);
}

CCommandInfo::~CCommandInfo() {
    CCommandInfoHandler::Remove(this);
}

bool CCommandInfo::IsCommand(unsigned nID) const {
    return nID == m_nCommandId;
}

void CCommandInfo::OnUpdate(CTavixDoc* doc, CCmdUI* ui) {
    ui->Enable(!(m_bNeedsImages && doc->GetImageCount() < 1));
}

void CCommandInfo::Create(CTavixDoc* doc, unsigned) {
    if (!m_Factory) return;
    Start(doc, m_Factory(), [doc](CCommand* cmd) { return cmd->Init(doc); });
}

std::vector<std::string> CCommandInfo::DialogKeys(CDialogData& data) {
    std::vector<std::string> keys;
    for (const CDialogField& field : data.GetFields())
        keys.push_back(std::string(data.GetDialogName()) + "/" + field.m_Name);
    return keys;
}

void CCommandInfo::Start(CTavixDoc* doc, CCommand* cmd,
                         const std::function<bool(CCommand*)>& init) {
    if (!cmd) return;
    CCommandHandler& handler = doc->GetCommandHandler();
    handler.NoteStarting(cmd->GetName());
    const int before = handler.GetSubmitCount();
    // Whatever Init answers, only a submitted command has a new owner; one
    // that returned false (cancelled) or true without submitting is ours.
    try {
        init(cmd);
    } catch (...) {
        // Once submitted the handler owns the command (and has already
        // deleted it if its Do threw). The running name stays for the
        // guard that reports this.
        if (handler.GetSubmitCount() == before) delete cmd;
        throw;
    }
    handler.NoteFinished();
    if (handler.GetSubmitCount() == before) delete cmd;
}

// ---- CCommandInfoHandler ---------------------------------------------------

CCommandInfoHandler::~CCommandInfoHandler() {
    delete g_infoList;
    g_infoList = nullptr;
}

void CCommandInfoHandler::Add(CCommandInfo* info) {
    if (!g_infoList) {
        g_infoList = new std::vector<CCommandInfo*>;
        g_infoList->reserve(10);
    }
    g_infoList->push_back(info);
}

void CCommandInfoHandler::Remove(CCommandInfo* info) {
    if (!g_infoList) return;
    auto& list = *g_infoList;
    list.erase(std::remove(list.begin(), list.end(), info), list.end());
}

const std::vector<CCommandInfo*>& CCommandInfoHandler::GetList() {
    static const std::vector<CCommandInfo*> empty;
    return g_infoList ? *g_infoList : empty;
}

CCommandInfo* CCommandInfoHandler::Find(unsigned nID) {
    for (CCommandInfo* info : GetList())
        if (info->IsCommand(nID)) return info;
    return nullptr;
}
