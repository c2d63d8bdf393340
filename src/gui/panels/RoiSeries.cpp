// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/panels/RoiSeries.h"

#include "gui/kit/FloatingWidget.h"
#include "gui/kit/ToolTipText.h"
#include "gui/panels/SeriesRows.h"
#include "gui/plot/Plotter.h"
#include "logic/regionseries/SeriesReport.h"
#include "logic/service/TarvikService.h"
#include "logic/support/GlobalStyle.h"

#include <QComboBox>
#include <QFile>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <algorithm>

namespace {

using Quantity = SeriesPoint::Quantity;

/// Rows that are drawn at most: some for each pixel of a large screen.
constexpr std::size_t MostRows = 20'000;

QString joined(const std::vector<std::string>& lines)
{
    QStringList texts;
    for (const std::string& line : lines)
        texts << QString::fromStdString(line);
    return texts.join('\n');
}

}  // namespace

RoiSeries::RoiSeries(TarvikService* service, QWidget* parent)
    : QWidget(parent)
    , _service(service)
    , _choice(new QComboBox)
    , _startButton(new QPushButton)
    , _saveButton(new QPushButton(QStringLiteral("Save Curve")))
    , _progress(new QProgressBar)
    , _state(new QLabel)
    , _plotter(new Plotter(330, 200, 20))
    , _floating(new FloatingWidget(_plotter, QStringLiteral("TARVIK ROI Series"),
                                   GLOBALSTYLE::sidebarColor))
{
    _createLayout();
    _plotter->setWholeX(true);
    _plotter->setToolTip(QStringLiteral("Click goes to the image. Dragging outside frame displays "
                                        "plot in separate window"));
    _plotter->setSavedText([this] {
        return seriesreport::text(QFile::decodeName(QByteArray::fromStdString(_curve.path())),
                                  _curve.region(), _curve.points(), _curve.state());
    });
    connect(_plotter, &Plotter::clickedSignal, this,
            [this](double number) { _service->openImage(static_cast<int>(number)); });
    connect(_floating, &FloatingWidget::released, this, [this](bool out) {
        if (!out)
            emit plotOpenedSignal(_floating);
    });
    connect(_choice, &QComboBox::currentIndexChanged, this, &RoiSeries::_plot);
    connect(_startButton, &QPushButton::clicked, this, &RoiSeries::_startOrStop);
    connect(_saveButton, &QPushButton::clicked, _plotter, &Plotter::save);
    connect(&_curve, &SeriesCurve::changedSignal, this, &RoiSeries::_curveChanged);
    connect(service, &TarvikService::newStatisticsSignal, this, &RoiSeries::_newStatisticsSlot);
    connect(service, &TarvikService::newImageSignal, this, &RoiSeries::_newImageSlot);
    _newStatisticsSlot(service->statisticsData());
}

void RoiSeries::_createLayout()
{
    _choice->setToolTip(QStringLiteral("What is plotted against the image number"));
    _startButton->setToolTip(
        QStringLiteral("Compute the region in all images of the series, in the background"));
    _saveButton->setToolTip(
        QStringLiteral("Write the curve over the series as text or as a picture"));
    _progress->setFormat(QStringLiteral("%v of %m"));
    _state->setWordWrap(true);
    // Messages name files, whose names may look like markup.
    _state->setTextFormat(Qt::PlainText);
    auto* buttons = new QHBoxLayout;
    buttons->setContentsMargins(9, 0, 9, 0);
    buttons->addWidget(_choice);
    buttons->addWidget(_startButton);
    buttons->addWidget(_saveButton);
    buttons->addStretch();
    auto* state = new QVBoxLayout;
    state->setContentsMargins(9, 0, 9, 0);
    state->addWidget(_progress);
    state->addWidget(_state);
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 9);
    rows->addLayout(buttons);
    rows->addLayout(state);
    rows->addWidget(_floating);
}

Quantity RoiSeries::_quantity() const
{
    return static_cast<Quantity>(_choice->currentData().toInt());
}

void RoiSeries::_offerQuantities(int roiType)
{
    const int wanted = roiType == StatisticsData::Circle ? 4 : 3;
    if (_choice->count() == wanted)
        return;
    const QSignalBlocker quiet(_choice);
    const int current = std::max(_choice->currentIndex(), 0);
    _choice->clear();
    const auto add = [this](const QString& text, Quantity quantity) {
        _choice->addItem(text, static_cast<int>(quantity));
    };
    add(QStringLiteral("Mean"), Quantity::Mean);
    add(QStringLiteral("Sum"), Quantity::Sum);
    add(QStringLiteral("Maximum"), Quantity::Maximum);
    if (wanted == 4)
        add(QStringLiteral("Intensity"), Quantity::Intensity);
    _choice->setCurrentIndex(current < wanted ? current : 0);
}

void RoiSeries::_newStatisticsSlot(const StatisticsData& region)
{
    _offerQuantities(region.roiType);
    setVisible(region.roiType != StatisticsData::None);
    _dropIfOutdated();
    _showState();
}

void RoiSeries::_newImageSlot()
{
    _dropIfOutdated();
    _showState();
    _plotter->setMarker(_service->imageIndex());
}

void RoiSeries::_dropIfOutdated()
{
    if (_curve.path().empty())
        return;
    const StatisticsData region = _service->statisticsData();
    if (!region.roiActive || region != _curve.region() ||
        QFile::encodeName(_service->seriesPath()).toStdString() != _curve.path())
        _curve.clear();
}

void RoiSeries::_startOrStop()
{
    if (_curve.running())
        return _curve.stop();
    _plotter->setMarker(_service->imageIndex());
    _curve.start(QFile::encodeName(_service->seriesPath()).toStdString(),
                 _service->statisticsData());
    emit plotOpenedSignal(_floating);
}

void RoiSeries::_curveChanged()
{
    _plot();
    _showState();
}

void RoiSeries::_plot()
{
    if (_curve.points().empty())
        return _plotter->clearPlot();
    _plotter->setPlot(seriesRows(_curve.points(), _curve.state(), _quantity(), MostRows), 10, 10,
                      QStringLiteral("Image"), _choice->currentText());
}

void RoiSeries::_showState()
{
    const bool running = _curve.running();
    const RegionSeries::News& state = _curve.state();
    _startButton->setText(running ? QStringLiteral("Stop") : QStringLiteral("Plot Series"));
    _startButton->setEnabled(
        running || (_service->statisticsData().roiActive && !_service->seriesPath().isEmpty()));
    _saveButton->setEnabled(!_curve.points().empty());
    _progress->setVisible(running);
    _progress->setRange(0, state.images);  // 0 before the series is open: busy
    _progress->setValue(state.done);
    const QString text = running ? QString() : _stateText();
    _state->setVisible(!text.isEmpty());
    _state->setText(text);
    _state->setToolTip(toolTipText(joined(state.failures)));
    _floating->setVisible(running || !_curve.points().empty());
}

QString RoiSeries::_stateText() const
{
    const RegionSeries::News& state = _curve.state();
    QStringList texts;
    if (!state.error.empty())
        texts << QString::fromStdString(state.error);
    if (_curve.partial())
        texts << QStringLiteral("Ended after %1 of %2 images").arg(state.done).arg(state.images);
    const auto& points = _curve.points();
    const auto without = std::count_if(points.begin(), points.end(),
                                       [](const SeriesPoint& point) { return !point.good(); });
    if (without != 0)
        texts << QStringLiteral("%1 of %2 images without numbers").arg(without).arg(state.done);
    return texts.join('\n');
}
