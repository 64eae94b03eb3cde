#include "app/ui/Zy.h"

#include "app/doc/Profile.h"
#include "app/doc/TavixDoc.h"
#include "app/doc/UserInterface.h"
#include "app/ui/AboutDlg.h"
#include "app/ui/ChildFrame.h"
#include "app/ui/HelpWindow.h"
#include "app/doc/CommandIds.h"
#include "app/ui/MainFrame.h"
#include "app/ui/OptionsSheet.h"
#include "app/ui/OutputWindow.h"
#include "app/ui/QtProfile.h"
#include "app/ui/QtUserInterface.h"
#include "codec/TavixBinding.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QScreen>
#include <QUrl>

using namespace ZyIds;

namespace {

// The codec drivers the commands ask for by name.
constexpr const char* kDriverNames[] = {
    "newash", "newgsh", "newxsh", "newfsh", "newpsh", "newnsh", "newssh", "newvsh",
    "oldash", "oldgsh", "oldxsh", "oldfsh", "oldpsh", "oldnsh", "oldssh", "oldvsh",
    "tga",    "van",    "str",    "psd",    "tgv",    "lay",
};

constexpr const char* kRecentSection = "Recent File List";

QString canonical(const QString& path) {
    QFileInfo info(path);
    return info.exists() ? info.canonicalFilePath() : info.absoluteFilePath();
}

} // namespace

CZy::CZy() : m_Ui(std::make_unique<CQtUserInterface>()) {}

CZy::~CZy() {
    ExitInstance();
}

bool CZy::CheckDisplay() {
    const QScreen* screen = QGuiApplication::primaryScreen();
    if (screen && screen->depth() <= 8) {
        m_Ui->MessageBox("Zy needs more than 256 colors. Set your display to High Color or True "
                         "Color and start Zy again.",
                         MsgButtons::OK, MsgIcon::Error, "Zy");
        return false;
    }
    return true;
}

bool CZy::BindCodec() {
    if (!TavixBind()) {
        m_Ui->MessageBox("Zy cannot run without its codec library:\n\n" + TavixBindError(),
                         MsgButtons::OK, MsgIcon::Error, "Zy");
        return false;
    }
    m_Bound = true;
    m_DriverCount = TavixCount();
    for (const char* name : kDriverNames)
        m_Drivers[name] = TavixFind(name);
    return true;
}

void CZy::LoadSettings(CProfile* profile) {
    QCoreApplication::setOrganizationName("Nadir Tools");
    QCoreApplication::setApplicationName("Zy");
    if (!profile) {
        m_OwnProfile = std::make_unique<CQtProfile>();
        profile = m_OwnProfile.get();
    }
    ZySetProfile(profile);
    m_RecentFiles.clear();
    for (int i = 1; i <= kRecentFileCount; ++i) {
        const std::string path = profile->GetString(kRecentSection, "File" + std::to_string(i), "");
        if (!path.empty()) m_RecentFiles << QString::fromStdString(path);
    }
    m_PSXColorPicker = profile->GetInt("CZy", "m_PSXColorPicker", 0);
}

bool CZy::InitInstance(const QStringList& files, CProfile* profile) {
    InstallOutputPrintHook();
    ZySetUi(m_Ui.get());
    if (!CheckDisplay()) return false;
    m_StartDirectory = QDir::currentPath();
    if (!BindCodec()) return false;
    m_StartTime = QDateTime::currentDateTime();
    LoadSettings(profile);

    m_MainFrame = std::make_unique<CMainFrame>(this);
    m_Ui->SetMainFrame(m_MainFrame.get());
    if (!m_MainFrame->Create()) return false;
    m_MainFrame->SetRecentFiles(m_RecentFiles);

    if (files.isEmpty()) {
        OnFileNew();
    } else {
        int opened = 0;
        for (const QString& file : files)
            if (OpenDocumentFile(file)) ++opened;
        if (!opened) return false;
    }
    m_MainFrame->show();
    // The documents of the command line side by side, filling the frame.
    m_MainFrame->MdiArea()->tileSubWindows();
    m_MainFrame->UpdateAllActions();
    return true;
}

void CZy::ExitInstance() {
    m_HelpWindow.reset();
    if (m_MainFrame) {
        m_Ui->SetMainFrame(nullptr);
        // The windows (and their documents) go before the settings they
        // write on the way out.
        m_MainFrame.reset();
    }
    if (m_OwnProfile) static_cast<CQtProfile*>(m_OwnProfile.get())->Flush();
    if (ZySetUi(nullptr) != m_Ui.get()) ZySetUi(nullptr);
    ZySetProfile(nullptr);
    m_OwnProfile.reset();
    RemoveOutputPrintHook();
    if (m_Bound) TavixUnbind();
    m_Bound = false;
}

// ---- Documents ---------------------------------------------------------------------------

CChildFrame* CZy::AddDocumentWindow(std::unique_ptr<CTavixDoc> doc) {
    auto* child = new CChildFrame(std::move(doc));
    connect(child, &CChildFrame::PathChanged, this,
            [this](const QString& path) { AddToRecentFiles(path); });
    m_MainFrame->AddChild(child);
    return child;
}

CChildFrame* CZy::OnFileNew() {
    auto doc = std::make_unique<CTavixDoc>();
    doc->OnNewDocument();
    CChildFrame* child = AddDocumentWindow(std::move(doc));
    child->SetUntitledName(QString("Zy%1").arg(++m_NewCount));
    child->RefreshTitle();
    return child;
}

CChildFrame* CZy::OpenDocumentFile(const QString& path) {
    const QString wanted = canonical(path);
    for (CChildFrame* child : m_MainFrame->Children()) {
        const std::string& open = child->GetDocument()->GetPathName();
        if (!open.empty() && canonical(QString::fromStdString(open)) == wanted) {
            m_MainFrame->MdiArea()->setActiveSubWindow(
                qobject_cast<QMdiSubWindow*>(child->parentWidget()));
            return child;
        }
    }
    auto doc = std::make_unique<CTavixDoc>();
    if (!doc->OnOpenDocument(wanted.toStdString())) return nullptr;
    AddToRecentFiles(wanted);
    return AddDocumentWindow(std::move(doc));
}

bool CZy::CloseAllDocuments() {
    for (CChildFrame* child : m_MainFrame->Children())
        if (!child->SaveModified()) return false;
    for (CChildFrame* child : m_MainFrame->Children()) {
        child->GetDocument()->SetModifiedFlag(false); // already asked
        if (QWidget* window = child->parentWidget()) window->close();
    }
    return true;
}

CTavixDoc* CZy::ActiveDocument() const {
    CChildFrame* child = m_MainFrame ? m_MainFrame->ActiveChild() : nullptr;
    return child ? child->GetDocument() : nullptr;
}

void CZy::AddToRecentFiles(const QString& path) {
    if (path.isEmpty()) return;
    m_RecentFiles.removeAll(path);
    m_RecentFiles.prepend(path);
    while (m_RecentFiles.size() > kRecentFileCount)
        m_RecentFiles.removeLast();
    SaveRecentFiles();
    if (m_MainFrame) m_MainFrame->SetRecentFiles(m_RecentFiles);
}

void CZy::SaveRecentFiles() {
    for (int i = 0; i < kRecentFileCount; ++i)
        ZyProfile().WriteString(kRecentSection, "File" + std::to_string(i + 1),
                                i < m_RecentFiles.size() ? m_RecentFiles[i].toStdString() : "");
}

int CZy::DriverIndex(const std::string& shortName) const {
    auto it = m_Drivers.find(shortName);
    return it == m_Drivers.end() ? 0 : it->second;
}

// ---- Commands ------------------------------------------------------------------------------

QString CZy::DocumentationUrl() const {
    const QString local =
        QDir(QCoreApplication::applicationDirPath()).absoluteFilePath("../share/doc/zy/editor.md");
    const QString fallback = QFileInfo::exists(local)
                                 ? QUrl::fromLocalFile(local).toString()
                                 : QUrl::fromLocalFile(ZY_DOCS_DIR "/editor.md").toString();
    return QString::fromStdString(
        ZyProfile().GetString("CZy", "m_DocumentationUrl", fallback.toStdString()));
}

void CZy::ShowDocumentation() {
    const QUrl url(DocumentationUrl());
    if (!url.isLocalFile()) {
        QDesktopServices::openUrl(url);
        return;
    }
    if (!m_HelpWindow) m_HelpWindow = std::make_unique<CHelpWindow>();
    m_HelpWindow->ShowFile(url.toLocalFile());
    m_HelpWindow->show();
    m_HelpWindow->raise();
    m_HelpWindow->activateWindow();
}

void CZy::ShowAbout() {
    CAboutDlg dialog(m_MainFrame.get());
    dialog.exec();
}

void CZy::ShowPreferences() {
    COptionsSheet sheet(m_MainFrame.get());
    if (sheet.exec() == QDialog::Accepted) sheet.Apply(ActiveDocument());
}

bool CZy::OnCmdMsg(unsigned id) {
    QMdiArea* area = m_MainFrame ? m_MainFrame->MdiArea() : nullptr;
    switch (id) {
    case FileNew:
        OnFileNew();
        return true;
    case FileOpen:
        if (std::optional<std::string> path = CTavixDoc::OnFileOpen())
            OpenDocumentFile(QString::fromStdString(*path));
        return true;
    case FileMru1:
    case FileMru2:
    case FileMru3:
    case FileMru4: {
        const int index = static_cast<int>(id - FileMru1);
        if (index < m_RecentFiles.size() && !OpenDocumentFile(m_RecentFiles[index])) {
            m_RecentFiles.removeAt(index);
            SaveRecentFiles();
            m_MainFrame->SetRecentFiles(m_RecentFiles);
        }
        return true;
    }
    case FilePreferences:
        ShowPreferences();
        return true;
    case PsxColors:
        m_PSXColorPicker = !m_PSXColorPicker;
        ZyProfile().WriteInt("CZy", "m_PSXColorPicker", m_PSXColorPicker);
        return true;
    case AppExit:
        m_MainFrame->close();
        return true;
    case WindowTile:
        area->tileSubWindows();
        return true;
    case WindowCascade:
        area->cascadeSubWindows();
        return true;
    case WindowNext:
        area->activateNextSubWindow();
        return true;
    case HelpDocumentation:
        ShowDocumentation();
        return true;
    case HelpAbout:
        ShowAbout();
        return true;
    default:
        return false;
    }
}

bool CZy::OnUpdateCmdUI(CUiCmdUI& ui) {
    switch (ui.m_nID) {
    case FileNew:
    case FileOpen:
    case FilePreferences:
    case AppExit:
    case HelpDocumentation:
    case HelpAbout:
        ui.Enable();
        return true;
    case FileMru1:
    case FileMru2:
    case FileMru3:
    case FileMru4:
        ui.Enable(static_cast<int>(ui.m_nID - FileMru1) < m_RecentFiles.size());
        return true;
    case PsxColors:
        ui.Enable();
        ui.SetCheck(m_PSXColorPicker != 0);
        return true;
    case WindowTile:
    case WindowCascade:
    case WindowNext:
        ui.Enable(m_MainFrame && !m_MainFrame->Children().isEmpty());
        return true;
    default:
        return false;
    }
}

// ---- main ------------------------------------------------------------------------------------

int ZyMain(int argc, char** argv) {
    QApplication app(argc, argv);
    QStringList files = QApplication::arguments();
    files.removeFirst();
    CZy zy;
    if (!zy.InitInstance(files)) return 1;
    const int result = QApplication::exec();
    zy.ExitInstance();
    return result;
}
