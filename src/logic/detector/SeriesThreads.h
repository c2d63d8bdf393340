// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The two threads that take the frames of a series.
#pragma once

#include "logic/detector/SeriesMeter.h"

#include <QObject>
#include <QString>
#include <QThread>

#include <memory>

class FrameBudget;
class FrameRelay;
class HalvoMonitorWorker;

/// Reader and writer with a thread each, from construction to destruction, which ends the reading
/// and waits for both.
/// Thread: that of whoever drives the series; abort() from any.
class SeriesThreads : public QObject {
    Q_OBJECT
public:
    /// @param meter  shared with the relay
    /// @param relay  gets every frame; outlives this object
    SeriesThreads(const std::shared_ptr<SeriesMeter>& meter, FrameRelay& relay);
    ~SeriesThreads() override;

    /// Ends the reading at once.
    void abort();
    /// The exposure has ended: the reading ends when no frame comes any more.
    void abortOnTimeout();

signals:
    void startFileWriter(QString fileName, int nImages);
    void startMonitor(QString host, int port, double timeout);
    void startStream(QString host, int port, double timeout);

    // Of reader and writer, from their threads.
    void error(QString message);
    void seriesFinished();

private:
    QThread _reading, _writing;
    QObject _lastCall;  // in the writer's thread
    const std::shared_ptr<FrameBudget> _budget;
    HalvoMonitorWorker* const _reader;  // deleted by the end of its thread
};
