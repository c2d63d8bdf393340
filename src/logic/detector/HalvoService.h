// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The detector as the whole program shares it.
#pragma once

#include "logic/detector/AsyncTicket.h"
#include "logic/detector/FrameRelay.h"
#include "logic/detector/FrameTypes.h"
#include "logic/detector/HalvoState.h"
#include "logic/detector/SeriesMeter.h"
#include "logic/detector/SeriesProgress.h"
#include "logic/support/GlobalSettings.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>

class HalvoAsync;
class HalvoClient;

/// The one place of the process that stands for a detector: what is known of it, the requests that
/// are open, the file name of the next series, and the right to drive it. Each view talks to it
/// through a HalvoClient.
///
/// It never talks to the detector itself: requests cross to three workers (HalvoAsync) by queued
/// signals, one for polls and one for aborts beside that of all others, so that neither waits for a
/// slow request. Answers are merged into what is known. Destruction ends all requests, even one
/// that waits for a detector, within a fraction of a second; only a series gives the detector up to
/// a second more to switch its own file writer back on.
/// Thread: GUI only, which never waits for the network. Files are looked at by setFileNamePattern()
/// and startDetector() on another thread, for which they wait two seconds at most; a folder that
/// did not answer is refused at once until it does.
class HalvoService : public QObject {
    Q_OBJECT
public:
    using MImage = morvend::imglib::MImage;
    using Mode = HalvoMode;
    using AsyncTicket = ::AsyncTicket;

    /// @param machineSettings  the file of the machine's settings, another one in tests
    explicit HalvoService(QObject* parent = nullptr,
                          const QString& machineSettings = GlobalSettings::machinePath());
    ~HalvoService() override;

    /// Takes "host", "host:port" or a URL; without a port it is 80. All that was known of the
    /// detector before is forgotten. @returns false after an error(), when nothing was changed
    bool setHost(const QString& text);
    /// As the user gave it.
    QString host() const { return _host; }
    /// Requests a connection, which initialises a detector in need of it; finishedInitialize()
    /// reports the end, that of the last request if there are several. Or ends the connection.
    /// Open requests are dropped.
    void setConnected(bool connect);
    bool connected() const { return _poll.isActive(); }
    /// The address that was used last, from the user's settings; "0.0.0.0" and 80 at first. The
    /// monitors of the views share it.
    static QString defaultHost();
    static int defaultPort();
    static void setDefaultHost(const QString& host);
    static void setDefaultPort(int port);

    /// True if this user may drive the detector. Administrators, who can write the machine's
    /// settings, always may and decide whether others do.
    bool permission() const;
    bool userPermission() const;
    /// Allows or forbids other users to drive the detector. Only an administrator's call has
    /// an effect; permissionSignal() follows.
    void setUserPermission(bool permitted);

    /// Starts a series for a client as soon as no request is open; finishedSeries() reports the end
    /// of the exposure. The newest pictures go to the client by monitorSignal().
    void startDetector(HalvoClient* client);
    /// Ends a series at any stage, also one that still waits for its start.
    void abortDetector();
    /// Who started the last series; null before, and when it has gone.
    const HalvoClient* seriesClient() const;
    /// Names of files to come: "_master.h5" or "_<number>_master.h5" is appended, with a number for
    /// which there is no file yet. @returns by fileNameChanged() or, when nothing was changed,
    /// error()
    void setFileNamePattern(const QString& pattern);
    QString fileNamePattern() const { return _fileNamePattern; }
    /// Of the next series.
    QString fileName() const { return _fileName; }
    void setMode(Mode mode);
    Mode mode() const { return _mode; }
    /// Least number of seconds between two pictures for a client; counts before the first picture.
    void setMonitorMinPause(double seconds);
    double monitorMinPause() const { return _monitorMinPause; }

    // What is known of the detector: nothing without a connection. An unknown value is requested
    // from the detector if `request` is set, and comes with stateChanged() or configChanged().
    std::optional<HalvoState::Status> state(bool request);
    std::optional<QString> detectorDescription(bool request);
    std::optional<QString> detectorNumber(bool request);
    std::optional<HalvoState::Limited<int>> nImages(bool request);
    std::optional<HalvoState::Limited<double>> frameTime(bool request);
    std::optional<HalvoState::Limited<double>> countTime(bool request);
    std::optional<HalvoState::Limited<double>> photonEnergy(bool request);
    std::optional<HalvoState::Limited<double>> thresholdEnergy(bool request);
    std::optional<HalvoState::Choice> triggerMode(bool request);
    std::optional<bool> flatfieldCorrectionApplied(bool request);
    std::optional<bool> pixelMaskApplied(bool request);

    // Requests to change the detector, without effect when there is no connection. The detector's
    // answer comes with configChanged(), and with error() when it refused.
    void setNImages(int images);
    void setFrameTime(double seconds);
    void setCountTime(double seconds);
    void setPhotonEnergy(double electronVolts);
    void setThresholdEnergy(double electronVolts);
    void setElement(const QString& symbol);
    void setTriggerMode(const QString& mode);
    void setFlatfieldCorrectionApplied(bool applied);
    void setPixelMaskApplied(bool applied);

signals:
    void permissionSignal(bool permitted);
    void stateChanged(bool success);
    void configChanged(bool success);
    void fileNameChanged();
    void modeChanged();
    /// Each frame of a series that the display keeps up with.
    void newFrame(ImageData image, int seriesId, int frameId);
    /// A picture for the view that started the series.
    void monitorSignal(HalvoClient* client, morvend::imglib::MImage image);
    /// At most some times a second while a series runs, and once at its end.
    void progressSignal(SeriesProgress progress);
    /// A text for the user.
    void error(QString message);
    /// A request has ended.
    void finished();
    void finishedInitialize(bool success, QString error);
    void finishedSeries(bool success, QString error);
    void finishedAbort(bool success, QString error);

    // For the workers.
    void stateSignal(AsyncTicket ticket);
    void setNImagesSignal(int images, AsyncTicket ticket);
    void nImagesSignal(AsyncTicket ticket);
    void setFrameTimeSignal(double seconds, AsyncTicket ticket);
    void frameTimeSignal(AsyncTicket ticket);
    void setCountTimeSignal(double seconds, AsyncTicket ticket);
    void countTimeSignal(AsyncTicket ticket);
    void setPhotonEnergySignal(double electronVolts, AsyncTicket ticket);
    void photonEnergySignal(AsyncTicket ticket);
    void setElementSignal(QString symbol, AsyncTicket ticket);
    void setThresholdEnergySignal(double electronVolts, AsyncTicket ticket);
    void thresholdEnergySignal(AsyncTicket ticket);
    void setTriggerModeSignal(QString mode, AsyncTicket ticket);
    void triggerModeSignal(AsyncTicket ticket);
    void setFlatfieldCorrectionAppliedSignal(bool applied, AsyncTicket ticket);
    void flatFieldCorrectionAppliedSignal(AsyncTicket ticket);
    void setPixelMaskAppliedSignal(bool applied, AsyncTicket ticket);
    void pixelMaskAppliedSignal(AsyncTicket ticket);
    void initDetector(AsyncTicket ticket);
    void startSeries(AsyncTicket ticket, HalvoState state, QString fileName);
    void abortSeries(AsyncTicket ticket);

private:
    template <class Field>
    Field _read(const Field& field, bool request, void (HalvoService::*signal)(AsyncTicket));
    template <class Parameter, class Value>
    void _write(void (HalvoService::*signal)(Parameter, AsyncTicket), const Value& value);
    AsyncTicket _genTicket();
    struct Worker;
    void _connectParameters(HalvoAsync& requests);
    void _connectAnswers(const HalvoAsync& worker);
    void _disconnect();
    void _runSeries();
    void _emitProgress();

    void _stateSlot(bool success, const HalvoState& received);
    void _configSlot(bool success, const HalvoState& received);
    void _finishedSeriesSlot(bool success, const QString& error);
    void _finishedInitSlot(bool success, const QString& error);
    void _finishedSlot(std::uint32_t ticketId);
    void _newFrameSlot(const ImageData& frame, int seriesId, int frameId);
    void _newSeriesSlot(const OptionalData& header, int seriesId);
    void _pollDetector();
    void _emitMonitor();

    const QString _machineSettings;
    QPointer<HalvoClient> _client;
    QString _host;
    std::string _hostName;
    int _port = 80;
    Mode _mode = Mode::Automatic;
    double _monitorMinPause = 0.2;
    QTimer _monitorTimer;             // runs from the first frame on
    std::optional<ImageData> _frame;  // the newest one, until the timer's next tick
    OptionalData _header;
    QString _fileNamePattern, _fileName;
    bool _seriesRunning = false;
    bool _initialising = false;
    const std::shared_ptr<SeriesMeter> _meter;
    FrameRelay _relay;
    const std::unique_ptr<Worker> _requests, _polls, _aborts;
    QTimer _poll;
    QTimer _progressTimer;
    SeriesProgress _progress;  // as last reported
    bool _startPending = false;
    QPointer<HalvoClient> _pendingClient;
    HalvoState _state;
    std::uint32_t _lastTicket = 0;
    std::uint32_t _seriesTicket = 0;  // of the last series
    std::set<std::uint32_t> _tickets;
    std::set<std::uint32_t> _initTickets;  // of these, those that initialise
};
