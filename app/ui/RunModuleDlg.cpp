#include "app/ui/RunModuleDlg.h"

#include "app/cmds/RunModuleCmd.h"
#include "app/doc/TavixImage.h"
#include "app/ui/PreviewPane.h"
#include "app/ui/QtUserInterface.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSpinBox>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <climits>
#include <cmath>
#include <memory>

namespace {

constexpr int kChannels = 4;
constexpr const char* kChannelNames[kChannels] = {"A", "R", "G", "B"};

int clampInt(double value) {
    return static_cast<int>(std::clamp(value, double(INT_MIN), double(INT_MAX)));
}

// Decimals enough to show the smallest limit of a real.
int decimalsFor(const CModuleValueDesc& desc) {
    const double smallest = std::min(desc.m_Min != 0 ? std::fabs(desc.m_Min) : 1.0,
                                     desc.m_Max != 0 ? std::fabs(desc.m_Max) : 1.0);
    return smallest < 0.001 ? 8 : 3;
}

// A 32-bit word as a hex line plus, for masks, one check box per channel
// (A, R, G, B: a byte of 0 clears the box, anything else checks it; a check
// sets its byte to 0xFF) and, for colours, a button with the colour that
// opens the colour dialog with alpha. The line and the boxes follow each
// other; `changed` runs after every edit.
QWidget* wordEditor(const CModuleValueDesc& desc, const std::string& text, int slot,
                    const std::function<void()>& changed,
                    std::vector<std::function<std::string()>>& readers) {
    auto* box = new QWidget;
    auto* row = new QHBoxLayout(box);
    row->setContentsMargins(0, 0, 0, 0);
    auto* line = new QLineEdit(QString::fromStdString(text));
    line->setObjectName(QString("value%1").arg(slot));
    line->setMaxLength(10);
    line->setFixedWidth(line->fontMetrics().horizontalAdvance("0xFFFFFFFF") + 16);
    row->addWidget(line);
    readers.push_back([line] { return line->text().toStdString(); });
    auto loading = std::make_shared<bool>(false);
    auto word = [desc, line](uint32_t& out) {
        double value = 0;
        if (!ParseModuleValue(desc, line->text().toStdString(), value).empty()) return false;
        out = static_cast<uint32_t>(value);
        return true;
    };
    auto setWord = [desc, line](uint32_t value) {
        line->setText(QString::fromStdString(ModuleValueText(desc, value)));
    };

    if (desc.m_Kind == CModuleControl::Mask) {
        std::vector<QCheckBox*> checks;
        for (int c = 0; c < kChannels; ++c) {
            auto* check = new QCheckBox(kChannelNames[c]);
            check->setObjectName(QString("value%1.%2").arg(slot).arg(kChannelNames[c]));
            checks.push_back(check);
            row->addWidget(check);
        }
        auto showChecks = [checks, word] {
            uint32_t value = 0;
            const bool valid = word(value);
            for (int c = 0; c < kChannels; ++c) {
                const int shift = 24 - 8 * c;
                checks[c]->setEnabled(valid);
                checks[c]->setChecked(valid && ((value >> shift) & 0xFF) != 0);
            }
        };
        showChecks();
        QObject::connect(line, &QLineEdit::textEdited, line, [=] {
            *loading = true;
            showChecks();
            *loading = false;
            changed();
        });
        for (int c = 0; c < kChannels; ++c)
            QObject::connect(checks[c], &QCheckBox::toggled, line, [=](bool on) {
                if (*loading) return;
                uint32_t value = 0;
                if (!word(value)) return;
                const uint32_t bits = 0xFFu << (24 - 8 * c);
                setWord(on ? value | bits : value & ~bits);
                changed();
            });
    } else {
        auto* button = new QPushButton;
        button->setObjectName(QString("value%1.colour").arg(slot));
        button->setFixedWidth(48);
        auto paint = [button, word] {
            uint32_t value = 0;
            const bool valid = word(value);
            button->setEnabled(valid);
            // Over a checkerboard, so that the colour's alpha shows.
            QPixmap swatch(28, 14);
            QPainter painter(&swatch);
            for (int y = 0; y < 14; y += 7)
                for (int x = 0; x < 28; x += 7)
                    painter.fillRect(x, y, 7, 7,
                                     ((x + y) / 7) % 2 ? QColor(0xB0, 0xB0, 0xB0) : Qt::white);
            painter.fillRect(swatch.rect(), QColor::fromRgba(valid ? value : 0));
            painter.end();
            button->setIcon(QIcon(swatch));
            button->setIconSize(swatch.size());
        };
        paint();
        row->addWidget(button);
        QObject::connect(line, &QLineEdit::textEdited, line, [=] {
            paint();
            changed();
        });
        QObject::connect(button, &QPushButton::clicked, line, [=] {
            uint32_t value = 0;
            word(value);
            const QColor chosen = QColorDialog::getColor(QColor::fromRgba(value), button,
                                                         QString::fromStdString(desc.m_Name),
                                                         QColorDialog::ShowAlphaChannel);
            if (!chosen.isValid()) return;
            setWord(chosen.rgba());
            paint();
            changed();
        });
    }
    row->addStretch();
    return box;
}

// The control of one value, or null for a slot the user cannot give (a
// program's handle, passed as 0).
QWidget* editorFor(const CModuleValueDesc& desc, const std::string& text, int slot,
                   const std::function<void()>& changed,
                   std::vector<std::function<std::string()>>& readers) {
    double value = 0;
    ParseModuleValue(desc, text, value);
    const QString name = QString("value%1").arg(slot);
    switch (desc.m_Kind) {
    case CModuleControl::Integer: {
        auto* box = new QSpinBox;
        box->setObjectName(name);
        box->setRange(clampInt(desc.m_Min), clampInt(desc.m_Max));
        box->setValue(clampInt(value));
        readers.push_back([box] { return std::to_string(box->value()); });
        QObject::connect(box, &QSpinBox::valueChanged, box, changed);
        return box;
    }
    case CModuleControl::Real: {
        auto* box = new QDoubleSpinBox;
        box->setObjectName(name);
        box->setDecimals(decimalsFor(desc));
        box->setRange(desc.m_Min, desc.m_Max);
        box->setValue(value);
        readers.push_back([box, desc] { return ModuleValueText(desc, box->value()); });
        QObject::connect(box, &QDoubleSpinBox::valueChanged, box, changed);
        return box;
    }
    case CModuleControl::Check: {
        auto* check = new QCheckBox;
        check->setObjectName(name);
        check->setChecked(value != 0);
        readers.push_back([check] { return std::string(check->isChecked() ? "1" : "0"); });
        QObject::connect(check, &QCheckBox::toggled, check, changed);
        return check;
    }
    case CModuleControl::Choice: {
        auto* list = new QComboBox;
        list->setObjectName(name);
        for (const std::string& choice : desc.m_Choices)
            list->addItem(QString::fromStdString(choice));
        list->setCurrentIndex(static_cast<int>(value));
        readers.push_back([list, desc] { return ModuleValueText(desc, list->currentIndex()); });
        QObject::connect(list, &QComboBox::currentIndexChanged, list, changed);
        return list;
    }
    case CModuleControl::Mask:
    case CModuleControl::Colour:
        return wordEditor(desc, text, slot, changed, readers);
    case CModuleControl::Text: {
        auto* line = new QLineEdit(QString::fromStdString(text));
        line->setObjectName(name);
        line->setMinimumWidth(180);
        readers.push_back([line] { return line->text().toStdString(); });
        QObject::connect(line, &QLineEdit::textEdited, line, changed);
        return line;
    }
    case CModuleControl::Handle:
        readers.push_back([] { return std::string("0"); });
        return nullptr;
    }
    return nullptr;
}

QString listText(const CModuleDesc& desc) {
    return QString::fromStdString(desc.m_Name);
}

} // namespace

CRunModuleDlg::CRunModuleDlg(CRunModuleDlgData& data, QWidget* parent)
    : QDialog(parent), m_Data(data) {
    setWindowTitle("Run Module");
    setObjectName("CRunModuleDlg");
    auto* outer = new QHBoxLayout(this);

    m_List = new QTreeWidget;
    m_List->setObjectName("ModuleList");
    m_List->setColumnCount(2);
    m_List->setHeaderLabels({"Module", "Description"});
    m_List->setRootIsDecorated(false);
    m_List->setUniformRowHeights(true);
    for (const CModuleDesc& desc : AllModuleDescs()) {
        auto* item = new QTreeWidgetItem(
            m_List, {listText(desc), QString::fromStdString(desc.m_Description)});
        const std::string reason = desc.UnusableReason();
        if (!reason.empty()) {
            // Still selectable, so that its page can say why it cannot run.
            item->setForeground(0, palette().color(QPalette::Disabled, QPalette::Text));
            item->setForeground(1, palette().color(QPalette::Disabled, QPalette::Text));
            item->setToolTip(0, QString::fromStdString(reason));
        }
    }
    m_List->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    m_List->setMinimumWidth(360);
    m_List->setMinimumHeight(400);
    outer->addWidget(m_List);

    auto* column = new QVBoxLayout;
    m_Title = new QLabel;
    m_Title->setObjectName("ModuleTitle");
    QFont bold = m_Title->font();
    bold.setBold(true);
    m_Title->setFont(bold);
    column->addWidget(m_Title);
    m_Scroll = new QScrollArea;
    m_Scroll->setObjectName("ValuePage");
    m_Scroll->setWidgetResizable(true);
    m_Scroll->setFrameShape(QFrame::NoFrame);
    m_Scroll->setMinimumWidth(420);
    column->addWidget(m_Scroll, 1);
    m_Note = new QLabel;
    m_Note->setObjectName("ModuleNote");
    m_Note->setWordWrap(true);
    column->addWidget(m_Note);
    m_Buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(m_Buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(m_Buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    outer->addLayout(column, 1);

    if (data.m_Preview && data.m_PreviewSource) {
        auto* previewColumn = new QVBoxLayout;
        m_Preview = new CPreviewPane(*data.m_PreviewSource, [&data](const CTavixImage& source) {
            return data.m_Preview(data, source);
        });
        previewColumn->addWidget(m_Preview);
        previewColumn->addStretch();
        previewColumn->addWidget(m_Buttons);
        outer->addLayout(previewColumn);
    } else {
        column->addWidget(m_Buttons);
    }

    connect(m_List, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) {
        if (!item || m_Loading) return;
        const int index = m_List->indexOfTopLevelItem(item);
        if (index < 0 || index >= static_cast<int>(AllModuleDescs().size())) return;
        // The values of the module left stay with the data, so coming back
        // to it finds them again.
        Changed();
        m_Data.m_Module = AllModuleDescs()[static_cast<size_t>(index)].m_Name;
        BuildPage();
        Changed();
    });
    ChooseModule(data.m_Module);
}

void CRunModuleDlg::ChooseModule(const std::string& name) {
    const CModuleDesc* desc = FindModuleDesc(name);
    if (!desc) desc = &AllModuleDescs().front();
    QTreeWidgetItem* item = m_List->topLevelItem(desc->m_Index);
    Changed();
    m_Loading = true;
    m_List->setCurrentItem(item);
    m_List->scrollToItem(item, QAbstractItemView::PositionAtCenter);
    m_Loading = false;
    m_Data.m_Module = desc->m_Name;
    BuildPage();
    Changed();
}

void CRunModuleDlg::BuildPage() {
    const CModuleDesc* desc = FindModuleDesc(m_Data.m_Module);
    // A fresh page: the old controls go with their readers.
    m_Readers.clear();
    m_PageModule.clear();
    QWidget* page = new QWidget;
    m_Form = new QFormLayout(page);
    m_Form->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
    delete m_Scroll->takeWidget();
    m_Scroll->setWidget(page);
    if (!desc) return;
    m_Title->setText(QString::fromStdString(desc->m_Description + " (" + desc->m_Name + ")"));
    m_Loading = true;
    const std::vector<std::string> texts = m_Data.Texts();
    auto changed = [this] { Changed(); };
    for (size_t i = 0; i < desc->m_Values.size(); ++i) {
        const CModuleValueDesc& value = desc->m_Values[i];
        QWidget* editor = editorFor(value, i < texts.size() ? texts[i] : std::string(),
                                    static_cast<int>(i), changed, m_Readers);
        if (editor) m_Form->addRow(QString::fromStdString(value.m_Name) + ':', editor);
    }
    if (desc->m_Values.empty()) m_Form->addRow(new QLabel("This module takes no values."));
    m_Loading = false;
    m_PageModule = desc->m_Name;

    const std::string reason = desc->UnusableReason();
    std::string note = reason.empty() ? desc->Remark() : reason;
    if (reason.empty() && !desc->CanPreview())
        note += (note.empty() ? "" : " ") +
                std::string("It opens an outside image editor, so it has no preview.");
    m_Note->setText(QString::fromStdString(note));
    m_Note->setVisible(!note.empty());
    page->setEnabled(reason.empty());
    m_Buttons->button(QDialogButtonBox::Ok)->setEnabled(reason.empty());
    // Wide enough for the longest label and its control, so that no label
    // is cut; long pages scroll down instead.
    const int width = page->sizeHint().width() + m_Scroll->verticalScrollBar()->sizeHint().width();
    m_Scroll->setMinimumWidth(std::max(420, width));
    // A shown dialog does not grow by itself when a wider page comes.
    if (isVisible()) resize(sizeHint().expandedTo(size()));
}

std::vector<std::string> CRunModuleDlg::CurrentTexts() const {
    std::vector<std::string> texts;
    for (const auto& read : m_Readers)
        texts.push_back(read());
    return texts;
}

void CRunModuleDlg::Changed() {
    if (m_Loading) return;
    // Only a page that was built has texts to give: before it, the stored
    // ones must stay.
    if (!m_PageModule.empty()) m_Data.SetTexts(m_PageModule, CurrentTexts());
    if (m_Preview) m_Preview->Refresh();
}

void CRunModuleDlg::done(int result) {
    if (result == QDialog::Accepted) {
        Changed();
        const std::string refusal = m_Data.Validate();
        if (!refusal.empty()) {
            QMessageBox::warning(this, "Zy", QString::fromStdString(refusal));
            return;
        }
    }
    QDialog::done(result);
}

void RegisterRunModuleDialog() {
    CQtUserInterface::RegisterDialog("CRunModuleDlg", [](CDialogData& data, QWidget* parent) {
        CRunModuleDlg dialog(static_cast<CRunModuleDlgData&>(data), parent);
        return dialog.exec() == QDialog::Accepted;
    });
}
