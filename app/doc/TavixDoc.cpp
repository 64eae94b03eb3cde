#include "app/doc/TavixDoc.h"

#include "app/doc/CmdUI.h"
#include "app/doc/Command.h"
#include "app/doc/Hints.h"
#include "app/doc/View.h"

#include <algorithm>

CTavixDoc::CTavixDoc() {
    m_Images.reserve(10);
    m_CommandHandler.SetDocument(this);
}

CTavixDoc::~CTavixDoc() {
    // Commands may hold images and refer to the document: drop them first.
    m_CommandHandler.DeleteCurrent();
    m_pKept.reset();
    for (CTavixImage* image : m_Images)
        delete image;
}

// ---- Views -----------------------------------------------------------------

void CTavixDoc::AddView(CView* view) {
    if (view && std::find(m_Views.begin(), m_Views.end(), view) == m_Views.end())
        m_Views.push_back(view);
}

void CTavixDoc::RemoveView(CView* view) {
    m_Views.erase(std::remove(m_Views.begin(), m_Views.end(), view), m_Views.end());
}

void CTavixDoc::UpdateAllViews(CView* sender, long lHint, CObject* hint) {
    // A view may register or leave while it is being updated.
    const std::vector<CView*> views = m_Views;
    for (CView* view : views)
        if (view != sender && std::find(m_Views.begin(), m_Views.end(), view) != m_Views.end())
            view->OnUpdate(sender, lHint, hint);
}

// ---- Images ----------------------------------------------------------------

CTavixImage* CTavixDoc::GetImageAt(int index) const {
    if (index < 0 || index >= GetImageCount()) return nullptr;
    return m_Images[static_cast<size_t>(index)];
}

CTavixImage* CTavixDoc::SetImageAt(int index, CTavixImage* image) {
    if (index < 0 || index >= GetImageCount()) return image;
    CTavixImage* old = m_Images[static_cast<size_t>(index)];
    m_Images[static_cast<size_t>(index)] = image;
    SetModifiedFlag(true);
    return old;
}

int CTavixDoc::InsertImage(int index, CTavixImage* image) {
    int position;
    if (index < 0)
        position = 0;
    else if (index < GetImageCount())
        position = index + 1;
    else
        position = GetImageCount();
    m_Images.insert(m_Images.begin() + position, image);
    m_Selection.InsertItems(position, 1);
    return position;
}

void CTavixDoc::RemoveImage(int index) {
    if (index < 0 || index >= GetImageCount()) return;
    delete m_Images[static_cast<size_t>(index)];
    m_Images.erase(m_Images.begin() + index);
    m_Selection.RemoveItem(index);
}

CTavixImage* CTavixDoc::DetachImage(int index) {
    if (index < 0 || index >= GetImageCount()) return nullptr;
    CTavixImage* image = m_Images[static_cast<size_t>(index)];
    m_Images.erase(m_Images.begin() + index);
    m_Selection.RemoveItem(index);
    return image;
}

void CTavixDoc::SetImages(int count, CTavixImage* const* images, bool updateViews) {
    for (int i = 0; i < count; ++i) {
        if (i < GetImageCount())
            m_Images[static_cast<size_t>(i)] = images[i];
        else
            m_Images.push_back(images[i]);
    }
    m_Selection.SetItemCount(GetImageCount());
    SetModifiedFlag(true);
    if (updateViews) UpdateAllViews(nullptr);
}

void CTavixDoc::ReplaceImages(const std::vector<CTavixImage*>& images) {
    m_Images.assign(images.begin(), images.end());
    m_Selection.SetItemCount(GetImageCount());
    SetModifiedFlag(true);
}

// ---- Selection and focus -------------------------------------------------------

int CTavixDoc::GetFocusIndex() const {
    if (m_Selection.GetItemCount() < 1) return 0;
    return std::clamp(m_Selection.GetFocus(), 0, m_Selection.GetItemCount() - 1);
}

CTavixImage* CTavixDoc::GetFocusImage() const {
    if (GetImageCount() < 1) return nullptr;
    return GetImageAt(std::min(GetFocusIndex(), GetImageCount() - 1));
}

void CTavixDoc::SetFocus(int index, bool notify) {
    m_Selection.SetFocus(index);
    if (notify) {
        CFocusChangedHint hint(m_Selection.GetFocus());
        UpdateAllViews(nullptr, 0, &hint);
    }
}

void CTavixDoc::GetSelectionMask(CRange& mask) const {
    mask.SetSize(GetImageCount());
    mask.SetAll(0);
    for (int i = 0; i < GetImageCount(); ++i)
        if (m_Selection.IsSelected(i)) mask.SetAt(i, 1);
    if (mask.Count() == 0 && GetImageCount() > 0)
        mask.SetAt(std::min(GetFocusIndex(), GetImageCount() - 1), 1);
}

void CTavixDoc::GetWorksheetMask(CRange& mask) const {
    mask.SetSize(GetImageCount());
    for (int i = 0; i < GetImageCount(); ++i)
        mask.SetAt(i, m_Images[static_cast<size_t>(i)]->m_OnWorksheet ? 1 : 0);
}

void CTavixDoc::AddSelectedToWorksheet() {
    CRange mask;
    GetSelectionMask(mask);
    for (int i = 0; i < GetImageCount(); ++i)
        if (mask.IsSelected(i)) m_Images[static_cast<size_t>(i)]->m_OnWorksheet = 1;
    UpdateAllViews(nullptr);
}

void CTavixDoc::RemoveSelectedFromWorksheet() {
    CRange mask;
    GetSelectionMask(mask);
    for (int i = 0; i < GetImageCount(); ++i)
        if (mask.IsSelected(i)) m_Images[static_cast<size_t>(i)]->m_OnWorksheet = 0;
    UpdateAllViews(nullptr);
}

// ---- Commands ----------------------------------------------------------------

void CTavixDoc::Submit(CCommand* cmd) {
    m_CommandHandler.Submit(cmd);
}

void CTavixDoc::ExecuteAndKeep(CCommand* cmd) {
    std::unique_ptr<CCommand> owned(cmd);
    m_pKept.reset();
    owned->Do();
    if (owned->MarksModified()) SetModifiedFlag(true);
    m_pKept = std::move(owned);
    m_bKeptFlag = false;
}

bool CTavixDoc::OnCmdMsg(unsigned nID) {
    if (m_ToolHandler && m_ToolHandler(nID)) return true;
    return m_CommandHandler.OnCmdMsg(nID);
}

bool CTavixDoc::OnUpdateCmdUI(CCmdUI* ui) {
    return m_CommandHandler.OnUpdateCmdUI(ui);
}
