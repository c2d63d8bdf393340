// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/panels/FastContrastControl.h"

#include "gui/kit/SvgIcon.h"
#include "gui/panels/ContrastDrag.h"
#include "gui/panels/LevelColours.h"
#include "logic/service/TarvikService.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr QSize HandleSize(11, 30);

}  // namespace

FastContrastControl::FastContrastControl(QWidget* parent, TarvikService* service)
    : DropDownWidget(parent)
    , _service(service)
{
    QPalette dark = palette();
    dark.setColor(QPalette::Window, QColor(60, 60, 60));
    setPalette(dark);
    setAutoFillBackground(true);
    setMinimumHeight(HandleSize.height());
    setGeometry(0, 0, sizeHint().width(), sizeHint().height());
    setIcon(svgIcon(QStringLiteral(":icons/levels.svg"), QSize(25, 15)));
    action()->setText(QStringLiteral("Contrast"));
    action()->setToolTip(QStringLiteral("Set image contrast. For a more sophisticated tool refer "
                                        "to Tools -> View -> Histogram."));
    connect(service, &TarvikService::newContrastSignal, this,
            &FastContrastControl::_setThresholdValues);
    connect(service, &TarvikService::newImageSignal, this,
            &FastContrastControl::_setThresholdValues);
}

void FastContrastControl::exec()
{
    _setThresholdValues();
    DropDownWidget::exec();
}

void FastContrastControl::_setThresholdValues()
{
    _contrast = _service->shownContrast();
    _scale = {_contrast.background, std::max(width(), 1)};
    if (const auto statistics = _service->statistics())
        _scale.unit = panels::intensityUnit(statistics->minimum, statistics->maximum,
                                            _service->floatingPixels());
    if (!_dragging)  // else the hand holds it
        _slider = _scale.pixelOf(_contrast.foreground);
    update();
}

void FastContrastControl::resizeEvent(QResizeEvent*) { _setThresholdValues(); }

void FastContrastControl::paintEvent(QPaintEvent*)
{
    if (!_service->imageLoaded())
        return;
    std::vector<double> intensities(static_cast<std::size_t>(width()));
    for (int x = 0; x < width(); ++x)
        intensities[std::size_t(x)] = _scale.valueAt(x);
    const std::vector<QRgb> colours = panels::levelColours(intensities, _contrast);
    QPainter painter(this);
    for (int x = 0; x < width(); ++x)
        painter.fillRect(x, 0, 1, height(), QColor::fromRgb(colours[std::size_t(x)]));
    static const QIcon handle = svgIcon(QStringLiteral(":icons/contrastslider.svg"), HandleSize);
    handle.paint(&painter, QRect(QPoint(_slider - HandleSize.width() / 2, 0), HandleSize));
}

void FastContrastControl::_drag(double x)
{
    if (!_service->imageLoaded())
        return;
    _dragging = true;
    _slider = std::clamp(int(std::lround(x)), 0, width());
    const double value = _scale.valueAt(_slider);
    // Counts are whole; other pixels may all lie between two whole numbers.
    _contrast.foreground = std::max(_service->floatingPixels() ? value : std::trunc(value),
                                    panels::leastForeground(_contrast, _scale.unit));
    _contrast.dragUpdate = true;
    _service->setContrastData(_contrast);
    update();
}

void FastContrastControl::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        _drag(event->position().x());
}

void FastContrastControl::mouseMoveEvent(QMouseEvent* event)
{
    if (_dragging && event->buttons().testFlag(Qt::LeftButton))
        _drag(event->position().x());
}

void FastContrastControl::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        _finished();
}

void FastContrastControl::hideEvent(QHideEvent*) { _finished(); }

void FastContrastControl::_finished()
{
    if (!std::exchange(_dragging, false))
        return;
    _contrast.dragUpdate = false;
    _service->setContrastData(_contrast);
}
