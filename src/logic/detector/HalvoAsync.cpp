// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Connection, initialisation, series and abort; HalvoAsyncParameters.cpp has the parameters.
#include "logic/detector/HalvoAsync.h"

#include "imagelib/control/MHalvoDetector.h"
#include "imagelib/image/MException.h"
#include "logic/detector/SeriesSequence.h"
#include "logic/detector/SeriesThreads.h"
#include "logic/detector/StateQueries.h"
#include "logic/support/Console.h"

#include <utility>

namespace {

QString textOf(const std::exception& failure) { return QString::fromUtf8(failure.what()); }

void print(const std::exception& failure) { console::warn(failure.what() + std::string("\n")); }

}  // namespace

HalvoAsync::HalvoAsync(std::shared_ptr<SeriesMeter> meter, FrameRelay* relay)
    : _meter(std::move(meter))
    , _relay(relay)
{}

HalvoAsync::~HalvoAsync() = default;

void HalvoAsync::abort(std::uint32_t lastTicket)
{
    std::uint32_t before = _abortedUpTo;
    while (before < lastTicket && !_abortedUpTo.compare_exchange_weak(before, lastTicket))
        ;
    _flags.end();
    if (SeriesThreads* const threads = _runningThreads)
        threads->abort();
}

void HalvoAsync::end()
{
    _flags.ending = true;
    abort(_abortedUpTo);
}

/// Erases aborts that are older than the request. @returns false if it was aborted itself
bool HalvoAsync::_begin(const AsyncTicket& ticket)
{
    _flags.abort = false;
    // After that, or the abort of another thread would be erased unseen.
    if (ticket.id <= _abortedUpTo || _flags.ending)
        _flags.abort = true;
    _flags.allow();
    return !_flags.abort;
}

HalvoState HalvoAsync::_queryState(Detector& detector)
{
    return StateQueries(detector, _flags).state({}, [this](const QString& text) {
        emit error(text);
    });
}

void HalvoAsync::state(const AsyncTicket& ticket)
{
    if (_begin(ticket)) {
        Detector detector(ticket.host, ticket.port);
        emit stateSignal(true, _queryState(detector));
    } else {
        emit stateSignal(false, {});
    }
    emit finished(ticket.id);
}

void HalvoAsync::initDetector(const AsyncTicket& ticket)
{
    Detector detector(ticket.host, ticket.port);
    try {
        if (_begin(ticket))
            _initialize(detector);
        if (_flags.cancel) {
            emit stateSignal(false, {});
            emit configSignal(false, {});
            emit finishedInitialize(false, QStringLiteral("Aborted"));
        }
    } catch (const morvend::MRuntimeException& failure) {
        const bool cancelled = _flags.cancel;
        _initFailed(detector, failure);
        emit finishedInitialize(false,
                                cancelled ? QStringLiteral("Operation aborted") : textOf(failure));
    } catch (const std::exception& failure) {
        _initFailed(detector, failure);
        emit finishedInitialize(false, QStringLiteral("Detector may not be connected"));
    }
    emit finished(ticket.id);
}

void HalvoAsync::_initialize(Detector& detector)
{
    bool broken = false;
    Retry(_flags).run([&] { broken = detector.isError(_flags.cancel); });
    if (broken)
        detector.initialize(_flags.cancel);
    if (_flags.cancel)
        return;
    emit finishedInitialize(true, {});
    emit stateSignal(true, _queryState(detector));
    emit configSignal(true, StateQueries(detector, _flags).all({}));
}

void HalvoAsync::_initFailed(Detector& detector, const std::exception& failure)
{
    print(failure);
    emit stateSignal(true, _queryState(detector));
    emit configSignal(false, {});
}

void HalvoAsync::abortSeries(const AsyncTicket& ticket)
{
    if (_begin(ticket)) {
        Detector detector(ticket.host, ticket.port);
        try {
            detector.abort(_flags.cancel);
            if (!_flags.cancel)
                emit finishedAbort(true, {});
        } catch (const std::exception& failure) {
            print(failure);
            emit error(textOf(failure));
            emit finishedAbort(false, textOf(failure));
        }
        emit stateSignal(true, _queryState(detector));
    }
    emit finished(ticket.id);
}

void HalvoAsync::startSeries(const AsyncTicket& ticket, const HalvoState& state,
                             const QString& fileName)
{
    _startThreads();
    if (_begin(ticket)) {
        Detector detector(ticket.host, ticket.port);
        _runSeries(detector, ticket, state, fileName);
        _threads->abortOnTimeout();
        // Without an answer after an abort the detector would go on to count as acquiring.
        _flags.abort = false;
        if (_flags.ending)
            _flags.abort = true;
        emit stateSignal(true, _queryState(detector));
    } else {
        emit finishedSeries(false, QStringLiteral("Series Aborted"));
        emit stateSignal(false, {});
    }
    emit finished(ticket.id);
}

void HalvoAsync::_runSeries(Detector& detector, const AsyncTicket& ticket, const HalvoState& state,
                            const QString& fileName)
{
    const QString host = QString::fromStdString(ticket.host);
    const SeriesSequence::Events events{
        [this](const HalvoState& configuration) { emit configSignal(true, configuration); },
        [&](int nImages) { emit startFileWriter(fileName, nImages); },
        [&](double timeout) { emit startStream(host, ticket.port, timeout); },
        [&](double timeout) { emit startMonitor(host, ticket.port, timeout); },
        [this] {
            if (_flags.cancel)
                emit finishedSeries(false, QStringLiteral("Series Aborted"));
            else
                emit finishedSeries(true, {});
        },
        [this](const QString& message) { emit error(message); }};
    try {
        SeriesSequence(detector, _flags, ticket, state, events).run();
    } catch (const morvend::MTimeoutException& failure) {
        const QString text =
            QStringLiteral("Connection timed out after %1 seconds").arg(failure.elapsed());
        emit error(text);
        emit finishedSeries(false, text);
    } catch (const morvend::MRuntimeException& failure) {
        const bool cancelled = _flags.cancel;
        print(failure);
        emit error(textOf(failure));
        emit finishedSeries(false,
                            cancelled ? QStringLiteral("Operation aborted") : textOf(failure));
    } catch (const std::exception& failure) {
        print(failure);
        emit error(textOf(failure));
        emit finishedSeries(false, textOf(failure));
    }
}

void HalvoAsync::_startThreads()
{
    if (_threads)
        return;
    _threads = std::make_unique<SeriesThreads>(_meter, *_relay);
    connect(this, &HalvoAsync::startFileWriter, _threads.get(), &SeriesThreads::startFileWriter);
    connect(this, &HalvoAsync::startMonitor, _threads.get(), &SeriesThreads::startMonitor);
    connect(this, &HalvoAsync::startStream, _threads.get(), &SeriesThreads::startStream);
    // From threads of theirs, while this one is busy with the series.
    connect(_threads.get(), &SeriesThreads::error, this, &HalvoAsync::error, Qt::DirectConnection);
    connect(_threads.get(), &SeriesThreads::seriesFinished, this, &HalvoAsync::seriesFinished,
            Qt::DirectConnection);
    _runningThreads = _threads.get();
}
