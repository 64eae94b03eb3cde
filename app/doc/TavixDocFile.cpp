// CTavixDoc: opening, saving and the save-time format check.

#include "app/doc/TavixDoc.h"

#include "app/doc/Command.h"
#include "app/doc/Conform.h"
#include "app/doc/Exceptions.h"
#include "app/doc/ExceptionDlg.h"
#include "app/doc/Hints.h"
#include "codec/TavixBinding.h"

#include <cstring>
#include <new>

namespace {

// The filter index of the open dialog, shared by every document for as
// long as the program runs.
int g_openFilterIndex = 1;

// The driver's description, or an all-zero one (no capability at all) when
// the codec gives none.
TavixAbout describeDriver(int driver) {
    TavixSet(driver);
    TavixAboutPtr about(TavixAboutDriver());
    TavixAbout copy{};
    if (about) copy = *about;
    return copy;
}

std::string FileNameOf(const std::string& path) {
    const size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

} // namespace

template <typename Fn>
bool CTavixDoc::GuardFile(const std::string& crashLine, const CExceptionDlgTexts& texts, Fn&& fn) {
    try {
        fn();
        return true;
    } catch (const CUserException&) {
        // The user cancelled; nothing to report.
    } catch (const CException& e) {
        ZyUi().MessageBox(e.GetErrorMessage(), MsgButtons::OK, MsgIcon::Error);
    } catch (const std::bad_alloc&) {
        ZyUi().MessageBox(CMemoryException().GetErrorMessage(), MsgButtons::OK, MsgIcon::Error);
    } catch (...) {
        ReportProgramError(crashLine, texts);
    }
    return false;
}

bool CTavixDoc::OnNewDocument() {
    DeleteContents();
    m_strPathName.clear();
    m_strTitle.clear();
    MarkSaved();
    return true;
}

void CTavixDoc::MarkSaved() {
    SetModifiedFlag(false);
    m_bSavedValid = true;
    m_nSavedSubmitCount = m_CommandHandler.GetSubmitCount();
    m_bSavedUndone = m_CommandHandler.IsUndone();
}

void CTavixDoc::OnHistoryChanged() {
    const int submitted = m_CommandHandler.GetSubmitCount();
    const bool undone = m_CommandHandler.IsUndone();
    const CCommand* current = m_CommandHandler.GetCurrent();
    // Back at the saved state, or the one command run since then undone.
    const bool atSaved =
        m_bSavedValid &&
        ((submitted == m_nSavedSubmitCount && undone == m_bSavedUndone) ||
         (submitted == m_nSavedSubmitCount + 1 && undone && current && current->CanUndo()));
    SetModifiedFlag(!atSaved);
}

void CTavixDoc::DeleteContents() {
    m_CommandHandler.DeleteCurrent();
    for (CTavixImage* image : m_Images)
        delete image;
    m_Images.clear();
    m_Selection.SetItemCount(0);
    m_nFileType = kNoFileType;
}

bool CTavixDoc::OnOpenDocument(const std::string& path) {
    DeleteContents();
    UpdateAllViews(nullptr);
    ++m_nBusy;
    CFileReadReport report;
    bool ok = GuardFile(CrashLine("OnOpenDocument", "Path:" + path), OpenExceptionTexts(path), [&] {
        int driver = m_Images.ReadFile(path, true, &report);
        m_nFileType = driver;
        m_Selection.SetItemCount(GetImageCount());
        SetModifiedFlag(false);
    });
    --m_nBusy;
    // A failed read appends nothing, so the document is still empty.
    m_Selection.SetItemCount(GetImageCount());
    if (!ok) return false;
    if (report.Complete()) {
        m_strPathName = path;
        m_strTitle.clear();
        MarkSaved();
    } else {
        // Part of the file is missing from the document: it must not be
        // saved over the original by a plain Save, so it has no path and
        // counts as changed.
        m_strPathName.clear();
        m_strTitle = FileNameOf(path) + " (incomplete)";
        SetModifiedFlag(true);
        m_bSavedValid = false;
        ZyUi().MessageBox(report.Describe(path) +
                              "\n\nThe frames that were read are open in an untitled document. "
                              "Save it under a new name to keep them.",
                          MsgButtons::OK, MsgIcon::Warning);
    }
    CInsertHint hint(0, GetImageCount());
    UpdateAllViews(nullptr, 0, &hint);
    return true;
}

bool CTavixDoc::OnSaveDocument(const std::string& path) {
    ++m_nBusy;
    const std::string line =
        CrashLine("OnSaveDocument", "Path:" + path + " FileType:" + std::to_string(m_nFileType));
    const std::vector<uint8_t> marks = ModifiedMarks();
    bool ok = GuardFile(line, SaveExceptionTexts(path),
                        [&] { m_Images.WriteFile(path, m_nFileType, true); });
    if (!ok) {
        // The images were not saved: they keep their marks.
        for (size_t i = 0; i < m_Images.size() && i < marks.size(); ++i)
            m_Images[i]->SetModifiedMark(marks[i]);
    }
    --m_nBusy;
    return ok;
}

std::vector<uint8_t> CTavixDoc::ModifiedMarks() const {
    std::vector<uint8_t> marks;
    for (const CTavixImage* image : m_Images)
        marks.push_back(image->GetModifiedMark());
    return marks;
}

bool CTavixDoc::OnFileSave() {
    if (m_strPathName.empty()) return OnFileSaveAs();
    if (!OnSaveDocument(m_strPathName)) return false;
    MarkSaved();
    return true;
}

bool CTavixDoc::OnFileSaveAs() {
    CFileDialogData dialog;
    dialog.m_Open = false;
    dialog.m_Path = m_strPathName;
    dialog.m_FileType = m_nFileType;
    if (!ZyUi().EditDialog(dialog) || dialog.m_FileType < 0) return false;
    const int oldType = m_nFileType;
    // What the format check changes is put back when the save fails, so a
    // refused save leaves the document exactly as it was.
    std::vector<std::vector<uint8_t>> records;
    for (const CTavixImage* image : m_Images) {
        const auto* bytes = reinterpret_cast<const uint8_t*>(image->GetInfo());
        records.emplace_back(bytes, bytes + sizeof(TavixInfo));
    }
    const std::vector<uint8_t> marks = ModifiedMarks();
    if (!Conform(dialog.m_FileType)) return false;
    if (!OnSaveDocument(dialog.m_Path)) {
        m_nFileType = oldType;
        for (size_t i = 0; i < m_Images.size() && i < records.size(); ++i) {
            memcpy(m_Images[i]->GetInfoForWrite(), records[i].data(), records[i].size());
            m_Images[i]->SetModifiedMark(marks[i]);
        }
        return false;
    }
    m_strPathName = dialog.m_Path;
    m_strTitle.clear();
    MarkSaved();
    return true;
}

std::optional<std::string> CTavixDoc::OnFileOpen() {
    CFileDialogData dialog;
    dialog.m_Open = true;
    dialog.m_FileType = kNoFileType;
    dialog.m_FilterIndex = g_openFilterIndex;
    if (!ZyUi().EditDialog(dialog)) return std::nullopt;
    g_openFilterIndex = dialog.m_FilterIndex;
    return dialog.m_Path;
}

bool CTavixDoc::Conform(int driver) {
    if (driver == m_nFileType) return true;
    const std::string problems = ConformProblems(describeDriver(driver), m_Images);
    if (!problems.empty() && ZyUi().MessageBox(ConformWarning(problems), MsgButtons::OKCancel,
                                               MsgIcon::Warning) != MsgAnswer::OK)
        return false;
    ConformImages(describeDriver(driver), m_nFileType, driver, m_Images);
    m_nFileType = driver;
    return true;
}
