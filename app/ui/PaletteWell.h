#pragma once
// The palette well: a dockable window showing the palette of the active
// document's focused image as a grid of 16 swatches per row (16 or 256
// entries), transparent colours over a checkerboard, the used entries
// (start colour and colour count) marked. Clicking picks entries into the
// program's colour selection, which the palette commands read: a click
// picks one, Shift+click a range from the last click, Ctrl+click toggles
// one. Hovering shows the entry's index and ARGB value. Dragging picked
// entries onto another swatch moves their pixels to it, through the move
// command, so it can be undone.

#include <QDockWidget>
#include <QWidget>

#include <array>
#include <cstdint>

class CTavixDoc;
class CTavixImage;
class QLabel;

class CPaletteWellWidget : public QWidget {
    Q_OBJECT
  public:
    explicit CPaletteWellWidget(QWidget* parent = nullptr);
    ~CPaletteWellWidget() override;

    // The document whose focused image is shown; null for none. Call
    // Refresh after anything may have changed: it repaints only when what
    // is shown differs.
    void SetDocument(CTavixDoc* doc);
    CTavixDoc* GetDocument() const { return m_Doc; }
    void Refresh();

    // Number of swatches shown: 0 for no image or a true-colour one.
    int EntryCount() const { return m_Count; }
    // The swatch of `index`, in widget pixels; empty outside the grid.
    QRect SwatchRect(int index) const;
    // The entry under `pos`, or -1.
    int IndexAt(const QPoint& pos) const;
    // "Index 12: ARGB FF102030", or empty when the pointer is off the grid.
    QString HoverText() const { return m_HoverText; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  signals:
    void HoverChanged(const QString& text);
    // A command ran on the document (the frame refreshes its state).
    void CommandRun();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;

  private:
    void SetHover(int index);
    int Columns() const { return 16; }
    int Cell() const;

    CTavixDoc* m_Doc = nullptr;
    // What is shown, to tell whether a refresh must repaint.
    const CTavixImage* m_Image = nullptr;
    std::array<uint32_t, 256> m_Colours{};
    int m_Count = 0;
    int m_Start = 0;
    int m_Used = 0;

    int m_Anchor = -1;
    int m_Hover = -1;
    int m_PressIndex = -1;
    QPoint m_PressPos;
    bool m_Dragging = false;
    int m_DropIndex = -1;
    QString m_HoverText;
    int m_Listener = 0;
};

class CPaletteWell : public QDockWidget {
    Q_OBJECT
  public:
    explicit CPaletteWell(QWidget* parent = nullptr);
    CPaletteWellWidget* Well() const { return m_Well; }

  private:
    CPaletteWellWidget* m_Well;
    QLabel* m_Info;
};
