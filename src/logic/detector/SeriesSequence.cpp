// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/detector/SeriesSequence.h"

#include "imagelib/control/MHalvoDetector.h"
#include "imagelib/control/MHalvoFileWriter.h"
#include "imagelib/control/MHalvoMonitor.h"
#include "imagelib/control/MHalvoStream.h"
#include "imagelib/image/MException.h"
#include "logic/detector/CountTime.h"
#include "logic/detector/StateQueries.h"
#include "logic/support/Console.h"

using namespace morvend::imglib;
using morvend::MRuntimeException;

namespace {

constexpr int MonitorPictures = 100;      // kept by the unit
constexpr double PatienceSeconds = 10.0;  // beyond a frame time

/// Switches the unit's own file writer off, and back as it was when this object goes.
class OwnWriterOff {
public:
    using Report = std::function<void(const QString&)>;

    OwnWriterOff(const AsyncTicket& ticket, const RequestFlags& flags, const Report& report)
        : _writer(ticket.host, ticket.port)
        , _flags(flags)
        , _report(report)
        , _before(_writer.enabled(flags.cancel))
    {}
    ~OwnWriterOff() { _restore(); }
    OwnWriterOff(const OwnWriterOff&) = delete;
    OwnWriterOff& operator=(const OwnWriterOff&) = delete;

    void switchOff() { _writer.setEnabled(false, _flags.cancel); }

private:
    void _restore() noexcept
    try {
        // An abort must not prevent it; only the end of the program does not wait long for it.
        std::atomic<bool> giveUp = false;
        std::function<void()> look;
        MTimer watch;  // goes first: its thread copies the function
        look = [&] {
            if (_flags.ending)
                giveUp = true;
            else
                watch.start(LookSeconds, look);
        };
        watch.start(LookSeconds, look);
        _writer.setEnabled(_before, giveUp);
    } catch (const std::exception& failure) {
        console::warn(failure.what() + std::string("\n"));
        _report("The detector's own file writer stays off: " + QString(failure.what()));
    }

    static constexpr double LookSeconds = 1;

    MHalvoFileWriter _writer;
    const RequestFlags& _flags;
    const Report& _report;
    const bool _before;
};

}  // namespace

SeriesSequence::SeriesSequence(Detector& detector, RequestFlags& flags, const AsyncTicket& ticket,
                               const HalvoState& wanted, const Events& events)
    : _detector(detector)
    , _flags(flags)
    , _ticket(ticket)
    , _wanted(wanted)
    , _events(events)
{}

std::string SeriesSequence::_address() const
{
    return _ticket.host + ':' + std::to_string(_ticket.port);
}

void SeriesSequence::run()
{
    _openSource();
    _setCorrections();
    _setTrigger();
    if (_wanted.nImages)
        Retry(_flags).run([&] { _detector.setNImages(_wanted.nImages->value, _flags.cancel); });
    _setTimes();
    _setEnergies();
    _expose(_configuration());
}

void SeriesSequence::_openSource()
{
    try {
        _openStream();
    } catch (const morvend::MException&) {
        if (_flags.abort)
            throw;
        console::print("No stream found on " + _address() + ". Using monitor instead.\n");
        _openMonitor();
    }
}

void SeriesSequence::_openStream()
{
    Retry(_flags).run([&] {
        MHalvoStream stream(_ticket.host, _ticket.port);
        const std::string version = stream.version();
        console::print("Found stream version " + version + " on " + _address() + '\n');
        _hasStream = true;
        stream.setEnabled(true, _flags.cancel);
        stream.setHeaderDetail("all", _flags.cancel);
    });
}

void SeriesSequence::_openMonitor()
{
    Retry(_flags).run([&] {
        MHalvoMonitor monitor(_ticket.host, _ticket.port);
        monitor.setEnabled(true, _flags.cancel);
        monitor.setBufferSize(MonitorPictures, _flags.cancel);
        monitor.clear(_flags.cancel);
    });
}

void SeriesSequence::_setCorrections()
{
    Retry(_flags).run([&] { _detector.setAutoSummation(true, _flags.cancel); });
    Retry(_flags).run([&] { _detector.setCalibrationType("standard", _flags.cancel); });
    Retry(_flags).run([&] { _detector.setCountrateCorrectionApplied(true, _flags.cancel); });
    Retry(_flags).run(
        [&] { _detector.setCountrateCorrectionBunchMode("continuous", _flags.cancel); });
    Retry(_flags).run([&] { _detector.setVirtualPixelCorrectionApplied(true, _flags.cancel); });
}

void SeriesSequence::_setTrigger()
{
    Retry(_flags).run([&] {
        if (_automatic())
            _detector.setTriggerMode("ints", _flags.cancel);
        else if (_wanted.triggerMode)
            _detector.setTriggerMode(_wanted.triggerMode->value.toLatin1().toStdString(),
                                     _flags.cancel);
        if (const auto applied = _wanted.flatfieldCorrectionApplied)
            _detector.setFlatfieldCorrectionApplied(*applied, _flags.cancel);
        if (const auto applied = _wanted.pixelMaskApplied)
            _detector.setPixelMaskApplied(*applied, _flags.cancel);
    });
}

void SeriesSequence::_setTimes()
{
    if (!_wanted.frameTime)
        return;
    const double frameTime = _wanted.frameTime->value;
    double countTime = frameTime;
    bool reached = true;
    const auto setCountTime = [&] {
        reached = setNearestCountTime(_detector, countTime, _flags.cancel);
    };
    if (_automatic())
        Retry(_flags).run(setCountTime);
    if (_wanted.countTime) {
        countTime = _wanted.countTime->value;
        Retry(_flags).run(setCountTime);
    }
    Retry(_flags).run([&] { _detector.setFrameTime(frameTime, _flags.cancel); });
    // With another frame time other count times are accepted.
    if (!reached)
        Retry(_flags).run(setCountTime);
}

void SeriesSequence::_setEnergies()
{
    if (_wanted.photonEnergy)
        Retry(_flags).run(
            [&] { _detector.setPhotonEnergy(_wanted.photonEnergy->value, _flags.cancel); });
    // The detector chooses the threshold by itself otherwise.
    if (!_automatic() && _wanted.thresholdEnergy)
        Retry(_flags).run(
            [&] { _detector.setThresholdEnergy(_wanted.thresholdEnergy->value, _flags.cancel); });
}

HalvoState SeriesSequence::_configuration()
{
    StateQueries queries(_detector, _flags);
    HalvoState state = queries.all({});
    if (!state.nImages)
        throw MRuntimeException("Cannot request number of images");
    state = queries.frameTime(std::move(state));
    if (!state.frameTime)
        throw MRuntimeException("Cannot request frame time");
    return state;
}

void SeriesSequence::_expose(const HalvoState& configuration)
{
    _events.configured(configuration);
    _events.startFileWriter(configuration.nImages->value);
    OwnWriterOff ownWriter(_ticket, _flags, _events.error);
    ownWriter.switchOff();
    if (!_flags.cancel)
        _detector.arm(_flags.cancel);
    if (!_flags.cancel) {
        const double timeout = configuration.frameTime->value + PatienceSeconds;
        (_hasStream ? _events.startStream : _events.startMonitor)(timeout);
        _detector.trigger(_flags.cancel);
    }
    _events.exposed();
}
