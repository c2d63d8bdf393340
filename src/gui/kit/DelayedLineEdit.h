// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A line edit that reports after a pause.
#pragma once

#include <QLineEdit>
#include <QTimer>

/// Reports what the user typed once per pause and when the field is left, each change once. A text
/// that the program sets is not reported.
class DelayedLineEdit : public QLineEdit {
    Q_OBJECT
public:
    /// @param delay  milliseconds without a key after which a change is reported
    explicit DelayedLineEdit(int delay, QWidget* parent = nullptr);
    DelayedLineEdit(const QString& text, int delay, QWidget* parent = nullptr);

    /// True while something that was typed has not been reported.
    bool pending() const { return _timer->isActive(); }

signals:
    void delayedTextEdited(const QString& text);

private:
    void _report();

    int _delay;
    QTimer* _timer;
    QString _lastText;
    bool _typed = false;
};
