#include "app/cmds/ExportCmd.h"

#include "app/doc/CommandIds.h"
#include "app/doc/ProgressDlg.h"
#include "app/doc/TavixDoc.h"
#include "app/doc/TavixImage.h"
#include "codec/FileTypes.h"
#include "codec/FrameIO.h"
#include "codec/TavixBinding.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <sys/stat.h>

namespace {

constexpr const char* kSection = "CExportCmd";

std::string counted(int done, int total) {
    char text[32];
    snprintf(text, sizeof text, "(%d/%d)", done, total);
    return text;
}

bool fileExists(const std::string& path) {
    struct stat st {};
    return stat(path.c_str(), &st) == 0;
}

int tgaDriver() {
    const int driver = TavixIsBound() ? TavixFind("tga") : 0;
    return driver >= 0 ? driver : 0;
}

} // namespace

std::string ExportFileName(const std::string& imageName, int number, int nameFormat) {
    std::string name = imageName;
    if (nameFormat == CExportCmd::kNumber || name.empty() || name == "." || name == "..") {
        char digits[16];
        snprintf(digits, sizeof digits, "%04d", number);
        return digits;
    }
    for (char& c : name) {
        if (c == '/' || c == '\\' || static_cast<unsigned char>(c) < 0x20) c = '_';
        if (nameFormat == CExportCmd::kUpperCase)
            c = static_cast<char>(toupper(static_cast<unsigned char>(c)));
        if (nameFormat == CExportCmd::kLowerCase)
            c = static_cast<char>(tolower(static_cast<unsigned char>(c)));
    }
    return name;
}

bool ConformExportCopy(CTavixImage& copy, const TavixAbout& about, int driver, int docFileType) {
    const bool palette = copy.GetInfo()->bufferbpp <= 8;
    if (palette && !(about.caps & kCapPalette)) return false;
    if (!palette && !(about.caps & kCapTrueColour)) return false;
    TavixInfo& info = *copy.GetInfoForWrite();
    if (docFileType != driver && (info.formatid & ~0xFFu) != (about.formatid & ~0xFFu)) {
        info.packed = 0;
        info.subtype = 0;
        info.quality = 100;
    }
    if (!(about.caps & (kCapPacked | kCapPackedAlt))) info.packed = 0;
    // Shifted, not reset as saving does: the colours from the old start
    // stay where the image's indices point.
    if (!(about.caps & kCapStartColour)) {
        info.numcolours += info.startcolour;
        if (info.numcolours > 255) info.numcolours = 256;
        info.startcolour = 0;
    }
    const int limit = about.namelimit;
    if (limit > 0 && static_cast<int>(strnlen(info.framename, sizeof info.framename)) > limit)
        info.framename[limit] = '\0';
    return true;
}

CExportCmd::CExportCmd() {
    m_Name = "Export";
    m_bMarksModified = false;
    m_NameFormat = GetProfileInt(kSection, "m_NameFormat", kImageName);
    m_TavixModule = GetProfileInt(kSection, "m_TavixModule", tgaDriver());
    m_Folder = GetProfileString(kSection, "m_Folder", "");
    m_strExt = GetProfileString(kSection, "m_strExt", "TGA");
}

bool CExportCmd::Init(CTavixDoc* doc) {
    m_pDoc = doc;
    CExportDlgData data;
    data.m_Folder = m_Folder;
    data.m_TavixModule = m_TavixModule;
    data.m_NameFormat = m_NameFormat;
    if (!ZyUi().EditDialog(data)) return false;
    doc->GetSelectionMask(m_Selection);
    m_Folder = data.m_Folder;
    m_TavixModule = data.m_TavixModule;
    m_NameFormat = std::clamp(data.m_NameFormat, 0, 3);
    CTavixFileTypesList types;
    types.Build();
    if (std::string extension = types.FirstExtension(m_TavixModule); !extension.empty())
        m_strExt = extension;
    WriteProfileInt(kSection, "m_NameFormat", m_NameFormat);
    WriteProfileInt(kSection, "m_TavixModule", m_TavixModule);
    WriteProfileString(kSection, "m_Folder", m_Folder);
    WriteProfileString(kSection, "m_strExt", m_strExt);
    Submit();
    return true;
}

bool CExportCmd::ExportImage(const CTavixImage& image, const TavixAbout& about,
                             const std::string& path) {
    if (fileExists(path) &&
        ZyUi().MessageBox("File " + path + " exists.  Overwrite?", MsgButtons::OKCancel,
                          MsgIcon::Question) == MsgAnswer::Cancel)
        return false;
    std::unique_ptr<CTavixImage> copy = image.Duplicate();
    if (!copy || !ConformExportCopy(*copy, about, m_TavixModule, m_pDoc->GetFileType()))
        return false;
    const TavixFrame frame = copy->ToFrame();
    std::string error;
    return TavixWriteFileSafely(path, m_TavixModule, {&frame}, error);
}

void CExportCmd::Do() {
    if (m_TavixModule < 0 || m_TavixModule >= TavixCount()) m_TavixModule = tgaDriver();
    TavixSet(m_TavixModule);
    TavixAboutPtr about(TavixAboutDriver());
    if (!about || !(about->caps & kCapWrite)) {
        ZyUi().MessageBox("Your export options are set to a file format that cannot export. You "
                          "will have to change it "
                          "to a different format for you to be able to export images.",
                          MsgButtons::OK, MsgIcon::Warning);
        return;
    }
    const std::string extension = "." + m_strExt;
    std::string failures = "The following files could not be exported:\n\n";
    bool failed = false;
    std::vector<int> positions;
    for (int i = 0; i < m_Selection.GetSize() && i < m_pDoc->GetImageCount(); ++i)
        if (m_Selection.IsSelected(i)) positions.push_back(i);
    const int total = static_cast<int>(positions.size());
    CProgressDlg progress("Exporting Images", about.get());
    progress.Create();
    progress.SetRange(0, total);
    progress.SetStatus("Starting");
    const TavixAbout driver = *about;
    about.reset();
    for (int number = 0; number < total; ++number) {
        progress.SetStatus(counted(number, total));
        if (progress.CheckCancelButton()) break;
        const CTavixImage& image = *m_pDoc->GetImageAt(positions[static_cast<size_t>(number)]);
        const std::string file = ExportFileName(image.GetName(), number, m_NameFormat) + extension;
        std::string path = m_Folder.empty() ? file : m_Folder + "/" + file;
        if (!ExportImage(image, driver, path)) {
            failures += file + "\n";
            failed = true;
        }
        progress.StepIt();
    }
    progress.SetStatus("Ending");
    progress.DestroyWindow();
    if (failed) ZyUi().MessageBox(failures, MsgButtons::OK, MsgIcon::Warning);
}

CExportInfo::CExportInfo() : CCommandInfo(ID_FILE_EXPORT, [] { return new CExportCmd; }) {}

namespace {
CExportInfo g_exportInfo;
} // namespace
