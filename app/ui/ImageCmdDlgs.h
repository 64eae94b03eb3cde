#pragma once
// The image commands' own dialogs, where a plain form of fields would not
// do: "Image Size" converts its values as the units and the operation
// change, and "Enlarge Canvas" has its 3 x 3 anchor box. Both show the
// before/after preview when the command offers one. The other image
// dialogs are forms of their fields (FieldFormDlg.h).

#include <QDialog>

struct CEnlargeCanvasDlgData;
struct CImageSizeDlgData;
class CPreviewPane;
class QAbstractButton;
class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QLabel;

class CImageSizeDlg : public QDialog {
  public:
    // Edits `data` in place as the user types (the caller drops it on Cancel).
    CImageSizeDlg(CImageSizeDlgData& data, QWidget* parent);

  private:
    void Load();    // data -> controls
    void Changed(); // controls -> data, then enable and preview
    void done(int result) override;

    CImageSizeDlgData& m_Data;
    QComboBox* m_Operation;
    QDoubleSpinBox* m_Width;
    QDoubleSpinBox* m_Height;
    QComboBox* m_WidthUnit;
    QComboBox* m_HeightUnit;
    QAbstractButton* m_Constraint[3];
    QComboBox* m_Filter;
    QDoubleSpinBox* m_Sharpness;
    QCheckBox* m_Transparency;
    CPreviewPane* m_Preview = nullptr;
    bool m_Loading = false;
};

class CEnlargeCanvasDlg : public QDialog {
  public:
    CEnlargeCanvasDlg(CEnlargeCanvasDlgData& data, QWidget* parent);

  private:
    void Changed();
    void done(int result) override;

    CEnlargeCanvasDlgData& m_Data;
    QDoubleSpinBox* m_Width;
    QDoubleSpinBox* m_Height;
    QComboBox* m_Units;
    QAbstractButton* m_Anchor[9];
};

// Registers the dialogs above with the window interface.
void RegisterImageCmdDialogs();
