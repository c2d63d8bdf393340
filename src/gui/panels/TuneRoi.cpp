// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/panels/TuneRoi.h"

#include "gui/panels/Pages.h"
#include "logic/service/TarvikService.h"

#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QStackedLayout>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double Degree = std::numbers::pi / 180;

/// The limits keep the hand within the image; what the view has set beyond them is shown as it is.
void showValue(QSpinBox& box, int value, int minimum, int maximum)
{
    const QSignalBlocker quiet(&box);
    box.setRange(std::min(minimum, value), std::max(maximum, value));
    box.setValue(value);
}

/// Not known yet is an empty box. A number that the box shows already stays as it is typed.
void showValue(QDoubleSpinBox& box, double value, double minimum, double maximum)
{
    const QSignalBlocker quiet(&box);
    if (std::isnan(value)) {
        box.setRange(minimum, maximum);
        box.clear();
        return;
    }
    box.setRange(std::min(minimum, value), std::max(maximum, value));
    const double step = std::pow(10, -box.decimals());
    if (std::abs(box.value() - value) > 0.51 * step || box.cleanText().isEmpty())
        box.setValue(value);
}

void addLabel(QGridLayout& grid, int row, int column, const char* text)
{
    grid.addWidget(new QLabel(QString::fromLatin1(text)), row, column);
}

/// Places a box and has the label before it name it; of two boxes after a label, the first.
void addBox(QGridLayout& grid, int row, int column, QWidget* box)
{
    grid.addWidget(box, row, column);
    if (const QLayoutItem* before = grid.itemAtPosition(row, column - 1))
        if (auto* label = qobject_cast<QLabel*>(before->widget()))
            label->setBuddy(box);
}

}  // namespace

TuneRoi::TuneRoi(TarvikService* service, QWidget* parent)
    : QWidget(parent)
    , _service(service)
    , _pages(new QStackedLayout(this))
{
    _pages->addWidget(new QWidget);
    _line = _addCornersPage();
    _frame = _addCornersPage();
    _addCirclePage();
    _addPowderPage();
    connect(service, &TarvikService::newStatisticsSignal, this, &TuneRoi::_newStatisticsSlot);
    _newStatisticsSlot(service->statisticsData());
}

QGridLayout* TuneRoi::_addPage()
{
    auto* page = new QWidget;
    _pages->addWidget(page);
    return new QGridLayout(page);
}

QSpinBox* TuneRoi::_box(QGridLayout& grid, int row, int column, IntSlot slot)
{
    auto* box = new QSpinBox;
    addBox(grid, row, column, box);
    connect(box, &QSpinBox::valueChanged, this, slot);
    return box;
}

QDoubleSpinBox* TuneRoi::_doubleBox(QGridLayout& grid, int row, int column, DoubleSlot slot)
{
    auto* box = new QDoubleSpinBox;
    addBox(grid, row, column, box);
    connect(box, &QDoubleSpinBox::valueChanged, this, slot);
    return box;
}

TuneRoi::Corners TuneRoi::_addCornersPage()
{
    QGridLayout& grid = *_addPage();
    addLabel(grid, 0, 0, "Begin (X,Y)");
    addLabel(grid, 1, 0, "End (X,Y)");
    return {_box(grid, 0, 1, &TuneRoi::_setBeginX), _box(grid, 0, 2, &TuneRoi::_setBeginY),
            _box(grid, 1, 1, &TuneRoi::_setEndX), _box(grid, 1, 2, &TuneRoi::_setEndY)};
}

void TuneRoi::_addCirclePage()
{
    QGridLayout& grid = *_addPage();
    addLabel(grid, 0, 0, "Centre X");
    _circleX = _box(grid, 0, 1, &TuneRoi::_setCircleX);
    addLabel(grid, 0, 2, "Centre Y");
    _circleY = _box(grid, 0, 3, &TuneRoi::_setCircleY);
    addLabel(grid, 1, 0, "Radius");
    _radius = _box(grid, 1, 1, &TuneRoi::_setRadius);
    addLabel(grid, 1, 2, "Theta");
    _theta = _doubleBox(grid, 1, 3, &TuneRoi::_setCircleTheta);
    _theta->setSuffix(QStringLiteral("°"));
    _theta->setRange(-180, 180);
}

void TuneRoi::_addPowderPage()
{
    QGridLayout& grid = *_addPage();
    // The labels are of unlike width: a row shares its width as it needs it.
    const auto cell = [&](int row, int column, const char* text) -> QGridLayout& {
        auto* inner = new QGridLayout;
        addLabel(*inner, 0, 0, text);
        inner->setColumnStretch(1, 1);
        grid.addLayout(inner, row, column);
        return *inner;
    };
    _innerRadius = _box(cell(0, 0, "Inner Radius"), 0, 1, &TuneRoi::_setInnerRadius);
    _outerRadius = _box(cell(0, 1, "Outer Radius"), 0, 1, &TuneRoi::_setOuterRadius);
    _powderX = _doubleBox(cell(1, 0, "Centre X"), 0, 1, &TuneRoi::_setPowderX);
    _powderY = _doubleBox(cell(1, 1, "Centre Y"), 0, 1, &TuneRoi::_setPowderY);
}

void TuneRoi::_newStatisticsSlot(const StatisticsData& region)
{
    const bool known = region.roiType >= 0 && region.roiType < _pages->count();
    showPage(*_pages, known ? region.roiType : 0);
    switch (region.roiType) {
    case StatisticsData::Line:
        return _show(_line, region);
    case StatisticsData::Box:
        return _show(_frame, region);
    case StatisticsData::Circle:
        return _showCircle(region);
    case StatisticsData::CentredCircle:
        return _showPowder(region);
    default:
        return;
    }
}

void TuneRoi::_show(const Corners& corners, const StatisticsData& region)
{
    const QSize image = _service->imageSize();
    showValue(*corners.beginX, region.beginX, 0, image.width());
    showValue(*corners.beginY, region.beginY, 0, image.height());
    showValue(*corners.endX, region.endX, 0, image.width());
    showValue(*corners.endY, region.endY, 0, image.height());
}

void TuneRoi::_showCircle(const StatisticsData& region)
{
    const QSize image = _service->imageSize();
    showValue(*_circleX, region.circleX, 0, image.width());
    showValue(*_circleY, region.circleY, 0, image.height());
    showValue(*_radius, region.radius, 0, std::max(image.width(), image.height()));
    showValue(*_theta, region.theta / Degree, -180, 180);
}

void TuneRoi::_showPowder(const StatisticsData& region)
{
    const QSize image = _service->imageSize();
    showValue(*_outerRadius, region.outerRadius, region.innerRadius,
              std::max(image.width(), image.height()));
    showValue(*_innerRadius, region.innerRadius, 0, region.outerRadius);
    showValue(*_powderX, region.powderX, 0, image.width());
    showValue(*_powderY, region.powderY, 0, image.height());
}

template <class Number>
void TuneRoi::_set(Number StatisticsData::*field, Number value)
{
    StatisticsData region = _service->statisticsData();
    region.*field = value;
    _service->setStatisticsData(region);
}

void TuneRoi::_setCircleTheta(double degrees) { _set(&StatisticsData::theta, degrees * Degree); }

void TuneRoi::_setInnerRadius(int radius)
{
    const QSignalBlocker quiet(_outerRadius);
    _outerRadius->setMinimum(radius);
    _set(&StatisticsData::innerRadius, radius);
}

void TuneRoi::_setOuterRadius(int radius)
{
    const QSignalBlocker quiet(_innerRadius);
    _innerRadius->setMaximum(radius);
    _set(&StatisticsData::outerRadius, radius);
}
