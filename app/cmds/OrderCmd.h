#pragma once
// The ordering family (35250 to 35255): moves the selected images within
// the shape list. The start of the list is the front: the worksheet draws
// the first image on top.
//
// Every move is made of single steps. A step toward the start swaps each
// selected image with its predecessor, walking from the start; it does
// nothing at all when the first image is selected, so a selected block
// that reached the start stays whole. A step toward the end is the mirror.
// "Bring Forward" and "Send Back" make one step, "Move Up Five" and "Move
// Down Five" five, and "Bring To Front" and "Send To Bottom" step until
// the first selected image reaches the start (or the last one the end) of
// the list. Every step moves every selected image by one place, so the
// selection arrives with its spacing kept: images 2 and 4 brought to the
// front become images 0 and 2.
//
// Ordering cannot be undone.

#include "app/doc/CRange.h"
#include "app/doc/Command.h"

#include <cstdint>
#include <vector>

class CTavixImage;

class COrderCmd : public CCommand {
  public:
    enum Operation { BringForward, SendBack, BringToFront, SendToBottom, MoveUpFive, MoveDownFive };

    COrderCmd();
    using CCommand::Init;
    virtual bool Init(CTavixDoc* doc, int operation);
    void Do() override;

  private:
    int m_Operation = BringForward;
    CRange m_Range;
    std::vector<CTavixImage*> m_Images;
};

class COrderInfo : public CCommandInfo {
  public:
    COrderInfo();
    bool IsCommand(unsigned nID) const override;
    void Create(CTavixDoc* doc, unsigned nID) override;
};

// One step over `items` with their `marks`, toward the start (true) or
// the end; false when nothing moved.
template <typename T>
bool OrderStep(std::vector<T>& items, std::vector<uint8_t>& marks, bool towardStart);
