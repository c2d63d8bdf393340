// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/kit/DelayedLineEdit.h"

#include <utility>

DelayedLineEdit::DelayedLineEdit(int delay, QWidget* parent)
    : DelayedLineEdit(QString(), delay, parent)
{}

DelayedLineEdit::DelayedLineEdit(const QString& text, int delay, QWidget* parent)
    : QLineEdit(text, parent)
    , _delay(delay)
    , _timer(new QTimer(this))
    , _lastText(text)
{
    connect(this, &QLineEdit::textEdited, this, [this] {
        _typed = true;
        _timer->start(_delay);
    });
    // Follows textEdited() where the user has typed.
    connect(this, &QLineEdit::textChanged, this, [this](const QString& changed) {
        if (std::exchange(_typed, false))
            return;
        _timer->stop();
        _lastText = changed;
    });
    connect(_timer, &QTimer::timeout, this, &DelayedLineEdit::_report);
    connect(this, &QLineEdit::editingFinished, this, [this] {
        _timer->stop();
        if (QLineEdit::text() != _lastText)
            _report();
    });
}

void DelayedLineEdit::_report()
{
    _timer->stop();
    _lastText = text();
    emit delayedTextEdited(_lastText);
}
