// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The commands "stats", "peaks" and "roi": the numbers that the viewer's panels show.
#pragma once

#include "bin/image/Arguments.h"
#include "bin/image/ChosenImage.h"

#include <iosfwd>

namespace tarvik::tool {

/// Analyses an image under its mask, or without one if it has none of its size.
class Analysis {
public:
    /// @throws MException if the image can't be read
    explicit Analysis(Arguments arguments);

    /// Writes the result of the command: one JSON object on one line, or a text.
    /// @throws MException for a region that is too large
    void write(std::ostream& out) const;

private:
    void _writeStatistics(std::ostream& out) const;
    void _writePeaks(std::ostream& out) const;
    void _writeRegion(std::ostream& out) const;

    Arguments _arguments;
    ChosenImage _chosen;
    morvend::imglib::MImage _mask;
};

}  // namespace tarvik::tool
