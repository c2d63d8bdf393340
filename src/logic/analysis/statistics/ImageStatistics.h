// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Numbers over a whole image.
#pragma once

/// What is known of all the pixels of one image under its mask. Filled once by ComputeStatistics
/// on a loader's thread, then shared read-only.
struct ImageStatistics {
    /// The default contrast: intensities at the top of the linear part and at the bottom of the
    /// colour table.
    double foreground = 0;
    double background = 0;
};
