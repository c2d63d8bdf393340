// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A line of text over a widget, for what is going on there.
#pragma once

#include <QLabel>

/// Runs along the lower edge of its parent and lets the mouse through. Without text it is hidden; a
/// text that is too long loses its middle. Thread: GUI only.
class QuietLine : public QLabel {
    Q_OBJECT
public:
    explicit QuietLine(QWidget* parent);

public slots:
    void say(const QString& text);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void _place();

    QString _text;
};
