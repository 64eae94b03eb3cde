#pragma once
// CHelpWindow: the manual (docs/editor.md and the notes it links to) shown
// in a window of the editor's own, so that Help > Documentation works on a
// system without a desktop handler for Markdown files.

#include <QWidget>

class QTextBrowser;

class CHelpWindow : public QWidget {
    Q_OBJECT
  public:
    explicit CHelpWindow(QWidget* parent = nullptr);

    // Shows the Markdown file at `path`; false when it cannot be read (the
    // window then says so).
    bool ShowFile(const QString& path);
    QTextBrowser* Browser() const { return m_Browser; }

  private:
    QTextBrowser* m_Browser;
};
