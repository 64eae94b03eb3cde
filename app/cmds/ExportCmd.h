#pragma once
// "Export" (35003): writes each selected image to its own file in one
// folder, in one codec format. Export changes nothing in the document and
// cannot be undone.
//
// Names (m_NameFormat): 0 the image's name; 1 its running number among the
// exported images, from 0, as four digits ("0000", "0001" ...); 2 the name
// in upper case; 3 the name in lower case. An image without a name always
// takes its number. Characters a file name cannot hold ('/', '\', control
// characters) become '_'.
//
// Each image is written from a copy made to fit the format: a palette image
// for a format without palettes (or a true-colour one for a format without
// true colour) fails; otherwise packing and subtype are dropped for a
// foreign format, and for a format without start colours the colour count
// becomes count + start (at most 256) from 0 - unlike saving, which resets
// the count. An existing file is overwritten only when the user says so.
// Failures are collected and shown once at the end.
//
// Settings (section "CExportCmd"): m_NameFormat, m_TavixModule (the driver,
// "tga" by default), m_Folder, m_strExt (the driver's file extension).

#include "app/doc/CRange.h"
#include "app/doc/Command.h"
#include "app/doc/UserInterface.h"

#include <string>

class CTavixImage;
struct TavixAbout;

// The values of the "Export Selected Images" dialog.
struct CExportDlgData : CDialogData {
    std::string m_Folder;
    int m_TavixModule = 0; // codec driver
    int m_NameFormat = 0;
    const char* GetDialogName() const override { return "CExportDlg"; }
};

// The file name (without extension) image number `number` is exported under.
std::string ExportFileName(const std::string& imageName, int number, int nameFormat);

// Makes a copy of `image` fit `about` as export does; false (and no change
// to `copy`) when the format cannot take the image's depth. `docFileType`
// is the document's codec driver.
bool ConformExportCopy(CTavixImage& copy, const TavixAbout& about, int driver, int docFileType);

class CExportCmd : public CCommand {
  public:
    enum NameFormat { kImageName = 0, kNumber = 1, kUpperCase = 2, kLowerCase = 3 };

    CExportCmd();
    // Shows the dialog; on OK takes the selection and saves the settings.
    bool Init(CTavixDoc* doc) override;
    void Do() override;

    int m_NameFormat;
    int m_TavixModule;
    std::string m_Folder;
    std::string m_strExt;

  private:
    bool ExportImage(const CTavixImage& image, const TavixAbout& about, const std::string& path);

    CRange m_Selection;
};

class CExportInfo : public CCommandInfo {
  public:
    CExportInfo();
};
