#include "app/ui/ColourEditor.h"

#include "app/cmds/PaletteEntryCmd.h"
#include "app/doc/ColourSelection.h"
#include "app/doc/CommandHandler.h"
#include "app/doc/CurrentColours.h"
#include "app/doc/Profile.h"
#include "app/doc/TavixDoc.h"
#include "app/doc/TavixImage.h"
#include "app/doc/UserInterface.h"
#include "app/ui/ColourPicker.h"

#include <QColor>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QRegularExpression>
#include <QSpinBox>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

constexpr int kCheck = 4;

QString hexOf(uint32_t argb) {
    return "#" + QString::number(argb, 16).rightJustified(8, '0').toUpper();
}

QString swatchTip(int number) {
    if (number == CCurrentColours::kForegroundNumber)
        return QString("Current colour %1: the foreground").arg(number);
    if (number == CCurrentColours::kFillNumber)
        return QString("Current colour %1: the fill colour (and background)").arg(number);
    return QString("Current colour %1").arg(number);
}

} // namespace

// ---- Swatch -----------------------------------------------------------------------------------

CColourSwatch::CColourSwatch(const QString& caption, QWidget* parent)
    : QWidget(parent), m_Caption(caption) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setCursor(Qt::PointingHandCursor);
}

void CColourSwatch::SetColour(uint32_t argb) {
    if (argb == m_Argb) return;
    m_Argb = argb;
    update();
}

void CColourSwatch::SetMarked(bool marked) {
    if (marked == m_Marked) return;
    m_Marked = marked;
    update();
}

QSize CColourSwatch::sizeHint() const {
    const int text = m_Caption.isEmpty() ? 0 : fontMetrics().height();
    const int width = std::max(22, fontMetrics().horizontalAdvance(m_Caption) + 4);
    return {width, 22 + text};
}

void CColourSwatch::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const int text = m_Caption.isEmpty() ? 0 : fontMetrics().height();
    const QRect box = rect().adjusted(0, 0, -1, -1 - text);
    for (int y = box.top(); y <= box.bottom(); y += kCheck)
        for (int x = box.left(); x <= box.right(); x += kCheck) {
            const bool dark = ((x - box.left()) / kCheck + (y - box.top()) / kCheck) % 2;
            painter.fillRect(QRect(x, y, std::min(kCheck, box.right() - x + 1),
                                   std::min(kCheck, box.bottom() - y + 1)),
                             dark ? QColor(0xC0, 0xC0, 0xC0) : QColor(0xFF, 0xFF, 0xFF));
        }
    painter.fillRect(box,
                     QColor(m_Argb >> 16 & 0xFF, m_Argb >> 8 & 0xFF, m_Argb & 0xFF, m_Argb >> 24));
    painter.setPen(m_Marked ? QPen(palette().highlight().color(), 3) : QPen(Qt::darkGray, 1));
    painter.drawRect(m_Marked ? box.adjusted(1, 1, -1, -1) : box);
    if (text) {
        painter.setPen(palette().windowText().color());
        painter.drawText(QRect(0, height() - text, width(), text), Qt::AlignCenter, m_Caption);
    }
}

void CColourSwatch::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) emit Clicked();
}

// ---- Editor -----------------------------------------------------------------------------------

CColourEditorWidget::CColourEditorWidget(QWidget* parent) : QWidget(parent) {
    setObjectName("ColorEditorBody");
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);

    // Which colour is edited: the palette entry or a current colour.
    auto* slotRow = new QHBoxLayout;
    m_PaletteSwatch = new CColourSwatch("Pal");
    m_PaletteSwatch->setToolTip("The palette entry picked in the palette well");
    connect(m_PaletteSwatch, &CColourSwatch::Clicked, this, &CColourEditorWidget::EditPaletteEntry);
    slotRow->addWidget(m_PaletteSwatch);
    slotRow->addSpacing(6);
    for (int n = 0; n < CCurrentColours::kCount; ++n) {
        m_Current[n] = new CColourSwatch(
            n == CCurrentColours::kFillNumber ? QString("%1 Fill").arg(n) : QString::number(n));
        m_Current[n]->setToolTip(swatchTip(n));
        connect(m_Current[n], &CColourSwatch::Clicked, this, [this, n] { EditCurrentColour(n); });
        slotRow->addWidget(m_Current[n]);
    }
    slotRow->addStretch(1);
    layout->addLayout(slotRow);

    m_TargetLabel = new QLabel;
    m_TargetLabel->setObjectName("ColorEditorTarget");
    m_TargetLabel->setWordWrap(true);
    layout->addWidget(m_TargetLabel);

    m_Fields = new QWidget;
    auto* grid = new QGridLayout(m_Fields);
    grid->setContentsMargins(0, 0, 0, 0);
    m_Swatch = new CColourSwatch;
    m_Swatch->setMinimumSize(56, 56);
    m_Swatch->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
    m_Swatch->setCursor(Qt::ArrowCursor);
    grid->addWidget(m_Swatch, 0, 0, 4, 1);
    auto spin = [grid](const char* name, const QString& label, int high, int row, int column) {
        auto* box = new QSpinBox;
        box->setRange(0, high);
        // Commits come at the end of an edit (Enter, focus out, an arrow
        // step), not for every digit typed.
        box->setKeyboardTracking(false);
        box->setObjectName(QString("ColorEditor") + name);
        auto* caption = new QLabel(label);
        caption->setBuddy(box);
        grid->addWidget(caption, row, column);
        grid->addWidget(box, row, column + 1);
        return box;
    };
    m_A = spin("A", "&A:", 255, 0, 1);
    m_R = spin("R", "&R:", 255, 1, 1);
    m_G = spin("G", "&G:", 255, 2, 1);
    m_B = spin("B", "&B:", 255, 3, 1);
    m_IndexSpin = spin("Index", "&Index:", 255, 0, 3);
    m_H = spin("H", "&H:", 359, 1, 3);
    m_S = spin("S", "&S:", 255, 2, 3);
    m_V = spin("V", "&V:", 255, 3, 3);
    m_H->setWrapping(true);
    auto* hexLabel = new QLabel("He&x:");
    grid->addWidget(hexLabel, 4, 0);
    m_Hex = new QLineEdit;
    m_Hex->setObjectName("ColorEditorHex");
    m_Hex->setToolTip("#AARRGGBB, or #RRGGBB for an opaque colour");
    hexLabel->setBuddy(m_Hex);
    grid->addWidget(m_Hex, 4, 1, 1, 2);
    m_IndexSpin->setToolTip("The palette index this colour stands for in indexed images");
    m_Pick = new QToolButton;
    m_Pick->setObjectName("ColorEditorPick");
    m_Pick->setText("&Pick");
    m_Pick->setCheckable(true);
    m_Pick->setToolTip("Click a pixel on the worksheet to take its colour");
    grid->addWidget(m_Pick, 4, 3, 1, 2);
    grid->setColumnStretch(5, 1);
    layout->addWidget(m_Fields);
    layout->addStretch(1);

    for (QSpinBox* box : {m_A, m_R, m_G, m_B})
        connect(box, &QSpinBox::valueChanged, this, &CColourEditorWidget::OnArgbEdited);
    for (QSpinBox* box : {m_H, m_S, m_V})
        connect(box, &QSpinBox::valueChanged, this, &CColourEditorWidget::OnHsvEdited);
    connect(m_IndexSpin, &QSpinBox::valueChanged, this, [this](int index) {
        if (!m_Loading) Commit(m_Argb, index);
    });
    connect(m_Hex, &QLineEdit::editingFinished, this, &CColourEditorWidget::OnHexEdited);
    connect(m_Pick, &QToolButton::toggled, this, [](bool on) { ZyColourPicker().SetArmed(on); });
    connect(&ZyColourPicker(), &CColourPicker::ArmedChanged, m_Pick, [this](bool armed) {
        if (m_Pick->isChecked() != armed) m_Pick->setChecked(armed);
    });
    connect(&ZyColourPicker(), &CColourPicker::Picked, this, &CColourEditorWidget::OnPicked);
    // Picking an entry in the palette well edits that entry.
    m_Listener = ZyColourSelection().AddListener([this] {
        if (ZyColourSelection().GetCount() > 0)
            EditPaletteEntry();
        else
            Refresh();
    });
    m_Target = CCurrentColours::kForegroundNumber;
    ShowTarget();
}

CColourEditorWidget::~CColourEditorWidget() {
    ZyColourSelection().RemoveListener(m_Listener);
    if (m_Pick->isChecked()) ZyColourPicker().SetArmed(false);
}

QSpinBox* CColourEditorWidget::Channel(char name) const {
    switch (name) {
    case 'A':
        return m_A;
    case 'R':
        return m_R;
    case 'G':
        return m_G;
    case 'B':
        return m_B;
    case 'H':
        return m_H;
    case 'S':
        return m_S;
    case 'V':
        return m_V;
    default:
        return nullptr;
    }
}

CColourSwatch* CColourEditorWidget::CurrentSwatch(int number) const {
    return number >= 0 && number < CCurrentColours::kCount ? m_Current[number] : nullptr;
}

void CColourEditorWidget::SetDocument(CTavixDoc* doc) {
    if (doc == m_Doc) {
        Refresh();
        return;
    }
    m_Doc = doc;
    ShowTarget();
}

void CColourEditorWidget::EditCurrentColour(int number) {
    if (number < 0 || number >= CCurrentColours::kCount) return;
    m_Target = number;
    ShowTarget();
}

void CColourEditorWidget::EditPaletteEntry() {
    m_Target = kPaletteEntry;
    ShowTarget();
}

int CColourEditorWidget::PaletteEntry() const {
    const std::vector<int> picked = ZyColourSelection().GetIndices();
    return picked.empty() ? -1 : picked.front();
}

namespace {

// Entry `entry` of the focused image's palette, when there is one to edit.
bool focusedEntry(const CTavixDoc* doc, int entry, uint32_t& argb) {
    const CTavixImage* image = doc ? doc->GetFocusImage() : nullptr;
    if (!image || image->GetBitCount() > 8 || entry < 0 || entry > 255) return false;
    TavixColour palette[256];
    image->GetPalette(palette);
    const TavixColour& c = palette[entry];
    argb = static_cast<uint32_t>(c.alpha) << 24 | static_cast<uint32_t>(c.red) << 16 |
           static_cast<uint32_t>(c.green) << 8 | c.blue;
    return true;
}

} // namespace

bool CColourEditorWidget::ReadSource(uint32_t& argb, int& index) const {
    if (m_Target != kPaletteEntry) {
        const CCurrentColour colour = CCurrentColours::Get(ZyProfile(), m_Target);
        argb = colour.m_Argb;
        index = colour.m_Index;
        return true;
    }
    index = PaletteEntry();
    return focusedEntry(m_Doc, index, argb);
}

QString CColourEditorWidget::TargetText() const {
    if (m_Target != kPaletteEntry) return swatchTip(m_Target);
    const CTavixImage* image = m_Doc ? m_Doc->GetFocusImage() : nullptr;
    if (!image) return "Palette entry: no image is focused.";
    if (image->GetBitCount() > 8)
        return "Palette entry: the focused image is true colour and has no palette.";
    const int entry = PaletteEntry();
    if (entry < 0) return "Palette entry: pick an entry in the palette well.";
    return QString("Palette entry %1 of image %2").arg(entry).arg(m_Doc->GetFocusIndex() + 1);
}

void CColourEditorWidget::ShowTarget() {
    uint32_t argb = 0xFF000000;
    int index = 0;
    m_CanEdit = ReadSource(argb, index);
    m_TargetLabel->setText(TargetText());
    m_PaletteSwatch->SetMarked(m_Target == kPaletteEntry);
    for (int n = 0; n < CCurrentColours::kCount; ++n)
        m_Current[n]->SetMarked(m_Target == n);
    m_Fields->setEnabled(m_CanEdit);
    m_IndexSpin->setEnabled(m_Target != kPaletteEntry);
    RefreshCurrentSwatches();
    if (m_CanEdit) Load(argb, index);
}

void CColourEditorWidget::RefreshCurrentSwatches() {
    for (int n = 0; n < CCurrentColours::kCount; ++n)
        m_Current[n]->SetColour(CCurrentColours::Get(ZyProfile(), n).m_Argb);
    uint32_t entry = 0;
    m_PaletteSwatch->SetColour(focusedEntry(m_Doc, PaletteEntry(), entry) ? entry : 0);
}

void CColourEditorWidget::Refresh() {
    uint32_t argb = 0;
    int index = 0;
    const bool can = ReadSource(argb, index);
    if (can != m_CanEdit || TargetText() != m_TargetLabel->text()) {
        ShowTarget();
        return;
    }
    RefreshCurrentSwatches();
    if (can && (argb != m_Argb || index != m_Index)) Load(argb, index);
}

void CColourEditorWidget::Load(uint32_t argb, int index, bool keepHsv) {
    m_Loading = true;
    m_Argb = argb;
    m_Index = index;
    m_A->setValue(static_cast<int>(argb >> 24));
    m_R->setValue(static_cast<int>(argb >> 16 & 0xFF));
    m_G->setValue(static_cast<int>(argb >> 8 & 0xFF));
    m_B->setValue(static_cast<int>(argb & 0xFF));
    if (!keepHsv) {
        int h = 0, s = 0, v = 0;
        QColor(argb >> 16 & 0xFF, argb >> 8 & 0xFF, argb & 0xFF).getHsv(&h, &s, &v);
        // A grey has no hue; the field keeps showing the one it had.
        if (h >= 0) m_H->setValue(h);
        m_S->setValue(s);
        m_V->setValue(v);
    }
    if (!m_Hex->hasFocus() || m_Hex->text() != hexOf(argb)) m_Hex->setText(hexOf(argb));
    m_IndexSpin->setValue(index);
    m_Swatch->SetColour(argb);
    m_Loading = false;
}

void CColourEditorWidget::OnArgbEdited() {
    if (m_Loading) return;
    Commit(static_cast<uint32_t>(m_A->value()) << 24 | static_cast<uint32_t>(m_R->value()) << 16 |
           static_cast<uint32_t>(m_G->value()) << 8 | static_cast<uint32_t>(m_B->value()));
}

void CColourEditorWidget::OnHsvEdited() {
    if (m_Loading) return;
    const QColor colour = QColor::fromHsv(m_H->value(), m_S->value(), m_V->value());
    const uint32_t argb = static_cast<uint32_t>(m_A->value()) << 24 | (colour.rgb() & 0x00FFFFFF);
    // The hue, saturation and value stay as typed: converting the result
    // back could move them (a black has every hue).
    Commit(argb, -1, true);
}

void CColourEditorWidget::OnHexEdited() {
    if (m_Loading) return;
    if (m_Hex->text() == hexOf(m_Argb)) return;
    QString error;
    const std::optional<uint32_t> argb = ParseHex(m_Hex->text(), &error);
    if (!argb) {
        m_Loading = true;
        m_Hex->setText(hexOf(m_Argb));
        m_Loading = false;
        ZyUi().MessageBox(error.toStdString(), MsgButtons::OK, MsgIcon::Warning, "Color Editor");
        return;
    }
    Commit(*argb);
}

std::optional<uint32_t> CColourEditorWidget::ParseHex(const QString& text, QString* error) {
    QString digits = text.trimmed();
    if (digits.startsWith('#')) digits.remove(0, 1);
    static const QRegularExpression hex("^[0-9A-Fa-f]*$");
    QString problem;
    if (digits.isEmpty())
        problem = "No colour was given.";
    else if (!hex.match(digits).hasMatch())
        problem = "It holds characters that are not hexadecimal digits.";
    else if (digits.size() != 8 && digits.size() != 6)
        problem = QString("It has %1 digits; a colour has 8 (AARRGGBB) or 6 (RRGGBB).")
                      .arg(digits.size());
    if (!problem.isEmpty()) {
        if (error)
            *error = QString("\"%1\" is not a colour. %2 Type # and 8 hexadecimal digits, "
                             "#AARRGGBB, or 6, #RRGGBB, for an opaque colour.")
                         .arg(text, problem);
        return std::nullopt;
    }
    const uint32_t value = digits.toUInt(nullptr, 16);
    return digits.size() == 6 ? (0xFF000000 | value) : value;
}

void CColourEditorWidget::Commit(uint32_t argb, int index, bool keepHsv) {
    if (!m_CanEdit) return;
    if (m_Target == kPaletteEntry) {
        const int entry = PaletteEntry();
        if (m_Doc && entry >= 0) {
            m_Doc->GetCommandHandler().Start(
                new CPaletteEntryCmd(m_Doc->GetFocusIndex(), entry, argb));
            emit CommandRun();
        }
    } else {
        CCurrentColour colour = CCurrentColours::Get(ZyProfile(), m_Target);
        colour.m_Argb = argb;
        if (index >= 0) colour.m_Index = index & 0xFF;
        CCurrentColours::Set(ZyProfile(), m_Target, colour);
        emit CurrentColoursChanged();
    }
    // Shows what the slot holds now: a refused command leaves the old colour.
    uint32_t now = argb;
    int nowIndex = index;
    if (ReadSource(now, nowIndex)) Load(now, nowIndex, keepHsv && now == argb);
    RefreshCurrentSwatches();
}

void CColourEditorWidget::OnPicked(const CPickedPixel& pixel) {
    if (!pixel.m_Valid || !m_CanEdit) return;
    // A current colour takes the index too when the pixel has one, so that
    // it means the same colour in indexed images.
    Commit(pixel.m_Argb, m_Target == kPaletteEntry ? -1 : pixel.m_Index);
}

CColourEditor::CColourEditor(QWidget* parent) : QDockWidget("Color Editor", parent) {
    setObjectName("ColorEditor");
    m_Editor = new CColourEditorWidget;
    setWidget(m_Editor);
    // A closed editor shows no Pick button, so it must not leave the
    // worksheet picking.
    connect(this, &QDockWidget::visibilityChanged, this, [](bool visible) {
        if (!visible) ZyColourPicker().SetArmed(false);
    });
}

// ---- Toolbar ----------------------------------------------------------------------------------

CCurrentColourBar::CCurrentColourBar(QWidget* parent) : QToolBar("Colors", parent) {
    setObjectName("CurrentColorsBar");
    auto add = [this](int number, const QString& caption) {
        auto* swatch = new CColourSwatch;
        swatch->setFixedSize(20, 20);
        swatch->setToolTip(swatchTip(number) + " (" + caption + "): click to edit");
        swatch->setObjectName(QString("CurrentColour%1").arg(number));
        connect(swatch, &CColourSwatch::Clicked, this,
                [this, number] { emit EditRequested(number); });
        addWidget(swatch);
        return swatch;
    };
    m_Foreground = add(CCurrentColours::kForegroundNumber, "foreground");
    m_Fill = add(CCurrentColours::kFillNumber, "fill");
    Refresh();
}

CColourSwatch* CCurrentColourBar::Swatch(int number) const {
    if (number == CCurrentColours::kForegroundNumber) return m_Foreground;
    if (number == CCurrentColours::kFillNumber) return m_Fill;
    return nullptr;
}

void CCurrentColourBar::Refresh() {
    const CCurrentColours colours = CCurrentColours::Read(ZyProfile());
    for (int number : {CCurrentColours::kForegroundNumber, CCurrentColours::kFillNumber}) {
        const CCurrentColour& colour = colours.m_Colours[number];
        CColourSwatch* swatch = Swatch(number);
        swatch->SetColour(colour.m_Argb);
        const QString tip = QString("%1: ARGB %2, index %3")
                                .arg(swatchTip(number), hexOf(colour.m_Argb).mid(1))
                                .arg(colour.m_Index);
        if (swatch->toolTip() != tip) swatch->setToolTip(tip);
    }
}
