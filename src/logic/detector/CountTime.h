// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Frame time and count time, which limit each other.
#pragma once

#include <atomic>

namespace morvend::imglib {
class MHalvoDetector;
}

/// Sets a count time, or the nearest one that the detector accepts at its present frame time.
/// @returns false if it had to be another one
bool setNearestCountTime(morvend::imglib::MHalvoDetector& detector, double seconds,
                         const std::atomic<bool>& cancel);
