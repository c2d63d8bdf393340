// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/panels/RoiPlotter.h"

#include "gui/panels/Pages.h"
#include "gui/panels/ResultField.h"
#include "gui/plot/Plotter.h"
#include "logic/service/TarvikService.h"

#include <QStackedLayout>
#include <QVBoxLayout>

#include <algorithm>

namespace {

Plotter* makePlot() { return new Plotter(330, 200, 20); }

QString label(const std::vector<std::string>& labels, std::size_t index)
{
    return index < labels.size() ? QString::fromStdString(labels[index]) : QString();
}

void plotCurve(Plotter& plot, const std::vector<std::vector<double>>& curve,
               const std::vector<std::string>& labels, int padding)
{
    plot.setPlot(curve, padding, padding, label(labels, 0), label(labels, 1));
}

}  // namespace

RoiPlotter::RoiPlotter(TarvikService* service, QWidget* parent)
    : QWidget(parent)
    , _service(service)
    , _pages(new QStackedLayout(this))
    , _linePlot(makePlot())
    , _boxPlotX(makePlot())
    , _boxPlotY(makePlot())
    , _circlePlot(makePlot())
    , _powderPlot(makePlot())
{
    setToolTip(QStringLiteral("Dragging outside frame displays plot in separate window"));
    _pages->setContentsMargins(0, 0, 0, 0);
    _pages->setSpacing(0);
    _pages->addWidget(new QWidget);
    _addPage({_linePlot}, _makeResults(QStringLiteral("Length"), &_statistics.length));
    _addPage({_boxPlotX, _boxPlotY}, _makeResults(QStringLiteral("Area"), &_statistics.area));
    _addPage({_circlePlot}, _makeCircleResults());
    _addPage({_powderPlot}, _makeResults(QStringLiteral("Area"), &_statistics.area));
    connect(service, &TarvikService::newStatisticsSignal, this, &RoiPlotter::_newStatisticsSlot);
    connect(service, &TarvikService::newImageSignal, this, &RoiPlotter::_newImageSlot);
    connect(service, &TarvikService::regionComputedSignal, this, &RoiPlotter::_takeNumbers);
    _newStatisticsSlot(service->statisticsData());
}

void RoiPlotter::_addPage(const std::vector<Plotter*>& plots, ResultField* results)
{
    auto* page = new QWidget;
    auto* rows = new QVBoxLayout(page);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    for (Plotter* plot : plots)
        rows->addWidget(plot, 1);
    rows->addWidget(results);
    _pages->addWidget(page);
}

ResultField* RoiPlotter::_makeResults(const QString& sizeName, double* size)
{
    auto* results = new ResultField;
    const auto add = [&](const QString& name, double* value, int column, int row) {
        results->addVar<double>(name, _valid, value, nullptr, column, row);
    };
    add(QStringLiteral("Integral"), &_statistics.integral, 0, 0);
    add(QStringLiteral("Mean"), &_statistics.mean, 0, 1);
    add(QStringLiteral("Sigma"), &_statistics.sigma, 0, 2);
    add(sizeName, size, 1, 0);
    add(QStringLiteral("Min"), &_statistics.minimum, 1, 1);
    add(QStringLiteral("Max"), &_statistics.maximum, 1, 2);
    return results;
}

ResultField* RoiPlotter::_makeCircleResults()
{
    auto* results = new ResultField;
    RoiStatistics& from = _statistics;
    const auto add = [&](const QString& name, double* value, double* error, int column, int row) {
        results->addVar<double>(name, _valid, value, error, column, row);
    };
    add(QStringLiteral("Intensity"), &from.intensity, &from.intensitySigma, 0, 0);
    add(QStringLiteral("Integral"), &from.integral, nullptr, 0, 1);
    add(QStringLiteral("BG"), &from.backgroundMean, &from.backgroundSigma, 1, 1);
    add(QStringLiteral("Mean"), &from.mean, nullptr, 0, 2);
    add(QStringLiteral("Sigma"), &from.sigma, nullptr, 1, 2);
    add(QStringLiteral("Area"), &from.area, nullptr, 0, 3);
    add(QStringLiteral("Min"), &from.minimum, nullptr, 0, 4);
    add(QStringLiteral("Max"), &from.maximum, nullptr, 1, 4);
    results->addVar(QStringLiteral("Centroid"), _valid, {&from.centroidX, &from.centroidY},
                    {nullptr, nullptr}, 5, 0, 5);
    return results;
}

QSize RoiPlotter::sizeHint() const { return _pages->sizeHint(); }

void RoiPlotter::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    _requestNumbers();
}

void RoiPlotter::_newStatisticsSlot(const StatisticsData& region)
{
    const bool stays = _valid && region.roiActive && region.roiType == _data.roiType;
    _data = region;
    const bool known = region.roiType >= 0 && region.roiType < _pages->count();
    showPage(*_pages, known ? region.roiType : 0);
    _requestNumbers();
    if (!stays || !_service->regionPending())
        _takeNumbers();
}

void RoiPlotter::_newImageSlot() { update(); }

void RoiPlotter::_takeNumbers()
{
    for (Plotter* plot : {_linePlot, _boxPlotX, _boxPlotY, _circlePlot, _powderPlot})
        plot->clearPlot();
    const auto& [region, numbers] = _service->computedRegion();
    _valid = _data.roiActive && region.roiActive && region.roiType == _data.roiType;
    if (_valid) {
        _statistics = numbers;
        _plot();
    }
    if (QWidget* const page = _pages->currentWidget())
        for (auto* results : page->findChildren<ResultField*>())
            results->update();
}

void RoiPlotter::_plot()
{
    const RoiStatistics& from = _statistics;
    switch (_data.roiType) {
    case StatisticsData::Line:
        for (std::size_t i = 0;
             i + 1 < from.reflectionPositions.size() && i < from.lineSpotsString.size(); ++i)
            _linePlot->addLeftRightArrow(from.reflectionPositions[i],
                                         from.reflectionPositions[i + 1],
                                         label(from.lineSpotsString, i));
        return plotCurve(*_linePlot, from.curve, from.curveLabels, 10);
    case StatisticsData::Box:
        plotCurve(*_boxPlotX, from.curve, from.curveLabels, 10);
        return plotCurve(*_boxPlotY, from.secondCurve, from.secondCurveLabels, 10);
    case StatisticsData::Circle:
        return plotCurve(*_circlePlot, from.curve, from.curveLabels, 0);
    case StatisticsData::CentredCircle:
        if (_data.centredCircleDefined())
            plotCurve(*_powderPlot, from.curve, from.curveLabels, 0);
        return;
    default:
        return;
    }
}

void RoiPlotter::_requestNumbers()
{
    if (isVisible() && _service->imageLoaded() && !_service->regionPending() &&
        _service->computedRegion().region != _service->statisticsData())
        _service->setStatisticsData(_service->statisticsData());
}
