// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A long text without blanks, such as a path.
#pragma once

#include <QLabel>
#include <QString>

/// Breaks its text wherever a line ends. A line may reach into the right margin by a letter.
/// Thread: GUI only.
class TextField : public QLabel {
    Q_OBJECT
public:
    explicit TextField(QWidget* parent = nullptr);

    void setText(const QString& text);
    const QString& fullText() const { return _text; }
    /// Of the text in one line.
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void _wrap();

    QString _text;
};
