#include "app/ui/PropertiesDock.h"

#include "app/cmds/ShapePropertiesCmd.h"
#include "app/doc/TavixDoc.h"
#include "app/doc/TavixImage.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QScrollArea>
#include <QSpinBox>
#include <QTableWidget>
#include <QVBoxLayout>

#include <cstring>

namespace {

constexpr int kCoordinate = 1 << 20;
constexpr uint32_t kAttrBits[5] = {kAttrMipLevel, kAttrRotated, kAttrTransposed, kAttrDot3,
                                   kAttrEmbm};
constexpr const char* kAttrNames[5] = {"Mip level", "Rotated", "Transposed", "DOT3", "EMBM"};

} // namespace

// The labels' mnemonics keep clear of the menu bar's letters (F E V L I T W
// H): a label's Alt key is live in the whole main window while this window
// shows, and a letter both use would leave neither working.
CPropertiesDock::CPropertiesDock(QWidget* parent) : QDockWidget("Properties", parent) {
    setObjectName("Properties");
    m_Body = new QWidget;
    auto* form = new QFormLayout(m_Body);
    // In a narrow dock a label goes above its field rather than push the
    // fields out of sight.
    form->setRowWrapPolicy(QFormLayout::WrapLongRows);
    m_Count = new QLabel;
    form->addRow(m_Count);
    m_Name = new QLineEdit;
    m_Name->setObjectName("PropName");
    m_Name->setMaxLength(511);
    form->addRow("&Name:", m_Name);
    m_Size = new QLabel;
    form->addRow("Size:", m_Size);
    // A row whose field is a layout gets a label that knows its first
    // field, so its mnemonic moves the focus there rather than showing an "&".
    auto labelFor = [](const char* text, QWidget* buddy) {
        auto* label = new QLabel(text);
        label->setBuddy(buddy);
        return label;
    };
    auto pair = [&](const char* label, QSpinBox*& x, QSpinBox*& y) {
        x = MakeSpin(-kCoordinate, kCoordinate);
        y = MakeSpin(-kCoordinate, kCoordinate);
        auto* row = new QHBoxLayout;
        row->addWidget(x);
        row->addWidget(y);
        form->addRow(labelFor(label, x), row);
    };
    pair("&Centre:", m_CenterX, m_CenterY);
    pair("&Default point (worksheet):", m_DefaultX, m_DefaultY);
    m_CenterX->setObjectName("PropCenterX");
    m_CenterY->setObjectName("PropCenterY");

    m_HotSpots = new QTableWidget(0, 2);
    m_HotSpots->setHorizontalHeaderLabels({"X", "Y"});
    m_HotSpots->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    m_HotSpots->setMinimumHeight(80);
    auto* add = new QPushButton("&Add");
    auto* remove = new QPushButton("&Remove");
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(add);
    buttons->addWidget(remove);
    auto* spots = new QVBoxLayout;
    spots->addWidget(m_HotSpots);
    spots->addLayout(buttons);
    form->addRow(labelFor("H&ot spots:", m_HotSpots), spots);

    m_Comment = new QLineEdit;
    m_Comment->setMaxLength(1023);
    form->addRow("Co&mment:", m_Comment);
    m_SubType = MakeSpin(0, 255);
    form->addRow("Record t&ype:", m_SubType);
    m_Packed = MakeSpin(0, 255);
    form->addRow("&Packing:", m_Packed);
    // Three to a row: in one row the boxes made the window wider than its
    // dock and hid the hot spots' second column.
    auto* flags = new QGridLayout;
    for (int n = 0; n < 5; ++n) {
        m_Attr[n] = new QCheckBox(kAttrNames[n]);
        flags->addWidget(m_Attr[n], n / 3, n % 3);
        connect(m_Attr[n], &QCheckBox::toggled, this, [this, n](bool on) {
            if (m_Loading) return;
            CShapeEdit edit;
            (on ? edit.m_AttrSet : edit.m_AttrClear) = kAttrBits[n];
            Submit(edit);
        });
    }
    form->addRow("Attributes:", flags);
    m_Start = MakeSpin(0, 255);
    form->addRow("&Start colour:", m_Start);
    m_NumColours = MakeSpin(0, 256);
    form->addRow("Colour co&unt:", m_NumColours);

    auto* scroll = new QScrollArea;
    scroll->setWidgetResizable(true);
    scroll->setWidget(m_Body);
    setWidget(scroll);

    auto text = [this](QLineEdit* edit, std::optional<std::string> CShapeEdit::*field) {
        connect(edit, &QLineEdit::editingFinished, this, [this, edit, field] {
            if (m_Loading || !m_Image) return;
            CShapeEdit change;
            change.*field = edit->text().toStdString();
            Submit(change);
        });
    };
    text(m_Name, &CShapeEdit::m_Name);
    text(m_Comment, &CShapeEdit::m_Comment);
    auto number = [this](QSpinBox* spin, std::optional<int> CShapeEdit::*field) {
        connect(spin, &QSpinBox::valueChanged, this, [this, field](int value) {
            if (m_Loading) return;
            CShapeEdit change;
            change.*field = value;
            Submit(change);
        });
    };
    number(m_CenterX, &CShapeEdit::m_CenterX);
    number(m_CenterY, &CShapeEdit::m_CenterY);
    number(m_DefaultX, &CShapeEdit::m_DefaultX);
    number(m_DefaultY, &CShapeEdit::m_DefaultY);
    number(m_SubType, &CShapeEdit::m_SubType);
    number(m_Packed, &CShapeEdit::m_Packed);
    number(m_Start, &CShapeEdit::m_StartColour);
    number(m_NumColours, &CShapeEdit::m_NumColours);
    connect(m_HotSpots, &QTableWidget::cellChanged, this, [this] {
        if (!m_Loading) CommitHotSpots();
    });
    for (QWidget* field :
         std::initializer_list<QWidget*>{m_Name, m_Comment, m_CenterX, m_CenterY, m_DefaultX,
                                         m_DefaultY, m_SubType, m_Packed, m_Start, m_NumColours})
        field->installEventFilter(this);
    connect(add, &QPushButton::clicked, this, &CPropertiesDock::AddHotSpot);
    connect(remove, &QPushButton::clicked, this, &CPropertiesDock::RemoveHotSpot);
    Load(nullptr, 0);
}

QSpinBox* CPropertiesDock::MakeSpin(int low, int high) {
    auto* spin = new QSpinBox;
    spin->setRange(low, high);
    // One command when the number is finished, not one per keystroke.
    spin->setKeyboardTracking(false);
    return spin;
}

void CPropertiesDock::SetDocument(CTavixDoc* doc) {
    if (doc != m_Doc) {
        m_Doc = doc;
        m_Image = nullptr;
        m_Loaded.clear();
    }
    Refresh();
}

void CPropertiesDock::Refresh() {
    const CTavixImage* image = m_Doc ? m_Doc->GetFocusImage() : nullptr;
    CRange selection;
    int selected = 0;
    if (m_Doc && image) {
        m_Doc->GetSelectionMask(selection);
        selected = selection.Count();
    }
    if (image == m_Image && selected == m_Selected && image &&
        m_Loaded.size() == static_cast<size_t>(image->GetInfoSize()) &&
        memcmp(m_Loaded.data(), image->GetInfo(), m_Loaded.size()) == 0)
        return;
    if (!image && !m_Image && m_Loaded.empty() && selected == m_Selected) return;
    Load(image, selected);
}

void CPropertiesDock::Load(const CTavixImage* image, int selected) {
    m_Loading = true;
    m_Image = image;
    m_Selected = selected;
    m_Body->setEnabled(image != nullptr);
    if (!image) {
        m_Loaded.clear();
        m_Count->setText("No image.");
        m_Loading = false;
        return;
    }
    const auto* bytes = reinterpret_cast<const uint8_t*>(image->GetInfo());
    m_Loaded.assign(bytes, bytes + image->GetInfoSize());
    const TavixInfo& info = *image->GetInfo();
    m_Count->setText(selected > 1 ? QString("Changes go to all %1 selected images.").arg(selected)
                                  : QString("Focused image"));
    // Typing not yet entered stays; anything else shows the record, also in
    // the field that has the focus (an Undo pressed there changes the record).
    const QString name = QString::fromStdString(image->GetName());
    if (!m_Name->hasFocus() || !HasTyping(m_Name)) m_Name->setText(name);
    m_LoadedName = name;
    m_Size->setText(QString("%1 x %2, %3 bpp (buffer %4)")
                        .arg(info.width)
                        .arg(info.height)
                        .arg(info.bpp)
                        .arg(info.bufferbpp));
    m_CenterX->setValue(info.centerx);
    m_CenterY->setValue(info.centery);
    m_DefaultX->setValue(info.defaultx);
    m_DefaultY->setValue(info.defaulty);
    m_HotSpots->setRowCount(image->GetHotSpotCount());
    for (int i = 0; i < image->GetHotSpotCount(); ++i) {
        const CPoint spot = image->GetHotSpot(i);
        m_HotSpots->setItem(i, 0, new QTableWidgetItem(QString::number(spot.x)));
        m_HotSpots->setItem(i, 1, new QTableWidgetItem(QString::number(spot.y)));
    }
    const QString comment = QString::fromUtf8(
        info.comment, static_cast<int>(strnlen(info.comment, sizeof info.comment)));
    if (!m_Comment->hasFocus() || !HasTyping(m_Comment)) m_Comment->setText(comment);
    m_LoadedComment = comment;
    m_SubType->setValue(info.subtype);
    m_Packed->setValue(info.packed);
    m_Start->setValue(info.startcolour);
    m_NumColours->setValue(info.numcolours);
    for (int n = 0; n < 5; ++n)
        m_Attr[n]->setChecked(info.attributes & kAttrBits[n]);
    m_Loading = false;
}

bool CPropertiesDock::HasTyping(const QObject* field) const {
    if (field == m_Name) return m_Name->text() != m_LoadedName;
    if (field == m_Comment) return m_Comment->text() != m_LoadedComment;
    // Without keyboard tracking a spin box's value is the last one entered.
    if (const auto* spin = qobject_cast<const QSpinBox*>(field)) {
        QLocale locale = spin->locale(); // as the box writes its numbers
        locale.setNumberOptions(locale.numberOptions() | QLocale::OmitGroupSeparator);
        return spin->cleanText() != locale.toString(spin->value());
    }
    return false;
}

// Ctrl+Z and Ctrl+Y in a field that shows what the record holds are the
// document's Undo and Redo: after Enter the field's own typing history
// could only put its text back, leaving field and image apart. Typing not
// yet entered is still undone in the field.
bool CPropertiesDock::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if ((key->matches(QKeySequence::Undo) || key->matches(QKeySequence::Redo)) &&
            !HasTyping(watched)) {
            event->ignore(); // the frame's shortcut takes it
            return true;
        }
    }
    return QDockWidget::eventFilter(watched, event);
}

void CPropertiesDock::Submit(const CShapeEdit& edit) {
    if (!m_Doc || !m_Image) return;
    auto* cmd = new CShapePropertiesCmd;
    cmd->PresetEdit(edit);
    m_Doc->GetCommandHandler().Start(cmd);
    Refresh();
    emit CommandRun();
}

void CPropertiesDock::CommitHotSpots() {
    std::string text;
    for (int row = 0; row < m_HotSpots->rowCount(); ++row) {
        auto cell = [&](int column) {
            const QTableWidgetItem* item = m_HotSpots->item(row, column);
            return item ? item->text().trimmed().toInt() : 0;
        };
        if (row) text += " ; ";
        text += std::to_string(cell(0)) + "," + std::to_string(cell(1));
    }
    CShapeEdit edit;
    edit.m_HotSpots = text;
    Submit(edit);
}

void CPropertiesDock::AddHotSpot() {
    if (!m_Image) return;
    m_Loading = true;
    const int row = m_HotSpots->rowCount();
    m_HotSpots->insertRow(row);
    m_HotSpots->setItem(row, 0, new QTableWidgetItem("0"));
    m_HotSpots->setItem(row, 1, new QTableWidgetItem("0"));
    m_Loading = false;
    CommitHotSpots();
}

void CPropertiesDock::RemoveHotSpot() {
    const int row =
        m_HotSpots->currentRow() >= 0 ? m_HotSpots->currentRow() : m_HotSpots->rowCount() - 1;
    if (!m_Image || row < 0) return;
    m_Loading = true;
    m_HotSpots->removeRow(row);
    m_Loading = false;
    CommitHotSpots();
}
