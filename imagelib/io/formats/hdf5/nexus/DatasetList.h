// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// All that a file can show.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace morvend::imglib {

/// A data set that can be shown, or the numbered blocks of one group, which are shown as one.
struct Hdf5Dataset {
    std::string path;                ///< as openHdf5At() takes it
    bool isDefault = false;          ///< shown when no path is given
    std::size_t blocks = 1;          ///< data sets at this path
    std::size_t missing = 0;         ///< how many of them have a dead link (file or object missing)
    std::vector<std::size_t> shape;  ///< of the (first) data set; empty when it can't be opened
    std::string type;                ///< of its elements, such as "uint16"; empty likewise
    std::string groupClass;          ///< NX_class of the group that it is in, if any
    std::string leadsTo;             ///< "FILE::/path" or "/path" the target of a (first) link
    std::string failure;             ///< of the first dead link, naming the file
};

/// All data sets of a file that can be shown as images, in the order of their paths, including
/// masks and tables, and links that should lead to one. Looks at 10,000 groups and data sets and
/// opens 256 other files at most.
/// @throws MException if it isn't an HDF5 file or can't be read
std::vector<Hdf5Dataset> listHdf5(const std::string& path);

}  // namespace morvend::imglib
