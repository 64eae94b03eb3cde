#pragma once
// "Import" (35002): brings the frames of image files into the document as
// new images at its end. Paths are files or folders; a folder is walked
// entry by entry in the order the file system lists them, subfolders
// included (inside folders only files whose extension a codec driver
// knows are read, so a folder's notes and scripts raise no errors).
//
// The Import page of Preferences (section "CImportCmd") decides the names:
//   m_NameHandling 0  a single-frame file's image keeps its own name and
//                     takes the file name only when it has none;
//                  1  it always takes the file name;
//                  2  it always keeps its own name;
//   m_NameFormat   1  a single-frame file's image is named by the running
//                     import count ("0", "1", ...) instead;
//   m_PathToComment   each image's comment records where it came from.
// Files of several frames keep the frames' own names and ask which frames
// to take (CImportFramesDlg). Several files show a progress window with
// Cancel. The whole import is one command: Undo takes the images out
// again, Redo puts them back.
//
// Dropped files reach it through ImportFiles; File > Import asks for the
// files with a multi-select file dialog (CImportFileDlg).

#include "app/doc/Command.h"
#include "app/doc/ProgressDlg.h"
#include "app/doc/UserInterface.h"

#include <memory>
#include <string>
#include <vector>

class CTavixImage;

// The files File > Import offers to import.
struct CImportFileDlgData : CDialogData {
    std::vector<std::string> m_Paths; // out: the chosen files
    const char* GetDialogName() const override { return "CImportFileDlg"; }
};

// Which frames of a multi-frame file to import.
struct CImportFramesDlgData : CDialogData {
    std::string m_File;
    std::vector<std::string> m_Names; // "name  WxH" per frame
    std::vector<uint8_t> m_Import;    // in and out: 1 = import
    const char* GetDialogName() const override { return "CImportFramesDlg"; }
};

// The progress window of an import of several files: the file being read,
// then the number of images imported so far.
class CImportProgressDlg : public CProgressDlg {
  public:
    CImportProgressDlg() : CProgressDlg("Importing Images") {}
};

class CImportCmd : public CCommand {
  public:
    enum NameHandling { kOwnOrFileName = 0, kFileName = 1, kOwnName = 2 };

    // Reads the three import settings.
    CImportCmd();
    ~CImportCmd() override;
    // From the menu: the file dialog, then the import; false when no file
    // was chosen.
    bool Init(CTavixDoc* doc) override;
    // With the paths given (a drop, zytool); false when there are none.
    virtual bool Init(CTavixDoc* doc, std::vector<std::string> paths);
    void Do() override;
    void Undo() override;
    void Redo() override;

    int GetImportedCount() const { return m_ImportedCount; }
    bool WasCancelled() const { return m_Cancelled; }

    // Imports `paths` into `doc` as one command and, when anything came in,
    // focuses and selects the last image. What a drop on the shape list
    // does. True when images were imported.
    static bool ImportFiles(CTavixDoc* doc, const std::vector<std::string>& paths);

    int m_NameHandling;
    int m_NameFormat;
    int m_PathToComment;
    // Whether multi-frame files ask which frames to take.
    bool m_AskForFrames = true;

  private:
    void ImportPath(const std::string& path, bool insideFolder);
    void ImportFile(const std::string& path);
    // Shows the reasons of the files that could not be read, in one message.
    void ReportFailures();
    void NameAndComment(CTavixImage& image, const std::string& path, bool singleFrame,
                        int driver) const;

    std::vector<std::string> m_Paths;
    int m_ImportedCount = 0;
    bool m_Cancelled = false;
    std::unique_ptr<CImportProgressDlg> m_Progress;
    std::vector<std::string> m_Failures; // one reason per file that could not be read
    int m_First = 0;
    // The imported images while they are out of the document (after Undo).
    std::vector<std::unique_ptr<CTavixImage>> m_Removed;
};

class CImportInfo : public CCommandInfo {
  public:
    CImportInfo();
};
