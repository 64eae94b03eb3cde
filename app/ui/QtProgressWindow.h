#pragma once
// The window of a CProgressDlg: caption, the driver's or module's
// "Module:", "Author:" and "Version:" lines, a small looping animation, the
// status line, the bar with its count, and Cancel. CProgressDlg decides what
// is shown and when events are pumped; this class only draws.

#include "app/doc/UserInterface.h"

#include <QDialog>
#include <QElapsedTimer>

class QLabel;
class QProgressBar;
class QPushButton;
class CProgressAnimation;

class CQtProgressWindow : public QDialog, public CProgressWindow {
    Q_OBJECT
  public:
    CQtProgressWindow(CProgressDlg& dlg, QWidget* parent);
    ~CQtProgressWindow() override;

    void Refresh(const CProgressDlg& dlg) override;
    void Pump(CProgressDlg& dlg) override;

    QPushButton* CancelButton() const { return m_Cancel; }
    QString StatusText() const;
    QString CountText() const;
    QString ModuleText() const;

  private:
    CProgressDlg& m_Dlg;
    QLabel* m_Module;
    QLabel* m_Author;
    QLabel* m_Version;
    QLabel* m_Status;
    QLabel* m_Count;
    QProgressBar* m_Bar;
    QPushButton* m_Cancel;
    CProgressAnimation* m_Animation;
};

// A small looping animation; its frame follows the clock, so it moves
// whenever events are pumped.
class CProgressAnimation : public QWidget {
    Q_OBJECT
  public:
    explicit CProgressAnimation(QWidget* parent = nullptr);
    void SetClip(int resource);
    void Advance();
    QSize sizeHint() const override { return {48, 48}; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    int m_Clip = 109;
    int m_Frame = 0;
    QElapsedTimer m_Clock;
};
