// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/regionseries/SeriesCurve.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <utility>

namespace {

constexpr std::chrono::milliseconds LeastPause{100};
/// Long curves are drawn less often, as that takes longer.
constexpr std::size_t PointsPerMillisecond = 200;

bool byNumber(const SeriesPoint& one, const SeriesPoint& other)
{
    return one.number < other.number;
}

}  // namespace

SeriesCurve::SeriesCurve(QObject* parent)
    : QObject(parent)
{
    _timer.setSingleShot(true);
    connect(&_timer, &QTimer::timeout, this, &SeriesCurve::_take);
}

SeriesCurve::~SeriesCurve() = default;

void SeriesCurve::start(const std::string& path, const StatisticsData& region)
{
    _forget();
    _path = path;
    _region = region;
    const auto changed = [this] {
        QMetaObject::invokeMethod(
            &_timer,
            [this] {
                const std::chrono::milliseconds pause(_points.size() / PointsPerMillisecond);
                _timer.start(std::max(LeastPause, pause));
            },
            Qt::QueuedConnection);
    };
    _work = std::make_unique<RegionSeries>(RegionSeries::Order{path, region}, changed);
    emit changedSignal();
}

void SeriesCurve::stop()
{
    if (!_work)
        return;
    _take();
    _work.reset();
    _timer.stop();
    emit changedSignal();
}

void SeriesCurve::clear()
{
    _forget();
    emit changedSignal();
}

void SeriesCurve::_forget()
{
    _work.reset();
    _timer.stop();
    _path.clear();
    _points.clear();
    _state = {};
}

void SeriesCurve::_take()
{
    if (!_work)
        return;
    _state = _work->take();
    auto added = std::exchange(_state.points, {});
    std::sort(added.begin(), added.end(), byNumber);
    const auto middle = static_cast<std::ptrdiff_t>(_points.size());
    _points.insert(_points.end(), added.begin(), added.end());
    std::inplace_merge(_points.begin(), _points.begin() + middle, _points.end(), byNumber);
    if (_state.finished)
        _work.reset();
    emit changedSignal();
}
