// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Which kind of region is drawn.
#pragma once

#include "logic/records/StatisticsData.h"

#include <QWidget>

#include <array>

class QCheckBox;
class TarvikService;

/// One box for each kind of region, of which at most one is checked. Thread: GUI only.
class RoiSelector : public QWidget {
    Q_OBJECT
public:
    /// @param service  not owned; lives as long as this
    explicit RoiSelector(TarvikService* service, QWidget* parent = nullptr);

signals:
    /// The user has chosen a kind, or none.
    void chosenSignal();

private slots:
    void _newImageSlot();
    void _newStatisticsSlot(const StatisticsData& region);
    void _toggledLineSlot(bool on) { _toggled(StatisticsData::Line, on); }
    void _toggledBoxSlot(bool on) { _toggled(StatisticsData::Box, on); }
    void _toggledCircleSlot(bool on) { _toggled(StatisticsData::Circle, on); }
    void _toggledCentredCircleSlot(bool on) { _toggled(StatisticsData::CentredCircle, on); }

private:
    void _toggled(int kind, bool on);

    TarvikService* const _service;
    std::array<QCheckBox*, 5> _boxes{};  // by kind; none for no region
    int _kind = StatisticsData::None;
};
