#pragma once
// CTavixFileDlg: the file dialog over the codec library's file types. Its
// filter list comes from the codec's rule (TavixBuildFileFilter): one entry
// per driver extension, "All Files (*.*)" in open mode, and the entry to
// start on for the document's path and file type.

#include "app/doc/UserInterface.h"
#include "codec/FileTypes.h"

#include <QStringList>

class QWidget;

class CTavixFileDlg {
  public:
    // The dialog's name filters for a filter list: "text (pattern)".
    static QStringList NameFilters(const TavixFileFilter& filter);
    // The path with the driver's first extension added when it has none
    // (save mode).
    static std::string WithExtension(const std::string& path, const CTavixFileTypesList& rows,
                                     int driver);
    // Shows the dialog; on OK fills the path, the driver and the 1-based
    // filter index into `data`.
    static bool Run(CFileDialogData& data, QWidget* parent);
};
