// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The command line of tarvik-image as a record.
#pragma once

#include "bin/image/UsageError.h"
#include "logic/analysis/statistics/ContrastRange.h"
#include "logic/records/StatisticsData.h"

#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tarvik::tool {

/// Size of a picture against its image: `up` picture pixels for `down` image pixels. One of the
/// two is 1.
struct Scale {
    int up = 1;
    int down = 1;
    bool operator==(const Scale&) const = default;
};

struct Arguments {
    enum class Command {
        Help,
        Version,
        Info,
        Header,
        Stats,
        Peaks,
        Roi,
        Geometry,
        Thumbnail,
        Play,
        Convert,
        Render
    };
    enum class Format { Cbf, Tiff, Hdf5, Png };

    Command command = Command::Help;
    std::string file;
    std::vector<std::string> files;  // header
    std::string output;              // convert, render
    Format format = Format::Cbf;     // of the output, by its extension
    std::optional<int> frame;        // number in the series; the one named by the file if absent
    bool json = false;               // info, stats, peaks, roi, geometry, thumbnail
    // info
    bool rawHeader = false;
    bool datasets = false;
    std::vector<std::pair<int, int>> pixels;  // x, y
    std::vector<double> countAt;              // stats: values up to which pixels are counted
    int count = 0;                            // peaks
    StatisticsData region;                    // roi
    bool series = false;
    // header
    std::vector<std::pair<std::string, float>> values;  // field, value
    bool dryRun = false;
    bool undo = false;
    // geometry
    std::vector<std::pair<int, int>> places;  // x, y
    int rings = 0;
    // play
    int playFrames = std::numeric_limits<int>::max();  // at most, after the first one
    bool preloader = true;
    // convert
    bool all = false;
    // render
    std::string table = "HDR";
    std::optional<double> background;
    std::optional<double> foreground;
    std::optional<ContrastRange> contrast;
    Scale scale;
    bool largest = false;

    /// Reads the words after the program's name. Options may be anywhere after the command, as
    /// "--name value" or "--name=value"; "--" ends them.
    /// @throws UsageError
    static Arguments parse(const std::vector<std::string>& words);

    /// The text of --help.
    static std::string usage();
};

}  // namespace tarvik::tool
