// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Receives the frames of a series.
#pragma once

#include "logic/detector/FrameBudget.h"
#include "logic/detector/FrameTypes.h"
#include "logic/detector/SeriesMeter.h"

#include <QObject>
#include <QString>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

/// The reader: takes every frame from a control unit, by its stream or, where there is none, out of
/// its monitor's buffer, and hands it on by newFrame().
///
/// A start reads until abort(), or until no frame has come for the timeout after abortOnTimeout().
/// Each is a slot of this object's thread and, connected with Qt::DirectConnection, also of the
/// caller's: it then returns at once, the reading goes on in this object's thread, and an abort
/// that follows is never overtaken by its start. A start that finds the reader still waiting for
/// more of the series before takes it over: the connection is kept, so that no frame falls between
/// two series. Only if it reads from another address does the old reading end, without a word.
///
/// Wiring: start signals -> startStream(), startMonitor(), direct; newSeries -> the writer's
/// initSeries() and newFrame -> its add(), finished -> its finish(), queued; newSeries and newFrame
/// -> the relay's addSeries() and addFrame(), direct. Reader, writer and relay share one meter,
/// reader and writer one budget.
///
/// Threads: one of its own; abort(), abortOnTimeout() and the start slots from any.
class HalvoMonitorWorker : public QObject {
    Q_OBJECT
public:
    /// @param budget  that the receiver of newFrame() gives the frame's bytes back to; null: no
    ///                bound
    /// @param meter   null: one that nobody sees
    explicit HalvoMonitorWorker(std::shared_ptr<FrameBudget> budget = nullptr,
                                std::shared_ptr<SeriesMeter> meter = nullptr);
    ~HalvoMonitorWorker() override;

    /// Ends the reading at once.
    void abort();
    /// No further series is expected: the next timeout ends the reading.
    void abortOnTimeout();

public slots:
    /// @param timeout  seconds without a frame, see above
    void startMonitor(const QString& host, int port, double timeout);
    void startStream(const QString& host, int port, double timeout);

signals:
    void newFrame(ImageData frame, int seriesId, int frameId);
    /// The header of the frames that follow.
    void newSeries(OptionalData header, int seriesId);
    /// A series has ended, or the reading has; both for most series.
    void finished();
    /// A text for the user; the reading goes on.
    void error(QString message);

private:
    struct Request;

    void _start(Request request);
    void _read();
    void _stream(const std::string& host, int port);
    void _monitor(const std::string& host, int port);
    template <class Receive, class CountDropped>
    void _loop(Receive&& receive, CountDropped&& countDropped);

    void _begin();
    bool _goesOn();
    bool _startWaits() const;
    double _timeout() const;

    void _beginSeries(const OptionalData& header, int seriesId);
    void _handOn(const ImageData& frame, int frameId);
    void _addLost(std::int64_t lost);
    void _report(const char* message);

    const std::shared_ptr<FrameBudget> _budget;
    const std::shared_ptr<SeriesMeter> _meter;
    std::atomic<bool> _aborted = false;
    std::atomic<bool> _abortOnTimeout = false;

    mutable std::mutex _mutex;
    std::unique_ptr<Request> _next;     // the last start, until its reading begins
    std::unique_ptr<Request> _current;  // what is read now

    // Of the series being read.
    int _seriesId = -1;
    std::int64_t _lastFrame = -1;
    std::int64_t _lost = 0;
    int _failures = 0;  // since the last frame
};
