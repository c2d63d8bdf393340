// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The curve of a region over a series, as it grows.
#pragma once

#include "logic/regionseries/RegionSeries.h"

#include <QObject>
#include <QTimer>

#include <memory>
#include <string>
#include <vector>

/// Collects the points of one region at a time. Destroyed, it ends the work without waiting.
/// Thread: GUI only.
class SeriesCurve : public QObject {
    Q_OBJECT
public:
    using Points = std::vector<SeriesPoint>;

    explicit SeriesCurve(QObject* parent = nullptr);
    ~SeriesCurve() override;

    /// Forgets the curve and begins another one.
    void start(const std::string& path, const StatisticsData& region);
    /// Ends the work; what there is stays.
    void stop();
    /// Ends the work and forgets the curve.
    void clear();

    bool running() const { return _work != nullptr; }
    /// True if images of the series are missing because of stop() or an error.
    bool partial() const { return !running() && _state.done < _state.images; }
    /// By rising numbers.
    const Points& points() const { return _points; }
    /// What was asked for.
    const std::string& path() const { return _path; }
    const StatisticsData& region() const { return _region; }
    /// All but the points.
    const RegionSeries::News& state() const { return _state; }

signals:
    /// The work has begun or ended, or points have come: ten times a second at most.
    void changedSignal();

private:
    void _forget();
    void _take();

    std::string _path;
    StatisticsData _region;
    Points _points;
    RegionSeries::News _state;
    QTimer _timer;
    std::unique_ptr<RegionSeries> _work;  // last: its workers call this object
};
