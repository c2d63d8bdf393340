// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// One view's handle on the detector.
#pragma once

#include "logic/detector/HalvoService.h"

#include <QObject>

#include <memory>

/// Names the requesting view to the shared service, and passes on to the view the pictures that are
/// its own. All functions are those of HalvoService, which has their meaning. Thread: GUI only.
class HalvoClient : public QObject {
    Q_OBJECT
public:
    using Mode = HalvoService::Mode;

    explicit HalvoClient(std::shared_ptr<HalvoService> service, QObject* parent = nullptr);

    const std::shared_ptr<HalvoService>& service() const { return _service; }

    bool setHost(const QString& text) { return _service->setHost(text); }
    QString host() const { return _service->host(); }
    void setConnected(bool connect) { _service->setConnected(connect); }
    bool connected() const { return _service->connected(); }
    static QString defaultHost() { return HalvoService::defaultHost(); }
    static int defaultPort() { return HalvoService::defaultPort(); }
    static void setDefaultHost(const QString& host) { HalvoService::setDefaultHost(host); }
    static void setDefaultPort(int port) { HalvoService::setDefaultPort(port); }

    void setUserPermission(bool permitted) { _service->setUserPermission(permitted); }
    bool userPermission() const { return _service->userPermission(); }
    bool permission() const { return _service->permission(); }

    /// Starts a series whose pictures are this client's.
    void startDetector() { _service->startDetector(this); }
    void abortDetector() { _service->abortDetector(); }
    void setFileNamePattern(const QString& pattern) { _service->setFileNamePattern(pattern); }
    QString fileNamePattern() const { return _service->fileNamePattern(); }
    QString fileName() const { return _service->fileName(); }
    void setMode(Mode mode) { _service->setMode(mode); }
    Mode mode() const { return _service->mode(); }
    void setMonitorMinPause(double seconds) { _service->setMonitorMinPause(seconds); }
    double monitorMinPause() const { return _service->monitorMinPause(); }

    auto state(bool request) { return _service->state(request); }
    auto detectorDescription(bool request) { return _service->detectorDescription(request); }
    auto detectorNumber(bool request) { return _service->detectorNumber(request); }
    auto nImages(bool request) { return _service->nImages(request); }
    auto frameTime(bool request) { return _service->frameTime(request); }
    auto countTime(bool request) { return _service->countTime(request); }
    auto photonEnergy(bool request) { return _service->photonEnergy(request); }
    auto thresholdEnergy(bool request) { return _service->thresholdEnergy(request); }
    auto triggerMode(bool request) { return _service->triggerMode(request); }
    auto flatfieldCorrectionApplied(bool request)
    {
        return _service->flatfieldCorrectionApplied(request);
    }
    auto pixelMaskApplied(bool request) { return _service->pixelMaskApplied(request); }

    void setNImages(int images) { _service->setNImages(images); }
    void setFrameTime(double seconds) { _service->setFrameTime(seconds); }
    void setCountTime(double seconds) { _service->setCountTime(seconds); }
    void setPhotonEnergy(double electronVolts) { _service->setPhotonEnergy(electronVolts); }
    void setThresholdEnergy(double electronVolts) { _service->setThresholdEnergy(electronVolts); }
    void setElement(const QString& symbol) { _service->setElement(symbol); }
    void setTriggerMode(const QString& mode) { _service->setTriggerMode(mode); }
    void setFlatfieldCorrectionApplied(bool applied)
    {
        _service->setFlatfieldCorrectionApplied(applied);
    }
    void setPixelMaskApplied(bool applied) { _service->setPixelMaskApplied(applied); }

signals:
    // Of the service, for every client.
    void permissionSignal(bool permitted);
    void newFrame(ImageData image, int seriesId, int frameId);
    void finished();
    void stateChanged(bool success);
    void configChanged(bool success);
    void fileNameChanged();
    void modeChanged();
    void error(QString message);
    void finishedInitialize(bool success, QString error);
    void finishedSeries(bool success, QString error);
    void finishedAbort(bool success, QString error);
    // Of a series that this client started.
    void monitorSignal(morvend::imglib::MImage image);
    void progressSignal(SeriesProgress progress);

private:
    void _monitorSlot(const HalvoClient* client, const morvend::imglib::MImage& image);
    void _progressSlot(const SeriesProgress& progress);

    const std::shared_ptr<HalvoService> _service;
};
