// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Numbers and curves of a region.
#pragma once

#include "logic/analysis/roi/RoiStatistics.h"
#include "logic/records/StatisticsData.h"

#include <QWidget>

#include <vector>

class Plotter;
class QStackedLayout;
class ResultField;
class TarvikService;

/// A page for each kind of region. Until the numbers of a changed region arrive, it shows those
/// that were computed last. Thread: GUI only.
class RoiPlotter : public QWidget {
    Q_OBJECT
public:
    /// @param service  not owned; lives as long as this
    explicit RoiPlotter(TarvikService* service, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void showEvent(QShowEvent* event) override;

private slots:
    void _newStatisticsSlot(const StatisticsData& region);
    void _newImageSlot();
    /// Takes over the numbers that are there.
    void _takeNumbers();

private:
    /// A page of plots over numbers.
    void _addPage(const std::vector<Plotter*>& plots, ResultField* results);
    /// Four pages, of which the name of the size differs.
    ResultField* _makeResults(const QString& sizeName, double* size);
    ResultField* _makeCircleResults();
    void _plot();
    /// Once the page is seen, requests the numbers of a region that came from another view.
    void _requestNumbers();

    TarvikService* const _service;
    StatisticsData _data;
    RoiStatistics _statistics;
    bool _valid = false;  // the numbers are those of a region of the present kind
    QStackedLayout* const _pages;
    Plotter* const _linePlot;
    Plotter* const _boxPlotX;
    Plotter* const _boxPlotY;
    Plotter* const _circlePlot;
    Plotter* const _powderPlot;
};
