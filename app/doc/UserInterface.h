#pragma once
// The one door through which the document and the commands talk to a user.
//
// The model never touches a widget. Message boxes, parameter dialogs,
// progress windows, the status-bar line, the program-error dialog, the log
// and the crash-report channel, and the application's current colours are
// all asked for here. The window front end answers with real dialogs,
// zytool with ConsoleUi (never blocks), and the tests with a scripted
// implementation that records what was shown.
//
// The application holds one current interface and one current profile
// (ZyUi(), ZyProfile()), as the framework's application object would.

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

class CProfile;
class CProgressDlg;
class CTavixImage;

enum class MsgButtons { OK, OKCancel, YesNo, YesNoCancel };
enum class MsgIcon { None, Information, Warning, Error, Question };
enum class MsgAnswer { OK, Cancel, Yes, No };

// One value a dialog edits, described so that a front end without the
// dialog's own window can fill it: zytool reads it from the settings
// section named after the dialog with the member's name as the key, and the
// window front end can show a plain form of such fields.
struct CDialogField {
    enum Kind { Integer, Real, Choice, Text };
    const char* m_Name; // the member's name, also its settings key
    Kind m_Kind;
    void* m_Value;    // int* (Integer, Choice), double* (Real), std::string* (Text)
    double m_Min = 0; // limits of Integer and Real fields
    double m_Max = 0;
    const char* m_Choices = ""; // "Alpha,Paste,Sub": the names of Choice values 0, 1, 2 ...
    const char* m_Label = "";   // the caption a form shows; the name when empty
};

// The values one parameter dialog edits. Each dialog has its own plain
// struct deriving from this; the front end finds the dialog by the name and
// edits the fields in place, the model reads them back after OK.
class CDialogData {
  public:
    virtual ~CDialogData() = default;
    // The dialog's class name, e.g. "CRotateArbitraryDlg".
    virtual const char* GetDialogName() const = 0;
    // The editable fields, in the order a form shows them; none by default.
    virtual std::vector<CDialogField> GetFields() { return {}; }
    // Why the values cannot be used, or empty when they can. A front end
    // shows the text and keeps the dialog open (a console one gives up).
    virtual std::string Validate() const { return {}; }

    // A live preview for dialogs that change pixels: the image the values
    // are tried on (the document's focused one) and how to make the result
    // from the dialog's current values. The front end shows it beside the
    // fields; it works on copies and never touches the document.
    using PreviewFn =
        std::function<std::unique_ptr<CTavixImage>(const CDialogData&, const CTavixImage&)>;
    const CTavixImage* m_PreviewSource = nullptr;
    PreviewFn m_Preview;
};

// The codec file dialog (open or save) over the codec's file types.
struct CFileDialogData : CDialogData {
    bool m_Open = true;
    std::string m_Path;    // in: the starting path; out: the chosen one
    int m_FileType = 0;    // in: the starting driver; out: the chosen driver
    int m_FilterIndex = 1; // in and out: 1-based index in the filter list
    const char* GetDialogName() const override { return "CTavixFileDialog"; }
};

// The drawing side of a progress dialog. CProgressDlg keeps every value and
// rule; the window only shows them and reports the Cancel button.
class CProgressWindow {
  public:
    virtual ~CProgressWindow() = default;
    // Something shown changed (status, range, position, count text).
    virtual void Refresh(const CProgressDlg& dlg) = 0;
    // Handles the user's pending events; a press on Cancel calls
    // dlg.RequestCancel().
    virtual void Pump(CProgressDlg& dlg) = 0;
};

// The three texts and the caption of the program-error dialog.
struct CExceptionDlgTexts {
    std::string m_Caption;
    std::string m_What;
    std::string m_Scope;
    std::string m_Action;
};

// One of the application's current colours, as a palette index and as a
// 0xAARRGGBB value.
struct CCurrentColour {
    int m_Index = 0;
    uint32_t m_Argb = 0xFF000000;
};

class CUserInterface {
  public:
    virtual ~CUserInterface() = default;

    // A message box; returns the button pressed.
    virtual MsgAnswer MessageBox(const std::string& text, MsgButtons buttons = MsgButtons::OK,
                                 MsgIcon icon = MsgIcon::None,
                                 const std::string& caption = "Zy") = 0;

    // Shows the dialog for `data`; true on OK (data holds the new values),
    // false on Cancel (data may hold anything; callers discard it).
    virtual bool EditDialog(CDialogData& data) = 0;

    // A window for `dlg`, or null when none can be made (the caller then
    // goes on without progress).
    virtual std::unique_ptr<CProgressWindow> CreateProgressWindow(CProgressDlg& dlg) = 0;

    // The main window, disabled while a progress window is up.
    virtual bool IsMainWindowEnabled() const { return m_MainWindowEnabled; }
    virtual void EnableMainWindow(bool enable) { m_MainWindowEnabled = enable; }

    // Pane 0 of the status bar, repainted at once.
    virtual void SetStatusText(const std::string& text) = 0;

    // The modal program-error dialog.
    virtual void ShowExceptionDialog(const CExceptionDlgTexts& texts) = 0;

    // The application's log (its output window).
    virtual void Log(const std::string& line) = 0;

    // The crash-report channel. The default sends the line to the report
    // host when the profile switches reporting on (see CrashReport.h).
    virtual void ReportCrash(const std::string& line);

    // The application's current colour `number` (the colour editor's wells).
    // The base answers from the settings store (CurrentColours.h): number 0
    // is the foreground, number 4 the fill colour; a number outside the
    // colours kept means the foreground.
    virtual CCurrentColour GetCurrentColour(int number) const;

    // The palette entries selected in the palette well, ascending.
    virtual std::vector<int> GetPaletteSelection() const { return {}; }

    // The clipboard, as far as images go. Offering puts the images on it in
    // every format the front end knows (Zy's own image list and a bitmap of
    // the first); reading gives the images of one format, or of the best
    // one there is when `format` is empty. A front end without a clipboard
    // holds nothing.
    virtual void OfferClipboardImages(const std::vector<const CTavixImage*>& images);
    // The image formats on the clipboard, best first ("Zy Image List",
    // "Bitmap").
    virtual std::vector<std::string> GetClipboardFormats() const { return {}; }
    virtual std::vector<std::unique_ptr<CTavixImage>>
    ReadClipboardImages(const std::string& format);

  private:
    bool m_MainWindowEnabled = true;
};

// The application's current interface; a ConsoleUi until one is set.
CUserInterface& ZyUi();
// Makes `ui` current (null: back to the built-in ConsoleUi); returns the
// previous one.
CUserInterface* ZySetUi(CUserInterface* ui);

// The application's current profile; an in-memory one until one is set.
CProfile& ZyProfile();
CProfile* ZySetProfile(CProfile* profile);
