#pragma once
// CProgressDlg: the cancellable progress window of long reads, writes and
// filter runs. This class holds everything the window shows (caption,
// driver or module texts, status line, range, position, count text) and
// the cancel rule; the window itself comes from the user interface and
// only draws it (CProgressWindow).
//
// A dialog that was never created, or whose creation failed, still keeps
// its values; its calls then simply draw nothing, so callers need no
// second code path.

#include "app/doc/UserInterface.h"

#include <memory>
#include <string>

struct TavixAbout;
struct ModuleDescriptor;

class CProgressDlg {
  public:
    enum { kDefaultAnimation = 109, kOpenAnimation = 223 };

    explicit CProgressDlg(std::string caption);
    // Shows which codec driver does the work.
    CProgressDlg(std::string caption, const TavixAbout* about);
    // Shows which image module does the work.
    CProgressDlg(std::string caption, const ModuleDescriptor* descriptor);
    ~CProgressDlg();
    CProgressDlg(const CProgressDlg&) = delete;
    CProgressDlg& operator=(const CProgressDlg&) = delete;

    // Disables the main window when it is enabled (and remembers that),
    // then asks `ui` for the window. On failure the main window is enabled
    // again and false comes back.
    bool Create(CUserInterface& ui);
    bool Create() { return Create(ZyUi()); }
    // Enables the main window again if this dialog disabled it, and drops
    // the window. Safe to call twice.
    void DestroyWindow();
    bool IsCreated() const { return m_Window != nullptr; }

    void SetStatus(const std::string& text);
    void SetAnimation(int resource);
    void SetRange(int low, int high);
    void SetStep(int step) { m_Step = step; }
    void SetPos(int position);
    void OffsetPos(int delta);
    void StepIt();

    // Lets the window handle pending events, then returns whether Cancel
    // was pressed since the last test, and forgets the press.
    bool CheckCancelButton();
    // Called by the window when the user presses Cancel.
    void RequestCancel() { m_CancelRequested = true; }

    const std::string& GetCaption() const { return m_Caption; }
    const std::string& GetModuleText() const { return m_ModuleText; }
    const std::string& GetAuthorText() const { return m_AuthorText; }
    const std::string& GetVersionText() const { return m_VersionText; }
    const std::string& GetStatus() const { return m_Status; }
    // "%d/%d": the position and the width of the range.
    const std::string& GetCountText() const { return m_CountText; }
    int GetAnimation() const { return m_Animation; }
    int GetLower() const { return m_Lower; }
    int GetUpper() const { return m_Upper; }
    int GetStep() const { return m_Step; }
    int GetPos() const { return m_Pos; }

  private:
    void Pump();
    void Refresh();
    void MoveTo(int position);

    std::string m_Caption;
    std::string m_ModuleText;
    std::string m_AuthorText;
    std::string m_VersionText;
    std::string m_Status;
    std::string m_CountText;
    int m_Animation = kDefaultAnimation;
    int m_Lower = 0;
    int m_Upper = 100;
    int m_Step = 1;
    int m_Pos = 0;
    bool m_CancelRequested = false;
    bool m_ParentDisabled = false;
    CUserInterface* m_Parent = nullptr;
    std::unique_ptr<CProgressWindow> m_Window;
};
