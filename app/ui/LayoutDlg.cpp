#include "app/ui/LayoutDlg.h"

#include "app/ui/QtUserInterface.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace {

// Texture memory coordinates: generous, but far from overflowing a sum.
constexpr int kMaxCoordinate = 1 << 20;

QSpinBox* spin(int value, int minimum) {
    auto* box = new QSpinBox;
    box->setRange(minimum, kMaxCoordinate);
    box->setValue(value);
    return box;
}

QDialogButtonBox* okCancel(QDialog* dialog) {
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    return buttons;
}

} // namespace

CLayoutDlg::CLayoutDlg(const CLayoutDlgData& data, QWidget* parent) : QDialog(parent) {
    setWindowTitle("Layout Wizard");
    setObjectName("CLayoutDlg");
    auto* layout = new QVBoxLayout(this);

    auto* rectangle = new QGroupBox("Rectangle:");
    auto* form = new QFormLayout(rectangle);
    m_X = spin(data.m_X, -kMaxCoordinate);
    m_Y = spin(data.m_Y, -kMaxCoordinate);
    m_Width = spin(data.m_Width, 1);
    m_Height = spin(data.m_Height, 1);
    form->addRow("x:", m_X);
    form->addRow("y:", m_Y);
    form->addRow("Width:", m_Width);
    form->addRow("Height:", m_Height);
    layout->addWidget(rectangle);

    layout->addWidget(new QLabel("Target platform:"));
    m_Platform = new QComboBox;
    for (int i = 0; i < kLayoutPlatformCount; ++i)
        m_Platform->addItem(kLayoutPlatforms[i].m_Name);
    m_Platform->setCurrentIndex(std::clamp(data.m_Platform, 0, kLayoutPlatformCount - 1));
    layout->addWidget(m_Platform);

    m_CheckUVs = new QCheckBox("Respect Texture Pages");
    m_CheckEdges = new QCheckBox("Check Texture Page Edges");
    m_Rotate = new QCheckBox("Shapes can be rotated");
    m_AllShapes = new QCheckBox("Layout all shapes in file");
    m_CheckUVs->setChecked(data.m_CheckUVs != 0);
    m_CheckEdges->setChecked(data.m_CheckEdges != 0);
    m_Rotate->setChecked(data.m_Rotate != 0);
    m_AllShapes->setChecked(data.m_AllShapes != 0);
    for (QCheckBox* box : {m_CheckUVs, m_CheckEdges, m_Rotate, m_AllShapes})
        layout->addWidget(box);
    connect(m_CheckUVs, &QCheckBox::toggled, this, &CLayoutDlg::UpdateEdgeCheck);
    connect(m_Platform, &QComboBox::currentIndexChanged, this, &CLayoutDlg::UpdateEdgeCheck);
    UpdateEdgeCheck();
    layout->addWidget(okCancel(this));
}

void CLayoutDlg::UpdateEdgeCheck() {
    const bool pages = kLayoutPlatforms[std::max(0, m_Platform->currentIndex())].m_PageWidth > 0;
    m_CheckUVs->setEnabled(pages);
    m_CheckEdges->setEnabled(pages && m_CheckUVs->isChecked());
}

void CLayoutDlg::Store(CLayoutDlgData& data) const {
    data.m_X = m_X->value();
    data.m_Y = m_Y->value();
    data.m_Width = m_Width->value();
    data.m_Height = m_Height->value();
    data.m_Platform = m_Platform->currentIndex();
    data.m_CheckUVs = m_CheckUVs->isChecked();
    data.m_CheckEdges = m_CheckEdges->isChecked();
    data.m_Rotate = m_Rotate->isChecked();
    data.m_AllShapes = m_AllShapes->isChecked();
}

bool RunLayoutDlg(CLayoutDlgData& data, QWidget* parent) {
    CLayoutDlg dialog(data, parent);
    if (dialog.exec() != QDialog::Accepted) return false;
    dialog.Store(data);
    return true;
}

bool RunMipMapDlg(CMipMapDlgData& data, QWidget* parent) {
    QDialog dialog(parent);
    dialog.setWindowTitle("Create Mip Maps");
    dialog.setObjectName("CMipMapDlg");
    auto* layout = new QFormLayout(&dialog);
    auto* count = new QSpinBox;
    count->setRange(CMipMapCmd::kMinCount, CMipMapCmd::kMaxCount);
    count->setValue(data.m_Count);
    layout->addRow("Number of mip maps to create:", count);
    layout->addRow(okCancel(&dialog));
    if (dialog.exec() != QDialog::Accepted) return false;
    data.m_Count = count->value();
    return true;
}

bool RunMipMapMethDlg(CMipMapMethData& data, QWidget* parent) {
    QDialog dialog(parent);
    dialog.setWindowTitle("Mip Maps of Palette Images");
    dialog.setObjectName("CMipMapMeth");
    auto* layout = new QVBoxLayout(&dialog);
    layout->addWidget(new QLabel("Some selected images use a palette. Make their levels by:"));
    std::vector<QRadioButton*> choices;
    for (int i = 0; i < kMipMapMethodCount; ++i) {
        choices.push_back(new QRadioButton(kMipMapMethods[i].m_Name));
        layout->addWidget(choices.back());
    }
    choices[static_cast<size_t>(std::clamp(data.m_Method, 0, kMipMapMethodCount - 1))]->setChecked(
        true);
    auto* note = new QLabel("Cancel makes no mip maps.");
    layout->addWidget(note);
    layout->addWidget(okCancel(&dialog));
    if (dialog.exec() != QDialog::Accepted) return false;
    for (int i = 0; i < kMipMapMethodCount; ++i)
        if (choices[static_cast<size_t>(i)]->isChecked()) data.m_Method = i;
    return true;
}

void RegisterLayoutDialogs() {
    CQtUserInterface::RegisterDialog("CLayoutDlg", [](CDialogData& data, QWidget* parent) {
        return RunLayoutDlg(static_cast<CLayoutDlgData&>(data), parent);
    });
    CQtUserInterface::RegisterDialog("CMipMapDlg", [](CDialogData& data, QWidget* parent) {
        return RunMipMapDlg(static_cast<CMipMapDlgData&>(data), parent);
    });
    CQtUserInterface::RegisterDialog("CMipMapMeth", [](CDialogData& data, QWidget* parent) {
        return RunMipMapMethDlg(static_cast<CMipMapMethData&>(data), parent);
    });
}
