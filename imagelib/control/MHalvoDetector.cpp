// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "imagelib/control/MHalvoDetector.h"

#include "imagelib/control/BoundedJson.h"
#include "imagelib/control/UnitClient.h"
#include "imagelib/image/MException.h"

#include <nlohmann/json.hpp>

namespace morvend::imglib {
namespace {

constexpr double AnswerSeconds = 10;
constexpr double AsLongAsItTakes = 0;

std::string parameter(const char* name) { return "detector/parameters/" + std::string(name); }

/// One member of the unit's status.
template <class Convert>
auto ofStatus(UnitClient& unit, const char* name, Convert&& convert,
              const std::atomic<bool>& cancel)
{
    const nlohmann::json status = unit.document("detector/status", cancel);
    try {
        return convert(member(status, name), name);
    } catch (const MRuntimeException& error) {
        throw MHttpException("The control unit's status makes no sense: " +
                             std::string(error.what()));
    }
}

}  // namespace

MHalvoDetector::MHalvoDetector(const std::string& host, int port)
    : _unit(std::make_unique<UnitClient>(host, port))
{}

MHalvoDetector::~MHalvoDetector() = default;

void MHalvoDetector::initialize(const Cancel& cancel)
{
    _unit->command("detector/commands/initialize", AsLongAsItTakes, cancel);
}

void MHalvoDetector::arm(const Cancel& cancel)
{
    _unit->command("detector/commands/arm", AsLongAsItTakes, cancel);
}

void MHalvoDetector::trigger(const Cancel& cancel)
{
    _unit->command("detector/commands/trigger", AsLongAsItTakes, cancel);
}

void MHalvoDetector::abort(const Cancel& cancel)
{
    try {
        _unit->command("detector/commands/abort", AnswerSeconds, cancel);
    } catch (const MTimeoutException& error) {
        throw MHttpException(error.what());
    }
}

std::string MHalvoDetector::status(const Cancel& cancel)
{
    return ofStatus(*_unit, "status", toText, cancel);
}

bool MHalvoDetector::isError(const Cancel& cancel)
{
    return ofStatus(*_unit, "error", toBool, cancel);
}

std::string MHalvoDetector::description(const Cancel& cancel)
{
    return _unit->text(parameter("description"), cancel);
}

std::string MHalvoDetector::detectorNumber(const Cancel& cancel)
{
    return _unit->text(parameter("detector_number"), cancel);
}

MHalvoDetector::IntRange MHalvoDetector::nImages(const Cancel& cancel)
{
    return _unit->intRange(parameter("nimages"), cancel);
}

MHalvoDetector::DoubleRange MHalvoDetector::frameTime(const Cancel& cancel)
{
    return _unit->doubleRange(parameter("frame_time"), cancel);
}

MHalvoDetector::DoubleRange MHalvoDetector::countTime(const Cancel& cancel)
{
    return _unit->doubleRange(parameter("count_time"), cancel);
}

MHalvoDetector::DoubleRange MHalvoDetector::photonEnergy(const Cancel& cancel)
{
    return _unit->doubleRange(parameter("photon_energy"), cancel);
}

MHalvoDetector::DoubleRange MHalvoDetector::thresholdEnergy(const Cancel& cancel)
{
    return _unit->doubleRange(parameter("threshold_energy"), cancel);
}

MHalvoDetector::TextChoice MHalvoDetector::triggerMode(const Cancel& cancel)
{
    return _unit->choice(parameter("trigger_mode"), cancel);
}

MHalvoDetector::TextChoice MHalvoDetector::element(const Cancel& cancel)
{
    return _unit->choice(parameter("element"), cancel);
}

bool MHalvoDetector::flatfieldCorrectionApplied(const Cancel& cancel)
{
    return _unit->flag(parameter("flatfield_correction_applied"), cancel);
}

bool MHalvoDetector::pixelMaskApplied(const Cancel& cancel)
{
    return _unit->flag(parameter("pixel_mask_applied"), cancel);
}

void MHalvoDetector::setNImages(int images, const Cancel& cancel)
{
    _unit->set(parameter("nimages"), images, cancel);
}

void MHalvoDetector::setFrameTime(double seconds, const Cancel& cancel)
{
    _unit->set(parameter("frame_time"), seconds, cancel);
}

void MHalvoDetector::setCountTime(double seconds, const Cancel& cancel)
{
    _unit->set(parameter("count_time"), seconds, cancel);
}

void MHalvoDetector::setPhotonEnergy(double electronVolts, const Cancel& cancel)
{
    _unit->set(parameter("photon_energy"), electronVolts, cancel);
}

void MHalvoDetector::setThresholdEnergy(double electronVolts, const Cancel& cancel)
{
    _unit->set(parameter("threshold_energy"), electronVolts, cancel);
}

void MHalvoDetector::setElement(const std::string& symbol, const Cancel& cancel)
{
    _unit->set(parameter("element"), symbol, cancel);
}

void MHalvoDetector::setTriggerMode(const std::string& mode, const Cancel& cancel)
{
    _unit->set(parameter("trigger_mode"), mode, cancel);
}

void MHalvoDetector::setFlatfieldCorrectionApplied(bool applied, const Cancel& cancel)
{
    _unit->set(parameter("flatfield_correction_applied"), applied, cancel);
}

void MHalvoDetector::setPixelMaskApplied(bool applied, const Cancel& cancel)
{
    _unit->set(parameter("pixel_mask_applied"), applied, cancel);
}

void MHalvoDetector::setAutoSummation(bool on, const Cancel& cancel)
{
    _unit->set(parameter("auto_summation"), on, cancel);
}

void MHalvoDetector::setCalibrationType(const std::string& type, const Cancel& cancel)
{
    _unit->set(parameter("calibration_type"), type, cancel);
}

void MHalvoDetector::setCountrateCorrectionApplied(bool applied, const Cancel& cancel)
{
    _unit->set(parameter("countrate_correction_applied"), applied, cancel);
}

void MHalvoDetector::setCountrateCorrectionBunchMode(const std::string& mode, const Cancel& cancel)
{
    _unit->set(parameter("countrate_correction_bunch_mode"), mode, cancel);
}

void MHalvoDetector::setVirtualPixelCorrectionApplied(bool applied, const Cancel& cancel)
{
    _unit->set(parameter("virtual_pixel_correction_applied"), applied, cancel);
}

}  // namespace morvend::imglib
