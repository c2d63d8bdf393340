// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Takes the frames of a series at their times, on a thread of its own.
#pragma once

#include "simulator/FaultScript.h"
#include "simulator/Frames.h"
#include "simulator/StreamSender.h"

#include <QJsonObject>
#include <QObject>

#include <atomic>

namespace tarvik::simulator {

/// What a series was armed with.
struct SeriesPlan {
    int series = 0;
    int images = 1;
    double frameTime = 0.1;
    bool stream = false, monitor = false;
    QString headerDetail;
    QJsonObject config;
};

/// Lives on a thread of its own; the slots are called from others by queued calls, abort()
/// directly.
class SeriesRunner : public QObject {
    Q_OBJECT
public:
    SeriesRunner(const QSize& size, StreamSender& stream, FaultScript& faults);

    void prepare(const SeriesPlan& plan);
    /// Takes frames until `upTo` are taken.
    void run(int upTo);
    void end();
    void abort() { _aborted = true; }
    /// A new series begins, in the thread that aborts.
    void allow() { _aborted = false; }

signals:
    void prepared(int series);
    /// A picture for the monitor.
    void taken(int series, int frame, QByteArray packet);
    void finished(int series, int frames);
    void vanish(int milliseconds);

private:
    void _send(const char* type, const QByteArray& packet);
    void _take(int frame);

    Frames _frames;
    StreamSender& _stream;
    FaultScript& _faults;
    SeriesPlan _plan;
    int _taken = 0;
    std::atomic<bool> _aborted{false};
};

}  // namespace tarvik::simulator
