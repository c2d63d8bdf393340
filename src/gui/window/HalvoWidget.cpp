// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/window/HalvoWidget.h"

#include <QGridLayout>
#include <QLabel>
#include <QUrl>

#include <cmath>

namespace {

QLineEdit* addRow(QGridLayout* grid, const QString& name, const QString& tip)
{
    const int row = grid->rowCount();
    auto* label = new QLabel(name);
    auto* field = new QLineEdit;
    label->setBuddy(field);
    label->setToolTip(tip);
    field->setToolTip(tip);
    grid->addWidget(label, row, 0);
    grid->addWidget(field, row, 1);
    return field;
}

}  // namespace

HalvoWidget::HalvoWidget(QWidget* parent)
    : QWidget(parent)
{
    auto* grid = new QGridLayout(this);
    _hostField = addRow(grid, QStringLiteral("Host"), {});
    _portField = addRow(grid, QStringLiteral("Port"), {});
    _minPauseField =
        addRow(grid, QStringLiteral("Min Pause (s)"),
               QStringLiteral("Minimum pause time between successive images in seconds"));
    for (QLineEdit* field : {_hostField, _portField}) {
        // Black and red need a light ground, whatever the palette of the program.
        QPalette colours = field->palette();
        colours.setColor(QPalette::Base, Qt::white);
        field->setPalette(colours);
    }
    setFocusProxy(_hostField);
    connect(_hostField, &QLineEdit::textEdited, this, &HalvoWidget::_setHost);
    connect(_portField, &QLineEdit::textEdited, this, &HalvoWidget::_setPort);
    connect(_minPauseField, &QLineEdit::textEdited, this, &HalvoWidget::_setMinPause);
}

void HalvoWidget::setHost(const QString& host, int port, double minPause)
{
    if (host != _host)
        _hostField->setText(host);
    if (port != _port)
        _portField->setText(QStringLiteral("%1").arg(port));
    if (minPause != _minPause)
        _minPauseField->setText(QStringLiteral("%1").arg(minPause, 0, 'g'));
    _host = host;
    _port = port;
    _minPause = minPause;
    _colour(urlValid(_host, _port));
}

bool HalvoWidget::urlValid(const QString& host, int port)
{
    if (port < 0)
        return false;
    const QString scheme = QStringLiteral("http://");
    const QString address = QStringLiteral("%1:%2").arg(host).arg(port);
    return QUrl(address.startsWith(scheme, Qt::CaseInsensitive) ? address : scheme + address)
        .isValid();
}

void HalvoWidget::_setHost(const QString& text)
{
    _host = text;
    _update();
}

void HalvoWidget::_setPort(const QString& text)
{
    bool number = false;
    const int port = text.toInt(&number);
    _port = number ? port : -1;
    _update();
}

void HalvoWidget::_setMinPause(const QString& text)
{
    bool number = false;
    const double pause = text.toDouble(&number);
    _minPause = number && pause >= 0 && std::isfinite(pause) ? pause : 0;
    _update();
}

void HalvoWidget::_update()
{
    const bool valid = urlValid(_host, _port);
    _colour(valid);
    if (valid)
        emit newHost(_host, _port, _minPause);
}

void HalvoWidget::_colour(bool valid)
{
    for (QLineEdit* field : {_hostField, _portField}) {
        QPalette colours = field->palette();
        colours.setColor(QPalette::Text, valid ? Qt::black : Qt::red);
        field->setPalette(colours);
    }
}
