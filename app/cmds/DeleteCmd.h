#pragma once
// The delete family (35083): removes the selected images after asking.
// It cannot be undone; the Undo item then reads "Can't Undo Delete".

#include "app/doc/CRange.h"
#include "app/doc/Command.h"

class CDeleteCmd : public CCommand {
  public:
    CDeleteCmd();
    // Copies the selection and asks; any answer but Yes abandons.
    bool Init(CTavixDoc* doc) override;
    void Do() override;

  private:
    CRange m_Range;
};

class CDeleteInfo : public CCommandInfo {
  public:
    CDeleteInfo();
};
