// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A failure told to the user.
#include "gui/kit/ErrorDialog.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

ErrorDialog::ErrorDialog(const char* message, QWidget* parent)
    : QDialog(parent)
    , _text(new QLabel(QString::fromUtf8(message)))
{
    setAttribute(Qt::WA_DeleteOnClose);
    // Messages hold file names, which are never markup.
    _text->setTextFormat(Qt::PlainText);
    _text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    _text->setWordWrap(true);
    _text->setMinimumWidth(400);
    auto* close = new QPushButton(QStringLiteral("Close"));
    close->setDefault(true);
    close->setMaximumWidth(50);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);

    auto* row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(close);
    row->addStretch();
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(_text);
    layout->addLayout(row);
}

void ErrorDialog::showMessage(const char* message)
{
    static QPointer<ErrorDialog> shown;
    if (shown && shown->isVisible())
        return shown->_add(QString::fromUtf8(message));
    shown = new ErrorDialog(message, QApplication::activeWindow());
    shown->exec();
}

void ErrorDialog::_add(const QString& message)
{
    constexpr qsizetype most = 20;  // the screen is not endless; the latest ones stay
    QStringList messages = _text->text().split(QLatin1Char('\n'));
    if (messages.contains(message))
        return;
    messages.append(message);
    _text->setText(messages.mid(std::max<qsizetype>(0, messages.size() - most)).join(u'\n'));
    adjustSize();
}
