#include "app/cmds/DeleteCmd.h"

#include "app/doc/CommandIds.h"
#include "app/doc/Hints.h"
#include "app/doc/TavixDoc.h"
#include "app/doc/UserInterface.h"

#include <cstdio>

CDeleteCmd::CDeleteCmd() {
    m_Name = "Delete";
}

bool CDeleteCmd::Init(CTavixDoc* doc) {
    m_pDoc = doc;
    doc->GetSelectionMask(m_Range);
    const int count = m_Range.Count();
    char text[256];
    snprintf(
        text, sizeof text,
        "You are about to delete %d images.  This operation cannot be undone.  Are you sure you "
        "want to delete %d images?",
        count, count);
    if (ZyUi().MessageBox(text, MsgButtons::YesNo, MsgIcon::Warning) != MsgAnswer::Yes)
        return false;
    Submit();
    return true;
}

void CDeleteCmd::Do() {
    // From the highest position down, so that the lower ones stay put.
    for (int i = m_Range.GetSize() - 1; i >= 0; --i)
        if (m_Range.IsSelected(i)) m_pDoc->RemoveImage(i);
    CDeleteHint hint(m_Range);
    m_pDoc->UpdateAllViews(nullptr, 0, &hint);
}

CDeleteInfo::CDeleteInfo() : CCommandInfo(ID_LIST_DELETE, [] { return new CDeleteCmd; }) {}

namespace {
CDeleteInfo g_deleteInfo;
} // namespace
