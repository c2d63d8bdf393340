// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Does what is requested from a detector, on a thread of its own.
#pragma once

#include "logic/detector/AsyncTicket.h"
#include "logic/detector/HalvoState.h"
#include "logic/detector/Retry.h"
#include "logic/detector/SeriesMeter.h"

#include <QObject>
#include <QString>

#include <atomic>
#include <cstdint>
#include <exception>
#include <functional>
#include <initializer_list>
#include <memory>

class FrameRelay;
class SeriesThreads;
class StateQueries;

namespace morvend::imglib {
class MHalvoDetector;
}

/// Takes requests one after the other. Each opens a connection of its own, by its ticket, answers
/// by stateSignal() or configSignal() with the fields just read, by error() in words for the user,
/// and ends with finished(), whatever happened.
///
/// An abort ends the requests that were issued before it and no later one: one that has begun gives
/// up within a fraction of a second, one that has not is left out, with an answer but without an
/// error. So the last abort, at the end of the program, waits for no queue.
/// Threads: its own; abort() and end() from any.
class HalvoAsync : public QObject {
    Q_OBJECT
public:
    /// @param meter, relay  for the frames of series, both for a worker that runs some; the relay
    ///                      outlives this object
    explicit HalvoAsync(std::shared_ptr<SeriesMeter> meter = nullptr, FrameRelay* relay = nullptr);
    ~HalvoAsync() override;

    /// Ends the requests with tickets up to this one, and the receiving of frames.
    void abort(std::uint32_t lastTicket);
    /// Ends all requests, also those to come.
    void end();

public slots:
    /// Makes a detector ready that is not, which may take minutes.
    void initDetector(const AsyncTicket& ticket);
    /// Runs a series with the settings of `state`; finishedSeries() when its exposure has ended.
    /// Its frames go into the file and to the relay meanwhile and afterwards.
    void startSeries(const AsyncTicket& ticket, const HalvoState& state, const QString& fileName);
    void abortSeries(const AsyncTicket& ticket);
    void state(const AsyncTicket& ticket);

    // A value is written only if it is in the range that the detector names first.
    void setNImages(int images, const AsyncTicket& ticket);
    void nImages(const AsyncTicket& ticket);
    void setFrameTime(double seconds, const AsyncTicket& ticket);
    void frameTime(const AsyncTicket& ticket);
    void setCountTime(double seconds, const AsyncTicket& ticket);
    void countTime(const AsyncTicket& ticket);
    void setPhotonEnergy(double electronVolts, const AsyncTicket& ticket);
    void photonEnergy(const AsyncTicket& ticket);
    void setThresholdEnergy(double electronVolts, const AsyncTicket& ticket);
    void thresholdEnergy(const AsyncTicket& ticket);
    void setElement(const QString& symbol, const AsyncTicket& ticket);
    void setTriggerMode(const QString& mode, const AsyncTicket& ticket);
    void triggerMode(const AsyncTicket& ticket);
    void setFlatfieldCorrectionApplied(bool applied, const AsyncTicket& ticket);
    void flatfieldCorrectionApplied(const AsyncTicket& ticket);
    void setPixelMaskApplied(bool applied, const AsyncTicket& ticket);
    void pixelMaskApplied(const AsyncTicket& ticket);

signals:
    void error(QString message);
    void finished(std::uint32_t ticketId);
    void stateSignal(bool success, HalvoState state);
    void configSignal(bool success, HalvoState state);
    void finishedInitialize(bool success, QString error);
    void finishedSeries(bool success, QString error);
    void finishedAbort(bool success, QString error);

    // For reader and writer.
    void startFileWriter(QString fileName, int nImages);
    void startMonitor(QString host, int port, double timeout);
    void startStream(QString host, int port, double timeout);
    /// The file of a series is complete; from the writer's thread.
    void seriesFinished();

private:
    using Detector = morvend::imglib::MHalvoDetector;
    using Cancel = std::atomic<bool>;
    using Query = HalvoState (StateQueries::*)(HalvoState);
    using Queries = std::initializer_list<Query>;
    using Work = std::function<void(Detector&)>;

    bool _begin(const AsyncTicket& ticket);
    void _request(const AsyncTicket& ticket, const char* prefix, const Work& work, Queries answers);
    void _read(const AsyncTicket& ticket, const char* prefix, Query query);
    template <class Value, class Known, class Parameter>
    void _write(const AsyncTicket& ticket, const char* prefix, const Value& value,
                Known (Detector::*read)(const Cancel&),
                void (Detector::*write)(Parameter, const Cancel&), Queries answers);
    void _switch(const AsyncTicket& ticket, const char* prefix, bool on,
                 void (Detector::*write)(bool, const Cancel&), Query answer);
    HalvoState _queryState(Detector& detector);
    void _initialize(Detector& detector);
    void _initFailed(Detector& detector, const std::exception& failure);
    void _runSeries(Detector& detector, const AsyncTicket& ticket, const HalvoState& state,
                    const QString& fileName);
    void _startThreads();

    RequestFlags _flags;
    std::atomic<std::uint32_t> _abortedUpTo = 0;
    const std::shared_ptr<SeriesMeter> _meter;
    FrameRelay* const _relay;
    std::unique_ptr<SeriesThreads> _threads;                // since the first series
    std::atomic<SeriesThreads*> _runningThreads = nullptr;  // the same, for other threads
};
