#pragma once
// The About box: the program's version and the codec library's own about
// record (its description, author, version and notes), with where it was
// loaded from.

#include <QDialog>

struct TavixAbout;

class CAboutDlg : public QDialog {
    Q_OBJECT
  public:
    explicit CAboutDlg(QWidget* parent = nullptr);
    // The text shown for the library's record (or for its absence).
    static QString LibraryText(const TavixAbout* about, const QString& path, int drivers);
    QString Text() const { return m_Text; }

  private:
    QString m_Text;
};
