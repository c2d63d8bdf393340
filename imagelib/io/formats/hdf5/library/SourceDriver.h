// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The driver through which the HDF5 library reads files: positioned reads of a ByteSource.
#pragma once

#include "imagelib/io/formats/hdf5/library/Hdf5Handles.h"

namespace morvend::imglib::hdf5 {

/// File access properties for reading. Unlike the library's own driver this one
/// - never takes locks, and refuses what isn't a regular file instead of waiting for it;
/// - keeps each opening separate: the library would otherwise share one cache between all openings
/// of
///   a file in the process, which then show its state at the first opening;
/// - reads plain chunks without the library's chunk cache, which trusts sizes in the file;
/// - gives up soon on metadata that stays damaged in SWMR mode;
/// - reports bytes that a shortened file no longer has as an error instead of as zeros.
Properties sourceAccess();

}  // namespace morvend::imglib::hdf5
