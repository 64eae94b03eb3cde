#include "app/ui/ColRedWiz.h"

#include "app/ui/QtUserInterface.h"
#include "codec/FrameIO.h"
#include "imaging/quant/quant.h"
#include "imaging/quant/remap.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QRadioButton>
#include <QSpinBox>
#include <QStandardItemModel>
#include <QVBoxLayout>

#include <algorithm>
#include <iterator>

namespace {

// The channel layouts offered by name; "Custom" keeps the spin boxes' own.
struct Layout {
    const char* name;
    int bits[4]; // alpha, red, green, blue
};
constexpr Layout kLayouts[] = {
    {"8888 (32 bits)", {8, 8, 8, 8}}, {"888 (24 bits)", {0, 8, 8, 8}},
    {"565 (16 bits)", {0, 5, 6, 5}},  {"1555 (15 bits and alpha)", {1, 5, 5, 5}},
    {"555 (15 bits)", {0, 5, 5, 5}},  {"4444 (16 bits)", {4, 4, 4, 4}},
};
constexpr int kLayoutCount = static_cast<int>(std::size(kLayouts));

QComboBox* ditherList(int value) {
    auto* box = new QComboBox;
    for (const char* name : kColRedDitherNames)
        box->addItem(name);
    box->setCurrentIndex(std::clamp(value, 0, 3));
    return box;
}

QString quantizerText(int index) {
    const int previous = quant_current();
    quant_select(index);
    GPtr<QuantDescriptor> descriptor(quant_describe());
    quant_select(previous);
    if (!descriptor) return QString::fromUtf8(quant_name(index));
    return QString("%1 (%2)").arg(descriptor->name, descriptor->description);
}

} // namespace

// ---- First page -----------------------------------------------------------

CColRedPage::CColRedPage(const CColRedWizData& data) {
    setObjectName("CColRedPage");
    setTitle("Color Reduction");
    setSubTitle("Change the color depth of the selected images.");
    auto* layout = new QVBoxLayout(this);
    m_Palette = new QRadioButton("&Palette format (8, 4 or 1 bit indexed)");
    m_TrueColor = new QRadioButton("&True-color format (bits per channel)");
    layout->addWidget(m_Palette);
    layout->addWidget(
        new QLabel("Makes a palette with a color quantizer and maps the pixels onto it."));
    layout->addSpacing(8);
    layout->addWidget(m_TrueColor);
    layout->addWidget(new QLabel("Keeps every pixel's own color with fewer bits per channel "
                                 "(8888, 888, 565, 1555, 4444 ...)."));
    layout->addStretch();
    (data.m_Type == 1 ? m_TrueColor : m_Palette)->setChecked(true);
}

int CColRedPage::Type() const {
    return m_TrueColor->isChecked() ? 1 : 0;
}

int CColRedPage::nextId() const {
    return Type() == 1 ? CColRedWiz::kTrueColorPage : CColRedWiz::kPalettePage;
}

// ---- Palette page ---------------------------------------------------------

CPalettePage::CPalettePage(const CColRedWizData& data) {
    setObjectName("CPalettePage");
    setTitle("Palette Format");
    setSubTitle("How the palette is made and how pixels are mapped onto it.");
    auto* form = new QFormLayout(this);

    m_Depth = new QComboBox;
    m_Depth->addItems(
        {"8-bit indexed (256 colors)", "4-bit indexed (16 colors)", "1-bit indexed (2 colors)"});
    m_Depth->setCurrentIndex(std::clamp(data.m_Depth, 0, 2));
    form->addRow("&Depth:", m_Depth);

    // The list starts at quantizer 1; the null entries stay listed (their
    // positions are the saved method numbers) but cannot be picked.
    m_Method = new QComboBox;
    for (int i = 1; i < kQuantCount; ++i)
        m_Method->addItem(quantizerText(i));
    if (auto* model = qobject_cast<QStandardItemModel*>(m_Method->model()))
        for (int i = 1; i < kQuantCount; ++i)
            if (ColRedIsNullQuantizer(i)) model->item(i - 1)->setEnabled(false);
    m_Method->setCurrentIndex(std::clamp(data.m_Method, 0, kQuantCount - 2));
    form->addRow("&Method:", m_Method);

    m_Colours = new QSpinBox;
    m_Colours->setRange(1, 256);
    m_Start = new QSpinBox;
    m_Start->setRange(0, 255);
    m_Start->setValue(std::clamp(data.m_Start, 0, 255));
    m_Colours->setValue(std::clamp(data.m_Colours, 1, 256));
    form->addRow("&Colors:", m_Colours);
    form->addRow("&Start color:", m_Start);
    m_Range = new QLabel;
    form->addRow("", m_Range);

    m_Operation = new QComboBox;
    for (const char* name : kColRedOperationNames)
        m_Operation->addItem(name);
    m_Operation->setCurrentIndex(std::clamp(data.m_Operation, 0, 2));
    m_Operation->setToolTip("Shared: one palette for all selected images. Unique: one per "
                            "image. Existing: the focused image's palette.");
    form->addRow("&Palette:", m_Operation);

    m_Dither = ditherList(data.m_PalDither);
    form->addRow("D&ither:", m_Dither);
    m_ExactFirst = new QCheckBox("Keep the exact colors when there are few enough");
    m_ExactFirst->setChecked(data.m_ExactFirst != 0);
    form->addRow("", m_ExactFirst);

    connect(m_Depth, &QComboBox::currentIndexChanged, this, [this] {
        m_Colours->setMaximum(256);
        m_Colours->setValue(ColRedMaxColours(m_Depth->currentIndex()));
        UpdateLimits();
    });
    connect(m_Start, &QSpinBox::valueChanged, this, &CPalettePage::UpdateLimits);
    connect(m_Colours, &QSpinBox::valueChanged, this, &CPalettePage::UpdateLimits);
    connect(m_Method, &QComboBox::currentIndexChanged, this, &QWizardPage::completeChanged);
    UpdateLimits();
}

void CPalettePage::UpdateLimits() {
    const int most = std::min(ColRedMaxColours(m_Depth->currentIndex()), 256 - m_Start->value());
    if (m_Colours->maximum() != most) m_Colours->setMaximum(most);
    m_Range->setText(QString("Fills entries %1 to %2.")
                         .arg(m_Start->value())
                         .arg(m_Start->value() + m_Colours->value() - 1));
    emit completeChanged();
}

bool CPalettePage::isComplete() const {
    return !ColRedIsNullQuantizer(m_Method->currentIndex() + 1);
}

void CPalettePage::Store(CColRedWizData& data) const {
    data.m_Depth = m_Depth->currentIndex();
    data.m_Method = m_Method->currentIndex();
    data.m_Colours = m_Colours->value();
    data.m_Start = m_Start->value();
    data.m_Operation = m_Operation->currentIndex();
    data.m_PalDither = m_Dither->currentIndex();
    data.m_ExactFirst = m_ExactFirst->isChecked() ? 1 : 0;
}

// ---- True-colour page -----------------------------------------------------

CTrueColorPage::CTrueColorPage(const CColRedWizData& data) {
    setObjectName("CTrueColorPage");
    setTitle("True-Color Format");
    setSubTitle("Bits kept of each channel.");
    auto* form = new QFormLayout(this);
    m_Layout = new QComboBox;
    for (const Layout& layout : kLayouts)
        m_Layout->addItem(layout.name);
    m_Layout->addItem("Custom");
    form->addRow("&Layout:", m_Layout);

    auto* bitsRow = new QHBoxLayout;
    const int values[4] = {data.m_ABits, data.m_RBits, data.m_GBits, data.m_BBits};
    const char* labels[4] = {"&A", "&R", "&G", "&B"};
    for (int c = 0; c < 4; ++c) {
        m_Bits[c] = new QSpinBox;
        m_Bits[c]->setRange(0, 8);
        m_Bits[c]->setValue(std::clamp(values[c], 0, 8));
        auto* label = new QLabel(labels[c]);
        label->setBuddy(m_Bits[c]);
        bitsRow->addWidget(label);
        bitsRow->addWidget(m_Bits[c]);
    }
    bitsRow->addStretch();
    form->addRow("Bits:", bitsRow);
    m_Depth = new QLabel;
    form->addRow("", m_Depth);
    m_Dither = ditherList(data.m_TrueDither);
    form->addRow("D&ither:", m_Dither);

    connect(m_Layout, &QComboBox::currentIndexChanged, this, &CTrueColorPage::LayoutChosen);
    for (QSpinBox* box : m_Bits)
        connect(box, &QSpinBox::valueChanged, this, &CTrueColorPage::BitsChanged);
    BitsChanged();
}

void CTrueColorPage::LayoutChosen(int index) {
    if (index < 0 || index >= kLayoutCount) return;
    for (int c = 0; c < 4; ++c)
        m_Bits[c]->setValue(kLayouts[index].bits[c]);
}

void CTrueColorPage::BitsChanged() {
    int bits[4];
    for (int c = 0; c < 4; ++c)
        bits[c] = m_Bits[c]->value();
    int match = kLayoutCount;
    for (int i = 0; i < kLayoutCount; ++i)
        if (std::equal(bits, bits + 4, kLayouts[i].bits)) match = i;
    {
        const QSignalBlocker block(m_Layout);
        m_Layout->setCurrentIndex(match);
    }
    if (bits[1] + bits[2] + bits[3] == 0)
        m_Depth->setText("Keep at least one bit of red, green or blue.");
    else
        m_Depth->setText(QString("Depth: %1 bits per pixel.")
                             .arg(quant_layout_depth(bits[0], bits[1], bits[2], bits[3])));
    emit completeChanged();
}

bool CTrueColorPage::isComplete() const {
    return m_Bits[1]->value() + m_Bits[2]->value() + m_Bits[3]->value() > 0;
}

void CTrueColorPage::Store(CColRedWizData& data) const {
    data.m_ABits = m_Bits[0]->value();
    data.m_RBits = m_Bits[1]->value();
    data.m_GBits = m_Bits[2]->value();
    data.m_BBits = m_Bits[3]->value();
    data.m_TrueDither = m_Dither->currentIndex();
}

// ---- The wizard -----------------------------------------------------------

CColRedWiz::CColRedWiz(const CColRedWizData& data, QWidget* parent) : QWizard(parent) {
    setObjectName("CColRedWiz");
    setWindowTitle("Color Remap Wizard");
    setWizardStyle(QWizard::ClassicStyle);
    m_TypePage = new CColRedPage(data);
    m_PalettePage = new CPalettePage(data);
    m_TrueColorPage = new CTrueColorPage(data);
    setPage(kTypePage, m_TypePage);
    setPage(kPalettePage, m_PalettePage);
    setPage(kTrueColorPage, m_TrueColorPage);
    setStartId(kTypePage);
}

void CColRedWiz::Store(CColRedWizData& data) const {
    data.m_Type = m_TypePage->Type();
    m_PalettePage->Store(data);
    m_TrueColorPage->Store(data);
}

bool RunColRedWiz(CColRedWizData& data, QWidget* parent) {
    CColRedWiz wizard(data, parent);
    if (wizard.exec() != QDialog::Accepted) return false;
    wizard.Store(data);
    return true;
}

void RegisterColRedDialogs() {
    CQtUserInterface::RegisterDialog("CColRedWiz", [](CDialogData& data, QWidget* parent) {
        return RunColRedWiz(static_cast<CColRedWizData&>(data), parent);
    });
}
