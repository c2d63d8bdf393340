// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A text over a widget, for what is going on there.
#pragma once

#include <QLabel>
#include <QTimer>

#include <chrono>

/// Lies along the upper or lower edge of its parent, as high as its text, while it has something to
/// say. Takes neither focus nor mouse. Thread: GUI only.
class TextLine : public QLabel {
    Q_OBJECT
public:
    /// For a sentence that is to be read once.
    static constexpr std::chrono::milliseconds NoticeTime{6000};

    /// @param edge  Qt::TopEdge or Qt::BottomEdge
    /// @param time  a text goes by itself after this; 0 for one that stays
    TextLine(QWidget* parent, Qt::Edge edge, std::chrono::milliseconds time = {});
    /// What was said last.
    const QString& message() const { return _message; }

public slots:
    /// Shows a plain text in the place of the one before; an empty one ends it.
    void say(const QString& message);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void _place();

    const Qt::Edge _edge;
    QString _message;
    QTimer _end;
};
