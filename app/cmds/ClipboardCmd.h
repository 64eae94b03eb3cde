#pragma once
// The clipboard items of the Edit menu. Copy (35401) puts the selected
// images on the clipboard and changes nothing, so it is no command and
// leaves the Undo item alone. Cut (35400) copies and then removes them;
// Paste (35402) inserts the clipboard's images at the end of the list, in
// the best format there is; Paste Special (35403) asks which format to take
// (CPasteSpecialDlg). Cut and Paste can be undone: they keep the image
// objects they took out or put in.

#include "app/doc/CRange.h"
#include "app/doc/Command.h"
#include "app/doc/UserInterface.h"

#include <memory>
#include <utility>
#include <vector>

struct CPasteSpecialDlgData : CDialogData {
    int m_Format = 0;      // index into m_Formats
    std::string m_Choices; // the formats, comma-separated, for the field
    const char* GetDialogName() const override { return "CPasteSpecialDlg"; }
    std::vector<CDialogField> GetFields() override;
};

class CCutCmd : public CCommand {
  public:
    CCutCmd();
    // Copies the selected images to the clipboard and submits.
    bool Init(CTavixDoc* doc) override;
    void Do() override;
    void Undo() override;

  private:
    CRange m_Range;
    std::vector<std::pair<int, std::unique_ptr<CTavixImage>>> m_Taken; // ascending positions
};

class CPasteCmd : public CCommand {
  public:
    CPasteCmd();
    using CCommand::Init;
    // Reads the clipboard in `format` ("" = the best one) and submits.
    virtual bool Init(CTavixDoc* doc, const std::string& format);
    void Do() override;
    void Undo() override;

  private:
    int m_Position = 0;
    std::vector<std::unique_ptr<CTavixImage>> m_Held; // while not in the document
};

class CCutInfo : public CCommandInfo {
  public:
    CCutInfo();
};

class CCopyInfo : public CCommandInfo {
  public:
    CCopyInfo();
    // Offers the selected images; no command is made.
    void Create(CTavixDoc* doc, unsigned nID) override;
};

class CPasteInfo : public CCommandInfo {
  public:
    CPasteInfo();
    bool IsCommand(unsigned nID) const override;
    // Enabled while the clipboard holds images.
    void OnUpdate(CTavixDoc* doc, CCmdUI* ui) override;
    void Create(CTavixDoc* doc, unsigned nID) override;
    std::vector<std::string> GetSettingKeys() const override;
};

// The selected images (the focused one when none is), in list order.
std::vector<const CTavixImage*> SelectedImages(const CTavixDoc& doc);
