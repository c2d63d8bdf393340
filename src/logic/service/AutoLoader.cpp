// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The pace of movies and of series that grow.
#include "logic/service/AutoLoader.h"

#include "logic/TarvikService.h"

#include <algorithm>
#include <utility>

AutoLoader::AutoLoader(TarvikService* service, std::unique_ptr<MovieClock> clock)
    : _service(service)
    , _clock(std::move(clock))
{}

AutoLoader::~AutoLoader()
{
    stopLoading();
    wait();
}

void AutoLoader::setStepSize(int step)
{
    const std::lock_guard lock(_mutex);
    _stepSize = step;
}

int AutoLoader::stepSize() const
{
    const std::lock_guard lock(_mutex);
    return _stepSize;
}

void AutoLoader::startLoading(Mode mode)
{
    _service->watchImageContainer(true);
    _service->scanImageContainer();
    _disconnectService();
    _connections[0] = connect(_service, &TarvikService::imageContainerChangedSignal, this,
                              &AutoLoader::_directoryChangedSlot, Qt::DirectConnection);
    _connections[1] = connect(_service, &TarvikService::newImageSignal, this,
                              &AutoLoader::_newImageSlot, Qt::DirectConnection);
    _connectRequests(mode);
    const int imageIndex = _service->imageIndex();
    const int lastIndex = _service->lastIndex();

    std::unique_lock lock(_mutex);
    _mode = mode;
    _currentIndex = imageIndex;
    _lastIndex = lastIndex;
    if (isRunning() && !_stop) {
        // A request of the former session does not arrive any more: nothing else would answer it.
        _underWay = false;
        _update = true;
        _condition.notify_one();
        return;
    }
    lock.unlock();
    wait();  // a thread that was told to stop is about to end
    lock.lock();
    _stop = _update = _underWay = false;
    start(QThread::LowPriority);
}

void AutoLoader::_connectRequests(Mode mode)
{
    // The number of the session keeps out what a former thread left in the event queue.
    const auto whenCurrent = [this, session = _session](auto&& request) {
        if (session != _session)
            return;
        _noteArrival();
        request();
    };
    if (mode == Movie)
        _connections[2] = connect(
            this, &AutoLoader::nextImageSignal, _service,
            [=, this](int n, bool signalLoadError) {
                whenCurrent([&] { _service->nextImage(n, signalLoadError); });
            },
            Qt::QueuedConnection);
    else
        _connections[2] = connect(
            this, &AutoLoader::lastImageSignal, _service,
            [=, this](bool signalLoadError) {
                whenCurrent([&] { _service->openLast(signalLoadError); });
            },
            Qt::QueuedConnection);
}

void AutoLoader::_noteArrival()
{
    const std::lock_guard lock(_mutex);
    _underWay = false;
}

void AutoLoader::stopLoading()
{
    _disconnectService();
    _service->watchImageContainer(false);
    if (!isRunning())
        return;
    const std::lock_guard lock(_mutex);
    _stop = true;
    _condition.notify_one();
}

void AutoLoader::_disconnectService()
{
    ++_session;
    for (QMetaObject::Connection& connection : _connections)
        disconnect(connection);
}

void AutoLoader::_directoryChangedSlot()
{
    // A load under way will be answered by its image. To count a scan as its answer would queue one
    // more load for each scan, and a series that keeps growing would be followed ever later.
    _updateIndices(false);
}

void AutoLoader::_newImageSlot() { _updateIndices(true); }

void AutoLoader::_updateIndices(bool answered)
{
    const int imageIndex = _service->imageIndex();
    const int lastIndex = _service->lastIndex();
    const bool loading = _service->loading();
    const std::lock_guard lock(_mutex);
    _currentIndex = imageIndex;
    _lastIndex = lastIndex;
    if (answered || !(loading || _underWay))
        _update = true;
    _condition.notify_one();
}

void AutoLoader::run()
{
    while (const std::optional<int> step = _awaitNext()) {
        const MovieClock::Time asked = _clock->now();
        const bool movie = _request(*step);
        if (!_awaitAnswer() || (movie && !_pause(asked)))
            return;
    }
}

std::optional<int> AutoLoader::_awaitNext()
{
    std::unique_lock lock(_mutex);
    while (!_stop && _currentIndex >= _lastIndex)
        _clock->sleep(_condition, lock, MovieClock::never);
    if (_stop)
        return {};
    return std::min(_lastIndex - _currentIndex, _stepSize);
}

bool AutoLoader::_request(int step)
{
    std::unique_lock lock(_mutex);
    const bool movie = _mode == Movie;
    _underWay = true;
    _update = false;
    lock.unlock();
    if (movie)
        emit nextImageSignal(step, false);
    else
        emit lastImageSignal(false);
    return movie;
}

bool AutoLoader::_awaitAnswer()
{
    std::unique_lock lock(_mutex);
    while (!_stop && !_update)
        _clock->sleep(_condition, lock, MovieClock::never);
    _update = false;
    return !_stop;
}

bool AutoLoader::_pause(MovieClock::Time asked)
{
    std::unique_lock lock(_mutex);
    const MovieClock::Time end = std::max(asked + framePeriod, _clock->now() + minimumPause);
    while (!_stop && _clock->now() < end)
        _clock->sleep(_condition, lock, end);
    return !_stop;
}
