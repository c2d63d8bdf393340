// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Questions to a detector, asked again when there is no answer.
#pragma once

#include "logic/detector/HalvoState.h"
#include "logic/detector/Retry.h"

#include <functional>

namespace morvend::imglib {
class MHalvoDetector;
}

/// Each function reads one thing, by a Retry, and returns the state it was given with that field
/// filled. Failures are those of MHalvoDetector, but for state(). Thread: that of the detector
/// object.
class StateQueries {
public:
    using Detector = morvend::imglib::MHalvoDetector;

    StateQueries(Detector& detector, RequestFlags& flags)
        : _detector(detector)
        , _flags(flags)
    {}

    /// Description, number and status, with four lines on standard output. Never throws: without
    /// an answer the status is NotAvailable after an `error`, and after an abort, which says
    /// nothing about the detector, nothing is filled in.
    HalvoState state(HalvoState known, const std::function<void(const QString&)>& error);
    /// All of the following.
    HalvoState all(HalvoState known);
    HalvoState nImages(HalvoState known);
    HalvoState frameTime(HalvoState known);
    HalvoState countTime(HalvoState known);
    HalvoState photonEnergy(HalvoState known);
    HalvoState thresholdEnergy(HalvoState known);
    HalvoState triggerMode(HalvoState known);
    HalvoState flatfieldCorrectionApplied(HalvoState known);
    HalvoState pixelMaskApplied(HalvoState known);

private:
    void _readState(HalvoState& known);

    Detector& _detector;
    RequestFlags& _flags;
};
