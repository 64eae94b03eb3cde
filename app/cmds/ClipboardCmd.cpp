#include "app/cmds/ClipboardCmd.h"

#include "app/cmds/ListEdit.h"
#include "app/doc/CmdUI.h"
#include "app/doc/CommandIds.h"
#include "app/doc/Hints.h"
#include "app/doc/TavixDoc.h"
#include "app/doc/TavixImage.h"

std::vector<const CTavixImage*> SelectedImages(const CTavixDoc& doc) {
    CRange selection;
    doc.GetSelectionMask(selection);
    std::vector<const CTavixImage*> images;
    for (int position : MarkedPositions(selection))
        images.push_back(doc.GetImageAt(position));
    return images;
}

std::vector<CDialogField> CPasteSpecialDlgData::GetFields() {
    return {{"m_Format", CDialogField::Choice, &m_Format, 0, 0, m_Choices.c_str(), "Paste as"}};
}

// ---- Cut ------------------------------------------------------------------------

CCutCmd::CCutCmd() {
    m_Name = "Cut";
    m_bCanUndo = true;
}

bool CCutCmd::Init(CTavixDoc* doc) {
    m_pDoc = doc;
    doc->GetSelectionMask(m_Range);
    ZyUi().OfferClipboardImages(SelectedImages(*doc));
    Submit();
    return true;
}

void CCutCmd::Do() {
    m_Taken.clear();
    const std::vector<int> positions = MarkedPositions(m_Range);
    m_Taken.resize(positions.size());
    // From the highest position down, so that the lower ones stay put.
    for (size_t k = positions.size(); k-- > 0;)
        m_Taken[k] = {positions[k],
                      std::unique_ptr<CTavixImage>(m_pDoc->DetachImage(positions[k]))};
    CDeleteHint hint(m_Range);
    m_pDoc->UpdateAllViews(nullptr, 0, &hint);
}

void CCutCmd::Undo() {
    for (auto& [position, image] : m_Taken) {
        InsertImageAt(m_pDoc, position, std::move(image));
        m_pDoc->GetSelectionModel().Select(position);
    }
    m_Taken.clear();
    m_pDoc->UpdateAllViews(nullptr);
}

// ---- Paste ----------------------------------------------------------------------

CPasteCmd::CPasteCmd() {
    m_Name = "Paste";
    m_bCanUndo = true;
}

bool CPasteCmd::Init(CTavixDoc* doc, const std::string& format) {
    m_pDoc = doc;
    m_Held = ZyUi().ReadClipboardImages(format);
    if (m_Held.empty()) {
        ZyUi().MessageBox("The clipboard holds no images that can be pasted.", MsgButtons::OK,
                          MsgIcon::Information);
        return false;
    }
    m_Position = doc->GetImageCount();
    Submit();
    return true;
}

void CPasteCmd::Do() {
    const int count = static_cast<int>(m_Held.size());
    m_pDoc->GetSelectionModel().SelectAll(false);
    for (int k = 0; k < count; ++k) {
        InsertImageAt(m_pDoc, m_Position + k, std::move(m_Held[static_cast<size_t>(k)]));
        m_pDoc->GetSelectionModel().Select(m_Position + k);
    }
    CInsertHint hint(m_Position, count);
    m_pDoc->UpdateAllViews(nullptr, 0, &hint);
    m_pDoc->SetFocus(m_Position, true);
}

void CPasteCmd::Undo() {
    CRange removed(m_pDoc->GetImageCount());
    for (size_t k = m_Held.size(); k-- > 0;) {
        const int position = m_Position + static_cast<int>(k);
        m_Held[k].reset(m_pDoc->DetachImage(position));
        removed.SetAt(position, 1);
    }
    CDeleteHint hint(removed);
    m_pDoc->UpdateAllViews(nullptr, 0, &hint);
}

// ---- Descriptors ------------------------------------------------------------------

CCutInfo::CCutInfo() : CCommandInfo(ID_EDIT_CUT, [] { return new CCutCmd; }) {}

CCopyInfo::CCopyInfo() : CCommandInfo(ID_EDIT_COPY) {}

void CCopyInfo::Create(CTavixDoc* doc, unsigned) {
    ZyUi().OfferClipboardImages(SelectedImages(*doc));
}

CPasteInfo::CPasteInfo() : CCommandInfo(ID_EDIT_PASTE) {
    m_bNeedsImages = false;
}

bool CPasteInfo::IsCommand(unsigned nID) const {
    return nID == ID_EDIT_PASTE || nID == ID_EDIT_PASTE_SPECIAL;
}

void CPasteInfo::OnUpdate(CTavixDoc*, CCmdUI* ui) {
    ui->Enable(!ZyUi().GetClipboardFormats().empty());
}

void CPasteInfo::Create(CTavixDoc* doc, unsigned nID) {
    std::string format;
    if (nID == ID_EDIT_PASTE_SPECIAL) {
        const std::vector<std::string> formats = ZyUi().GetClipboardFormats();
        if (formats.empty()) return;
        CPasteSpecialDlgData dialog;
        for (const std::string& name : formats)
            dialog.m_Choices += (dialog.m_Choices.empty() ? "" : ",") + name;
        if (!ZyUi().EditDialog(dialog)) return;
        format =
            formats[static_cast<size_t>(dialog.m_Format) < formats.size() ? dialog.m_Format : 0];
    }
    Start(doc, new CPasteCmd,
          [doc, format](CCommand* cmd) { return static_cast<CPasteCmd*>(cmd)->Init(doc, format); });
}

std::vector<std::string> CPasteInfo::GetSettingKeys() const {
    return {"CPasteSpecialDlg/m_Format"};
}

namespace {
CCutInfo g_cutInfo;
CCopyInfo g_copyInfo;
CPasteInfo g_pasteInfo;
} // namespace
