// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Requests for parameters: what is checked, written, and read back.
#include "imagelib/control/MHalvoDetector.h"
#include "logic/detector/CountTime.h"
#include "logic/detector/HalvoAsync.h"
#include "logic/detector/RangeCheck.h"
#include "logic/detector/StateQueries.h"
#include "logic/support/Console.h"

#include <utility>

using Q = StateQueries;

void HalvoAsync::_request(const AsyncTicket& ticket, const char* prefix, const Work& work,
                          Queries answers)
{
    try {
        HalvoState state;
        if (_begin(ticket)) {
            Detector detector(ticket.host, ticket.port);
            work(detector);
            StateQueries queries(detector, _flags);
            for (const Query query : answers)
                state = (queries.*query)(std::move(state));
            emit configSignal(true, state);
        } else {
            emit configSignal(false, {});
        }
    } catch (const std::exception& failure) {
        console::warn(failure.what() + std::string("\n"));
        emit configSignal(false, {});
        emit error(prefix + QString::fromUtf8(failure.what()));
    }
    emit finished(ticket.id);
}

void HalvoAsync::_read(const AsyncTicket& ticket, const char* prefix, Query query)
{
    _request(ticket, prefix, [](Detector&) {}, {query});
}

template <class Value, class Known, class Parameter>
void HalvoAsync::_write(const AsyncTicket& ticket, const char* prefix, const Value& value,
                        Known (Detector::*read)(const Cancel&),
                        void (Detector::*write)(Parameter, const Cancel&), Queries answers)
{
    _request(
        ticket, prefix,
        [&](Detector& detector) {
            checkWithin(value, (detector.*read)(_flags.cancel));
            (detector.*write)(value, _flags.cancel);
        },
        answers);
}

void HalvoAsync::_switch(const AsyncTicket& ticket, const char* prefix, bool on,
                         void (Detector::*write)(bool, const Cancel&), Query answer)
{
    _request(ticket, prefix, [&](Detector& detector) { (detector.*write)(on, _flags.cancel); },
             {answer});
}

// What a detector changes with a parameter is read back with it.

void HalvoAsync::setNImages(int images, const AsyncTicket& ticket)
{
    _write(ticket, "Error setting number of images: ", images, &Detector::nImages,
           &Detector::setNImages, {&Q::nImages});
}
void HalvoAsync::nImages(const AsyncTicket& ticket)
{
    _read(ticket, "Error requesting number of images: ", &Q::nImages);
}

void HalvoAsync::setFrameTime(double seconds, const AsyncTicket& ticket)
{
    _request(ticket, "Error setting frame time: ",
             [&](Detector& detector) {
                 checkWithin(seconds, detector.frameTime(_flags.cancel));
                 const bool automatic = ticket.mode == HalvoMode::Automatic;
                 // As long as the frame: what is too long at the old frame time may do at the new
                 // one.
                 const bool reached =
                     !automatic || setNearestCountTime(detector, seconds, _flags.cancel);
                 detector.setFrameTime(seconds, _flags.cancel);
                 if (!reached)
                     setNearestCountTime(detector, seconds, _flags.cancel);
             },
             {&Q::countTime, &Q::frameTime});
}
void HalvoAsync::frameTime(const AsyncTicket& ticket)
{
    _read(ticket, "Error requesting image time: ", &Q::frameTime);
}

void HalvoAsync::setCountTime(double seconds, const AsyncTicket& ticket)
{
    _write(ticket, "Error setting count time: ", seconds, &Detector::countTime,
           &Detector::setCountTime, {&Q::countTime, &Q::frameTime});
}
void HalvoAsync::countTime(const AsyncTicket& ticket)
{
    _read(ticket, "Error requesting image time: ", &Q::countTime);
}

void HalvoAsync::setPhotonEnergy(double electronVolts, const AsyncTicket& ticket)
{
    _write(ticket, "Error setting photon energy: ", electronVolts, &Detector::photonEnergy,
           &Detector::setPhotonEnergy, {&Q::photonEnergy, &Q::thresholdEnergy});
}
void HalvoAsync::photonEnergy(const AsyncTicket& ticket)
{
    _read(ticket, "Error requesting photon energy: ", &Q::photonEnergy);
}

void HalvoAsync::setThresholdEnergy(double electronVolts, const AsyncTicket& ticket)
{
    _write(ticket, "Error setting threshold energy: ", electronVolts, &Detector::thresholdEnergy,
           &Detector::setThresholdEnergy, {&Q::thresholdEnergy});
}
void HalvoAsync::thresholdEnergy(const AsyncTicket& ticket)
{
    _read(ticket, "Error requesting threshold energy: ", &Q::thresholdEnergy);
}

void HalvoAsync::setElement(const QString& symbol, const AsyncTicket& ticket)
{
    _write(ticket, "Error setting element: ", symbol.toLatin1().toStdString(), &Detector::element,
           &Detector::setElement, {&Q::photonEnergy, &Q::thresholdEnergy});
}

void HalvoAsync::setTriggerMode(const QString& mode, const AsyncTicket& ticket)
{
    _write(ticket, "Error setting trigger mode: ", mode.toLatin1().toStdString(),
           &Detector::triggerMode, &Detector::setTriggerMode,
           {&Q::triggerMode, &Q::countTime, &Q::frameTime});
}
void HalvoAsync::triggerMode(const AsyncTicket& ticket)
{
    _read(ticket, "Error requesting trigger mode: ", &Q::triggerMode);
}

void HalvoAsync::setFlatfieldCorrectionApplied(bool applied, const AsyncTicket& ticket)
{
    _switch(ticket, "Error setting flatfield correction applied: ", applied,
            &Detector::setFlatfieldCorrectionApplied, &Q::flatfieldCorrectionApplied);
}
void HalvoAsync::flatfieldCorrectionApplied(const AsyncTicket& ticket)
{
    _read(ticket,
          "Error requesting flatfield correction applied: ", &Q::flatfieldCorrectionApplied);
}

void HalvoAsync::setPixelMaskApplied(bool applied, const AsyncTicket& ticket)
{
    _switch(ticket, "Error setting pixel mask applied: ", applied, &Detector::setPixelMaskApplied,
            &Q::pixelMaskApplied);
}
void HalvoAsync::pixelMaskApplied(const AsyncTicket& ticket)
{
    _read(ticket, "Error requesting pixel mask applied: ", &Q::pixelMaskApplied);
}
