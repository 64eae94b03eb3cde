#pragma once
// The "Output" window: where the program's log and everything the
// image and codec libraries print through gprintf end up. Text printed
// before the window exists is kept and shown when it opens.

#include <QDockWidget>

class QPlainTextEdit;

class COutputWindow : public QDockWidget {
    Q_OBJECT
  public:
    explicit COutputWindow(QWidget* parent = nullptr);
    ~COutputWindow() override;

    void Append(const QString& text);
    QString Text() const;

  private:
    QPlainTextEdit* m_Edit;
};

// Routes gprintf into the output window (installed first thing at start-up).
void InstallOutputPrintHook();
// Restores the library's own print hook.
void RemoveOutputPrintHook();
// Adds text to the output (the window when there is one, else kept for it).
void OutputText(const QString& text);
