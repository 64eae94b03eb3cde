#include "app/ui/FieldFormDlg.h"

#include "app/doc/UserInterface.h"
#include "app/doc/TavixImage.h"
#include "app/ui/PreviewPane.h"

#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QMessageBox>
#include <QLineEdit>
#include <QSpinBox>

#include <cstring>
#include <functional>
#include <memory>
#include <vector>

namespace {

// The window titles of the dialogs shown as forms.
const char* titleOf(const char* dialogName) {
    static const struct {
        const char* name;
        const char* title;
    } kTitles[] = {{"CInsertDlg", "New Image"},
                   {"CBlendMethodDlg", "Blend Images"},
                   {"CPasteSpecialDlg", "Paste Special"},
                   // The image commands' dialogs.
                   {"CRotateArbitraryDlg", "Transform Numerically"},
                   {"CDeInterlaceDlg", "De-Interlace"},
                   {"CImageSizeDlg", "Image Size"},
                   {"CCanvasSizeDlg", "Canvas Size"},
                   {"CBlurDlg", "Blur Amount"},
                   {"CSharpenDlg", "Sharpen Amount"},
                   {"CCBDlg", "Contrast/Brightness"},
                   {"CHSDlg", "Hue/Saturation"},
                   {"CColorBalanceDlg", "Color Balance"},
                   {"CGreyScaleDlg", "Grey Scale"},
                   {"CCreepDlg", "Creep"},
                   {"CCleanEdgeDlg", "Clean Edges"}};
    for (const auto& entry : kTitles)
        if (strcmp(entry.name, dialogName) == 0) return entry.title;
    return dialogName;
}

// The editor of one field and how its value goes back.
// `changed` runs after every edit (the live preview).
QWidget* editorFor(const CDialogField& field, std::vector<std::function<void()>>& commits,
                   const std::function<void()>& changed) {
    switch (field.m_Kind) {
    case CDialogField::Integer: {
        auto* box = new QSpinBox;
        box->setRange(static_cast<int>(field.m_Min), static_cast<int>(field.m_Max));
        box->setValue(*static_cast<int*>(field.m_Value));
        commits.push_back([box, field] { *static_cast<int*>(field.m_Value) = box->value(); });
        QObject::connect(box, &QSpinBox::valueChanged, box, changed);
        return box;
    }
    case CDialogField::Real: {
        auto* box = new QDoubleSpinBox;
        box->setDecimals(3);
        box->setRange(field.m_Min, field.m_Max);
        box->setValue(*static_cast<double*>(field.m_Value));
        commits.push_back([box, field] { *static_cast<double*>(field.m_Value) = box->value(); });
        QObject::connect(box, &QDoubleSpinBox::valueChanged, box, changed);
        return box;
    }
    case CDialogField::Choice: {
        auto* list = new QComboBox;
        list->addItems(QString::fromUtf8(field.m_Choices).split(','));
        list->setCurrentIndex(*static_cast<int*>(field.m_Value));
        commits.push_back(
            [list, field] { *static_cast<int*>(field.m_Value) = list->currentIndex(); });
        QObject::connect(list, &QComboBox::currentIndexChanged, list, changed);
        return list;
    }
    case CDialogField::Text: {
        auto* line =
            new QLineEdit(QString::fromStdString(*static_cast<std::string*>(field.m_Value)));
        commits.push_back([line, field] {
            *static_cast<std::string*>(field.m_Value) = line->text().toStdString();
        });
        QObject::connect(line, &QLineEdit::textChanged, line, changed);
        return line;
    }
    }
    return nullptr;
}

} // namespace

void BuildFieldForm(QDialog& dialog, CDialogData& data) {
    dialog.setWindowTitle(titleOf(data.GetDialogName()));
    dialog.setObjectName(data.GetDialogName());
    auto* outer = new QHBoxLayout(&dialog);
    auto* form = new QFormLayout;
    outer->addLayout(form);
    auto commits = std::make_shared<std::vector<std::function<void()>>>();
    CPreviewPane* pane = nullptr;
    if (data.m_Preview && data.m_PreviewSource) {
        pane = new CPreviewPane(*data.m_PreviewSource, [&data](const CTavixImage& source) {
            return data.m_Preview(data, source);
        });
        outer->addWidget(pane);
    }
    // The fields are written into the data at every edit so that the
    // preview sees them; a cancelled dialog's data is thrown away anyway.
    auto changed = [commits, pane] {
        for (const auto& commit : *commits)
            commit();
        if (pane) pane->Refresh();
    };
    for (const CDialogField& field : data.GetFields()) {
        const char* label = *field.m_Label ? field.m_Label : field.m_Name;
        form->addRow(QString::fromUtf8(label) + ':', editorFor(field, *commits, changed));
    }
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, [&dialog, &data, changed] {
        changed();
        // Values the data refuses keep the dialog open with the reason.
        const std::string refusal = data.Validate();
        if (!refusal.empty()) {
            QMessageBox::warning(&dialog, "Zy", QString::fromStdString(refusal));
            return;
        }
        dialog.accept();
    });
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    form->addRow(buttons);
    if (pane) pane->Refresh();
}

bool RunFieldForm(CDialogData& data, QWidget* parent) {
    QDialog dialog(parent);
    BuildFieldForm(dialog, data);
    return dialog.exec() == QDialog::Accepted;
}
