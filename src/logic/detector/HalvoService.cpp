// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/detector/HalvoService.h"

#include "logic/detector/HalvoClient.h"
#include "logic/detector/HalvoMonitor.h"

#include <QUrl>

HalvoService::HalvoService(QObject* parent, const QString& machineSettings)
    : QObject(parent)
    , _machineSettings(machineSettings)
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
}

HalvoService::~HalvoService() = default;

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
    if (connect)
        emit error(QStringLiteral("This version cannot connect to a detector: %1").arg(_host));
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
    if (connected())
        _client = client;
}

void HalvoService::abortDetector() {}

const HalvoClient* HalvoService::seriesClient() const { return _client.data(); }

void HalvoService::setFileNamePattern(const QString& pattern)
{
    _fileNamePattern = pattern;
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

template <class Field>
Field HalvoService::_read(const Field& field, bool request,
                          void (HalvoService::*signal)(AsyncTicket))
{
    if (!connected())
        return {};
    if (request && !field)
        emit(this->*signal)(_genTicket());
    return field;
}

std::optional<HalvoState::Status> HalvoService::state(bool request)
{
    return _read(_state.state, request, &HalvoService::stateSignal);
}
std::optional<QString> HalvoService::detectorDescription(bool request)
{
    return _read(_state.detectorDescription, request, &HalvoService::stateSignal);
}
std::optional<QString> HalvoService::detectorNumber(bool request)
{
    return _read(_state.detectorNumber, request, &HalvoService::stateSignal);
}
std::optional<HalvoState::Limited<int>> HalvoService::nImages(bool request)
{
    return _read(_state.nImages, request, &HalvoService::nImagesSignal);
}
std::optional<HalvoState::Limited<double>> HalvoService::frameTime(bool request)
{
    return _read(_state.frameTime, request, &HalvoService::frameTimeSignal);
}
std::optional<HalvoState::Limited<double>> HalvoService::countTime(bool request)
{
    return _read(_state.countTime, request, &HalvoService::countTimeSignal);
}
std::optional<HalvoState::Limited<double>> HalvoService::photonEnergy(bool request)
{
    return _read(_state.photonEnergy, request, &HalvoService::photonEnergySignal);
}
std::optional<HalvoState::Limited<double>> HalvoService::thresholdEnergy(bool request)
{
    return _read(_state.thresholdEnergy, request, &HalvoService::thresholdEnergySignal);
}
std::optional<HalvoState::Choice> HalvoService::triggerMode(bool request)
{
    return _read(_state.triggerMode, request, &HalvoService::triggerModeSignal);
}
std::optional<bool> HalvoService::flatfieldCorrectionApplied(bool request)
{
    return _read(_state.flatfieldCorrectionApplied, request,
                 &HalvoService::flatFieldCorrectionAppliedSignal);
}
std::optional<bool> HalvoService::pixelMaskApplied(bool request)
{
    return _read(_state.pixelMaskApplied, request, &HalvoService::pixelMaskAppliedSignal);
}

template <class Parameter, class Value>
void HalvoService::_write(void (HalvoService::*signal)(Parameter, AsyncTicket), const Value& value)
{
    if (connected())
        emit(this->*signal)(value, _genTicket());
}

void HalvoService::setNImages(int images) { _write(&HalvoService::setNImagesSignal, images); }
void HalvoService::setFrameTime(double seconds)
{
    _write(&HalvoService::setFrameTimeSignal, seconds);
}
void HalvoService::setCountTime(double seconds)
{
    _write(&HalvoService::setCountTimeSignal, seconds);
}
void HalvoService::setPhotonEnergy(double electronVolts)
{
    _write(&HalvoService::setPhotonEnergySignal, electronVolts);
}
void HalvoService::setThresholdEnergy(double electronVolts)
{
    _write(&HalvoService::setThresholdEnergySignal, electronVolts);
}
void HalvoService::setElement(const QString& symbol)
{
    _write(&HalvoService::setElementSignal, symbol);
}
void HalvoService::setTriggerMode(const QString& mode)
{
    _write(&HalvoService::setTriggerModeSignal, mode);
}
void HalvoService::setFlatfieldCorrectionApplied(bool applied)
{
    _write(&HalvoService::setFlatfieldCorrectionAppliedSignal, applied);
}
void HalvoService::setPixelMaskApplied(bool applied)
{
    _write(&HalvoService::setPixelMaskAppliedSignal, applied);
}
