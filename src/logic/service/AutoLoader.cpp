// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/service/AutoLoader.h"

#include <algorithm>
#include <utility>

AutoLoader::AutoLoader(ViewDriver& view, std::unique_ptr<MovieClock> clock)
    : _view(view)
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
    _view.watch([this] { _newImageSlot(); }, [this] { _directoryChangedSlot(); });
    _view.scan();
    _disconnectRequests();
    _connectRequests(mode);
    const int index = _view.index();
    const int lastIndex = _view.lastIndex();

    std::unique_lock lock(_mutex);
    _mode = mode;
    _currentIndex = index;
    _lastIndex = lastIndex;
    if (_state == State::Stopped) {
        lock.unlock();
        wait();  // for a thread that is about to end
        lock.lock();
        start(QThread::LowPriority);
    }
    // A request of the former run no longer arrives: nothing else would answer it.
    _state = State::Idle;
    _condition.notify_one();
}

void AutoLoader::_connectRequests(Mode mode)
{
    // The number of the run excludes what a former thread left in the event queue.
    const auto whenCurrent = [this, run = _run](auto&& request) {
        if (run != _run)
            return;
        _noteArrival();
        request();
    };
    if (mode == Movie)
        _requests = connect(
            this, &AutoLoader::nextImageSignal, this,
            [=, this](int n, bool signalLoadError) {
                whenCurrent([&] { _view.nextImage(n, signalLoadError); });
            },
            Qt::QueuedConnection);
    else
        _requests = connect(
            this, &AutoLoader::lastImageSignal, this,
            [=, this](bool signalLoadError) {
                whenCurrent([&] { _view.openLast(signalLoadError); });
            },
            Qt::QueuedConnection);
}

void AutoLoader::_noteArrival()
{
    const std::lock_guard lock(_mutex);
    if (_state == State::Asked)
        _state = State::Loading;
}

void AutoLoader::stopLoading()
{
    _disconnectRequests();
    _view.unwatch();
    const std::lock_guard lock(_mutex);
    _state = State::Stopped;
    _condition.notify_one();
}

void AutoLoader::_disconnectRequests()
{
    ++_run;
    disconnect(_requests);
}

void AutoLoader::_directoryChangedSlot()
{
    // A load under way will be answered by its image. To count a scan as its answer would queue one
    // more load for each scan, and a series that keeps growing would be followed with a growing
    // delay.
    _updateIndices(false);
}

void AutoLoader::_newImageSlot() { _updateIndices(true); }

void AutoLoader::_updateIndices(bool answered)
{
    const int index = _view.index();
    const int lastIndex = _view.lastIndex();
    const bool loading = _view.loading();
    const std::lock_guard lock(_mutex);
    _currentIndex = index;
    _lastIndex = lastIndex;
    const bool failed = _state == State::Loading && !loading;
    if (_state != State::Stopped && (answered || failed))
        _state = State::Idle;
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
    while (_state != State::Stopped && _currentIndex >= _lastIndex)
        _clock->sleep(_condition, lock, MovieClock::never);
    if (_state == State::Stopped)
        return {};
    return std::min(_lastIndex - _currentIndex, _stepSize);
}

bool AutoLoader::_request(int step)
{
    std::unique_lock lock(_mutex);
    const bool movie = _mode == Movie;
    if (_state == State::Stopped)
        return movie;
    _state = State::Asked;
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
    while (_state == State::Asked || _state == State::Loading)
        _clock->sleep(_condition, lock, MovieClock::never);
    return _state != State::Stopped;
}

bool AutoLoader::_pause(MovieClock::Time asked)
{
    std::unique_lock lock(_mutex);
    const MovieClock::Time end = std::max(asked + framePeriod, _clock->now() + minimumPause);
    while (_state != State::Stopped && _clock->now() < end)
        _clock->sleep(_condition, lock, end);
    return _state != State::Stopped;
}
