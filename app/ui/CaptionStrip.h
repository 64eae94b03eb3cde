#pragma once
// The one-line caption strip drawn above each view of a document window
// ("Shape List", "Worksheet"): dark blue with the caption text when its view
// is the active one, the inactive caption colours otherwise. A click on it
// activates the view below.

#include <QWidget>

class TCaptionStrip : public QWidget {
    Q_OBJECT
  public:
    // `height` 0 or less shows no strip at all.
    TCaptionStrip(const QString& text, int height, QWidget* view, QWidget* parent = nullptr);

    void SetText(const QString& text);
    QString Text() const { return m_Text; }
    void SetActive(bool active);
    bool IsActive() const { return m_Active; }
    QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

  private:
    QString m_Text;
    int m_Height;
    bool m_Active = false;
    QWidget* m_View;
};

constexpr int kCaptionHeight = 15;

// A widget holding a caption strip over a view.
QWidget* WrapWithCaption(TCaptionStrip* strip, QWidget* view, QWidget* parent = nullptr);
