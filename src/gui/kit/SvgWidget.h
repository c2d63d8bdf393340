// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// An SVG picture as a widget.
#pragma once

#include <QWidget>

#include <memory>

class QSvgRenderer;

/// Shows a picture at a size of the picture's proportions, in the middle of the widget, or at its
/// left or top edge where it does not fit.
class SvgWidget : public QWidget {
    Q_OBJECT
public:
    explicit SvgWidget(const QString& file, QWidget* parent = nullptr);
    ~SvgWidget() override;

    QSize defaultSize() const;
    /// The other side follows by the proportions of the picture.
    void setWidth(int width);
    void setHeight(int height);

    QSize sizeHint() const override { return {_width, _height}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::unique_ptr<QSvgRenderer> _renderer;
    int _width = 0;
    int _height = 0;
};
