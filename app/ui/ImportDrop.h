#pragma once
// Files and folders dropped from the desktop onto a shape list are
// imported into its document as one undoable command (CImportCmd).

#include <QStringList>

class CTavixDoc;

void ImportDroppedFiles(CTavixDoc* doc, const QStringList& paths);
