// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The option "--datasets" of "info": what an HDF5 file can show.
#pragma once

#include "bin/image/Arguments.h"

#include <iosfwd>

namespace tarvik::tool {

/// Lists the data sets of the file by their paths, as text or as one JSON object.
class DatasetReport {
public:
    /// @throws MException if it isn't an HDF5 file or can't be read
    static void run(const Arguments& arguments, std::ostream& out);
};

}  // namespace tarvik::tool
