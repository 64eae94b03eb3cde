#pragma once
// CTavixFileDlg: the file dialog over the codec library's file types. Its
// filter list comes from the codec's rule (TavixBuildFileFilter): in open
// mode "All supported files" first, then one entry per driver extension and
// "All Files (*.*)"; the entry to start on follows the document's path and
// file type. A saved name's own extension outranks the chosen filter.

#include "app/doc/UserInterface.h"
#include "codec/FileTypes.h"

#include <QStringList>

class QWidget;

class CTavixFileDlg {
  public:
    // The dialog's name filters for a filter list: "text (pattern)".
    static QStringList NameFilters(const TavixFileFilter& filter);
    // "All supported files (*.bmp *.fsh ...)": every driver's pattern at once.
    static QString AllSupported(const TavixFileFilter& filter);
    // The driver that writes a save to `path`: the one owning its extension,
    // else the chosen filter's `filterDriver`.
    static int SaveDriver(const std::string& path, const CTavixFileTypesList& rows,
                          int filterDriver);
    // The path with the driver's first extension added when it has none
    // (save mode).
    static std::string WithExtension(const std::string& path, const CTavixFileTypesList& rows,
                                     int driver);
    // Shows the dialog; on OK fills the path, the driver and the 1-based
    // filter index into `data`.
    static bool Run(CFileDialogData& data, QWidget* parent);
};
