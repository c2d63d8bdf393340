// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/kit/SvgWidget.h"

#include "gui/kit/Resources.h"

#include <QPainter>
#include <QSvgRenderer>

#include <algorithm>

namespace {

/// One side of a picture computed from the other, in its default proportions.
int proportional(int side, int otherDefault, int sideDefault)
{
    return sideDefault > 0 ? static_cast<int>(double(otherDefault * side) / sideDefault) : 0;
}

}  // namespace

SvgWidget::SvgWidget(const QString& file, QWidget* parent)
    : QWidget(parent)
{
    initResources();
    _renderer = std::make_unique<QSvgRenderer>(file);
    _width = defaultSize().width();
    _height = defaultSize().height();
}

SvgWidget::~SvgWidget() = default;

QSize SvgWidget::defaultSize() const { return _renderer->defaultSize(); }

void SvgWidget::setWidth(int width)
{
    _width = width;
    _height = proportional(width, defaultSize().height(), defaultSize().width());
    updateGeometry();
}

void SvgWidget::setHeight(int height)
{
    _height = height;
    _width = proportional(height, defaultSize().width(), defaultSize().height());
    updateGeometry();
}

void SvgWidget::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const double left = std::max((width() - _width) / 2, 0);
    const double top = std::max((height() - _height) / 2, 0);
    _renderer->render(&painter, QRectF(left, top, _width, _height));
}
