#include "app/cmds/RevertCmd.h"

#include "app/doc/CmdUI.h"
#include "app/doc/CommandIds.h"
#include "app/doc/TavixDoc.h"
#include "app/doc/UserInterface.h"

namespace {
constexpr const char* kRevertQuestion =
    "Revert will throw away all changes made from the last time the document was saved.  This "
    "operation is not reversible.  Are you sure you want to lose all your work made from the last "
    "time you saved?";
} // namespace

CRevertCmd::CRevertCmd() {
    m_Name = "Revert";
    m_Confirm = GetProfileInt("CRevertCmd", "m_Confirm", 1);
}

bool CRevertCmd::Init(CTavixDoc* doc) {
    m_pDoc = doc;
    if (m_Confirm &&
        ZyUi().MessageBox(kRevertQuestion, MsgButtons::OKCancel, MsgIcon::Warning) != MsgAnswer::OK)
        return false;
    Submit();
    return true;
}

void CRevertCmd::Do() {
    const int focus = m_pDoc->GetFocusIndex();
    const std::string path = m_pDoc->GetPathName();
    m_pDoc->DeleteContents();
    if (!path.empty()) m_pDoc->OnOpenDocument(path);
    m_pDoc->UpdateAllViews(nullptr);
    m_pDoc->SetModifiedFlag(false);
    if (focus < m_pDoc->GetImageCount())
        m_pDoc->SetFocus(focus, true);
    else if (m_pDoc->GetImageCount() > 0)
        m_pDoc->SetFocus(0, true);
    // Submit marks the document modified after Do; a reverted document is
    // not.
    m_bMarksModified = false;
}

CRevertInfo::CRevertInfo() : CCommandInfo(ID_FILE_REVERT, [] { return new CRevertCmd; }) {
    m_bNeedsImages = false;
}

void CRevertInfo::OnUpdate(CTavixDoc* doc, CCmdUI* ui) {
    ui->Enable(!doc->GetPathName().empty());
}

std::vector<std::string> CRevertInfo::GetSettingKeys() const {
    return {"CRevertCmd/m_Confirm"};
}

namespace {
CRevertInfo g_revertInfo;
} // namespace
