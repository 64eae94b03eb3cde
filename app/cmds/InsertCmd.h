#pragma once
// The insert family: "Add New Image" (35084) puts a new image at the end
// of the list, "Insert New Image" (35085) right after the focused image.
// When the clipboard holds images, those are inserted; otherwise the new
// image is blank, of the width, height and depth asked in CInsertDlg and
// remembered for the next time while the program runs. It cannot be
// undone.

#include "app/doc/Command.h"
#include "app/doc/UserInterface.h"

#include <memory>
#include <vector>

struct CInsertDlgData : CDialogData {
    int m_Width = 64;
    int m_Height = 64;
    int m_Depth = 1; // a choice of kInsertDepths: 8 or 32 bits per pixel
    const char* GetDialogName() const override { return "CInsertDlg"; }
    std::vector<CDialogField> GetFields() override;
};

class CInsertCmd : public CCommand {
  public:
    CInsertCmd();
    using CCommand::Init;
    // `atEnd`: append; otherwise insert after the focused image.
    virtual bool Init(CTavixDoc* doc, bool atEnd);
    // A blank image of the given size and depth (8 or 32).
    virtual bool Init(CTavixDoc* doc, int width, int height, int depth, bool atEnd);
    void Do() override;

  private:
    int m_Width = 0;
    int m_Height = 0;
    int m_Depth = 0;
    bool m_bFromClipboard = false;
    int m_Position = 0;
    std::vector<std::unique_ptr<CTavixImage>> m_Images;
};

class CInsertInfo : public CCommandInfo {
  public:
    CInsertInfo();
    bool IsCommand(unsigned nID) const override;
    void Create(CTavixDoc* doc, unsigned nID) override;
    std::vector<std::string> GetSettingKeys() const override;
};
