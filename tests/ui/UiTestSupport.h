#pragma once
// Helpers for the editor's window tests: the application object, a settings
// store in a temporary folder, scripted answers for message boxes and
// dialogs, and small documents built in memory.

#include "app/doc/TavixDoc.h"
#include "app/doc/TavixImage.h"
#include "app/ui/QtProfile.h"
#include "app/ui/QtUserInterface.h"

#include <QTemporaryDir>

#include <memory>
#include <string>
#include <vector>

namespace uitest {

// The QApplication of the test process (offscreen), created on first use,
// with the settings folder and the codec library pointed at safe places.
void EnsureApplication();

// A settings file in a fresh temporary folder, made current for the model
// (ZyProfile) while the object lives.
class TempProfile {
  public:
    TempProfile();
    ~TempProfile();
    CQtProfile& Profile() { return *m_Profile; }
    QString Folder() const { return m_Dir.path(); }
    bool Has(const std::string& section, const std::string& entry) const;

  private:
    QTemporaryDir m_Dir;
    std::unique_ptr<CQtProfile> m_Profile;
    CProfile* m_Previous;
};

// A user interface that answers every box and dialog from a script and
// records what it was asked.
class ScriptedUi {
  public:
    ScriptedUi();
    ~ScriptedUi();
    CQtUserInterface& Ui() { return m_Ui; }
    // Answers for another interface too (the one an application made).
    void Attach(CQtUserInterface& ui);

    std::vector<std::string> m_Messages;
    std::vector<std::string> m_Captions;
    std::vector<std::string> m_Dialogs;
    std::vector<CExceptionDlgTexts> m_Exceptions;
    MsgAnswer m_Answer = MsgAnswer::OK;
    // For the codec file dialog: the path and driver to answer with.
    std::string m_FilePath;
    int m_FileType = 0;
    bool m_DialogOk = true;

  private:
    CQtUserInterface m_Ui;
    CUserInterface* m_Previous;
};

// A fresh image: bpp 8 gets the gaudy palette, 32 a fill of `argb`.
std::unique_ptr<CTavixImage> MakeImage(int width, int height, int bpp, const std::string& name = "",
                                       uint32_t argb = 0xFF000000);
// Fills every pixel of a 32-bit image with `argb`, or every index of a
// palette image with `index`.
void Fill(CTavixImage& image, uint32_t value);
// A document holding `count` 8x8 32-bit images named "img0" ...
std::unique_ptr<CTavixDoc> MakeDocument(int count);

// Writes `images` as a file of the codec driver `driver` ("tvx", "tga"...)
// through the real codec library (bound here when it is not yet).
std::string WriteFile(const QString& folder, const std::string& name, const std::string& driver,
                      const std::vector<const CTavixImage*>& images);

} // namespace uitest
