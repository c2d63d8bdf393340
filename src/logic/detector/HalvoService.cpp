// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/detector/HalvoService.h"

#include "logic/detector/HalvoAsync.h"
#include "logic/detector/HalvoClient.h"
#include "logic/detector/HalvoMonitor.h"
#include "logic/detector/NextFileName.h"
#include "logic/support/Assert.h"
#include "logic/support/Console.h"

#include <QFile>
#include <QThread>
#include <QUrl>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr int PollMs = 10000;
constexpr int ProgressMs = 200;

}  // namespace

/// A worker with its thread.
struct HalvoService::Worker {
    explicit Worker(HalvoAsync* made)
        : async(made)
    {
        async->moveToThread(&thread);
        connect(&thread, &QThread::finished, async, &QObject::deleteLater);
    }
    QThread thread;
    HalvoAsync* const async;  // deleted by the end of its thread
};

HalvoService::HalvoService(QObject* parent, const QString& machineSettings)
    : QObject(parent)
    , _machineSettings(machineSettings)
    , _meter(std::make_shared<SeriesMeter>())
    , _relay(_meter)
    , _requests(std::make_unique<Worker>(new HalvoAsync(_meter, &_relay)))
    , _polls(std::make_unique<Worker>(new HalvoAsync))
    , _aborts(std::make_unique<Worker>(new HalvoAsync))
{
    qRegisterMetaType<MImage>("morvend::imglib::MImage");
    qRegisterMetaType<ImageData>("morvend::imglib::MImage::ImageData");
    qRegisterMetaType<OptionalData>("morvend::imglib::MImage::OptionalData");
    qRegisterMetaType<HalvoClient*>("HalvoClient*");
    qRegisterMetaType<HalvoState>("HalvoState");
    qRegisterMetaType<Mode>("HalvoService::Mode");
    qRegisterMetaType<AsyncTicket>("HalvoService::AsyncTicket");
    qRegisterMetaType<SeriesProgress>("SeriesProgress");

    _host = defaultHost();
    if (defaultPort() != 80)
        _host += QStringLiteral(":$1");
    setHost(_host);
    setFileNamePattern(QStringLiteral("/tmp/test_tarvik"));
    connect(&_monitorTimer, &QTimer::timeout, this, &HalvoService::_emitMonitor);
    connect(&_poll, &QTimer::timeout, this, &HalvoService::_pollDetector);
    connect(&_progressTimer, &QTimer::timeout, this, &HalvoService::_emitProgress);
    connect(&_relay, &FrameRelay::newSeries, this, &HalvoService::_newSeriesSlot);
    connect(&_relay, &FrameRelay::newFrame, this, &HalvoService::_newFrameSlot);

    HalvoAsync* const requests = _requests->async;
    _connectParameters(*requests);
    connect(this, &HalvoService::initDetector, requests, &HalvoAsync::initDetector);
    connect(this, &HalvoService::startSeries, requests, &HalvoAsync::startSeries);
    connect(requests, &HalvoAsync::startFileWriter, this,
            [this] { _progressTimer.start(ProgressMs); });
    connect(requests, &HalvoAsync::seriesFinished, this, &HalvoService::_emitProgress);
    connect(this, &HalvoService::stateSignal, _polls->async, &HalvoAsync::state);
    connect(this, &HalvoService::abortSeries, _aborts->async, &HalvoAsync::abortSeries);
    for (const auto* worker : {&_requests, &_polls, &_aborts}) {
        _connectAnswers(*(*worker)->async);
        (*worker)->thread.start();
    }
}

HalvoService::~HalvoService()
{
    const auto workers = {&_requests, &_polls, &_aborts};
    for (const auto* worker : workers)
        (*worker)->async->end();
    for (const auto* worker : workers)
        (*worker)->thread.quit();
    for (const auto* worker : workers)
        (*worker)->thread.wait();
}

void HalvoService::_connectAnswers(const HalvoAsync& worker)
{
    using S = HalvoService;
    using A = HalvoAsync;
    connect(&worker, &A::error, this, &S::error);
    connect(&worker, &A::finished, this, &S::_finishedSlot);
    connect(&worker, &A::stateSignal, this, &S::_stateSlot);
    connect(&worker, &A::configSignal, this, &S::_configSlot);
    connect(&worker, &A::finishedInitialize, this, &S::_finishedInitSlot);
    connect(&worker, &A::finishedSeries, this, &S::_finishedSeriesSlot);
    connect(&worker, &A::finishedAbort, this, &S::finishedAbort);
}

QString HalvoService::defaultHost() { return HalvoMonitor::defaultHost(); }
int HalvoService::defaultPort() { return HalvoMonitor::defaultPort(); }
void HalvoService::setDefaultHost(const QString& host) { HalvoMonitor::setDefaultHost(host); }
void HalvoService::setDefaultPort(int port) { HalvoMonitor::setDefaultPort(port); }

bool HalvoService::setHost(const QString& text)
{
    const QUrl url = QUrl::fromUserInput(text);
    if (!url.isValid()) {
        emit error(url.errorString());
        return false;
    }
    if (url.host().isEmpty()) {
        emit error(QStringLiteral("There is no host in \"%1\"").arg(text));
        return false;
    }
    _host = text;
    _hostName = url.host().toStdString();
    _port = url.port(80);
    // Nothing is written at each start of the program.
    if (defaultHost() != url.host())
        setDefaultHost(url.host());
    if (defaultPort() != _port)
        setDefaultPort(_port);
    _state = {};
    emit configChanged(true);
    return true;
}

void HalvoService::setConnected(bool connect)
{
    _requests->async->abort(_lastTicket);
    // An answer about the detector of before must not end the connection to the next one.
    _polls->async->abort(_lastTicket);
    _startPending = false;
    _initialising = connect;
    if (connect) {
        const AsyncTicket ticket = _genTicket();
        _initTickets.insert(ticket.id);
        emit initDetector(ticket);
    } else {
        _poll.stop();
    }
    _state.state.reset();
    emit stateChanged(true);
}

void HalvoService::_finishedInitSlot(bool success, const QString& error)
{
    // Another connection has been requested since.
    if (_initTickets.size() > 1)
        return;
    const bool wanted = std::exchange(_initialising, false);
    if (success && !wanted) {
        emit finishedInitialize(false, QStringLiteral("Aborted"));
        return;
    }
    if (success)
        _poll.start(PollMs);
    emit finishedInitialize(success, error);
}

void HalvoService::_pollDetector() { emit stateSignal(_genTicket()); }

void HalvoService::_stateSlot(bool success, const HalvoState& received)
{
    using Status = HalvoState::Status;
    received.override(_state);
    if (_initialising)
        _state.state = Status::Initializing;
    else if (_seriesRunning)
        _state.state = Status::Acquiring;
    if (_state.state == Status::NotAvailable || _state.state == Status::Error) {
        if (connected())
            emit error(QStringLiteral("Lost connection to detector"));
        _disconnect();
    }
    emit stateChanged(success);
}

void HalvoService::_disconnect()
{
    _requests->async->abort(_lastTicket);
    _startPending = false;
    _poll.stop();
    _state.state.reset();
    emit stateChanged(true);
}

void HalvoService::_configSlot(bool success, const HalvoState& received)
{
    received.override(_state);
    emit configChanged(success);
}

bool HalvoService::permission() const
{
    const GlobalSettings settings(_machineSettings);
    return settings.isWritable() || settings.usersMayDriveDetector();
}

bool HalvoService::userPermission() const
{
    return GlobalSettings(_machineSettings).usersMayDriveDetector();
}

void HalvoService::setUserPermission(bool permitted)
{
    GlobalSettings settings(_machineSettings);
    if (!settings.isWritable())
        return;
    settings.setValue(GlobalSettings::accessibleInUserMode, permitted);
    emit permissionSignal(permitted);
}

void HalvoService::startDetector(HalvoClient* client)
{
    if (!connected())
        return;
    // The pictures of a series that still runs are not his.
    _pendingClient = client;
    setFileNamePattern(_fileNamePattern);
    if (_tickets.empty())
        _runSeries();
    else
        _startPending = true;
}

void HalvoService::_runSeries()
{
    if (!_state.nImages) {
        emit finishedSeries(false, QStringLiteral("The detector's number of images is not known"));
        return;
    }
    _client = _pendingClient;
    _frame.reset();
    _seriesRunning = true;
    const AsyncTicket ticket = _genTicket();
    _seriesTicket = ticket.id;
    emit startSeries(ticket, _state, _fileName);
    console::print("DEBUG NIMAGES: " + std::to_string(_state.nImages->value) + '\n');
    _state.state.reset();
    emit stateChanged(true);
}

void HalvoService::abortDetector()
{
    if (!connected())
        return;
    // What was requested after the series is still done.
    _requests->async->abort(_seriesTicket);
    const bool waited = std::exchange(_startPending, false);
    emit abortSeries(_genTicket());
    _state.state.reset();
    emit stateChanged(true);
    if (waited && !_seriesRunning)
        emit finishedSeries(false, QStringLiteral("Series Aborted"));
}

void HalvoService::_finishedSeriesSlot(bool success, const QString& error)
{
    _seriesRunning = false;
    emit finishedSeries(success, error);
}

const HalvoClient* HalvoService::seriesClient() const { return _client.data(); }

void HalvoService::setFileNamePattern(const QString& pattern)
{
    const NextFileName next = nextFileName(QFile::encodeName(pattern).toStdString());
    if (!next.error.empty()) {
        emit error(QFile::decodeName(QByteArray::fromStdString(next.error)));
        return;
    }
    _fileNamePattern = pattern;
    _fileName = QFile::decodeName(QByteArray::fromStdString(next.name));
    emit fileNameChanged();
}

void HalvoService::setMode(Mode mode)
{
    _mode = mode;
    emit modeChanged();
}

void HalvoService::setMonitorMinPause(double seconds)
{
    _monitorMinPause = seconds;
    emit configChanged(true);
}

AsyncTicket HalvoService::_genTicket()
{
    AsyncTicket ticket{_hostName, _port, _mode, ++_lastTicket};
    _tickets.insert(ticket.id);
    return ticket;
}

void HalvoService::_finishedSlot(std::uint32_t ticketId)
{
    assert(_tickets.count(ticketId) > 0);
    _tickets.erase(ticketId);
    _initTickets.erase(ticketId);
    console::print("Number of open HALVO requests: " + std::to_string(_tickets.size()) + '\n');
    emit finished();
    // The view may have been closed since.
    if (_tickets.empty() && std::exchange(_startPending, false) && _pendingClient)
        startDetector(_pendingClient.data());
}

void HalvoService::_newSeriesSlot(const OptionalData& header, int) { _header = header; }

void HalvoService::_newFrameSlot(const ImageData& frame, int seriesId, int frameId)
{
    emit newFrame(frame, seriesId, frameId);
    if (_monitorTimer.isActive()) {
        _frame = frame;
        _header.set_description("Series: " + std::to_string(seriesId) +
                                "   Image: " + std::to_string(frameId));
        return;
    }
    const double pause = std::ceil(_monitorMinPause * 1000);
    _monitorTimer.start(pause > 0 ? static_cast<int>(std::min(pause, 1e9)) : 0);
    emit monitorSignal(_client.data(), withHeader(frame, _header));
}

void HalvoService::_emitMonitor()
{
    if (const auto frame = std::exchange(_frame, std::nullopt))
        emit monitorSignal(_client.data(), withHeader(*frame, _header));
}

void HalvoService::_emitProgress()
{
    const SeriesProgress progress = _meter->progress();
    if (!_seriesRunning && !progress.fileOpen)
        _progressTimer.stop();
    if (progress != std::exchange(_progress, progress))
        emit progressSignal(progress);
}
