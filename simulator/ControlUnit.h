// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A simulated control unit: the whole of docs/protocols/control-unit.md.
#pragma once

#include "simulator/FaultScript.h"
#include "simulator/HttpServer.h"
#include "simulator/MonitorBuffer.h"
#include "simulator/Parameters.h"
#include "simulator/SeriesRunner.h"
#include "simulator/StreamSender.h"

#include <QObject>
#include <QThread>

#include <vector>

namespace tarvik::simulator {

struct UnitOptions {
    quint16 port = 0;         ///< 0: any free one
    QSize frame{2072, 2168};  ///< pixels
    bool initialized = true;  ///< false: in error until it is initialised
    int initializeMs = 1000;
};

/// Serves from its construction on. Thread: one with an event loop; the frames come from another.
class ControlUnit : public QObject {
    Q_OBJECT
public:
    /// @throws std::runtime_error when the port is not free
    explicit ControlUnit(const UnitOptions& options, QObject* parent = nullptr);
    ~ControlUnit() override;

    quint16 port() const { return _server.port(); }
    /// Lines may be added at any time, from any thread.
    FaultScript& faults() { return _faults; }
    /// Leaves the network for a time.
    void vanish(int milliseconds);

private:
    using Command = void (ControlUnit::*)(const Respond&);

    void _handle(const Request& request, const Respond& respond);
    void _parameter(const Request& request, const QString& path, const Respond& respond);
    void _write(const Request& request, const QString& path, const Respond& respond);
    void _command(const QString& path, const Respond& respond);
    void _picture(const QString& which, const QString& query, const Respond& respond);
    void _initialize(const Respond& respond);
    void _arm(const Respond& respond);
    void _trigger(const Respond& respond);
    void _abort(const Respond& respond);
    void _clear(const Respond& respond);
    void _status(const Respond& respond);
    void _prepared(int series);
    void _finished(int series, int frames);
    SeriesPlan _plan();
    void _answerAll(std::vector<Respond>& waiting, const Response& response);

    const UnitOptions _options;
    FaultScript _faults;
    Parameters _parameters;
    HttpServer _server;
    StreamSender _stream;
    MonitorBuffer _monitor;
    QThread _thread;
    SeriesRunner* _runner = nullptr;  // deleted by the end of its thread

    QString _state;
    int _series = 0;
    int _taken = 0;
    std::vector<Respond> _arming, _exposing, _aborting;
};

}  // namespace tarvik::simulator
