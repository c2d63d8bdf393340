// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Parameters of the detector: what is known, and requests for what is not.
#include "logic/detector/HalvoAsync.h"
#include "logic/detector/HalvoService.h"

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

void HalvoService::_connectParameters(HalvoAsync& requests)
{
    using S = HalvoService;
    using A = HalvoAsync;
    connect(this, &S::setNImagesSignal, &requests, &A::setNImages);
    connect(this, &S::nImagesSignal, &requests, &A::nImages);
    connect(this, &S::setFrameTimeSignal, &requests, &A::setFrameTime);
    connect(this, &S::frameTimeSignal, &requests, &A::frameTime);
    connect(this, &S::setCountTimeSignal, &requests, &A::setCountTime);
    connect(this, &S::countTimeSignal, &requests, &A::countTime);
    connect(this, &S::setPhotonEnergySignal, &requests, &A::setPhotonEnergy);
    connect(this, &S::photonEnergySignal, &requests, &A::photonEnergy);
    connect(this, &S::setElementSignal, &requests, &A::setElement);
    connect(this, &S::setThresholdEnergySignal, &requests, &A::setThresholdEnergy);
    connect(this, &S::thresholdEnergySignal, &requests, &A::thresholdEnergy);
    connect(this, &S::setTriggerModeSignal, &requests, &A::setTriggerMode);
    connect(this, &S::triggerModeSignal, &requests, &A::triggerMode);
    connect(this, &S::setFlatfieldCorrectionAppliedSignal, &requests,
            &A::setFlatfieldCorrectionApplied);
    connect(this, &S::flatFieldCorrectionAppliedSignal, &requests, &A::flatfieldCorrectionApplied);
    connect(this, &S::setPixelMaskAppliedSignal, &requests, &A::setPixelMaskApplied);
    connect(this, &S::pixelMaskAppliedSignal, &requests, &A::pixelMaskApplied);
}
