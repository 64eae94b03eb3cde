#pragma once
// The Preferences sheet: Worksheet, Import, Artist Download and General
// pages over the persisted options. OK writes every value the sheet shows
// (changed or not), tells the active document's views (COptionsChangedHint)
// and sends the display card its configure message.

#include <QDialog>
#include <QPushButton>

#include <cstdint>

class CProfile;
class CTavixDoc;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QRadioButton;
class QSlider;
class QSpinBox;
class QTabWidget;

// A colour is kept as 0xFFRRGGBB: alpha always 0xFF.
uint32_t StoredColour(int red, int green, int blue);

// A button that shows a colour and lets the user pick another.
class CColourButton : public QPushButton {
    Q_OBJECT
  public:
    explicit CColourButton(const QString& text, QWidget* parent = nullptr);
    void SetColour(uint32_t argb);
    uint32_t Colour() const { return m_Colour; }

  private:
    void Choose();
    uint32_t m_Colour = 0xFF000000;
};

// The screen-size presets: "choose a pre-set", then "%dx%d" of each.
struct CScreenPreset {
    int left, top, right, bottom;
};
extern const CScreenPreset kScreenPresets[5];

class COptionsWorksheetPage : public QWidget {
    Q_OBJECT
  public:
    explicit COptionsWorksheetPage(QWidget* parent = nullptr);
    void Load(const CProfile& profile);
    void Save(CProfile& profile) const;

    CColourButton* m_Color[4];
    QSlider* m_CheckerSize;
    QLabel* m_CellSize;
    QCheckBox* m_AnimateZoom;
    QCheckBox* m_LightIsSpotlight;
    QSpinBox* m_ScreenX;
    QSpinBox* m_ScreenY;
    QSpinBox* m_ScreenWidth;
    QSpinBox* m_ScreenHeight;
    QComboBox* m_Presets;

  private:
    void ChoosePreset(int index);
};

class COptionsImportPage : public QWidget {
    Q_OBJECT
  public:
    explicit COptionsImportPage(QWidget* parent = nullptr);
    void Load(const CProfile& profile);
    void Save(CProfile& profile) const;

    QRadioButton* m_NameHandling[3];
    QCheckBox* m_PathToComment;
    QComboBox* m_NameFormat;
};

class COptionsAdsPage : public QWidget {
    Q_OBJECT
  public:
    explicit COptionsAdsPage(QWidget* parent = nullptr);
    void Load(const CProfile& profile);
    void Save(CProfile& profile) const;

    QSpinBox* m_Width;
    QSpinBox* m_Height;
    QSpinBox* m_Bpp;
    CColourButton* m_BackColor;
    QLineEdit* m_IP;
    QSpinBox* m_Port;
};

class COptionsGeneralPage : public QWidget {
    Q_OBJECT
  public:
    explicit COptionsGeneralPage(QWidget* parent = nullptr);
    void Load(const CProfile& profile);
    void Save(CProfile& profile) const;

    CColourButton* m_GridColor;
    QComboBox* m_GridStyle;
    QSlider* m_GridSize;
    QLabel* m_GridSizeText;
    CColourButton* m_CenterPointColor;
    CColourButton* m_HotPointColor;
    QSpinBox* m_FrameRate;
};

class COptionsSheet : public QDialog {
    Q_OBJECT
  public:
    // The pages show the current profile's values.
    explicit COptionsSheet(QWidget* parent = nullptr);

    // After OK: writes every page's values, sends COptionsChangedHint to the
    // views of `doc` (when there is one) and the configure message.
    void Apply(CTavixDoc* doc);

    QTabWidget* Tabs() const { return m_Tabs; }
    COptionsWorksheetPage* m_Worksheet;
    COptionsImportPage* m_Import;
    COptionsAdsPage* m_Ads;
    COptionsGeneralPage* m_General;

  private:
    QTabWidget* m_Tabs;
};
