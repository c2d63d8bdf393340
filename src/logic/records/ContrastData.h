// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The contrast of a view: two intensities and a colour table.
#pragma once

#include <limits>

namespace morvend::imglib {
class MColorTable;
}

/// The contrast of a view, shared by the views of a group. A value.
class ContrastData {
public:
    using MColorTable = morvend::imglib::MColorTable;

    ContrastData() = default;
    ContrastData(double foreground, double background, const MColorTable* colorTable,
                 bool dragUpdate);
    virtual ~ContrastData() = default;
    ContrastData(const ContrastData&) = default;
    ContrastData& operator=(const ContrastData&) = default;

    /// The intensity at which the logarithmic part of a two-part colour table ends.
    double logForeground() const { return foreground * 10000.0; }

    /// Doubles compare by records::equal: NaN equals anything.
    bool operator==(const ContrastData& other) const;

    /// True if a contrast was ever chosen. Whoever sets a value sets it.
    bool defined = false;
    /// Intensity at the top of the linear part of the colour table.
    double foreground = std::numeric_limits<double>::min();
    /// Intensity at the bottom of the colour table.
    double background = std::numeric_limits<double>::min();
    /// Not owned; null means the default colour table of the service.
    const MColorTable* colorTable = nullptr;
    /// A change in the course of a drag: receivers may take their fast path. False asks for a full
    /// pass.
    bool dragUpdate = true;
};
