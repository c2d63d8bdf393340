// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A sentence over a view that disappears by itself.
#pragma once

#include <QLabel>
#include <QTimer>

#include <chrono>

/// Covers the upper edge of its parent, as wide as that and as high as its text, while it has
/// a text. Takes neither focus nor mouse. Thread: GUI only.
class NoticeLine : public QLabel {
    Q_OBJECT
public:
    static constexpr std::chrono::milliseconds usualTime{6000};

    explicit NoticeLine(QWidget* parent, std::chrono::milliseconds time = usualTime);
    /// The last text.
    const QString& message() const { return _message; }

public slots:
    /// Shows a plain text for a while, replacing the previous one.
    void say(const QString& message);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void _place();

    QString _message;
    QTimer _end;
};
