// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Keeps outputs from replacing the files that they are made from.
#pragma once

#include "imagelib/io/MImageSeries.h"

#include <cstdint>
#include <set>
#include <string>
#include <utility>

namespace tarvik::tool {

/// Recognises the files of a series under any name or link.
class SourceGuard {
public:
    /// `path` is the file that the series was opened by.
    SourceGuard(const std::string& path, const morvend::imglib::MImageSeries& series);

    /// @throws MBadParameterException when `target` is one of the files
    void check(const std::string& target);

private:
    using Identity = std::pair<std::uint64_t, std::uint64_t>;
    void add(const std::string& path);
    void collect();

    std::string _path;
    const morvend::imglib::MImageSeries& _series;
    std::set<Identity> _sources;  // filled when the first target exists
};

}  // namespace tarvik::tool
