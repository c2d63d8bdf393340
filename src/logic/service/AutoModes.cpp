// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/service/AutoModes.h"

namespace {

/// The auto loader's thread waits for nothing but its wake-up, so it ends long before.
constexpr unsigned long longestWait = 200;  // ms

}  // namespace

AutoModes::AutoModes(ViewDriver& view)
    : _view(view)
    , _autoLoader(view)
    , _host(HalvoMonitor::defaultHost())
    , _port(HalvoMonitor::defaultPort())
    , _minPause(HalvoMonitor::defaultMinPause())
{}

void AutoModes::_setAuto(Mode mode, Mode other, bool on)
{
    if (!_view.imageLoaded())
        return;
    if (on) {
        _monitor.stop();
        _view.dropRequests();
        _clear(Mode::Monitor);
        if (this->on(other)) {
            _leave(other);
            _autoLoader.wait();
        }
        _autoLoader.startLoading(mode == Mode::Movie ? AutoLoader::Movie : AutoLoader::WatchSeries);
        _mode = mode;
    } else {
        if (!this->on(other))
            _autoLoader.stopLoading();
        _view.dropRequests();
        if (_clear(mode))
            _autoLoader.wait(longestWait);
    }
    _view.modeChanged(mode, on);
}

void AutoModes::_leave(Mode mode)
{
    _autoLoader.stopLoading();
    _view.dropRequests();
    _clear(mode);
    _autoLoader.wait(longestWait);
    _view.modeChanged(mode, false);
}

bool AutoModes::_clear(Mode mode)
{
    const bool was = on(mode);
    if (was)
        _mode.reset();
    return was;
}

void AutoModes::setHalvoMonitor(bool on)
{
    const bool before = this->on(Mode::Monitor);
    _switchMonitor(on);
    if (on != before)
        _view.modeChanged(Mode::Monitor, on);
}

void AutoModes::_switchMonitor(bool on)
{
    if (on) {
        if (_view.imageLoaded()) {
            _leave(Mode::WatchSeries);
            _leave(Mode::Movie);
        }
        _monitor.start(_host.toStdString(), _port, _minPause);
        _mode = Mode::Monitor;
    } else {
        _monitor.stop();
        _view.dropRequests();
        _clear(Mode::Monitor);
    }
}

void AutoModes::setHalvoMonitorHost(const QString& host, int port, double minPause)
{
    const bool differs = host != _host || port != _port || minPause != _minPause;
    _host = host;
    _port = port;
    _minPause = minPause;
    if (!differs)
        return;
    if (on(Mode::Monitor))
        _switchMonitor(true);
    HalvoMonitor::setDefaultHost(host);
    HalvoMonitor::setDefaultPort(port);
    HalvoMonitor::setDefaultMinPause(minPause);
    _view.monitorHostChanged(host, port, minPause);
}

void AutoModes::end()
{
    _monitor.stop();
    _autoLoader.stopLoading();
    _autoLoader.wait();
}
