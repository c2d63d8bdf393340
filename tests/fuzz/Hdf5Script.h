// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Makes HDF5 files of any shape by a script of bytes.
#pragma once

#include "tests/fuzz/Input.h"

#include <string>

namespace tarvik::fuzz {

/// Files that a script writes into `folder`: Hdf5Files[0] and whichever others it turns to. Each
/// step is a byte that says what to make, followed by its parameters: groups, arrays of any type,
/// rank, size, layout and filters, raw chunks, attributes, links of all kinds and virtual data
/// sets, under names that the reader looks for. What the library refuses is left out. All files are
/// valid: what goes wrong with them goes wrong in our code.
void writeHdf5Files(const std::string& folder, Input& script);

/// The names of the files.
inline constexpr const char* Hdf5Files[] = {"s_master.h5", "s_data_000001.h5", "s_data_000002.h5",
                                            "other.h5"};

}  // namespace tarvik::fuzz
