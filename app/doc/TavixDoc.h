#pragma once
// CTavixDoc: one open shape file. It owns an ordered list of images, knows
// the codec file type it was read as (or will be written as), keeps its
// one-level undo history in a command handler, holds the selection and
// focus its views show, and tells its views what changed through update
// hints.
//
// The document owns every image in its list: removing an image deletes it,
// emptying the document deletes them all. SetImageAt is the exception: it
// gives the old image back to the caller (who keeps it for undo).

#include "app/doc/CommandHandler.h"
#include "app/doc/Selection.h"
#include "app/doc/TavixImageList.h"
#include "app/doc/UserInterface.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class CCmdUI;
class CCommand;
class CObject;
class CRange;
class CView;

class CTavixDoc {
  public:
    CTavixDoc();
    ~CTavixDoc();
    CTavixDoc(const CTavixDoc&) = delete;
    CTavixDoc& operator=(const CTavixDoc&) = delete;

    // ---- Views -------------------------------------------------------------
    void AddView(CView* view);
    void RemoveView(CView* view);
    // Every registered view but `sender` gets OnUpdate(sender, lHint, hint).
    void UpdateAllViews(CView* sender, long lHint = 0, CObject* hint = nullptr);

    // ---- Framework state ---------------------------------------------------
    void SetModifiedFlag(bool modified = true) { m_bModified = modified; }
    bool IsModified() const { return m_bModified; }
    const std::string& GetPathName() const { return m_strPathName; }
    void SetPathName(const std::string& path) { m_strPathName = path; }
    // The name a document without a path shows (an incompletely read file
    // is shown under its name but has no path); empty for a new one.
    const std::string& GetTitle() const { return m_strTitle; }
    // Clears the modified flag and remembers the undo history's state as
    // the one the file holds, so that undoing back to it clears the flag
    // again.
    void MarkSaved();
    // After an undo or redo: modified unless the history is back at the
    // saved state.
    void OnHistoryChanged();
    // The codec driver of the file; kNoFileType for a new or emptied one.
    int GetFileType() const { return m_nFileType; }
    void SetFileType(int driver) { m_nFileType = driver; }
    // Non-zero only while an open or a save runs.
    int GetBusyCount() const { return m_nBusy; }

    // ---- Images --------------------------------------------------------------
    int GetImageCount() const { return static_cast<int>(m_Images.size()); }
    // Null when out of range.
    CTavixImage* GetImageAt(int index) const;
    // Puts `image` (now owned by the document) at `index` and returns the
    // image that was there, which the caller now owns; marks the document
    // modified. Out of range: nothing changes and `image` comes back.
    CTavixImage* SetImageAt(int index, CTavixImage* image);
    // Below 0: at the head; else after the image at `index` when there is
    // one; else at the tail. So inserting at 3 places the image fourth.
    // Returns the position the image took.
    int InsertImage(int index, CTavixImage* image);
    // Deletes the image at `index`; nothing when out of range.
    void RemoveImage(int index);
    // Takes the image at `index` out of the list and gives it to the caller
    // (who keeps it for undo); null when out of range.
    CTavixImage* DetachImage(int index);
    // Overwrites positions 0..count-1 with `images` (appending where the
    // list is shorter) and marks the document modified. The images that
    // were overwritten are not deleted: the caller holds them.
    void SetImages(int count, CTavixImage* const* images, bool updateViews);
    const CTavixImageList& GetImages() const { return m_Images; }
    // Makes `images` the whole list, in that order, and marks the document
    // modified. Images that leave the list are not deleted: the caller
    // holds them (list commands keep them for undo). The selection takes
    // the new length; the views are not told.
    void ReplaceImages(const std::vector<CTavixImage*>& images);

    // ---- Selection and focus ---------------------------------------------
    CSelectionModel& GetSelectionModel() { return m_Selection; }
    // The focused position: 0 when there are no images, else the view's
    // focus clamped to the last image.
    int GetFocusIndex() const;
    CTavixImage* GetFocusImage() const;
    // Sets the focus; with `notify` the views get a CFocusChangedHint.
    void SetFocus(int index, bool notify);
    // One byte per image, 1 = selected. With nothing selected the focused
    // image counts as selected.
    void GetSelectionMask(CRange& mask) const;
    // One byte per image, its m_OnWorksheet.
    void GetWorksheetMask(CRange& mask) const;
    void AddSelectedToWorksheet();
    void RemoveSelectedFromWorksheet();

    // ---- Commands -------------------------------------------------------------
    CCommandHandler& GetCommandHandler() { return m_CommandHandler; }
    // Passes the command to the handler (which owns it from here on).
    void Submit(CCommand* cmd);
    // Deletes the previously kept command, runs `cmd` (owned from here on),
    // marks the document modified when the command says so and keeps it.
    void ExecuteAndKeep(CCommand* cmd);
    CCommand* GetKeptCommand() const { return m_pKept.get(); }
    // Menu routing: the tool handler first (when one is set), then the
    // command handler. True when handled.
    bool OnCmdMsg(unsigned nID);
    bool OnUpdateCmdUI(CCmdUI* ui);
    // The application's current tool machinery, asked before the handler.
    void SetToolHandler(std::function<bool(unsigned)> handler) {
        m_ToolHandler = std::move(handler);
    }

    // ---- Files --------------------------------------------------------------
    bool OnNewDocument();
    // Forgets the undo history, deletes every image, forgets the file type.
    void DeleteContents();
    // Reads `path` (with progress) into the emptied document. Failures are
    // reported to the user and give false with an empty document.
    bool OnOpenDocument(const std::string& path);
    // Writes the images to `path` in the document's file type (with
    // progress). Failures are reported and give false; the document and
    // any old file stay as they were.
    bool OnSaveDocument(const std::string& path);
    // The File Save command: Save As without a path, else save in place.
    bool OnFileSave();
    // The File Save As command: file dialog, format check, save.
    bool OnFileSaveAs();
    // The File Open command: the file dialog; the path the application
    // should open, if the user chose one.
    static std::optional<std::string> OnFileOpen();
    // The save-time format check for `driver`; true when the save may go on
    // (after the document was made to fit), false when the user cancelled.
    bool Conform(int driver);

  private:
    std::vector<uint8_t> ModifiedMarks() const;
    template <typename Fn>
    bool GuardFile(const std::string& crashLine, const CExceptionDlgTexts& texts, Fn&& fn);

    int m_nBusy = 0;
    bool m_bOutputWindowShown = false;
    int m_nFileType = kNoFileType;
    CTavixImageList m_Images;
    CCommandHandler m_CommandHandler;
    std::unique_ptr<CCommand> m_pKept;
    bool m_bKeptFlag = false;

    CSelectionModel m_Selection;
    std::vector<CView*> m_Views;
    std::function<bool(unsigned)> m_ToolHandler;
    bool m_bModified = false;
    std::string m_strPathName;
    std::string m_strTitle;
    // The undo history when the document last matched its file; invalid
    // when no state of the history does.
    bool m_bSavedValid = true;
    int m_nSavedSubmitCount = 0;
    bool m_bSavedUndone = false;
};
