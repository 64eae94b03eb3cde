#include "app/ui/SelectWildcardDlg.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

CSelectWildcardDlg::CSelectWildcardDlg(const QString& expression, int mode, QWidget* parent)
    : QDialog(parent) {
    setWindowTitle("Select");
    auto* layout = new QVBoxLayout(this);
    auto* form = new QFormLayout;
    m_Expression = new QLineEdit(expression);
    m_Expression->setMaxLength(kMaxExpression);
    m_Expression->setPlaceholderText("e.g. 0..10+=2, !3, sprite*");
    form->addRow("&Expression:", m_Expression);
    m_Mode = new QComboBox;
    m_Mode->addItems({"New selection", "Add to selection", "Remove from selection"});
    m_Mode->setCurrentIndex(std::clamp(mode, 0, 2));
    form->addRow("&Mode:", m_Mode);
    layout->addLayout(form);
    auto* help = new QLabel("Indices and names separated by commas: 3, 2..5, 0..10+=2, "
                            "!2 (all but 2), img#, img2..img10.");
    help->setWordWrap(true);
    layout->addWidget(help);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
}

QString CSelectWildcardDlg::Expression() const {
    return m_Expression->text();
}

int CSelectWildcardDlg::Mode() const {
    return m_Mode->currentIndex();
}

bool RunSelectWildcardDlg(CSelectWildcardData& data, QWidget* parent) {
    CSelectWildcardDlg dialog(QString::fromStdString(data.m_Expression), data.m_Mode, parent);
    if (dialog.exec() != QDialog::Accepted) return false;
    data.m_Expression = dialog.Expression().toStdString();
    data.m_Mode = dialog.Mode();
    return true;
}
