#include "app/ui/OptionsSheet.h"

#include "app/doc/Hints.h"
#include "app/doc/Profile.h"
#include "app/doc/TavixDoc.h"
#include "app/doc/UserInterface.h"
#include "app/ui/DisplayCard.h"
#include "app/ui/ImageViewSettings.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QRadioButton>
#include <QSlider>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>

namespace {

constexpr const char* kImport = "CImportCmd";
constexpr const char* kListView = "CImageListView";

QSpinBox* spin(int low, int high) {
    auto* box = new QSpinBox;
    box->setRange(low, high);
    return box;
}

void writeColour(CProfile& p, const char* section, const char* name, uint32_t colour) {
    p.WriteInt(section, name, static_cast<int>(colour));
}

} // namespace

uint32_t StoredColour(int red, int green, int blue) {
    return 0xFF000000u + static_cast<uint32_t>(red) * 65536u + static_cast<uint32_t>(green) * 256u +
           static_cast<uint32_t>(blue);
}

const CScreenPreset kScreenPresets[5] = {
    {0, 0, 512, 240}, {0, 0, 512, 256}, {0, 0, 640, 480}, {0, 0, 1024, 512}, {0, 0, 1024, 768},
};

// ---- Colour button ---------------------------------------------------------------------------

CColourButton::CColourButton(const QString& text, QWidget* parent) : QPushButton(text, parent) {
    connect(this, &QPushButton::clicked, this, &CColourButton::Choose);
    SetColour(m_Colour);
}

void CColourButton::SetColour(uint32_t argb) {
    m_Colour = argb | 0xFF000000u;
    QPixmap swatch(24, 14);
    swatch.fill(QColor::fromRgb(m_Colour));
    QPainter(&swatch).drawRect(0, 0, 23, 13);
    setIcon(QIcon(swatch));
    setIconSize(swatch.size());
}

void CColourButton::Choose() {
    const QColor chosen = QColorDialog::getColor(QColor::fromRgb(m_Colour), this, text());
    if (chosen.isValid()) SetColour(StoredColour(chosen.red(), chosen.green(), chosen.blue()));
}

// ---- Worksheet page ----------------------------------------------------------------------------

COptionsWorksheetPage::COptionsWorksheetPage(QWidget* parent) : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    auto* colours = new QGridLayout;
    colours->addWidget(new QLabel("Screen background color:"), 0, 0);
    colours->addWidget(new QLabel("Worksheet background color:"), 1, 0);
    for (int i = 0; i < 4; ++i) {
        m_Color[i] = new CColourButton(QString("Color %1").arg(i + 1));
        colours->addWidget(m_Color[i], i / 2, 1 + i % 2);
    }
    layout->addLayout(colours);

    auto* checker = new QHBoxLayout;
    auto* checkerLabel = new QLabel("Checker &size:");
    checker->addWidget(checkerLabel);
    m_CheckerSize = new QSlider(Qt::Horizontal);
    // The label's "&" marks its shortcut key only when it has a buddy.
    checkerLabel->setBuddy(m_CheckerSize);
    m_CheckerSize->setRange(1, 8);
    m_CellSize = new QLabel;
    m_CellSize->setMinimumWidth(30);
    connect(m_CheckerSize, &QSlider::valueChanged, this,
            [this](int v) { m_CellSize->setNum(1 << v); });
    checker->addWidget(m_CheckerSize, 1);
    checker->addWidget(m_CellSize);
    layout->addLayout(checker);

    m_AnimateZoom = new QCheckBox("Animate Zoom tool");
    m_LightIsSpotlight = new QCheckBox("Light tool is spotlight");
    layout->addWidget(m_AnimateZoom);
    layout->addWidget(m_LightIsSpotlight);

    auto* screen = new QGroupBox("Screen size:");
    auto* grid = new QGridLayout(screen);
    m_ScreenX = spin(-30000, 30000);
    m_ScreenY = spin(-30000, 30000);
    m_ScreenWidth = spin(0, 30000);
    m_ScreenHeight = spin(0, 30000);
    grid->addWidget(new QLabel("x:"), 0, 0);
    grid->addWidget(m_ScreenX, 0, 1);
    grid->addWidget(new QLabel("y:"), 0, 2);
    grid->addWidget(m_ScreenY, 0, 3);
    grid->addWidget(new QLabel("w:"), 1, 0);
    grid->addWidget(m_ScreenWidth, 1, 1);
    grid->addWidget(new QLabel("h:"), 1, 2);
    grid->addWidget(m_ScreenHeight, 1, 3);
    m_Presets = new QComboBox;
    m_Presets->addItem("choose a pre-set");
    for (const CScreenPreset& preset : kScreenPresets)
        m_Presets->addItem(
            QString("%1x%2").arg(preset.right - preset.left).arg(preset.bottom - preset.top));
    connect(m_Presets, &QComboBox::activated, this, &COptionsWorksheetPage::ChoosePreset);
    grid->addWidget(m_Presets, 2, 0, 1, 4);
    layout->addWidget(screen);
    layout->addStretch(1);
}

void COptionsWorksheetPage::ChoosePreset(int index) {
    if (index < 1 || index > 5) return;
    const CScreenPreset& preset = kScreenPresets[index - 1];
    m_ScreenX->setValue(preset.left);
    m_ScreenY->setValue(preset.top);
    m_ScreenWidth->setValue(preset.right - preset.left);
    m_ScreenHeight->setValue(preset.bottom - preset.top);
}

void COptionsWorksheetPage::Load(const CProfile& p) {
    CImageViewSettings s;
    s.Load(p);
    const uint32_t colours[4] = {s.m_CheckerColor1, s.m_CheckerColor2, s.m_CheckerColor3,
                                 s.m_CheckerColor4};
    for (int i = 0; i < 4; ++i)
        m_Color[i]->SetColour(colours[i]);
    m_CheckerSize->setValue(s.m_CheckerSize);
    m_CellSize->setNum(1 << s.m_CheckerSize);
    m_AnimateZoom->setChecked(s.m_bAnimateZoom);
    m_LightIsSpotlight->setChecked(s.m_bLightIsSpotlight);
    m_ScreenX->setValue(s.m_ScreenX);
    m_ScreenY->setValue(s.m_ScreenY);
    m_ScreenWidth->setValue(s.m_ScreenWidth);
    m_ScreenHeight->setValue(s.m_ScreenHeight);
}

void COptionsWorksheetPage::Save(CProfile& p) const {
    for (int i = 0; i < 4; ++i)
        writeColour(p, kImageViewSection, ("m_CheckerColor" + std::to_string(i + 1)).c_str(),
                    m_Color[i]->Colour());
    p.WriteInt(kImageViewSection, "m_CheckerSize", m_CheckerSize->value());
    p.WriteInt(kImageViewSection, "m_bAnimateZoom", m_AnimateZoom->isChecked());
    p.WriteInt(kImageViewSection, "m_bLightIsSpotlight", m_LightIsSpotlight->isChecked());
    p.WriteInt(kImageViewSection, "m_ScreenX", m_ScreenX->value());
    p.WriteInt(kImageViewSection, "m_ScreenY", m_ScreenY->value());
    p.WriteInt(kImageViewSection, "m_ScreenWidth", m_ScreenWidth->value());
    p.WriteInt(kImageViewSection, "m_ScreenHeight", m_ScreenHeight->value());
}

// ---- Import page
// ---------------------------------------------------------------------------------

COptionsImportPage::COptionsImportPage(QWidget* parent) : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    auto* names = new QGroupBox("Name Handling:");
    auto* column = new QVBoxLayout(names);
    const char* choices[3] = {"&Use shapename if present, otherwise use filename",
                              "&Always use filename", "A&lways use shapename"};
    auto* group = new QButtonGroup(this);
    for (int i = 0; i < 3; ++i) {
        m_NameHandling[i] = new QRadioButton(choices[i]);
        group->addButton(m_NameHandling[i], i);
        column->addWidget(m_NameHandling[i]);
    }
    layout->addWidget(names);
    m_PathToComment = new QCheckBox("&Insert path into comment");
    layout->addWidget(m_PathToComment);
    auto* form = new QFormLayout;
    m_NameFormat = new QComboBox;
    m_NameFormat->addItems({"Image or file name", "Import count (%d)"});
    form->addRow("Name &Format string:", m_NameFormat);
    layout->addLayout(form);
    layout->addStretch(1);
}

void COptionsImportPage::Load(const CProfile& p) {
    const int handling = std::clamp(p.GetInt(kImport, "m_NameHandling", 0), 0, 2);
    m_NameHandling[handling]->setChecked(true);
    m_PathToComment->setChecked(p.GetInt(kImport, "m_PathToComment", 0) != 0);
    m_NameFormat->setCurrentIndex(std::clamp(p.GetInt(kImport, "m_NameFormat", 0), 0, 1));
}

void COptionsImportPage::Save(CProfile& p) const {
    int handling = 0;
    for (int i = 0; i < 3; ++i)
        if (m_NameHandling[i]->isChecked()) handling = i;
    p.WriteInt(kImport, "m_NameHandling", handling);
    p.WriteInt(kImport, "m_NameFormat", m_NameFormat->currentIndex());
    p.WriteInt(kImport, "m_PathToComment", m_PathToComment->isChecked());
}

// ---- Artist Download page
// -------------------------------------------------------------------------

COptionsAdsPage::COptionsAdsPage(QWidget* parent) : QWidget(parent) {
    auto* form = new QFormLayout(this);
    m_Width = spin(1, 8192);
    m_Height = spin(1, 8192);
    m_Bpp = spin(1, 32);
    m_BackColor = new CColourButton("Background Color");
    m_IP = new QLineEdit;
    m_Port = spin(1, 65535);
    form->addRow("Width:", m_Width);
    form->addRow("Height:", m_Height);
    form->addRow("Bpp:", m_Bpp);
    form->addRow("", m_BackColor);
    form->addRow("IP:", m_IP);
    form->addRow("", new QLabel("default: localhost (this machine)"));
    form->addRow("Port:", m_Port);
    form->addRow("", new QLabel("default: 7777"));
}

void COptionsAdsPage::Load(const CProfile& p) {
    CAdsSettings s;
    s.Load(p);
    m_Width->setValue(s.m_Width);
    m_Height->setValue(s.m_Height);
    m_Bpp->setValue(s.m_Bpp);
    m_BackColor->SetColour(s.m_BackColor);
    m_IP->setText(QString::fromStdString(s.m_IP));
    m_Port->setValue(s.m_Port);
}

void COptionsAdsPage::Save(CProfile& p) const {
    CAdsSettings s;
    s.m_Width = m_Width->value();
    s.m_Height = m_Height->value();
    s.m_Bpp = m_Bpp->value();
    s.m_BackColor = m_BackColor->Colour();
    s.m_IP = m_IP->text().toStdString();
    s.m_Port = m_Port->value();
    s.Save(p);
}

// ---- General page
// ----------------------------------------------------------------------------------

COptionsGeneralPage::COptionsGeneralPage(QWidget* parent) : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    auto* grid = new QGroupBox("Grid");
    auto* gridForm = new QFormLayout(grid);
    m_GridColor = new CColourButton("Color");
    m_GridStyle = new QComboBox;
    m_GridStyle->addItems({"Dots", "Lines"});
    auto* sizeRow = new QHBoxLayout;
    m_GridSize = new QSlider(Qt::Horizontal);
    m_GridSize->setRange(2, 128);
    m_GridSizeText = new QLabel;
    m_GridSizeText->setMinimumWidth(30);
    connect(m_GridSize, &QSlider::valueChanged, m_GridSizeText, qOverload<int>(&QLabel::setNum));
    sizeRow->addWidget(m_GridSize, 1);
    sizeRow->addWidget(m_GridSizeText);
    gridForm->addRow("Color:", m_GridColor);
    gridForm->addRow("Style:", m_GridStyle);
    gridForm->addRow("Size:", sizeRow);
    layout->addWidget(grid);

    auto* points = new QGroupBox("Point Colors");
    auto* pointForm = new QFormLayout(points);
    m_CenterPointColor = new CColourButton("Center");
    m_HotPointColor = new CColourButton("Hot");
    pointForm->addRow("Center point:", m_CenterPointColor);
    pointForm->addRow("Hot point:", m_HotPointColor);
    layout->addWidget(points);

    auto* animation = new QGroupBox("Animation");
    auto* animationForm = new QFormLayout(animation);
    m_FrameRate = spin(1, 120);
    animationForm->addRow("Playback FPS:", m_FrameRate);
    layout->addWidget(animation);
    layout->addStretch(1);
}

void COptionsGeneralPage::Load(const CProfile& p) {
    CImageViewSettings s;
    s.Load(p);
    m_GridColor->SetColour(s.m_GridColor);
    m_GridStyle->setCurrentIndex(std::clamp(s.m_GridStyle, 0, 1));
    m_GridSize->setValue(s.m_GridSize);
    m_GridSizeText->setNum(s.m_GridSize);
    m_CenterPointColor->SetColour(s.m_CenterPointColor);
    m_HotPointColor->SetColour(s.m_HotPointColor);
    const int rate = p.GetInt(kListView, "m_FrameRate", 15);
    m_FrameRate->setValue(rate > 0 ? rate : 15);
}

void COptionsGeneralPage::Save(CProfile& p) const {
    writeColour(p, kImageViewSection, "m_GridColor", m_GridColor->Colour());
    p.WriteInt(kImageViewSection, "m_GridStyle", m_GridStyle->currentIndex());
    p.WriteInt(kImageViewSection, "m_GridSize", m_GridSize->value());
    writeColour(p, kImageViewSection, "m_CenterPointColor", m_CenterPointColor->Colour());
    writeColour(p, kImageViewSection, "m_HotPointColor", m_HotPointColor->Colour());
    p.WriteInt(kListView, "m_FrameRate", m_FrameRate->value());
}

// ---- Sheet
// --------------------------------------------------------------------------------------------

COptionsSheet::COptionsSheet(QWidget* parent) : QDialog(parent) {
    setWindowTitle("Preferences");
    auto* layout = new QVBoxLayout(this);
    m_Tabs = new QTabWidget;
    m_Worksheet = new COptionsWorksheetPage;
    m_Import = new COptionsImportPage;
    m_Ads = new COptionsAdsPage;
    m_General = new COptionsGeneralPage;
    m_Tabs->addTab(m_Worksheet, "Worksheet");
    m_Tabs->addTab(m_Import, "Import");
    m_Tabs->addTab(m_Ads, "Artist Download");
    m_Tabs->addTab(m_General, "General");
    layout->addWidget(m_Tabs);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    const CProfile& profile = ZyProfile();
    m_Worksheet->Load(profile);
    m_Import->Load(profile);
    m_Ads->Load(profile);
    m_General->Load(profile);
}

void COptionsSheet::Apply(CTavixDoc* doc) {
    CProfile& profile = ZyProfile();
    m_Worksheet->Save(profile);
    m_Import->Save(profile);
    m_Ads->Save(profile);
    m_General->Save(profile);
    if (doc) {
        COptionsChangedHint hint;
        doc->UpdateAllViews(nullptr, 0, &hint);
    }
    SendDisplayCardConfiguration(profile);
}
