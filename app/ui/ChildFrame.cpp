#include "app/ui/ChildFrame.h"

#include "app/doc/Command.h"
#include "app/doc/CommandHandler.h"
#include "app/doc/Hints.h"
#include "app/doc/ListEditCmds.h"
#include "app/doc/TavixImage.h"
#include "app/doc/Profile.h"
#include "app/doc/TavixDoc.h"
#include "app/doc/UserInterface.h"
#include "app/ui/CaptionStrip.h"
#include "app/doc/CommandIds.h"
#include "app/ui/DisplayCard.h"
#include "app/ui/ImageListView.h"
#include "app/ui/ImageView.h"
#include "app/ui/ImportDrop.h"

#include <QCloseEvent>
#include <QFileInfo>
#include <QSplitter>
#include <QVBoxLayout>

using namespace ZyIds;

CChildFrame::CChildFrame(std::unique_ptr<CTavixDoc> doc, QWidget* parent)
    : QWidget(parent), m_Doc(std::move(doc)) {
    m_ListView = new CImageListView(m_Doc.get());
    m_ImageView = new CImageView(m_Doc.get());
    m_Splitter = new QSplitter(Qt::Horizontal);
    m_Splitter->addWidget(WrapWithCaption(m_ListView->Caption(), m_ListView));
    m_Splitter->addWidget(WrapWithCaption(m_ImageView->Caption(), m_ImageView));
    m_Splitter->setStretchFactor(0, 2);
    m_Splitter->setStretchFactor(1, 3);
    m_Splitter->setSizes({360, 540});
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_Splitter);
    m_ActiveView = m_ListView;
    connect(m_ListView, &CImageListView::Activated, this, [this] { SetActiveView(m_ListView); });
    connect(m_ImageView, &CImageView::Activated, this, [this] { SetActiveView(m_ImageView); });
    connect(m_ListView, &CImageListView::FilesDropped, this, &CChildFrame::InsertFiles);
    connect(m_ListView, &CImageListView::ContextMenuRequested, this,
            &CChildFrame::ContextMenuRequested);
    setFocusProxy(m_ListView);
    resize(900, 560);
    RefreshTitle();
}

CChildFrame::~CChildFrame() {
    // The views leave the document before it goes.
    delete m_Splitter;
    m_Splitter = nullptr;
}

QString CChildFrame::Title() const {
    const std::string& path = m_Doc->GetPathName();
    if (path.empty() && !m_Doc->GetTitle().empty())
        return QString::fromStdString(m_Doc->GetTitle());
    if (path.empty()) return m_UntitledName;
    return QFileInfo(QString::fromStdString(path)).fileName();
}

void CChildFrame::RefreshTitle() {
    setWindowTitle(Title() + "[*]");
    setWindowModified(m_Doc->IsModified());
}

void CChildFrame::SetActiveView(QWidget* view) {
    m_ActiveView = view;
    RefreshCaptions();
}

void CChildFrame::SetFrameActive(bool active) {
    m_FrameActive = active;
    RefreshCaptions();
}

void CChildFrame::RefreshCaptions() {
    m_ListView->Caption()->SetActive(m_FrameActive && m_ActiveView == m_ListView);
    m_ImageView->Caption()->SetActive(m_FrameActive && m_ActiveView == m_ImageView);
}

bool CChildFrame::SaveModified() {
    if (!m_Doc->IsModified()) return true;
    const MsgAnswer answer = ZyUi().MessageBox("Save changes to " + Title().toStdString() + "?",
                                               MsgButtons::YesNoCancel, MsgIcon::Question);
    if (answer == MsgAnswer::Cancel) return false;
    if (answer == MsgAnswer::No) return true;
    const bool saved = m_Doc->OnFileSave();
    RefreshTitle();
    if (saved) emit PathChanged(QString::fromStdString(m_Doc->GetPathName()));
    return saved;
}

void CChildFrame::closeEvent(QCloseEvent* event) {
    if (!SaveModified()) {
        event->ignore();
        return;
    }
    m_ListView->Play(0); // stops a running animation
    event->accept();
}

CChildFrame::PaneTexts CChildFrame::Panes() const {
    return {m_ListView->IndexPaneText(), m_ListView->SizePaneText(),
            m_ImageView->PositionPaneText(), m_ImageView->ZoomPaneText()};
}

// Files and folders dropped from the desktop are imported with the Import
// page's naming rules, as one undoable command.
void CChildFrame::InsertFiles(const QStringList& paths) {
    ImportDroppedFiles(m_Doc.get(), paths);
    RefreshTitle();
}

// ---- Commands ---------------------------------------------------------------------------

bool CChildFrame::DocumentCommand(unsigned id) {
    switch (id) {
    case FileSave:
    case FileSaveAs: {
        const bool saved = id == FileSave ? m_Doc->OnFileSave() : m_Doc->OnFileSaveAs();
        RefreshTitle();
        if (saved) emit PathChanged(QString::fromStdString(m_Doc->GetPathName()));
        return true;
    }
    case ZyIds::SendToDisplayCard:
        if (CTavixImage* image = m_Doc->GetFocusImage()) SendDisplayCardImage(ZyProfile(), *image);
        return true;
    default:
        break;
    }
    if (id >= kFirstFamilyId && id <= kLastFamilyId) {
        m_Doc->OnCmdMsg(id);
        RefreshTitle();
        return true;
    }
    // IDs outside the handler's range that a family still takes.
    if (CCommandInfoHandler::Find(id)) {
        m_Doc->GetCommandHandler().OnCommandRange(id);
        RefreshTitle();
        return true;
    }
    return false;
}

bool CChildFrame::DocumentUpdate(CUiCmdUI& ui) {
    switch (ui.m_nID) {
    case FileSave:
    case FileSaveAs:
        ui.Enable();
        return true;
    case ZyIds::SendToDisplayCard:
        ui.Enable(m_Doc->GetImageCount() > 0);
        return true;
    default:
        break;
    }
    if (ui.m_nID >= kFirstFamilyId && ui.m_nID <= kLastFamilyId) {
        if (!m_Doc->OnUpdateCmdUI(&ui)) ui.Enable(false);
        return true;
    }
    if (CCommandInfoHandler::Find(ui.m_nID)) {
        m_Doc->GetCommandHandler().OnUpdateCommandRange(&ui);
        return true;
    }
    return false;
}

bool CChildFrame::OnCmdMsg(unsigned id) {
    return m_ImageView->OnCmdMsg(id) || m_ListView->OnCmdMsg(id) || DocumentCommand(id);
}

bool CChildFrame::OnUpdateCmdUI(CUiCmdUI& ui) {
    return m_ImageView->OnUpdateCmdUI(ui) || m_ListView->OnUpdateCmdUI(ui) || DocumentUpdate(ui);
}
