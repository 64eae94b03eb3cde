#include "app/doc/UndoableCmd.h"

#include "app/doc/ProgressDlg.h"
#include "app/doc/TavixDoc.h"
#include "app/doc/UserInterface.h"
#include "imaging/galloc.h"
#include "imaging/module/module.h"

#include <cstdio>

namespace {

constexpr uint32_t kAcceptsIndexed = 0x1;
constexpr uint32_t kAcceptsTrueColour = 0x2;

std::string countText(int done, int total) {
    char text[32];
    snprintf(text, sizeof text, "(%d/%d)", done, total);
    return text;
}

} // namespace

CUndoableCmd::CUndoableCmd() {
    m_Name = "Nothing";
    FindModule("fnil");
    m_bCanUndo = true;
    m_SavedImages.reserve(10);
}

CUndoableCmd::~CUndoableCmd() = default;

void CUndoableCmd::FindModule(const char* name) {
    m_Module = module_find(name);
}

void CUndoableCmd::CopySelection() {
    m_pDoc->GetSelectionMask(m_Range);
}

bool CUndoableCmd::Init(CTavixDoc* doc) {
    m_pDoc = doc;
    CopySelection();
    Submit();
    return true;
}

std::unique_ptr<CTavixImage> CUndoableCmd::FilterImage(CTavixImage* image) {
    return RunFilter(image, nullptr, 0);
}

std::unique_ptr<CTavixImage> CUndoableCmd::RunFilter(CTavixImage* image, const ModuleValue* values,
                                                     int count) const {
    return image->RunModule(m_Module, values, count);
}

void CUndoableCmd::SendHint() {
    m_Hint.m_Range = m_Range;
    m_pDoc->UpdateAllViews(nullptr, 0, &m_Hint);
}

void CUndoableCmd::Replace(int position, CTavixImage* source, std::unique_ptr<CTavixImage> result) {
    result->SetModifiedMark(source->GetModifiedMark());
    // The source leaves the document and the command keeps it; the two
    // steps cannot fail half-way, so the document never shares an image
    // with the saved list.
    m_SavedImages.reserve(m_SavedImages.size() + 1);
    CTavixImage* taken = m_pDoc->SetImageAt(position, result.release());
    m_SavedImages.emplace_back(taken);
}

void CUndoableCmd::Do() {
    if (m_bShowProgress)
        DoWithProgress();
    else
        DoPlain();
}

void CUndoableCmd::DoWithProgress() {
    SendHint();
    const int total = m_Range.Count();
    module_select(m_Module);
    GPtr<ModuleDescriptor> descriptor(module_describe());
    if (!descriptor) {
        ZyUi().MessageBox("Could not access filter information.", MsgButtons::OK, MsgIcon::Error);
        return;
    }
    const uint32_t flags = descriptor->flags;
    CProgressDlg progress("Filtering Images", descriptor.get());
    progress.Create();
    progress.SetRange(0, total);
    progress.SetStatus("Starting");

    const CRange positions = m_Range;
    m_Range.SetAll(0);
    int done = 0;
    for (int i = 0; i < positions.GetSize(); ++i) {
        if (!positions.IsSelected(i)) continue;
        CTavixImage* source = m_pDoc->GetImageAt(i);
        if (!source) continue;
        progress.SetStatus(countText(done, total));
        if (progress.CheckCancelButton()) break;
        std::unique_ptr<CTavixImage> result;
        if (m_Module != 0 && m_bCheckFormat && source->GetBitCount() > 8 &&
            !(flags & kAcceptsTrueColour)) {
            result = source->Duplicate();
            ZyUi().SetStatusText(
                "Could not filter all images because some of them were true color");
        } else if (m_Module != 0 && m_bCheckFormat && source->GetBitCount() <= 8 &&
                   !(flags & kAcceptsIndexed)) {
            result = source->Duplicate();
            ZyUi().SetStatusText("Could not filter all images because some of them were indexed");
        } else {
            result = FilterImage(source);
        }
        // A module that gives nothing ends the run: the source stays where
        // it is and its position stays clear.
        if (!result) break;
        Replace(i, source, std::move(result));
        m_Range.SetAt(i, 1);
        progress.StepIt();
        ++done;
    }
    progress.SetStatus("Ending");
    descriptor.reset();
    SendHint();
    progress.DestroyWindow();
}

void CUndoableCmd::DoPlain() {
    const CRange positions = m_Range;
    for (int i = 0; i < positions.GetSize(); ++i) {
        if (!positions.IsSelected(i)) continue;
        CTavixImage* source = m_pDoc->GetImageAt(i);
        std::unique_ptr<CTavixImage> result = source ? FilterImage(source) : nullptr;
        // The document never holds a null image: a failed image stays as
        // it was and leaves the range, so that Undo skips it.
        if (!result) {
            m_Range.SetAt(i, 0);
            continue;
        }
        Replace(i, source, std::move(result));
    }
    SendHint();
}

void CUndoableCmd::Undo() {
    SendHint();
    size_t saved = 0;
    for (int i = 0; i < m_Range.GetSize() && saved < m_SavedImages.size(); ++i) {
        if (!m_Range.IsSelected(i)) continue;
        CTavixImage* back = m_SavedImages[saved].release();
        m_SavedImages[saved].reset(m_pDoc->SetImageAt(i, back));
        ++saved;
    }
    SendHint();
}
