#include "app/cmds/DuplicateCmd.h"

#include "app/cmds/ListEdit.h"
#include "app/doc/CommandIds.h"
#include "app/doc/Exceptions.h"
#include "app/doc/Hints.h"
#include "app/doc/TavixDoc.h"

CDuplicateCmd::CDuplicateCmd() {
    m_Name = "Duplicate";
}

bool CDuplicateCmd::Init(CTavixDoc* doc) {
    return Init(doc, doc->GetImageCount());
}

bool CDuplicateCmd::Init(CTavixDoc* doc, int position) {
    m_pDoc = doc;
    doc->GetSelectionMask(m_Range);
    m_Position = position;
    Submit();
    return true;
}

void CDuplicateCmd::Do() {
    // Every copy is made before the first is inserted: a failed copy
    // leaves the document as it was.
    std::vector<std::unique_ptr<CTavixImage>> copies;
    for (int position : MarkedPositions(m_Range)) {
        std::unique_ptr<CTavixImage> copy = m_pDoc->GetImageAt(position)->Duplicate();
        if (!copy) throw CMemoryException();
        copies.push_back(std::move(copy));
    }
    const int count = static_cast<int>(copies.size());
    for (int k = 0; k < count; ++k)
        InsertImageAt(m_pDoc, m_Position + k, std::move(copies[static_cast<size_t>(k)]));
    CInsertHint hint(m_Position, count);
    m_pDoc->UpdateAllViews(nullptr, 0, &hint);
}

CDuplicateInfo::CDuplicateInfo()
    : CCommandInfo(ID_LIST_DUPLICATE, [] { return new CDuplicateCmd; }) {}

namespace {
CDuplicateInfo g_duplicateInfo;
} // namespace
