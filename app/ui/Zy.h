#pragma once
// CZy: the application object. It checks the display, binds the codec
// library, opens the settings store, creates the main frame and opens the
// files of the command line (or a new document). It keeps the open
// documents' windows, the recently used files and the codec's driver
// indexes, and handles the commands that need no document.

#include "app/ui/CommandTarget.h"

#include <QDateTime>
#include <QObject>
#include <QString>
#include <QStringList>

#include <map>
#include <memory>
#include <string>

class CChildFrame;
class CHelpWindow;
class CMainFrame;
class CProfile;
class CQtUserInterface;
class CTavixDoc;

class CZy : public QObject, public CCommandTarget {
    Q_OBJECT
  public:
    static constexpr int kRecentFileCount = 4;

    CZy();
    ~CZy() override;

    // Start-up in its fixed order; false ends the program (the reason was
    // shown). `profile` replaces the user's settings store (tests).
    bool InitInstance(const QStringList& files, CProfile* profile = nullptr);
    // Puts the library's print hook and the settings back.
    void ExitInstance();

    CMainFrame* MainFrame() const { return m_MainFrame.get(); }
    CQtUserInterface* Ui() const { return m_Ui.get(); }

    // A new, empty document in its own window.
    CChildFrame* OnFileNew();
    // Opens `path` (or activates the window that has it open); null when
    // the open failed.
    CChildFrame* OpenDocumentFile(const QString& path);
    // Asks to save every modified document; false when the user cancelled.
    bool CloseAllDocuments();
    CTavixDoc* ActiveDocument() const;

    const QStringList& RecentFiles() const { return m_RecentFiles; }
    void AddToRecentFiles(const QString& path);

    int DriverCount() const { return m_DriverCount; }
    // The driver index of a codec short name ("tga", "newfsh", ...).
    int DriverIndex(const std::string& shortName) const;
    bool PsxColorPicker() const { return m_PSXColorPicker != 0; }

    bool OnCmdMsg(unsigned id) override;
    bool OnUpdateCmdUI(CUiCmdUI& ui) override;

    // Where the manual lives (setting "CZy"/"m_DocumentationUrl").
    QString DocumentationUrl() const;
    // The manual's window once Help > Documentation opened it (a local
    // manual is shown there; a web address goes to the desktop's browser).
    CHelpWindow* HelpWindow() const { return m_HelpWindow.get(); }

  private:
    bool CheckDisplay();
    bool BindCodec();
    void LoadSettings(CProfile* profile);
    CChildFrame* AddDocumentWindow(std::unique_ptr<CTavixDoc> doc);
    void SaveRecentFiles();
    void ShowAbout();
    void ShowDocumentation();
    void ShowPreferences();

    std::unique_ptr<CQtUserInterface> m_Ui;
    std::unique_ptr<CProfile> m_OwnProfile;
    std::unique_ptr<CMainFrame> m_MainFrame;
    std::unique_ptr<CHelpWindow> m_HelpWindow;
    QString m_StartDirectory;
    QDateTime m_StartTime;
    int m_PSXColorPicker = 0;
    int m_DriverCount = 0;
    std::map<std::string, int> m_Drivers;
    QStringList m_RecentFiles;
    int m_NewCount = 0;
    bool m_Bound = false;
};

// The editor's main: a QApplication, CZy's start-up and the event loop.
int ZyMain(int argc, char** argv);
