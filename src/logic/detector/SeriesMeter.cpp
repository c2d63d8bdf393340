// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/detector/SeriesMeter.h"

namespace {

using namespace std::chrono_literals;

/// The rate is that of so long.
constexpr auto RatePeriod = 3s;
constexpr auto SamplePeriod = 100ms;

}  // namespace

SeriesProgress SeriesMeter::progress() const
{
    const std::lock_guard lock(_mutex);
    SeriesProgress progress = _counts;
    progress.rate = _rate();
    if (_diskFree && progress.written > 0 && progress.rate > 0)
        progress.diskSeconds = double(*_diskFree) /
                               (progress.rate * double(progress.bytes) / double(progress.written));
    return progress;
}

double SeriesMeter::_rate() const
{
    const auto now = Clock::now();
    auto first = _samples.begin();
    while (first != _samples.end() && now - first->time > RatePeriod)
        ++first;
    if (first == _samples.end())
        return 0;
    const double seconds = std::chrono::duration<double>(now - first->time).count();
    return seconds > 0 ? double(_counts.received - first->received) / seconds : 0;
}

void SeriesMeter::startReading()
{
    const std::lock_guard lock(_mutex);
    _counts.received = _counts.lost = _counts.shown = _counts.leftOut = 0;
    _samples.clear();
}

void SeriesMeter::received()
{
    const std::lock_guard lock(_mutex);
    ++_counts.received;
    const auto now = Clock::now();
    if (_samples.empty() || now - _samples.back().time >= SamplePeriod)
        _samples.push_back({now, _counts.received});
    while (now - _samples.front().time > RatePeriod)
        _samples.pop_front();
}

void SeriesMeter::setLost(std::int64_t frames)
{
    const std::lock_guard lock(_mutex);
    _counts.lost = frames;
}

void SeriesMeter::startWriting(std::int64_t images)
{
    const std::lock_guard lock(_mutex);
    _counts.expected = images;
    _counts.written = _counts.bytes = 0;
    _counts.fileOpen = false;
    _diskFree.reset();
}

void SeriesMeter::setFileOpen(bool open)
{
    const std::lock_guard lock(_mutex);
    _counts.fileOpen = open;
}

void SeriesMeter::written(std::int64_t bytes)
{
    const std::lock_guard lock(_mutex);
    ++_counts.written;
    _counts.bytes += bytes;
}

void SeriesMeter::setDiskFree(std::int64_t bytes)
{
    const std::lock_guard lock(_mutex);
    _diskFree = bytes;
}

void SeriesMeter::shown()
{
    const std::lock_guard lock(_mutex);
    ++_counts.shown;
}

void SeriesMeter::leftOut()
{
    const std::lock_guard lock(_mutex);
    ++_counts.leftOut;
}
