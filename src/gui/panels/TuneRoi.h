// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The coordinates of a region as numbers.
#pragma once

#include "logic/records/StatisticsData.h"

#include <QWidget>

class QDoubleSpinBox;
class QGridLayout;
class QSpinBox;
class QStackedLayout;
class TarvikService;

/// Spin boxes for the region of the present kind, each for one field of the record. Thread: GUI
/// only.
class TuneRoi : public QWidget {
    Q_OBJECT
public:
    /// @param service  not owned; lives as long as this
    explicit TuneRoi(TarvikService* service, QWidget* parent = nullptr);

private slots:
    void _newStatisticsSlot(const StatisticsData& region);
    void _setBeginX(int x) { _set(&StatisticsData::beginX, x); }
    void _setBeginY(int y) { _set(&StatisticsData::beginY, y); }
    void _setEndX(int x) { _set(&StatisticsData::endX, x); }
    void _setEndY(int y) { _set(&StatisticsData::endY, y); }
    void _setCircleX(int x) { _set(&StatisticsData::circleX, x); }
    void _setCircleY(int y) { _set(&StatisticsData::circleY, y); }
    void _setRadius(int radius) { _set(&StatisticsData::radius, radius); }
    void _setCircleTheta(double degrees);
    void _setInnerRadius(int radius);
    void _setOuterRadius(int radius);
    void _setPowderX(double x) { _set(&StatisticsData::powderX, x); }
    void _setPowderY(double y) { _set(&StatisticsData::powderY, y); }

private:
    using IntSlot = void (TuneRoi::*)(int);
    using DoubleSlot = void (TuneRoi::*)(double);
    struct Corners {
        QSpinBox* beginX;
        QSpinBox* beginY;
        QSpinBox* endX;
        QSpinBox* endY;
    };

    QGridLayout* _addPage();
    QSpinBox* _box(QGridLayout& grid, int row, int column, IntSlot slot);
    QDoubleSpinBox* _doubleBox(QGridLayout& grid, int row, int column, DoubleSlot slot);
    Corners _addCornersPage();
    void _addCirclePage();
    void _addPowderPage();
    void _show(const Corners& corners, const StatisticsData& region);
    void _showCircle(const StatisticsData& region);
    void _showPowder(const StatisticsData& region);
    template <class Number>
    void _set(Number StatisticsData::*field, Number value);

    TarvikService* const _service;
    QStackedLayout* const _pages;  // by kind
    Corners _line{};
    Corners _frame{};
    QSpinBox* _circleX = nullptr;
    QSpinBox* _circleY = nullptr;
    QSpinBox* _radius = nullptr;
    QDoubleSpinBox* _theta = nullptr;
    QSpinBox* _innerRadius = nullptr;
    QSpinBox* _outerRadius = nullptr;
    QDoubleSpinBox* _powderX = nullptr;
    QDoubleSpinBox* _powderY = nullptr;
};
