// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The loops of the reader, and how starts and aborts meet them.
#include "logic/detector/HalvoMonitorWorker.h"

#include "imagelib/control/ConfigHeader.h"
#include "imagelib/control/MHalvoMonitor.h"
#include "imagelib/control/MHalvoStream.h"
#include "imagelib/image/MException.h"
#include "logic/support/Console.h"

#include <QThread>

#include <algorithm>
#include <optional>
#include <sstream>
#include <utility>

using morvend::MException;
using morvend::MTimeoutException;
using namespace morvend::imglib;

namespace {

/// So many failures without a frame between them are reported as they come, further ones with a
/// pause before the next try: a unit that refuses must not keep a processor and the user busy.
constexpr int QuickFailures = 10;
constexpr int PauseMs = 200;

OptionalData headerOf(const MStreamConfig& config)
{
    OptionalData header = headerFromConfig(config.config());
    if (!config.pixelMask().empty())
        header.set_pixel_mask(config.pixelMask());
    return header;
}

/// The unit's own count of frames that it could not send; nothing if it doesn't answer.
template <class Source>
std::optional<std::int64_t> droppedBy(Source& source, const std::atomic<bool>& cancel)
{
    try {
        return source.dropped(cancel);
    } catch (const MException&) {
        return {};
    }
}

}  // namespace

struct HalvoMonitorWorker::Request {
    enum Source { Stream, Monitor } source = Stream;
    std::string host{};
    int port = 0;
    double timeout = 0;
    // What was asked for after the start and before the reading.
    bool aborted = false;
    bool abortOnTimeout = false;

    bool sameAddress(const Request& other) const
    {
        return source == other.source && host == other.host && port == other.port;
    }
};

HalvoMonitorWorker::HalvoMonitorWorker(std::shared_ptr<FrameBudget> budget,
                                       std::shared_ptr<SeriesMeter> meter)
    : _budget(std::move(budget))
    , _meter(meter ? std::move(meter) : std::make_shared<SeriesMeter>())
{}

HalvoMonitorWorker::~HalvoMonitorWorker() = default;

void HalvoMonitorWorker::abort()
{
    const std::lock_guard lock(_mutex);
    if (_next)
        _next->aborted = true;
    _aborted = true;
}

void HalvoMonitorWorker::abortOnTimeout()
{
    const std::lock_guard lock(_mutex);
    if (_next)
        _next->abortOnTimeout = true;
    else
        _abortOnTimeout = true;
}

void HalvoMonitorWorker::startMonitor(const QString& host, int port, double timeout)
{
    _start({Request::Monitor, host.toStdString(), port, timeout});
}

void HalvoMonitorWorker::startStream(const QString& host, int port, double timeout)
{
    _start({Request::Stream, host.toStdString(), port, timeout});
}

void HalvoMonitorWorker::_start(Request request)
{
    {
        const std::lock_guard lock(_mutex);
        if (_current && !_current->sameAddress(request))
            _aborted = true;
        _next = std::make_unique<Request>(std::move(request));
    }
    if (QThread::currentThread() == thread())
        _read();
    else
        QMetaObject::invokeMethod(this, &HalvoMonitorWorker::_read, Qt::QueuedConnection);
}

/// Makes the next start the present one. The caller holds the mutex.
void HalvoMonitorWorker::_begin()
{
    _aborted = _next->aborted;
    _abortOnTimeout = _next->abortOnTimeout;
    _current = std::move(_next);
}

bool HalvoMonitorWorker::_startWaits() const
{
    const std::lock_guard lock(_mutex);
    return _next != nullptr;
}

/// Takes over a start that waits. @returns false if it is for another address
bool HalvoMonitorWorker::_goesOn()
{
    const std::lock_guard lock(_mutex);
    if (!_next)
        return true;
    if (!_next->sameAddress(*_current))
        return false;
    _begin();
    return true;
}

double HalvoMonitorWorker::_timeout() const
{
    const std::lock_guard lock(_mutex);
    return _current->timeout;
}

void HalvoMonitorWorker::_read()
{
    Request request;
    {
        const std::lock_guard lock(_mutex);
        if (!_next)
            return;  // taken over by the reading before
        _begin();
        request = *_current;
    }
    _seriesId = -1;
    _lastFrame = -1;
    _lost = 0;
    _failures = 0;
    _meter->startReading();
    if (request.source == Request::Stream)
        _stream(request.host, request.port);
    else
        _monitor(request.host, request.port);
    const std::lock_guard lock(_mutex);
    _current.reset();
}

/// @param receive       takes one message
/// @param countDropped  called at the end of a reading that no frame is expected of any more
template <class Receive, class CountDropped>
void HalvoMonitorWorker::_loop(Receive&& receive, CountDropped&& countDropped)
{
    while (_goesOn()) {
        try {
            receive(_timeout());
            _failures = 0;
        } catch (const MTimeoutException& timeout) {
            if (!_abortOnTimeout || _startWaits())
                continue;
            std::ostringstream line;
            line << "Timeout after " << timeout.elapsed() << "seconds\n";
            console::print(line.str());
            emit finished();
            return countDropped();
        } catch (const MTerminateException&) {
            if (_startWaits())
                continue;
            console::print("Aborted\n");
            emit finished();
            return;
        } catch (const std::exception& failure) {
            if (!_aborted)
                _report(failure.what());
            else if (!_startWaits())
                return;
        }
    }
}

void HalvoMonitorWorker::_stream(const std::string& host, int port)
{
    MHalvoStream stream(host, port);
    std::optional<std::int64_t> before = droppedBy(stream, _aborted);
    // Counts what a break hides that no later frame makes visible.
    const auto countDropped = [&] {
        const auto now = droppedBy(stream, _aborted);
        if (before && now)
            _addLost(*now - *before - _lost);
        before = now;
    };
    const auto receive = [&](double timeout) {
        const MStreamObject object = stream.pop(timeout, _aborted);
        if (object.type() == MStreamObject::Header) {
            _beginSeries(headerOf(object.config()), object.config().seriesId());
        } else if (object.type() == MStreamObject::Frame) {
            const MStreamData& data = object.data();
            _handOn({data.image(), data.packed()}, data.imageId());
        } else if (object.type() == MStreamObject::End) {
            emit finished();
            _addLost(object.end().frames - 1 - _lastFrame);
            countDropped();
        }
    };
    _loop(receive, countDropped);
}

void HalvoMonitorWorker::_monitor(const std::string& host, int port)
{
    MHalvoMonitor monitor(host, port);
    const auto receive = [&](double timeout) {
        const int ms = static_cast<int>(std::clamp(timeout * 1000, 0.0, 2e9));
        const auto [image, seriesId, frameId] = monitor.nextAll(ms, _aborted);
        if (frameId == 0)
            _beginSeries(image.optionalData(), seriesId);
        _seriesId = seriesId;
        _handOn({image.width(), image.height(), image.imageData()}, frameId);
    };
    _loop(receive, [&] {
        if (const auto dropped = droppedBy(monitor, _aborted))
            _addLost(*dropped - _lost);
    });
}

void HalvoMonitorWorker::_beginSeries(const OptionalData& header, int seriesId)
{
    _lastFrame = -1;
    _lost = 0;
    _meter->startReading();
    emit newSeries(header, seriesId);
    _seriesId = seriesId;
}

void HalvoMonitorWorker::_handOn(const ImageData& frame, int frameId)
{
    _meter->received();
    _addLost(frameId - 1 - _lastFrame);
    _lastFrame = std::max<std::int64_t>(_lastFrame, frameId);
    if (!_budget || _budget->take(std::int64_t(frame.dataSize()), _aborted))
        emit newFrame(frame, _seriesId, frameId);
}

void HalvoMonitorWorker::_addLost(std::int64_t lost)
{
    if (lost <= 0)
        return;
    _lost += lost;
    _meter->setLost(_lost);
}

void HalvoMonitorWorker::_report(const char* message)
{
    emit error(QString::fromUtf8(message));
    if (++_failures <= QuickFailures)
        return;
    for (int ms = 0; ms < PauseMs && !_aborted; ms += 10)
        QThread::msleep(10);
}
