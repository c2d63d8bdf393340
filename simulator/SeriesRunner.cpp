// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "simulator/SeriesRunner.h"

#include "simulator/Packet.h"

#include <chrono>
#include <thread>

namespace tarvik::simulator {
namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds Step{10};

}  // namespace

SeriesRunner::SeriesRunner(const QSize& size, StreamSender& stream, FaultScript& faults)
    : _frames(size)
    , _stream(stream)
    , _faults(faults)
{}

void SeriesRunner::_send(const char* type, const QByteArray& packet)
{
    if (!_plan.stream)
        return;
    const auto fault = _faults.ofMessage(type);
    const QString kind = fault ? fault->kind : QString();
    if (kind == "vanish")
        emit vanish(fault->argument);
    if (kind != "lose")
        _stream.send(damaged(packet, kind), *type != 'f', kind == "parts");
}

void SeriesRunner::prepare(const SeriesPlan& plan)
{
    _plan = plan;
    _taken = 0;
    const std::string detector = "/entry/instrument/detector/";
    const auto place = [&](const char* name, double value) {
        _plan.config[QString::fromStdString(detector + name)] =
            QJsonObject{{"value", value}, {"units", "pixel"}};
    };
    place("beam_center_x", _frames.beamX());
    place("beam_center_y", _frames.beamY());
    QJsonObject head{{"type", "start"}, {"series", plan.series}, {"images", plan.images}};
    QByteArray pixels;
    if (plan.headerDetail != "none")
        head["config"] = _plan.config;
    if (plan.headerDetail == "all") {
        head["pixels"] = _frames.mask().description;
        pixels = _frames.mask().bytes;
    }
    _send("start", makePacket(head, pixels));
    emit prepared(plan.series);
}

void SeriesRunner::_take(int frame)
{
    const Frames::Array& array = _frames.frame(frame);
    QJsonObject head{{"type", "frame"},
                     {"series", _plan.series},
                     {"frame", frame},
                     {"pixels", array.description}};
    _send("frame", makePacket(head, array.bytes));
    if (_plan.monitor) {
        head["config"] = _plan.config;
        emit taken(_plan.series, frame, makePacket(head, array.bytes));
    }
}

void SeriesRunner::run(int upTo)
{
    const auto begin = Clock::now();
    const int first = _taken;
    while (_taken < upTo && !_aborted) {
        // A frame is there when its time is over.
        const auto due =
            begin + std::chrono::duration_cast<Clock::duration>(
                        std::chrono::duration<double>(_plan.frameTime * (_taken + 1 - first)));
        while (!_aborted && Clock::now() < due)
            std::this_thread::sleep_until(std::min(due, Clock::now() + Step));
        if (!_aborted)
            _take(_taken++);
    }
    if (_taken == _plan.images || _aborted)
        end();
    else
        emit finished(_plan.series, _taken);
}

void SeriesRunner::end()
{
    _send("end", makePacket({{"type", "end"}, {"series", _plan.series}, {"frames", _taken}}));
    emit finished(_plan.series, _taken);
}

}  // namespace tarvik::simulator
