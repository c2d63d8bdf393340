// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What h5py with the plug-ins finds in files that are written here, from one process for all tests.
#pragma once

#include "tests/imagelib/io/FileCases.h"

#include <nlohmann/json.hpp>

#include <sys/stat.h>

namespace tarvik::tests {

/// Data sets with values, attributes and check sums, by path, links followed; or "error".
inline nlohmann::json readByH5py(const std::string& path)
{
    static const TempFolder folder;
    static FILE* const peer = [] {
        const std::string answer = folder / "answer";
        const std::string command = TARVIK_PYTHON " " TARVIK_SOURCE_DIR
                                                  "/tests/imagelib/io/formats/hdf5/dump_nexus.py " +
                                    answer;
        return ::mkfifo(answer.c_str(), 0600) == 0 ? ::popen(command.c_str(), "w") : nullptr;
    }();
    std::fputs((path + '\n').c_str(), peer);
    std::fflush(peer);
    return nlohmann::json::parse(contentOf(folder / "answer"));
}

/// Sum over i of (i mod 1000 + 1) * pixel, as the script computes it for each image.
template <class T>
double weightedSum(std::span<const T> pixels)
{
    double sum = 0;
    for (std::size_t i = 0; i < pixels.size(); ++i)
        sum += static_cast<double>(i % 1000 + 1) * static_cast<double>(pixels[i]);
    return sum;
}

}  // namespace tarvik::tests
