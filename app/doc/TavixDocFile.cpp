// CTavixDoc: opening, saving and the save-time format check.

#include "app/doc/TavixDoc.h"

#include "app/doc/Conform.h"
#include "app/doc/Exceptions.h"
#include "app/doc/ExceptionDlg.h"
#include "app/doc/Hints.h"
#include "codec/TavixBinding.h"

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
    SetModifiedFlag(false);
    m_strPathName.clear();
    return true;
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
    bool ok = GuardFile(CrashLine("OnOpenDocument", "Path:" + path), OpenExceptionTexts(path), [&] {
        int driver = m_Images.ReadFile(path, true);
        m_nFileType = driver;
        m_Selection.SetItemCount(GetImageCount());
        SetModifiedFlag(false);
    });
    --m_nBusy;
    // A failed read appends nothing, so the document is still empty.
    m_Selection.SetItemCount(GetImageCount());
    if (ok) {
        m_strPathName = path;
        CInsertHint hint(0, GetImageCount());
        UpdateAllViews(nullptr, 0, &hint);
    }
    return ok;
}

bool CTavixDoc::OnSaveDocument(const std::string& path) {
    ++m_nBusy;
    const std::string line =
        CrashLine("OnSaveDocument", "Path:" + path + " FileType:" + std::to_string(m_nFileType));
    bool ok = GuardFile(line, SaveExceptionTexts(path),
                        [&] { m_Images.WriteFile(path, m_nFileType, true); });
    --m_nBusy;
    return ok;
}

bool CTavixDoc::OnFileSave() {
    if (m_strPathName.empty()) return OnFileSaveAs();
    if (!OnSaveDocument(m_strPathName)) return false;
    SetModifiedFlag(false);
    return true;
}

bool CTavixDoc::OnFileSaveAs() {
    CFileDialogData dialog;
    dialog.m_Open = false;
    dialog.m_Path = m_strPathName;
    dialog.m_FileType = m_nFileType;
    if (!ZyUi().EditDialog(dialog) || dialog.m_FileType < 0) return false;
    const int oldType = m_nFileType;
    if (!Conform(dialog.m_FileType)) return false;
    if (!OnSaveDocument(dialog.m_Path)) {
        m_nFileType = oldType;
        return false;
    }
    m_strPathName = dialog.m_Path;
    SetModifiedFlag(false);
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
