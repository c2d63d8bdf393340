// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The region over the series of a view.
#pragma once

#include "logic/records/StatisticsData.h"
#include "logic/regionseries/SeriesCurve.h"

#include <QWidget>

class FloatingWidget;
class Plotter;
class QComboBox;
class QLabel;
class QProgressBar;
class QPushButton;
class TarvikService;

/// Plots a number of the region against the image number, on request. Ends when the region or the
/// series changes. Thread: GUI only; nothing waits for an image.
class RoiSeries : public QWidget {
    Q_OBJECT
public:
    /// @param service  not owned; lives as long as this
    explicit RoiSeries(TarvikService* service, QWidget* parent = nullptr);

    const SeriesCurve& curve() const { return _curve; }

signals:
    /// The plot has been opened on request, or has come home from its window.
    void plotOpenedSignal(QWidget* plot);

private slots:
    void _newStatisticsSlot(const StatisticsData& region);
    void _newImageSlot();
    void _startOrStop();
    void _curveChanged();

private:
    void _createLayout();
    SeriesPoint::Quantity _quantity() const;
    /// Offers what a kind of region has.
    void _offerQuantities(int roiType);
    void _plot();
    void _showState();
    QString _stateText() const;
    void _dropIfOutdated();

    TarvikService* const _service;
    QComboBox* const _choice;
    QPushButton* const _startButton;
    QPushButton* const _saveButton;
    QProgressBar* const _progress;
    QLabel* const _state;
    Plotter* const _plotter;
    FloatingWidget* const _floating;
    SeriesCurve _curve;
};
