// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// All that a file can show.
#pragma once

#include "imagelib/io/formats/hdf5/nexus/NexusReader.h"

namespace morvend::imglib::hdf5 {

/// As listHdf5(), of a file that is known to be HDF5.
std::vector<Hdf5Dataset> listDatasets(const std::string& path);

}  // namespace morvend::imglib::hdf5
