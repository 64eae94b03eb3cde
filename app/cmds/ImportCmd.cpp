#include "app/cmds/ImportCmd.h"

#include "app/doc/CommandIds.h"
#include "app/doc/Exceptions.h"
#include "app/doc/Hints.h"
#include "app/doc/TavixDoc.h"
#include "app/doc/TavixImage.h"
#include "app/doc/TavixImageList.h"
#include "codec/FileTypes.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <strings.h>
#include <system_error>

namespace fs = std::filesystem;

namespace {

constexpr const char* kSection = "CImportCmd";
constexpr size_t kMaxComment = 1023;

// The file name without its folder and without its extension (all of it
// when it has no '.').
std::string fileTitle(const std::string& path) {
    const size_t slash = path.find_last_of("/\\");
    std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
    const size_t dot = name.rfind('.');
    return dot == std::string::npos ? name : name.substr(0, dot);
}

std::string fileName(const std::string& path) {
    const size_t slash = path.find_last_of("/\\");
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

// Whether some codec driver lists the extension of `path`.
bool hasImageExtension(const std::string& path) {
    static CTavixFileTypesList types = [] {
        CTavixFileTypesList list;
        list.Build();
        return list;
    }();
    const std::string name = fileName(path);
    const size_t dot = name.rfind('.');
    if (dot == std::string::npos) return false;
    for (int i = 0; i < types.GetCount(); ++i)
        if (strcasecmp(types[i].extension, name.c_str() + dot + 1) == 0) return true;
    return false;
}

// Takes the image at `position` out of the document without deleting it.
std::unique_ptr<CTavixImage> takeOut(CTavixDoc& doc, int position) {
    std::unique_ptr<CTavixImage> image(doc.SetImageAt(position, nullptr));
    doc.RemoveImage(position); // deletes the null left in its place
    return image;
}

} // namespace

CImportCmd::CImportCmd() {
    m_Name = "Import";
    m_bCanUndo = true;
    m_NameHandling = GetProfileInt(kSection, "m_NameHandling", 0);
    m_NameFormat = GetProfileInt(kSection, "m_NameFormat", 0);
    m_PathToComment = GetProfileInt(kSection, "m_PathToComment", 0);
}

CImportCmd::~CImportCmd() = default;

bool CImportCmd::Init(CTavixDoc* doc) {
    CImportFileDlgData files;
    if (!ZyUi().EditDialog(files)) return false;
    return Init(doc, files.m_Paths);
}

bool CImportCmd::Init(CTavixDoc* doc, std::vector<std::string> paths) {
    m_pDoc = doc;
    m_Paths = std::move(paths);
    if (m_Paths.empty()) return false;
    Submit();
    return true;
}

bool CImportCmd::ImportFiles(CTavixDoc* doc, const std::vector<std::string>& paths) {
    bool imported = false;
    CCommandInfo::Start(doc, new CImportCmd, [&](CCommand* cmd) {
        auto* import = static_cast<CImportCmd*>(cmd);
        const bool started = import->Init(doc, paths);
        imported = started && import->GetImportedCount() > 0;
        return started;
    });
    if (imported) {
        const int last = doc->GetImageCount() - 1;
        doc->GetSelectionModel().SelectAll(false);
        doc->GetSelectionModel().Select(last);
        doc->SetFocus(last, true);
    }
    return imported;
}

void CImportCmd::Do() {
    m_ImportedCount = 0;
    m_Cancelled = false;
    m_First = m_pDoc->GetImageCount();
    // Several files, or a folder, get a progress window.
    const bool several =
        m_Paths.size() > 1 || std::any_of(m_Paths.begin(), m_Paths.end(), [](const std::string& p) {
            std::error_code error;
            return fs::is_directory(p, error);
        });
    if (several) {
        m_Progress = std::make_unique<CImportProgressDlg>();
        m_Progress->Create();
        m_Progress->SetStatus("Starting");
    }
    try {
        for (const std::string& path : m_Paths) {
            if (m_Cancelled) break;
            ImportPath(path, false);
        }
    } catch (...) {
        m_Progress.reset();
        throw;
    }
    if (m_Progress) m_Progress->DestroyWindow();
    m_Progress.reset();
    CInsertHint hint(m_First, m_ImportedCount);
    m_pDoc->UpdateAllViews(nullptr, 0, &hint);
    ReportFailures();
}

void CImportCmd::ReportFailures() {
    if (m_Failures.empty()) return;
    std::string text;
    for (const std::string& failure : m_Failures)
        text += (text.empty() ? "" : "\n\n") + failure;
    m_Failures.clear();
    ZyUi().MessageBox(text, MsgButtons::OK, MsgIcon::Warning);
}

void CImportCmd::ImportPath(const std::string& path, bool insideFolder) {
    std::error_code error;
    if (fs::is_directory(path, error)) {
        // The order in which the file system lists the entries.
        for (fs::directory_iterator it(path, error), end; !error && it != end;
             it.increment(error)) {
            if (m_Cancelled) return;
            ImportPath(it->path().string(), true);
        }
        return;
    }
    if (insideFolder && !hasImageExtension(path)) return;
    if (m_Progress) m_Progress->SetStatus(fileName(path));
    ImportFile(path);
    if (m_Progress) {
        m_Progress->SetStatus(std::to_string(m_ImportedCount));
        if (m_Progress->CheckCancelButton()) m_Cancelled = true;
    }
}

void CImportCmd::ImportFile(const std::string& path) {
    CTavixImageList frames;
    int driver = kNoFileType;
    try {
        driver = frames.ReadFile(path, false);
    } catch (const CFileException& failure) {
        // Told once at the end, so that one bad file does not stop the rest.
        m_Failures.push_back(failure.what());
        for (CTavixImage* image : frames)
            delete image;
        return;
    } catch (...) {
        for (CTavixImage* image : frames)
            delete image;
        throw;
    }
    const int n = static_cast<int>(frames.size());
    std::vector<uint8_t> take(frames.size(), 1);
    if (m_AskForFrames && n > 1) {
        CImportFramesDlgData choice;
        choice.m_File = path;
        for (const CTavixImage* image : frames)
            choice.m_Names.push_back(image->GetName() + "  " + std::to_string(image->GetWidth()) +
                                     "x" + std::to_string(image->GetHeight()));
        choice.m_Import = take;
        if (ZyUi().EditDialog(choice))
            take = choice.m_Import;
        else
            std::fill(take.begin(), take.end(), 0);
        take.resize(frames.size(), 0);
    }
    for (int i = 0; i < n; ++i) {
        std::unique_ptr<CTavixImage> image(frames[static_cast<size_t>(i)]);
        frames[static_cast<size_t>(i)] = nullptr;
        if (!take[static_cast<size_t>(i)]) continue;
        NameAndComment(*image, path, n == 1, driver);
        image->TakeModifiedMark();
        m_pDoc->InsertImage(1000000, image.release());
        ++m_ImportedCount;
    }
}

void CImportCmd::NameAndComment(CTavixImage& image, const std::string& path, bool singleFrame,
                                int driver) const {
    if (singleFrame) {
        if (m_NameFormat == 1)
            image.SetName(std::to_string(m_ImportedCount));
        else if ((m_NameHandling == kOwnOrFileName && image.GetName().empty()) ||
                 m_NameHandling == kFileName)
            image.SetName(fileTitle(path));
    }
    TavixInfo* info = image.GetInfoForWrite();
    if (driver != kNoFileType && driver != m_pDoc->GetFileType()) {
        info->subtype = 0;
        info->packed = 0;
    }
    if (m_PathToComment) {
        fs::path folder = fs::absolute(fs::path(path)).parent_path();
        if (!m_pDoc->GetPathName().empty()) {
            std::error_code error;
            fs::path relative =
                fs::relative(folder, fs::absolute(m_pDoc->GetPathName()).parent_path(), error);
            if (!error && !relative.empty()) folder = relative;
        }
        std::string comment = "vpath=" + folder.string() + "\r\nfname=" + fileName(path) +
                              "\r\nsname=" + image.GetName();
        comment.resize(std::min(comment.size(), kMaxComment));
        snprintf(info->comment, sizeof info->comment, "%s", comment.c_str());
    }
}

void CImportCmd::Undo() {
    CRange removed(m_pDoc->GetImageCount());
    for (int i = m_pDoc->GetImageCount() - 1; i >= m_First; --i) {
        removed.SetAt(i, 1);
        m_Removed.push_back(takeOut(*m_pDoc, i));
    }
    std::reverse(m_Removed.begin(), m_Removed.end());
    CDeleteHint hint(removed);
    m_pDoc->UpdateAllViews(nullptr, 0, &hint);
}

void CImportCmd::Redo() {
    m_First = m_pDoc->GetImageCount();
    for (auto& image : m_Removed)
        m_pDoc->InsertImage(1000000, image.release());
    m_Removed.clear();
    CInsertHint hint(m_First, m_ImportedCount);
    m_pDoc->UpdateAllViews(nullptr, 0, &hint);
}

CImportInfo::CImportInfo() : CCommandInfo(ID_FILE_IMPORT, [] { return new CImportCmd; }) {
    m_bNeedsImages = false;
}

namespace {
CImportInfo g_importInfo;
} // namespace
