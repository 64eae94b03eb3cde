#include "app/doc/ProgressDlg.h"

#include "imaging/module/module.h"
#include "tavix/records.h"

#include <cstdio>
#include <cstring>

namespace {

// A fixed-size text field of a record, which need not end in a zero.
template <size_t N> std::string fieldText(const char (&field)[N]) {
    return std::string(field, strnlen(field, N));
}

} // namespace

CProgressDlg::CProgressDlg(std::string caption) : m_Caption(std::move(caption)) {}

CProgressDlg::CProgressDlg(std::string caption, const TavixAbout* about)
    : m_Caption(std::move(caption)) {
    if (!about) return;
    m_ModuleText = fieldText(about->description);
    m_AuthorText = fieldText(about->author);
    m_VersionText = fieldText(about->version);
}

CProgressDlg::CProgressDlg(std::string caption, const ModuleDescriptor* descriptor)
    : m_Caption(std::move(caption)) {
    if (!descriptor) return;
    m_ModuleText = fieldText(descriptor->name);
    m_AuthorText = fieldText(descriptor->author);
    m_VersionText = fieldText(descriptor->version);
}

CProgressDlg::~CProgressDlg() {
    DestroyWindow();
}

bool CProgressDlg::Create(CUserInterface& ui) {
    DestroyWindow();
    m_Parent = &ui;
    if (ui.IsMainWindowEnabled()) {
        ui.EnableMainWindow(false);
        m_ParentDisabled = true;
    }
    // What the window shows first.
    m_Animation = kDefaultAnimation;
    m_Pos = m_Lower;
    m_CountText.clear();
    m_Window = ui.CreateProgressWindow(*this);
    if (!m_Window) {
        DestroyWindow();
        return false;
    }
    Refresh();
    return true;
}

void CProgressDlg::DestroyWindow() {
    m_Window.reset();
    if (m_ParentDisabled && m_Parent) m_Parent->EnableMainWindow(true);
    m_ParentDisabled = false;
}

void CProgressDlg::SetStatus(const std::string& text) {
    m_Status = text;
    Refresh();
}

void CProgressDlg::SetAnimation(int resource) {
    m_Animation = resource;
    Refresh();
}

void CProgressDlg::SetRange(int low, int high) {
    m_Lower = low;
    m_Upper = high;
    Refresh();
}

void CProgressDlg::SetPos(int position) {
    Pump();
    MoveTo(position);
}

void CProgressDlg::OffsetPos(int delta) {
    Pump();
    MoveTo(m_Pos + delta);
}

void CProgressDlg::StepIt() {
    Pump();
    MoveTo(m_Pos + m_Step);
}

bool CProgressDlg::CheckCancelButton() {
    Pump();
    bool cancel = m_CancelRequested;
    m_CancelRequested = false;
    return cancel;
}

void CProgressDlg::Pump() {
    if (m_Window) m_Window->Pump(*this);
}

void CProgressDlg::Refresh() {
    if (m_Window) m_Window->Refresh(*this);
}

void CProgressDlg::MoveTo(int position) {
    m_Pos = position;
    char text[32];
    snprintf(text, sizeof text, "%d/%d", m_Pos, m_Upper - m_Lower);
    m_CountText = text;
    Refresh();
}
