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
    std::size_t missing = 0;         ///< of them, whose links lead to no file or to nothing in it
    std::vector<std::size_t> shape;  ///< of the (first) data set; empty when it can't be opened
    std::string type;                ///< of its elements, such as "uint16"; empty as well
    std::string groupClass;          ///< NX_class of the group that it is in, if any
    std::string leadsTo;             ///< "FILE::/path" or "/path" behind a (first) link
    std::string failure;             ///< of the first link that is dead, naming the file
};

/// All data sets of a file that can be shown as images, in the order of their paths, also masks
/// and tables, and links that should lead to some. Looks at 10,000 groups and data sets and opens
/// 256 other files at most.
/// @throws MException when it is no HDF5 file or can't be read
std::vector<Hdf5Dataset> listHdf5(const std::string& path);

}  // namespace morvend::imglib
