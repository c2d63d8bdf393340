// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// How far a series is.
#pragma once

#include <QMetaType>

#include <cstdint>
#include <optional>

/// Counts of frames since the start of a series. A value.
struct SeriesProgress {
    std::int64_t expected = 0;  ///< frames of the series; 0: unknown
    std::int64_t received = 0;
    std::int64_t written = 0;  ///< into the file
    std::int64_t lost = 0;     ///< never arrived
    std::int64_t shown = 0;    ///< handed to the display, which leaves frames out when it is slow
    std::int64_t leftOut = 0;  ///< of the display
    double rate = 0;           ///< frames per second received over the last seconds
    /// Seconds until the disk is full at the present rate.
    std::optional<double> diskSeconds;
    bool fileOpen = false;
    std::int64_t bytes = 0;  ///< of the frames written, as they are in the file

    friend bool operator==(const SeriesProgress&, const SeriesProgress&) = default;
};

Q_DECLARE_METATYPE(SeriesProgress)
