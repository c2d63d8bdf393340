// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/window/About.h"

#include "gui/kit/Resources.h"
#include "gui/window/BuildInfo.h"

#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QTextEdit>
#include <QVBoxLayout>

namespace {

QLabel* label(const QString& text, int points)
{
    auto* result = new QLabel(text);
    result->setFont(QFont(QApplication::font().family(), points));
    return result;
}

QPushButton* button(const QString& text)
{
    auto* result = new QPushButton(text);
    result->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    result->setAutoDefault(false);
    return result;
}

QString resourceText(const QString& name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

}  // namespace

About::About(QWidget* parent)
    : QDialog(parent)
{
    initResources();
    setWindowTitle(QStringLiteral("About TARVIK"));
    auto* layout = new QVBoxLayout(this);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addWidget(label(QStringLiteral("TARVIK Viewer"), 14));
    layout->addWidget(label("\nVersion: " + programVersion() + ' ' + buildDate(), 12));
    _addText(*layout, QStringLiteral(":/CHANGELOG"), QStringLiteral("Changelog"));
    _addText(*layout, QStringLiteral(":/license.txt"), QStringLiteral("License"));
    auto* close = button(QStringLiteral("Close"));
    close->setDefault(true);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    layout->addWidget(close);
}

void About::_addText(QVBoxLayout& layout, const QString& resource, const QString& name)
{
    auto* text = new QTextEdit;
    text->setReadOnly(true);
    text->setMinimumSize(500, 500);
    text->setLineWrapMode(QTextEdit::NoWrap);
    text->setPlainText(resourceText(resource));
    text->hide();
    QPushButton* toggle = button(name);
    toggle->setCheckable(true);
    connect(toggle, &QPushButton::toggled, text, &QWidget::setVisible);
    connect(toggle, &QPushButton::toggled, this, &About::_updateGeometry);
    layout.addWidget(text);
    layout.addWidget(toggle);
}

void About::_updateGeometry() { updateGeometry(); }
