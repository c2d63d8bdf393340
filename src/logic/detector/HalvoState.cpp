// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/detector/HalvoState.h"

namespace {

template <class T>
void copySet(const std::optional<T>& from, std::optional<T>& to)
{
    if (from)
        to = from;
}

}  // namespace

void HalvoState::override(HalvoState& target) const
{
    copySet(state, target.state);
    copySet(detectorDescription, target.detectorDescription);
    copySet(detectorNumber, target.detectorNumber);
    copySet(frameTime, target.frameTime);
    copySet(countTime, target.countTime);
    copySet(photonEnergy, target.photonEnergy);
    copySet(thresholdEnergy, target.thresholdEnergy);
    copySet(triggerMode, target.triggerMode);
    copySet(nImages, target.nImages);
    copySet(flatfieldCorrectionApplied, target.flatfieldCorrectionApplied);
    copySet(pixelMaskApplied, target.pixelMaskApplied);
}

QString HalvoState::label(Status status)
{
    switch (status) {
    case Status::NotAvailable:
        break;
    case Status::Initializing:
        return QStringLiteral("Initializing");
    case Status::Ready:
        return QStringLiteral("Ready");
    case Status::Acquiring:
        return QStringLiteral("Acquiring");
    case Status::Error:
        return QStringLiteral("Error");
    }
    return QStringLiteral("Not Available");
}
