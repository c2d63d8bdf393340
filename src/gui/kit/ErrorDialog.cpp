// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A failure told to the user.
#include "gui/kit/ErrorDialog.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

ErrorDialog::ErrorDialog(const char* message, QWidget* parent)
    : QDialog(parent)
{
    setAttribute(Qt::WA_DeleteOnClose);
    auto* text = new QLabel(QString::fromUtf8(message));
    // Messages hold file names, which are never markup.
    text->setTextFormat(Qt::PlainText);
    text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    text->setWordWrap(true);
    text->setMinimumWidth(400);
    auto* close = new QPushButton(QStringLiteral("Close"));
    close->setDefault(true);
    close->setMaximumWidth(50);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);

    auto* row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(close);
    row->addStretch();
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(text);
    layout->addLayout(row);
}

void ErrorDialog::showMessage(const char* message)
{
    auto* dialog = new ErrorDialog(message, QApplication::activeWindow());
    dialog->exec();
}
