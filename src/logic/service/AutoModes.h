// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The modes that keep a view moving by itself.
#pragma once

#include "logic/TarvikService.h"
#include "logic/detector/HalvoMonitor.h"
#include "logic/loading/ImageLoader.h"
#include "logic/service/AutoLoader.h"

/// Playing a movie, watching a series that grows, showing pictures of a running detector: at most
/// one of the three is on. Whoever leaves a mode drops what it has queued; a load that runs still
/// arrives, after the signal that the mode has ended. No call waits for a load. Thread: GUI only.
class AutoModes {
public:
    AutoModes(TarvikService& service, ImageLoader& loader);

    HalvoMonitor& monitor() { return _monitor; }
    AutoLoader& autoLoader() { return _autoLoader; }
    bool movie() const { return _movie; }
    bool watchSeries() const { return _watchSeries; }
    bool halvoMonitor() const { return _halvoMonitor; }
    const QString& host() const { return _host; }
    int port() const { return _port; }
    double minPause() const { return _minPause; }

    /// Without image nothing happens.
    void setMovie(bool on);
    void setWatchSeries(bool on);
    /// Works without image too, so that a view can begin empty.
    void setHalvoMonitor(bool on);
    /// Keeps an address for later starts, also of other views; a running monitor changes over.
    void setHalvoMonitorHost(const QString& host, int port, double minPause);
    /// Ends all modes in silence and waits for the auto loader.
    void end();

private:
    using ModeSignal = void (TarvikService::*)(bool);
    /// A movie or the watching of a series.
    struct Kind {
        AutoLoader::Mode mode;
        bool AutoModes::*on;
        ModeSignal signal;
    };
    static const Kind movieKind;
    static const Kind watchKind;

    void _setAuto(const Kind& kind, const Kind& other, bool on);
    /// Stops the auto loader's work for a mode and signals its end.
    void _leave(const Kind& kind);
    void _switchMonitor(bool on);

    TarvikService& _service;
    ImageLoader& _loader;
    AutoLoader _autoLoader;
    HalvoMonitor _monitor;
    QString _host;
    int _port;
    double _minPause;
    bool _halvoMonitor = false;
    bool _movie = false;
    bool _watchSeries = false;
};
