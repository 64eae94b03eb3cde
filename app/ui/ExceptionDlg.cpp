#include "app/ui/ExceptionDlg.h"

#include <QDialogButtonBox>
#include <QFont>
#include <QLabel>
#include <QVBoxLayout>

namespace {

QLabel* addSection(QVBoxLayout* layout, const char* heading, const std::string& text) {
    auto* title = new QLabel(heading);
    QFont font("Arial");
    font.setBold(true);
    font.setPointSize(10);
    title->setFont(font);
    layout->addWidget(title);
    auto* body = new QLabel(QString::fromStdString(text));
    body->setWordWrap(true);
    body->setTextInteractionFlags(Qt::TextSelectableByMouse);
    body->setIndent(12);
    layout->addWidget(body);
    return body;
}

} // namespace

CExceptionDlg::CExceptionDlg(const CExceptionDlgTexts& texts, QWidget* parent) : QDialog(parent) {
    setWindowTitle(texts.m_Caption.empty() ? "Zy Program Error"
                                           : QString::fromStdString(texts.m_Caption));
    setModal(true);
    auto* layout = new QVBoxLayout(this);
    m_What = addSection(layout, "What:", texts.m_What);
    m_Scope = addSection(layout, "Scope:", texts.m_Scope);
    m_Action = addSection(layout, "Action:", texts.m_Action);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    layout->addWidget(buttons);
    setMinimumWidth(420);
}

QString CExceptionDlg::WhatText() const {
    return m_What->text();
}

QString CExceptionDlg::ScopeText() const {
    return m_Scope->text();
}

QString CExceptionDlg::ActionText() const {
    return m_Action->text();
}
