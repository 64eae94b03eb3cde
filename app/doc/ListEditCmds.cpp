#include "app/doc/ListEditCmds.h"

#include "app/doc/Exceptions.h"
#include "app/doc/Hints.h"
#include "app/doc/TavixDoc.h"
#include "app/doc/TavixImage.h"
#include "app/doc/TavixImageList.h"
#include "app/doc/UserInterface.h"

#include <algorithm>

// ---- List state ------------------------------------------------------------

CListState CListState::Of(CTavixDoc& doc) {
    CListState state;
    state.m_Images.assign(doc.GetImages().begin(), doc.GetImages().end());
    const CSelectionModel& selection = doc.GetSelectionModel();
    state.m_Selected.resize(state.m_Images.size());
    for (size_t i = 0; i < state.m_Selected.size(); ++i)
        state.m_Selected[i] = selection.IsSelected(static_cast<int>(i)) ? 1 : 0;
    state.m_Focus = selection.GetFocus();
    return state;
}

void CListState::ApplyTo(CTavixDoc& doc) const {
    doc.ReplaceImages(m_Images);
    CSelectionModel& selection = doc.GetSelectionModel();
    for (size_t i = 0; i < m_Selected.size(); ++i)
        selection.Select(static_cast<int>(i), m_Selected[i] != 0);
    selection.SetFocus(m_Focus);
    doc.UpdateAllViews(nullptr);
}

// ---- Move ------------------------------------------------------------------

std::optional<CMoveOrder> ComputeMoveOrder(const std::vector<CTavixImage*>& images,
                                           const std::vector<uint8_t>& selected, int row) {
    const int count = static_cast<int>(images.size());
    std::vector<CTavixImage*> kept, moved;
    for (int i = 0; i < count; ++i)
        (i < static_cast<int>(selected.size()) && selected[static_cast<size_t>(i)] ? moved : kept)
            .push_back(images[static_cast<size_t>(i)]);
    if (moved.empty() || kept.empty()) return std::nullopt;
    // Onto a row that stays, the run takes that row's old place (bounded by
    // the rows that stay: selected rows above it would carry it past the
    // end); onto a moved row, it goes before the next row that stays.
    int p = static_cast<int>(kept.size());
    if (row >= 0 && row < count) {
        if (!selected[static_cast<size_t>(row)]) {
            p = std::min(row, p);
        } else {
            for (int next = row + 1; next < count; ++next)
                if (!selected[static_cast<size_t>(next)]) {
                    p = static_cast<int>(
                        std::find(kept.begin(), kept.end(), images[static_cast<size_t>(next)]) -
                        kept.begin());
                    break;
                }
        }
    }
    CMoveOrder result;
    result.m_Order.assign(kept.begin(), kept.begin() + p);
    result.m_Order.insert(result.m_Order.end(), moved.begin(), moved.end());
    result.m_Order.insert(result.m_Order.end(), kept.begin() + p, kept.end());
    result.m_First = p;
    result.m_Count = static_cast<int>(moved.size());
    if (result.m_Order == images) return std::nullopt;
    return result;
}

CMoveImagesCmd::CMoveImagesCmd(int row) : m_Row(row) {
    m_Name = "Move Images";
    m_bCanUndo = true;
}

bool CMoveImagesCmd::Init(CTavixDoc* doc) {
    m_pDoc = doc;
    m_Before = CListState::Of(*doc);
    std::optional<CMoveOrder> order =
        ComputeMoveOrder(m_Before.m_Images, m_Before.m_Selected, m_Row);
    if (!order) return false;
    m_After.m_Images = std::move(order->m_Order);
    m_After.m_Selected.assign(m_After.m_Images.size(), 0);
    for (int i = order->m_First; i < order->m_First + order->m_Count; ++i)
        m_After.m_Selected[static_cast<size_t>(i)] = 1;
    m_After.m_Focus = order->m_First;
    Submit();
    return true;
}

void CMoveImagesCmd::Do() {
    m_After.ApplyTo(*m_pDoc);
}

void CMoveImagesCmd::Undo() {
    m_Before.ApplyTo(*m_pDoc);
}

// ---- Insert ----------------------------------------------------------------

std::vector<std::unique_ptr<CTavixImage>> CopyImages(const std::vector<CTavixImage*>& images) {
    std::vector<std::unique_ptr<CTavixImage>> copies;
    for (const CTavixImage* image : images) {
        std::unique_ptr<CTavixImage> copy = image ? image->Duplicate() : nullptr;
        if (!copy) throw CMemoryException();
        copies.push_back(std::move(copy));
    }
    return copies;
}

CInsertImagesCmd::CInsertImagesCmd(std::vector<std::unique_ptr<CTavixImage>> images, int position,
                                   std::string name)
    : m_Images(std::move(images)), m_Position(position) {
    m_Name = std::move(name);
    m_bCanUndo = true;
    for (const auto& image : m_Images)
        m_Inserted.push_back(image.get());
}

CInsertImagesCmd::~CInsertImagesCmd() = default;

bool CInsertImagesCmd::Init(CTavixDoc* doc) {
    if (m_Inserted.empty()) return false;
    m_pDoc = doc;
    m_Before = CListState::Of(*doc);
    const int count = static_cast<int>(m_Before.m_Images.size());
    const int p = m_Position < 0 || m_Position > count ? count : m_Position;
    m_After.m_Images = m_Before.m_Images;
    m_After.m_Images.insert(m_After.m_Images.begin() + p, m_Inserted.begin(), m_Inserted.end());
    m_After.m_Selected.assign(m_After.m_Images.size(), 0);
    for (size_t i = 0; i < m_Inserted.size(); ++i)
        m_After.m_Selected[static_cast<size_t>(p) + i] = 1;
    m_After.m_Focus = p;
    Submit();
    return true;
}

void CInsertImagesCmd::Do() {
    // The list takes the images over once they are in it.
    m_After.ApplyTo(*m_pDoc);
    for (auto& image : m_Images)
        (void)image.release();
    m_Images.clear();
}

void CInsertImagesCmd::Undo() {
    m_Images.reserve(m_Inserted.size());
    m_Before.ApplyTo(*m_pDoc);
    for (CTavixImage* image : m_Inserted)
        m_Images.emplace_back(image);
}

std::vector<std::unique_ptr<CTavixImage>> ReadImageFiles(const std::vector<std::string>& paths) {
    std::vector<std::unique_ptr<CTavixImage>> images;
    for (const std::string& path : paths) {
        CTavixImageList read;
        CFileReadReport report;
        try {
            read.ReadFile(path, true, &report);
        } catch (const CUserException&) {
            break;
        } catch (const CException& e) {
            ZyUi().MessageBox(e.GetErrorMessage(), MsgButtons::OK, MsgIcon::Error);
        }
        for (CTavixImage* image : read)
            images.emplace_back(image);
        if (!report.Complete())
            ZyUi().MessageBox(report.Describe(path), MsgButtons::OK, MsgIcon::Warning);
        if (report.m_Cancelled) break;
    }
    return images;
}

// ---- Rename ----------------------------------------------------------------

CRenameImageCmd::CRenameImageCmd(int index, std::string name)
    : m_Index(index), m_NewName(std::move(name)) {
    m_Name = "Rename";
    m_bCanUndo = true;
}

bool CRenameImageCmd::Init(CTavixDoc* doc) {
    CTavixImage* image = doc->GetImageAt(m_Index);
    if (!image) return false;
    m_OldName = image->GetName();
    if (m_OldName == m_NewName) return false;
    m_pDoc = doc;
    Submit();
    return true;
}

void CRenameImageCmd::Apply(const std::string& name) {
    CTavixImage* image = m_pDoc->GetImageAt(m_Index);
    if (!image) return;
    image->SetName(name);
    CModifiedHint hint(m_Index, m_pDoc->GetImageCount());
    hint.m_Flag = 1; // a name only: no pixel changed
    m_pDoc->UpdateAllViews(nullptr, 0, &hint);
}

void CRenameImageCmd::Do() {
    Apply(m_NewName);
}

void CRenameImageCmd::Undo() {
    Apply(m_OldName);
}
