// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// How the modes exclude each other.
#include "logic/service/AutoModes.h"

#include <utility>

namespace {

/// The auto loader's thread waits for nothing but its wake-up, so it is gone long before.
constexpr unsigned long longestWait = 200;  // ms

}  // namespace

const AutoModes::Kind AutoModes::movieKind = {AutoLoader::Movie, &AutoModes::_movie,
                                              &TarvikService::movieModeSignal};
const AutoModes::Kind AutoModes::watchKind = {AutoLoader::WatchSeries, &AutoModes::_watchSeries,
                                              &TarvikService::watchSeriesModeSignal};

AutoModes::AutoModes(TarvikService& service, ImageLoader& loader)
    : _service(service)
    , _loader(loader)
    , _autoLoader(&service)
    , _host(HalvoMonitor::defaultHost())
    , _port(HalvoMonitor::defaultPort())
    , _minPause(HalvoMonitor::defaultMinPause())
{}

void AutoModes::setMovie(bool on) { _setAuto(movieKind, watchKind, on); }
void AutoModes::setWatchSeries(bool on) { _setAuto(watchKind, movieKind, on); }

void AutoModes::_setAuto(const Kind& kind, const Kind& other, bool on)
{
    if (!_service.imageLoaded())
        return;
    if (on) {
        _monitor.stop();
        _loader.dropTaskQueue();
        _halvoMonitor = false;
        if (this->*other.on) {
            _leave(other);
            _autoLoader.wait();
        }
        _autoLoader.startLoading(kind.mode);
        this->*kind.on = true;
    } else {
        if (!(this->*other.on))
            _autoLoader.stopLoading();
        _loader.dropTaskQueue();
        if (std::exchange(this->*kind.on, false))
            _autoLoader.wait(longestWait);
    }
    emit(_service.*kind.signal)(on);
}

void AutoModes::_leave(const Kind& kind)
{
    _autoLoader.stopLoading();
    _loader.dropTaskQueue();
    this->*kind.on = false;
    _autoLoader.wait(longestWait);
    emit(_service.*kind.signal)(false);
}

void AutoModes::setHalvoMonitor(bool on)
{
    const bool before = _halvoMonitor;
    _switchMonitor(on);
    if (on != before)
        emit _service.halvoMonitorModeSignal(on);
}

void AutoModes::_switchMonitor(bool on)
{
    if (on) {
        if (_service.imageLoaded()) {
            _leave(watchKind);
            _leave(movieKind);
        }
        _monitor.start(_host.toStdString(), _port, _minPause);
    } else {
        _monitor.stop();
        _loader.dropTaskQueue();
    }
    _halvoMonitor = on;
}

void AutoModes::setHalvoMonitorHost(const QString& host, int port, double minPause)
{
    const bool differs = host != _host || port != _port || minPause != _minPause;
    _host = host;
    _port = port;
    _minPause = minPause;
    if (!differs)
        return;
    if (_halvoMonitor)
        _switchMonitor(true);
    HalvoMonitor::setDefaultHost(host);
    HalvoMonitor::setDefaultPort(port);
    HalvoMonitor::setDefaultMinPause(minPause);
    emit _service.halvoMonitorHostSignal(host, port, minPause);
}

void AutoModes::end()
{
    _monitor.stop();
    _autoLoader.stopLoading();
    _autoLoader.wait();
}
