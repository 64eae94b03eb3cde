#include "app/ui/FieldFormDlg.h"

#include "app/doc/UserInterface.h"

#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QSpinBox>

#include <cstring>
#include <functional>
#include <vector>

namespace {

// The window titles of the dialogs shown as forms.
const char* titleOf(const char* dialogName) {
    static const struct {
        const char* name;
        const char* title;
    } kTitles[] = {{"CInsertDlg", "New Image"},
                   {"CBlendMethodDlg", "Blend Images"},
                   {"CPasteSpecialDlg", "Paste Special"}};
    for (const auto& entry : kTitles)
        if (strcmp(entry.name, dialogName) == 0) return entry.title;
    return dialogName;
}

// The editor of one field and how its value goes back.
QWidget* editorFor(const CDialogField& field, std::vector<std::function<void()>>& commits) {
    switch (field.m_Kind) {
    case CDialogField::Integer: {
        auto* box = new QSpinBox;
        box->setRange(static_cast<int>(field.m_Min), static_cast<int>(field.m_Max));
        box->setValue(*static_cast<int*>(field.m_Value));
        commits.push_back([box, field] { *static_cast<int*>(field.m_Value) = box->value(); });
        return box;
    }
    case CDialogField::Real: {
        auto* box = new QDoubleSpinBox;
        box->setDecimals(3);
        box->setRange(field.m_Min, field.m_Max);
        box->setValue(*static_cast<double*>(field.m_Value));
        commits.push_back([box, field] { *static_cast<double*>(field.m_Value) = box->value(); });
        return box;
    }
    case CDialogField::Choice: {
        auto* list = new QComboBox;
        list->addItems(QString::fromUtf8(field.m_Choices).split(','));
        list->setCurrentIndex(*static_cast<int*>(field.m_Value));
        commits.push_back(
            [list, field] { *static_cast<int*>(field.m_Value) = list->currentIndex(); });
        return list;
    }
    case CDialogField::Text: {
        auto* line =
            new QLineEdit(QString::fromStdString(*static_cast<std::string*>(field.m_Value)));
        commits.push_back([line, field] {
            *static_cast<std::string*>(field.m_Value) = line->text().toStdString();
        });
        return line;
    }
    }
    return nullptr;
}

} // namespace

bool RunFieldForm(CDialogData& data, QWidget* parent) {
    QDialog dialog(parent);
    dialog.setWindowTitle(titleOf(data.GetDialogName()));
    dialog.setObjectName(data.GetDialogName());
    auto* form = new QFormLayout(&dialog);
    std::vector<std::function<void()>> commits;
    for (const CDialogField& field : data.GetFields()) {
        const char* label = *field.m_Label ? field.m_Label : field.m_Name;
        form->addRow(QString::fromUtf8(label) + ':', editorFor(field, commits));
    }
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    form->addRow(buttons);
    if (dialog.exec() != QDialog::Accepted) return false;
    for (const auto& commit : commits)
        commit();
    return true;
}
