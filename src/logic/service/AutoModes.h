// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The modes that keep a view moving by itself.
#pragma once

#include "logic/detector/HalvoMonitor.h"
#include "logic/service/AutoLoader.h"
#include "logic/service/ViewDriver.h"

#include <QString>

#include <optional>

/// Playing a movie, watching a series that grows, showing pictures of a running detector: at most
/// one of the three is on. Leaving a mode drops what it has queued; a running load still
/// arrives, after the signal that the mode has ended. No call waits for a load. Thread: GUI only.
class AutoModes {
public:
    using Mode = ViewDriver::Mode;

    explicit AutoModes(ViewDriver& view);

    HalvoMonitor& monitor() { return _monitor; }
    AutoLoader& autoLoader() { return _autoLoader; }
    bool on(Mode mode) const { return _mode == mode; }
    bool any() const { return _mode.has_value(); }
    const QString& host() const { return _host; }
    int port() const { return _port; }
    double minPause() const { return _minPause; }

    /// Without an image nothing happens.
    void setMovie(bool on) { _setAuto(Mode::Movie, Mode::WatchSeries, on); }
    void setWatchSeries(bool on) { _setAuto(Mode::WatchSeries, Mode::Movie, on); }
    /// Works without an image too, so that a view can start empty.
    void setHalvoMonitor(bool on);
    /// Keeps an address for later starts, also of other views; a running monitor switches to it.
    void setHalvoMonitorHost(const QString& host, int port, double minPause);
    /// Ends all modes silently and waits for the auto loader.
    void end();

private:
    /// Starts or ends a movie or the watching of a series; the other of the two excludes it.
    void _setAuto(Mode mode, Mode other, bool on);
    /// Ends the auto loader's work for a mode, and signals that.
    void _leave(Mode mode);
    void _switchMonitor(bool on);
    /// @returns whether the mode was on
    bool _clear(Mode mode);

    ViewDriver& _view;
    std::optional<Mode> _mode;
    AutoLoader _autoLoader;
    HalvoMonitor _monitor;
    QString _host;
    int _port;
    double _minPause;
};
