#pragma once
// Commands that change which images a document's list holds and in what
// order: moving images within the list (a drag inside the shape list),
// inserting images that come from elsewhere (a drag from another document,
// a bitmap or files dropped from the desktop), and renaming one image in
// place. They are submitted like every other command, so the one undo slot
// always matches the list: Undo puts back exactly the list and selection
// the command found.
//
// The images a command inserted belong to the document while they are in
// its list and to the command while it is undone.

#include "app/doc/Command.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

class CTavixImage;

// The whole list, selection and focus of a document, as a command finds it.
struct CListState {
    std::vector<CTavixImage*> m_Images;
    std::vector<uint8_t> m_Selected;
    int m_Focus = -1;

    static CListState Of(CTavixDoc& doc);
    // Puts the list, selection and focus back and tells the views.
    void ApplyTo(CTavixDoc& doc) const;
};

// The order of a same-document move: the selected images, in list order,
// take the old place of the unselected drop row (at most the end), go to
// the end for row -1, and before the next unselected row for a selected
// drop row. Null when the order would not change (nothing or everything
// selected, or a drop onto the run's own place). `m_First` is where the
// moved run starts.
struct CMoveOrder {
    std::vector<CTavixImage*> m_Order;
    int m_First = 0;
    int m_Count = 0;
};
std::optional<CMoveOrder> ComputeMoveOrder(const std::vector<CTavixImage*>& images,
                                           const std::vector<uint8_t>& selected, int row);

// Moves the document's selected images to a drop row ("Move Images").
class CMoveImagesCmd : public CCommand {
  public:
    explicit CMoveImagesCmd(int row);
    // False (nothing submitted) when the move would change nothing.
    bool Init(CTavixDoc* doc) override;
    void Do() override;
    void Undo() override;

  private:
    int m_Row;
    CListState m_Before;
    CListState m_After;
};

// Inserts images at a position ("Drop Images" by default); they end up
// selected with the focus on the first.
class CInsertImagesCmd : public CCommand {
  public:
    // `position` -1 or past the end appends.
    CInsertImagesCmd(std::vector<std::unique_ptr<CTavixImage>> images, int position,
                     std::string name = "Drop Images");
    ~CInsertImagesCmd() override;
    // False when there is nothing to insert.
    bool Init(CTavixDoc* doc) override;
    void Do() override;
    void Undo() override;

    int GetCount() const { return static_cast<int>(m_Images.size()); }

  private:
    std::vector<std::unique_ptr<CTavixImage>> m_Images; // held while not in the list
    std::vector<CTavixImage*> m_Inserted;
    int m_Position;
    CListState m_Before;
    CListState m_After;
};

// Copies of `images` for another document; throws CMemoryException when a
// copy fails (nothing is kept then).
std::vector<std::unique_ptr<CTavixImage>> CopyImages(const std::vector<CTavixImage*>& images);

// The images of every readable file of `paths`, in order, for a drop from
// the desktop. A file that cannot be read is reported to the user and
// skipped; Cancel in a progress window ends the reading with what was read.
std::vector<std::unique_ptr<CTavixImage>> ReadImageFiles(const std::vector<std::string>& paths);

// Gives the image at `index` a new name ("Rename").
class CRenameImageCmd : public CCommand {
  public:
    CRenameImageCmd(int index, std::string name);
    // False when the index is out of range or the name is unchanged.
    bool Init(CTavixDoc* doc) override;
    void Do() override;
    void Undo() override;

  private:
    void Apply(const std::string& name);

    int m_Index;
    std::string m_NewName;
    std::string m_OldName;
};
