#pragma once
// The "Color Remap Wizard" of the colour reduction command: a first page
// that chooses between a palette format and a true-colour format, then the
// palette page (depth, method, colours, start colour, palette sharing,
// dither, exact colours first) or the true-colour page (bits per channel,
// dither). It edits the command's CColRedWizData.

#include "app/cmds/ColRedCmd.h"

#include <QWizard>
#include <QWizardPage>

class QCheckBox;
class QComboBox;
class QLabel;
class QRadioButton;
class QSpinBox;

class CColRedPage : public QWizardPage {
    Q_OBJECT
  public:
    explicit CColRedPage(const CColRedWizData& data);
    int nextId() const override;
    int Type() const;

    QRadioButton* m_Palette;
    QRadioButton* m_TrueColor;
};

class CPalettePage : public QWizardPage {
    Q_OBJECT
  public:
    explicit CPalettePage(const CColRedWizData& data);
    int nextId() const override { return -1; }
    bool isComplete() const override;
    void Store(CColRedWizData& data) const;

    QComboBox* m_Depth;
    QComboBox* m_Method;
    QSpinBox* m_Colours;
    QSpinBox* m_Start;
    QComboBox* m_Operation;
    QComboBox* m_Dither;
    QCheckBox* m_ExactFirst;

  private:
    // Holds the colour count to what the depth addresses and what fits
    // after the start colour.
    void UpdateLimits();
    QLabel* m_Range;
};

class CTrueColorPage : public QWizardPage {
    Q_OBJECT
  public:
    explicit CTrueColorPage(const CColRedWizData& data);
    int nextId() const override { return -1; }
    bool isComplete() const override;
    void Store(CColRedWizData& data) const;

    QComboBox* m_Layout;
    QSpinBox* m_Bits[4]; // alpha, red, green, blue
    QComboBox* m_Dither;

  private:
    void LayoutChosen(int index);
    void BitsChanged();
    QLabel* m_Depth;
};

class CColRedWiz : public QWizard {
    Q_OBJECT
  public:
    enum { kTypePage, kPalettePage, kTrueColorPage };
    CColRedWiz(const CColRedWizData& data, QWidget* parent);
    // The values of the pages as they stand.
    void Store(CColRedWizData& data) const;

    CColRedPage* m_TypePage;
    CPalettePage* m_PalettePage;
    CTrueColorPage* m_TrueColorPage;
};

bool RunColRedWiz(CColRedWizData& data, QWidget* parent);

// Adds the wizard to the user interface's dialog table.
void RegisterColRedDialogs();
