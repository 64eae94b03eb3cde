#pragma once
// The colour editor (View > Color Editor): a dockable window that edits one
// colour at a time, either
//   - the palette entry picked in the palette well (the lowest picked one)
//     of the active document's focused indexed image: every committed
//     change is one undoable "Edit Palette Entry" command; or
//   - one of the numbered current colours (CurrentColours.h), shown as a
//     row of swatches 0..7 with number 4 marked as the fill colour: a
//     change is written to the settings store at once.
// Fields: A, R, G, B (0-255) and H (0-359), S, V (0-255) kept in step, a
// hex field #AARRGGBB, and for a current colour the palette index it
// stands for in indexed images. A field commits when its editing finishes
// (Enter, leaving it, or a spin-box arrow), never per keystroke. The Pick
// button arms the worksheet's colour picker (ColourPicker.h).
//
// CCurrentColourBar is the toolbar with swatches of the foreground
// (number 0) and of the fill colour (number 4); a click opens the editor
// on that colour. It follows the settings store on every Refresh.

#include <QDockWidget>
#include <QToolBar>
#include <QWidget>

#include <cstdint>
#include <optional>

class CTavixDoc;
class QLabel;
class QLineEdit;
class QSpinBox;
class QToolButton;
struct CPickedPixel;

// A colour over a checkerboard, with an optional caption under it.
class CColourSwatch : public QWidget {
    Q_OBJECT
  public:
    explicit CColourSwatch(const QString& caption = {}, QWidget* parent = nullptr);
    void SetColour(uint32_t argb);
    uint32_t Colour() const { return m_Argb; }
    void SetMarked(bool marked);
    QSize sizeHint() const override;

  signals:
    void Clicked();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

  private:
    uint32_t m_Argb = 0xFF000000;
    QString m_Caption;
    bool m_Marked = false;
};

class CColourEditorWidget : public QWidget {
    Q_OBJECT
  public:
    // The slot edited: a current colour number, or the palette entry.
    static constexpr int kPaletteEntry = -1;

    explicit CColourEditorWidget(QWidget* parent = nullptr);
    ~CColourEditorWidget() override;

    // The document whose focused image's palette is edited; null for none.
    void SetDocument(CTavixDoc* doc);
    // Shows the edited colour again when it changed elsewhere (a command,
    // Undo, the settings store); fields being typed into are left alone.
    void Refresh();

    void EditCurrentColour(int number);
    void EditPaletteEntry();
    // kPaletteEntry or the current colour number being edited.
    int Target() const { return m_Target; }
    // The palette entry edited (-1 when there is none to edit).
    int PaletteEntry() const;
    // Whether the fields can commit (a palette entry needs an indexed
    // focused image and a picked entry).
    bool CanEdit() const { return m_CanEdit; }
    uint32_t Colour() const { return m_Argb; }

    // Commits a colour to the edited slot, as a finished field edit does;
    // `index` is the palette index of a current colour (-1: keep it).
    // With `keepHsv` the hue, saturation and value fields stay as they
    // are (they were typed; converting back could move them).
    void Commit(uint32_t argb, int index = -1, bool keepHsv = false);

    // "#AARRGGBB" or "#RRGGBB" (opaque), the '#' optional, blanks around
    // ignored; any other text gives nullopt and, in `error`, what is wrong.
    static std::optional<uint32_t> ParseHex(const QString& text, QString* error = nullptr);

    // The fields, for tests and scripted sessions.
    QSpinBox* Channel(char name) const; // 'A' 'R' 'G' 'B' 'H' 'S' 'V'
    QSpinBox* IndexSpin() const { return m_IndexSpin; }
    QLineEdit* HexEdit() const { return m_Hex; }
    QToolButton* PickButton() const { return m_Pick; }
    CColourSwatch* Swatch() const { return m_Swatch; }
    CColourSwatch* CurrentSwatch(int number) const;
    QLabel* TargetLabel() const { return m_TargetLabel; }

  signals:
    // A command ran on the document, or a current colour was written.
    void CommandRun();
    void CurrentColoursChanged();

  private:
    void Load(uint32_t argb, int index, bool keepHsv = false);
    void OnArgbEdited();
    void OnHsvEdited();
    void OnHexEdited();
    void OnPicked(const CPickedPixel& pixel);
    // The colour the edited slot holds now, and its index.
    bool ReadSource(uint32_t& argb, int& index) const;
    void ShowTarget();
    QString TargetText() const;
    void RefreshCurrentSwatches();

    CTavixDoc* m_Doc = nullptr;
    int m_Target = 0;
    uint32_t m_Argb = 0xFF000000;
    int m_Index = 0;
    bool m_CanEdit = false;
    bool m_Loading = false;
    int m_Listener = 0;

    QLabel* m_TargetLabel;
    CColourSwatch* m_Swatch;
    CColourSwatch* m_PaletteSwatch;
    CColourSwatch* m_Current[8] = {};
    QSpinBox *m_A, *m_R, *m_G, *m_B, *m_H, *m_S, *m_V;
    QSpinBox* m_IndexSpin;
    QLineEdit* m_Hex;
    QToolButton* m_Pick;
    QWidget* m_Fields;
};

class CColourEditor : public QDockWidget {
    Q_OBJECT
  public:
    explicit CColourEditor(QWidget* parent = nullptr);
    CColourEditorWidget* Editor() const { return m_Editor; }

  private:
    CColourEditorWidget* m_Editor;
};

class CCurrentColourBar : public QToolBar {
    Q_OBJECT
  public:
    explicit CCurrentColourBar(QWidget* parent = nullptr);
    // Reads the colours from the settings store; repaints what changed.
    void Refresh();
    CColourSwatch* Swatch(int number) const;

  signals:
    void EditRequested(int number);

  private:
    CColourSwatch* m_Foreground;
    CColourSwatch* m_Fill;
};
