// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "simulator/ControlUnit.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTimer>
#include <QUrlQuery>

#include <algorithm>

namespace tarvik::simulator {
namespace {

Response json(const QJsonObject& object, int status = 200)
{
    return {status, QJsonDocument(object).toJson(QJsonDocument::Compact)};
}

Response failure(int status, const QString& code, const QString& message)
{
    return json({{"error", QJsonObject{{"code", code}, {"message", message}}}}, status);
}

Response unknown() { return failure(404, "unknown", "there is nothing at this path"); }

QJsonObject value(const QJsonValue& of, const QString& units = {})
{
    QJsonObject object{{"value", of}};
    if (!units.isEmpty())
        object["units"] = units;
    return object;
}

}  // namespace

ControlUnit::ControlUnit(const UnitOptions& options, QObject* parent)
    : QObject(parent)
    , _options(options)
    , _parameters(options.frame)
    , _server([this](const Request& request, const Respond& respond) { _handle(request, respond); },
              _faults)
    , _runner(new SeriesRunner(options.frame, _stream, _faults))
    , _state(options.initialized ? "idle" : "na")
{
    _parameters.put("stream/port", _stream.port());
    _runner->moveToThread(&_thread);
    connect(&_thread, &QThread::finished, _runner, &QObject::deleteLater);
    connect(_runner, &SeriesRunner::prepared, this, &ControlUnit::_prepared);
    connect(_runner, &SeriesRunner::finished, this, &ControlUnit::_finished);
    connect(_runner, &SeriesRunner::vanish, this, &ControlUnit::vanish);
    connect(_runner, &SeriesRunner::taken, this,
            [this](int series, int frame, const QByteArray& packet) {
                _monitor.add(series, frame, packet, int(_parameters.number("monitor/buffer_size")));
            });
    connect(&_server, &HttpServer::vanish, this, &ControlUnit::vanish);
    _server.listen(options.port);
    _thread.start();
}

ControlUnit::~ControlUnit()
{
    _runner->abort();
    _thread.quit();
    _thread.wait();
}

void ControlUnit::vanish(int milliseconds)
{
    _server.suspend();
    _stream.setPresent(false);
    QTimer::singleShot(milliseconds, this, [this] {
        _server.resume();
        _stream.setPresent(true);
    });
}

void ControlUnit::_handle(const Request& request, const Respond& respond)
{
    const QString path = request.path.mid(4);  // after "/v1/"
    const QString kind = path.section('/', 1, 1);
    const bool get = request.method == "GET";
    if (!request.path.startsWith("/v1/"))
        return respond(unknown());
    if (kind == "parameters" && path.count('/') <= 2)
        _parameter(request, path, respond);
    else if (kind == "commands" && request.method == "POST")
        _command(path, respond);
    else if (path == "detector/status" && get)
        _status(respond);
    else if (path.startsWith("monitor/pictures/") && get)
        _picture(path.section('/', 2), request.query, respond);
    else
        respond(unknown());
}

void ControlUnit::_parameter(const Request& request, const QString& path, const Respond& respond)
{
    const QString part = path.section('/', 0, 0);
    if (path.count('/') == 1) {
        const QStringList names = _parameters.names(part);
        respond(names.isEmpty() ? unknown()
                                : json({{"parameters", QJsonArray::fromStringList(names)}}));
        return;
    }
    _parameters.put("stream/dropped", _stream.dropped());
    _parameters.put("monitor/dropped", _monitor.dropped());
    const QString key = part + '/' + path.section('/', 2);
    const Parameter* const parameter = _parameters.find(key);
    if (!parameter)
        respond(unknown());
    else if (request.method == "GET")
        respond(json(parameter->described()));
    else if (request.method == "PUT")
        _write(request, key, respond);
    else
        respond(failure(405, "bad_method", "parameters are read by GET and written by PUT"));
}

void ControlUnit::_write(const Request& request, const QString& path, const Respond& respond)
{
    const QJsonObject body = QJsonDocument::fromJson(request.body).object();
    if (!body.contains("value")) {
        respond(failure(400, "bad_request", "the body is no object with a value"));
        return;
    }
    const bool ofDetector = path.startsWith("detector/");
    if (ofDetector && (_state == "acquire" || _state == "initialize")) {
        respond(failure(409, "wrong_state",
                        "no parameter can be changed while the state is " + _state));
        return;
    }
    QStringList changed;
    if (const auto refusal = _parameters.write(path, body["value"], changed)) {
        respond(failure(refusal->status, refusal->code, refusal->message));
        return;
    }
    if (ofDetector && _state == "ready")
        _state = "idle";
    respond(json({{"changed", QJsonArray::fromStringList(changed)}}));
}

void ControlUnit::_command(const QString& path, const Respond& respond)
{
    struct Known {
        const char* path;
        Command command;
    };
    constexpr Known Commands[] = {{"detector/commands/initialize", &ControlUnit::_initialize},
                                  {"detector/commands/arm", &ControlUnit::_arm},
                                  {"detector/commands/trigger", &ControlUnit::_trigger},
                                  {"detector/commands/abort", &ControlUnit::_abort},
                                  {"monitor/commands/clear", &ControlUnit::_clear}};
    for (const Known& each : Commands)
        if (path == each.path)
            return (this->*each.command)(respond);
    respond(unknown());
}

void ControlUnit::_status(const Respond& respond)
{
    const bool error = _state == "na";
    respond(json({{"status", _state},
                  {"error", error},
                  {"message", error ? "the detector is not initialised" : ""}}));
}

void ControlUnit::_initialize(const Respond& respond)
{
    if (_state == "acquire") {
        respond(failure(409, "wrong_state", "a series is running"));
        return;
    }
    _state = "initialize";
    QTimer::singleShot(_options.initializeMs, this, [this, respond] {
        _state = "idle";
        respond(json({}));
    });
}

SeriesPlan ControlUnit::_plan()
{
    const auto number = [this](const char* name) {
        return _parameters.number("detector/" + QString(name));
    };
    SeriesPlan plan{_series,
                    int(number("nimages")),
                    number("frame_time"),
                    _parameters.flag("stream/enabled"),
                    _parameters.flag("monitor/enabled"),
                    _parameters.text("stream/header_detail"),
                    {}};
    const QString detector = "/entry/instrument/detector/";
    QJsonObject& config = plan.config;
    for (const auto& [name, units] : {std::pair{"count_time", "s"},
                                      {"frame_time", "s"},
                                      {"photon_energy", "eV"},
                                      {"threshold_energy", "eV"},
                                      {"nimages", ""},
                                      {"x_pixels_in_detector", ""},
                                      {"y_pixels_in_detector", ""}})
        config[detector + name] = value(number(name), units);
    for (const char* name : {"description", "detector_number", "trigger_mode"})
        config[detector + name] = value(_parameters.text("detector/" + QString(name)));
    config[detector + "x_pixel_size"] = config[detector + "y_pixel_size"] = value(100e-6, "m");
    config[detector + "distance"] = value(0.2, "m");
    config[detector + "sensor_thickness"] = value(450e-6, "m");
    config[detector + "saturation_value"] = value(60000);
    config["/entry/start_time"] =
        value(QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs));
    return plan;
}

void ControlUnit::_arm(const Respond& respond)
{
    if (_state != "idle" && _state != "ready") {
        respond(failure(409, "wrong_state",
                        "the detector can't be armed while its state is " + _state));
        return;
    }
    ++_series;
    _taken = 0;
    _state = "arming";
    _stream.clear();
    _runner->allow();
    _arming.push_back(respond);
    const SeriesPlan plan = _plan();
    QMetaObject::invokeMethod(_runner, [runner = _runner, plan] { runner->prepare(plan); });
}

void ControlUnit::_prepared(int series)
{
    if (_state == "arming" && series == _series)
        _state = "ready";
    _answerAll(_arming, json({{"series", series}}));
}

void ControlUnit::_trigger(const Respond& respond)
{
    if (_state != "ready") {
        respond(failure(409, "wrong_state", "the detector is not armed"));
        return;
    }
    _state = "acquire";
    _exposing.push_back(respond);
    const bool single = _parameters.text("detector/trigger_mode").endsWith('e');
    const int upTo = single ? _taken + 1 : int(_parameters.number("detector/nimages"));
    QMetaObject::invokeMethod(_runner, [runner = _runner, upTo] { runner->run(upTo); });
}

void ControlUnit::_finished(int series, int frames)
{
    _taken = frames;
    const bool more = _aborting.empty() && frames < int(_parameters.number("detector/nimages"));
    if (_state != "na")
        _state = more ? "ready" : "idle";
    _answerAll(_exposing, json({{"series", series}, {"frames", frames}}));
    _answerAll(_aborting, json({}));
}

void ControlUnit::_abort(const Respond& respond)
{
    if (_state != "acquire" && _state != "ready" && _state != "arming") {
        respond(json({}));
        return;
    }
    _aborting.push_back(respond);
    _runner->abort();
    if (_state != "acquire")  // nothing runs that would end it
        QMetaObject::invokeMethod(_runner, [runner = _runner] { runner->end(); });
}

void ControlUnit::_clear(const Respond& respond)
{
    _monitor.clear();
    respond(json({}));
}

void ControlUnit::_picture(const QString& which, const QString& query, const Respond& respond)
{
    const QUrlQuery values(query);
    const int wait = std::clamp(values.queryItemValue("wait").toInt(), 0, 60'000);
    if (!_parameters.flag("monitor/enabled"))
        respond(failure(409, "wrong_state", "the monitor is not enabled"));
    else if (which == "latest")
        _monitor.latest(values.queryItemValue("after"), wait, respond);
    else if (which == "next")
        _monitor.next(wait, respond);
    else
        respond(unknown());
}

void ControlUnit::_answerAll(std::vector<Respond>& waiting, const Response& response)
{
    for (const Respond& respond : std::exchange(waiting, {}))
        respond(response);
}

}  // namespace tarvik::simulator
