#include "app/ui/ImageCmdDlgs.h"

#include "app/cmds/SizeCmds.h"
#include "app/doc/TavixImage.h"
#include "app/ui/PreviewPane.h"
#include "app/ui/QtUserInterface.h"
#include "app/ui/RunModuleDlg.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMessageBox>
#include <QRadioButton>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace {

QDialogButtonBox* okCancel(QDialog* dialog) {
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    return buttons;
}

QComboBox* listOf(const char* choices) {
    auto* list = new QComboBox;
    list->addItems(QString::fromUtf8(choices).split(','));
    return list;
}

// Shows the data's refusal and says whether the dialog may close.
bool acceptable(QDialog* dialog, const std::string& refusal) {
    if (refusal.empty()) return true;
    QMessageBox::warning(dialog, "Zy", QString::fromStdString(refusal));
    return false;
}

} // namespace

// ---- Image Size ------------------------------------------------------------

CImageSizeDlg::CImageSizeDlg(CImageSizeDlgData& data, QWidget* parent)
    : QDialog(parent), m_Data(data) {
    setWindowTitle("Image Size");
    setObjectName("CImageSizeDlg");
    auto* outer = new QHBoxLayout(this);
    auto* column = new QVBoxLayout;
    outer->addLayout(column);

    auto* size = new QGroupBox(
        QString("Current size: %1 x %2 pixels").arg(data.m_CurrentWidth).arg(data.m_CurrentHeight));
    auto* grid = new QGridLayout(size);
    m_Operation = listOf("Absolute,Relative");
    grid->addWidget(new QLabel("&Operation:"), 0, 0);
    grid->addWidget(m_Operation, 0, 1, 1, 2);
    static_cast<QLabel*>(grid->itemAtPosition(0, 0)->widget())->setBuddy(m_Operation);
    m_Width = new QDoubleSpinBox;
    m_Height = new QDoubleSpinBox;
    m_WidthUnit = listOf("Pixels,Percent");
    m_HeightUnit = listOf("Pixels,Percent");
    for (QDoubleSpinBox* box : {m_Width, m_Height})
        box->setDecimals(2);
    auto* widthLabel = new QLabel("&Width:");
    widthLabel->setBuddy(m_Width);
    auto* heightLabel = new QLabel("&Height:");
    heightLabel->setBuddy(m_Height);
    grid->addWidget(widthLabel, 1, 0);
    grid->addWidget(m_Width, 1, 1);
    grid->addWidget(m_WidthUnit, 1, 2);
    grid->addWidget(heightLabel, 2, 0);
    grid->addWidget(m_Height, 2, 1);
    grid->addWidget(m_HeightUnit, 2, 2);
    column->addWidget(size);

    auto* constraints = new QGroupBox("Constraints");
    auto* constraintColumn = new QVBoxLayout(constraints);
    auto* group = new QButtonGroup(this);
    const char* names[] = {"&No constraints", "C&alculate width", "Ca&lculate height"};
    for (int i = 0; i < 3; ++i) {
        m_Constraint[i] = new QRadioButton(names[i]);
        group->addButton(m_Constraint[i], i);
        constraintColumn->addWidget(m_Constraint[i]);
    }
    column->addWidget(constraints);

    auto* filtering = new QFormLayout;
    m_Filter = listOf(CImageSizeDlgData::kFilters);
    m_Sharpness = new QDoubleSpinBox;
    m_Sharpness->setRange(0, 100);
    m_Transparency = new QCheckBox("Interpolate &transparency");
    filtering->addRow("&Interpolation:", m_Filter);
    filtering->addRow("&Sharpness:", m_Sharpness);
    filtering->addRow(m_Transparency);
    column->addLayout(filtering);
    column->addWidget(okCancel(this));

    if (data.m_Preview && data.m_PreviewSource) {
        m_Preview = new CPreviewPane(*data.m_PreviewSource, [&data](const CTavixImage& source) {
            return data.m_Preview(data, source);
        });
        outer->addWidget(m_Preview);
    }

    Load();
    // A unit or operation change converts the values first, then shows them.
    connect(m_WidthUnit, &QComboBox::currentIndexChanged, this, [this](int unit) {
        if (m_Loading) return;
        m_Data.m_Width = m_Width->value();
        m_Data.SetWidthUnit(unit);
        Load();
        Changed();
    });
    connect(m_HeightUnit, &QComboBox::currentIndexChanged, this, [this](int unit) {
        if (m_Loading) return;
        m_Data.m_Height = m_Height->value();
        m_Data.SetHeightUnit(unit);
        Load();
        Changed();
    });
    connect(m_Operation, &QComboBox::currentIndexChanged, this, [this](int operation) {
        if (m_Loading) return;
        m_Data.m_Width = m_Width->value();
        m_Data.m_Height = m_Height->value();
        m_Data.SetOperation(operation);
        Load();
        Changed();
    });
    connect(m_Width, &QDoubleSpinBox::valueChanged, this, [this] { Changed(); });
    connect(m_Height, &QDoubleSpinBox::valueChanged, this, [this] { Changed(); });
    connect(group, &QButtonGroup::idClicked, this, [this] { Changed(); });
    connect(m_Filter, &QComboBox::currentIndexChanged, this, [this] { Changed(); });
    connect(m_Sharpness, &QDoubleSpinBox::valueChanged, this, [this] { Changed(); });
    connect(m_Transparency, &QCheckBox::toggled, this, [this] { Changed(); });
    Changed();
}

void CImageSizeDlg::Load() {
    m_Loading = true;
    m_Operation->setCurrentIndex(m_Data.m_Operation);
    m_WidthUnit->setCurrentIndex(m_Data.m_WidthUnit);
    m_HeightUnit->setCurrentIndex(m_Data.m_HeightUnit);
    m_Width->setRange(m_Data.Minimum(m_Data.m_WidthUnit, m_Data.m_CurrentWidth), 10000);
    m_Height->setRange(m_Data.Minimum(m_Data.m_HeightUnit, m_Data.m_CurrentHeight), 10000);
    m_Width->setValue(m_Data.m_Width);
    m_Height->setValue(m_Data.m_Height);
    m_Constraint[std::clamp(m_Data.m_Constraint, 0, 2)]->setChecked(true);
    m_Filter->setCurrentIndex(m_Data.m_Filter);
    m_Sharpness->setValue(m_Data.m_Sharpness);
    m_Transparency->setChecked(m_Data.m_Transparency != 0);
    m_Loading = false;
}

void CImageSizeDlg::Changed() {
    if (m_Loading) return;
    m_Data.m_Width = m_Width->value();
    m_Data.m_Height = m_Height->value();
    for (int i = 0; i < 3; ++i)
        if (m_Constraint[i]->isChecked()) m_Data.m_Constraint = i;
    m_Data.m_Filter = m_Filter->currentIndex();
    m_Data.m_Sharpness = m_Sharpness->value();
    m_Data.m_Transparency = m_Transparency->isChecked() ? 1 : 0;
    m_Width->setEnabled(m_Data.IsWidthEnabled());
    m_Height->setEnabled(m_Data.IsHeightEnabled());
    m_Sharpness->setEnabled(m_Data.IsFilterChosen());
    m_Transparency->setEnabled(m_Data.IsFilterChosen());
    if (m_Preview) m_Preview->Refresh();
}

void CImageSizeDlg::done(int result) {
    if (result == QDialog::Accepted) {
        Changed();
        if (!acceptable(this, m_Data.Validate())) return;
    }
    QDialog::done(result);
}

// ---- Enlarge Canvas --------------------------------------------------------

CEnlargeCanvasDlg::CEnlargeCanvasDlg(CEnlargeCanvasDlgData& data, QWidget* parent)
    : QDialog(parent), m_Data(data) {
    setWindowTitle("Enlarge Canvas");
    setObjectName("CEnlargeCanvasDlg");
    auto* column = new QVBoxLayout(this);
    column->addWidget(new QLabel(QString::fromStdString(data.CurrentSizeText())));
    auto* form = new QFormLayout;
    m_Width = new QDoubleSpinBox;
    m_Height = new QDoubleSpinBox;
    for (QDoubleSpinBox* box : {m_Width, m_Height}) {
        box->setRange(0, 30000);
        box->setDecimals(2);
    }
    m_Width->setValue(data.m_Width);
    m_Height->setValue(data.m_Height);
    m_Units = listOf("Pixels,Add Pixels,Percent");
    m_Units->setCurrentIndex(data.m_Units);
    form->addRow("Width:", m_Width);
    form->addRow("Height:", m_Height);
    form->addRow("Units:", m_Units);

    // The anchor: where the old picture sits in the larger canvas.
    auto* anchorBox = new QWidget;
    auto* anchorGrid = new QGridLayout(anchorBox);
    anchorGrid->setSpacing(2);
    auto* group = new QButtonGroup(this);
    const Qt::ArrowType arrows[9] = {Qt::NoArrow,   Qt::UpArrow,   Qt::NoArrow,
                                     Qt::LeftArrow, Qt::NoArrow,   Qt::RightArrow,
                                     Qt::NoArrow,   Qt::DownArrow, Qt::NoArrow};
    for (int i = 0; i < 9; ++i) {
        auto* button = new QToolButton;
        button->setCheckable(true);
        button->setFixedSize(28, 28);
        button->setArrowType(arrows[i]);
        button->setObjectName(QString("Anchor%1").arg(i));
        m_Anchor[i] = button;
        group->addButton(button, i);
        anchorGrid->addWidget(button, i / 3, i % 3);
    }
    m_Anchor[std::clamp(data.m_Anchor, 0, 8)]->setChecked(true);
    form->addRow("Anchor:", anchorBox);
    column->addLayout(form);
    column->addWidget(okCancel(this));
    connect(group, &QButtonGroup::idClicked, this, [this] { Changed(); });
}

void CEnlargeCanvasDlg::Changed() {
    m_Data.m_Width = m_Width->value();
    m_Data.m_Height = m_Height->value();
    m_Data.m_Units = m_Units->currentIndex();
    for (int i = 0; i < 9; ++i)
        if (m_Anchor[i]->isChecked()) m_Data.m_Anchor = i;
}

void CEnlargeCanvasDlg::done(int result) {
    if (result == QDialog::Accepted) {
        Changed();
        if (!acceptable(this, m_Data.Validate())) return;
    }
    QDialog::done(result);
}

void RegisterImageCmdDialogs() {
    RegisterRunModuleDialog();
    CQtUserInterface::RegisterDialog("CImageSizeDlg", [](CDialogData& data, QWidget* parent) {
        CImageSizeDlg dialog(static_cast<CImageSizeDlgData&>(data), parent);
        return dialog.exec() == QDialog::Accepted;
    });
    CQtUserInterface::RegisterDialog("CEnlargeCanvasDlg", [](CDialogData& data, QWidget* parent) {
        CEnlargeCanvasDlg dialog(static_cast<CEnlargeCanvasDlgData&>(data), parent);
        return dialog.exec() == QDialog::Accepted;
    });
}
