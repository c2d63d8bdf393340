// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The title of a frame, elided at its left end.
#pragma once

#include <QLabel>

/// A label that never widens its frame: what does not fit is cut at the left, since the end of a
/// path is what matters.
class TitleLabel : public QLabel {
    Q_OBJECT
public:
    explicit TitleLabel(QWidget* parent = nullptr);

    void setFullText(const QString& text);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void _elide();

    QString _fullText;
    int _fullWidth = 0;
};
