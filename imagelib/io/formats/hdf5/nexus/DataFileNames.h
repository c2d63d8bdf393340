// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The names by which the files and the blocks of one HDF5 series belong together.
#pragma once

#include <string>
#include <vector>

namespace morvend::imglib::hdf5 {

/// True for a data file of a series: "<prefix>_data.<ext>" or "<prefix>_data_<digits>.<ext>".
bool isDataFile(const std::string& path);

/// The master file beside a data file: "<prefix>_master" with the same extension, "h5" or "hdf5".
/// Empty if there isn't one.
std::string masterOf(const std::string& dataFile);

/// The numbered data files of the same prefix and extension beside a data file, including it, by
/// number; the file alone when it has no number.
std::vector<std::string> dataFilesBeside(const std::string& dataFile);

/// Checks for the name of a block of images, "data" or "data_" and digits. @returns the number of
/// the block, -1 for "data" and -2 for any other name
long long blockNumber(const std::string& name);

}  // namespace morvend::imglib::hdf5
