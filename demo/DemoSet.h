// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Series of demo frames on disk, in all formats.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace tarvik::demo {

enum class Format { Cbf, Tiff, Edf, Hdf5 };

/// One series: DIR/<size>/<format>/demo_00001.<extension>, or demo_master.h5 with its data files.
struct SeriesPlan {
    std::string size;  ///< as detectorNamed() takes it
    int frames = 1;
    std::vector<Format> formats;
};

/// The name of a format's folder: "cbf", "tiff", "edf", "hdf5".
const char* folderOf(Format format);

/// Writes a series in each of its formats; the same seed gives the same files, byte for byte.
/// `progress` is called after each frame with the number done. Existing files are replaced.
/// @throws MException naming the file that can't be written
void writeSeries(const std::string& directory, const SeriesPlan& plan, std::uint64_t seed,
                 const std::function<void(int)>& progress);

}  // namespace tarvik::demo
