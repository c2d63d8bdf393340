// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/detector/CountTime.h"

#include "imagelib/control/MHalvoDetector.h"

#include <algorithm>

bool setNearestCountTime(morvend::imglib::MHalvoDetector& detector, double seconds,
                         const std::atomic<bool>& cancel)
{
    const auto [now, min, max] = detector.countTime(cancel);
    const double nearest = std::max(min, std::min(seconds, max));
    detector.setCountTime(nearest, cancel);
    return nearest == seconds;
}
