#pragma once
// The duplicate family (35082): copies of the selected images, in list
// order, inserted at the end of the list (or at a position the caller
// gives). It cannot be undone.

#include "app/doc/CRange.h"
#include "app/doc/Command.h"

class CDuplicateCmd : public CCommand {
  public:
    CDuplicateCmd();
    bool Init(CTavixDoc* doc) override;
    // The copies become positions `position`, `position` + 1 ...
    virtual bool Init(CTavixDoc* doc, int position);
    void Do() override;

  private:
    CRange m_Range;
    int m_Position = 0;
};

class CDuplicateInfo : public CCommandInfo {
  public:
    CDuplicateInfo();
};
