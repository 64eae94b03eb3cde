#pragma once
// The revert family (35004): reads the document's file again, throwing
// away every change since the last save. With the confirm switch on
// ([CRevertCmd] m_Confirm, default 1) it asks first. It cannot be undone.

#include "app/doc/Command.h"

class CRevertCmd : public CCommand {
  public:
    CRevertCmd();
    bool Init(CTavixDoc* doc) override;
    void Do() override;

  private:
    int m_Confirm = 1;
};

class CRevertInfo : public CCommandInfo {
  public:
    CRevertInfo();
    // Enabled when the document has a file to read again.
    void OnUpdate(CTavixDoc* doc, CCmdUI* ui) override;
    std::vector<std::string> GetSettingKeys() const override;
};
