#pragma once
// How menu and toolbar commands travel through the front end: the main
// frame asks the active document window first (its views, then its
// document), then the application. Whoever handles an ID also says whether
// its item is enabled, checked and how it reads; an ID that nobody handles
// is shown disabled.

#include "app/doc/CmdUI.h"

class CUiCmdUI : public CCmdUI {
  public:
    explicit CUiCmdUI(unsigned id) : CCmdUI(id) {}
    void SetCheck(bool checked) {
        m_bChecked = checked;
        m_bCheckSet = true;
    }
    bool m_bChecked = false;
    bool m_bCheckSet = false;
};

class CCommandTarget {
  public:
    virtual ~CCommandTarget() = default;
    // True when the command was handled.
    virtual bool OnCmdMsg(unsigned id) = 0;
    // True when this target answers for the item (and filled `ui`).
    virtual bool OnUpdateCmdUI(CUiCmdUI& ui) = 0;
};
