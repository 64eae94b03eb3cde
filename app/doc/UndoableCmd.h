#pragma once
// CUndoableCmd: the shared machinery of every command that runs one image
// module over the selected images. It takes the selection when the command
// starts, puts each module result in the document in place of its source,
// and keeps the sources, so that Undo and Redo are a swap of whole image
// objects: no pixel is copied for undo.
//
// A family names its module in its constructor (FindModule), asks its
// parameters in Init and overrides FilterImage when it passes values.

#include "app/doc/CRange.h"
#include "app/doc/Command.h"
#include "app/doc/Hints.h"

#include <memory>
#include <vector>

class CTavixImage;
struct ModuleValue;

class CUndoableCmd : public CCommand {
  public:
    CUndoableCmd();
    ~CUndoableCmd() override;

    // Stores the document, copies its selection into the range and submits.
    bool Init(CTavixDoc* doc) override;
    void Do() override;
    // Swaps the saved images back; the swap is its own inverse.
    void Undo() override;
    void Redo() override { Undo(); }

    // The filtered copy of one image, or null. The base runs the module
    // with no values, so the module takes all its defaults.
    virtual std::unique_ptr<CTavixImage> FilterImage(CTavixImage* image);

    int GetModule() const { return m_Module; }
    const CRange& GetRange() const { return m_Range; }
    // How many image objects the command holds (taken out of the document
    // after Do, to be put back after Undo).
    int GetSavedCount() const { return static_cast<int>(m_SavedImages.size()); }

  protected:
    // Finds the module by its short name; an unknown name finds the null
    // module, which copies.
    void FindModule(const char* name);
    // Copies the document's selection into the range.
    void CopySelection();
    // Runs the module over `image` with `values`.
    std::unique_ptr<CTavixImage> RunFilter(CTavixImage* image, const ModuleValue* values,
                                           int count) const;

    int m_Module = 0;
    std::vector<std::unique_ptr<CTavixImage>> m_SavedImages;
    CRange m_Range;
    CModifiedHint m_Hint;
    bool m_bCheckFormat = true;
    bool m_bShowProgress = true;

  private:
    void DoWithProgress();
    void DoPlain();
    // Puts `result` at `position` in place of `source`, keeping the source.
    void Replace(int position, CTavixImage* source, std::unique_ptr<CTavixImage> result);
    void SendHint();
};
