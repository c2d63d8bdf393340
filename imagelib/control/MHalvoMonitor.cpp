// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "imagelib/control/MHalvoMonitor.h"

#include "imagelib/control/Deadline.h"
#include "imagelib/control/Packets.h"
#include "imagelib/control/UnitClient.h"
#include "imagelib/image/MException.h"

#include <nlohmann/json.hpp>

namespace morvend::imglib {
namespace {

/// What an answer may take beyond the time that the unit waits for a picture.
constexpr double GraceSeconds = 5;
constexpr int MostWaitMs = 60'000;
/// Until a unit that can't be reached is asked again.
constexpr int PauseMs = 200;

std::string parameter(const char* name) { return "monitor/parameters/" + std::string(name); }

[[noreturn]] void nonePicture(const Deadline& deadline, const std::string& reason)
{
    throw MTimeoutException("No picture of the detector in time" +
                                (reason.empty() ? "" : "; " + reason),
                            deadline.elapsed());
}

}  // namespace

MHalvoMonitor::MHalvoMonitor(const std::string& host, int port)
    : _unit(std::make_unique<UnitClient>(host, port))
{}

MHalvoMonitor::~MHalvoMonitor() = default;

void MHalvoMonitor::setEnabled(bool enabled, const Cancel& cancel)
{
    _unit->set(parameter("enabled"), enabled, cancel);
}

void MHalvoMonitor::setBufferSize(int images, const Cancel& cancel)
{
    _unit->set(parameter("buffer_size"), images, cancel);
}

void MHalvoMonitor::clear(const Cancel& cancel)
{
    _unit->command("monitor/commands/clear", 10, cancel);
}

std::int64_t MHalvoMonitor::dropped(const Cancel& cancel)
{
    return _unit->integer(parameter("dropped"), cancel);
}

MHalvoMonitor::NumberedPicture MHalvoMonitor::_picture(const std::string& which, int waitMs,
                                                       const Cancel& cancel)
{
    std::string body;
    try {
        body = _unit->bytes("monitor/pictures/" + which + "wait=" + std::to_string(waitMs),
                            waitMs / 1000.0 + GraceSeconds, MostPacketBytes, cancel);
    } catch (const MTimeoutException& error) {
        // A unit that waits in vain says so; one that says nothing is broken.
        throw MHttpException(error.what());
    }
    if (body.empty())
        return {};
    const auto packet = decodePacket(std::as_bytes(std::span(body)), 2);
    if (!packet || packet->type() != MStreamObject::Frame)
        throw MRuntimeException("Packet: what the monitor sent is no picture");
    const MStreamData& data = packet->data();
    return {data.image(), data.seriesId(), data.imageId()};
}

MImage MHalvoMonitor::monitor(int timeoutMs, const Cancel& cancel)
{
    const Deadline deadline(timeoutMs / 1000.0);
    const std::string after = _lastSeries < 0 ? ""
                                              : "after=" + std::to_string(_lastSeries) + "." +
                                                    std::to_string(_lastFrame) + "&";
    try {
        auto [image, series, frame] =
            _picture("latest?" + after, deadline.milliseconds(MostWaitMs), cancel);
        if (image.empty()) {
            deadline.wait(MostWaitMs, cancel);
            nonePicture(deadline, {});
        }
        _lastSeries = series;
        _lastFrame = frame;
        return image;
    } catch (const MException&) {
        deadline.wait(MostWaitMs, cancel);
        throw;
    }
}

MHalvoMonitor::NumberedPicture MHalvoMonitor::nextAll(int timeoutMs, const Cancel& cancel)
{
    const Deadline deadline(timeoutMs / 1000.0);
    std::string reason;
    do {
        try {
            NumberedPicture picture = _picture("next?", deadline.milliseconds(MostWaitMs), cancel);
            if (!std::get<MImage>(picture).empty())
                return picture;
            reason.clear();
        } catch (const MHttpException& error) {
            reason = error.what();
        }
        deadline.wait(PauseMs, cancel);
        if (cancel)
            throw MRuntimeException("Cancelled: the next picture of the detector");
    } while (!deadline.over());
    nonePicture(deadline, reason);
}

}  // namespace morvend::imglib
