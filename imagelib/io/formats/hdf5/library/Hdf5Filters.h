// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Bitshuffle and LZ4 as filters of the HDF5 library itself, so that no plug-in has to be installed.
#pragma once

namespace morvend::imglib::hdf5 {

/// Registers the filters 32008 and 32004 with the library, once in the process; later calls do
/// nothing. From then on the library reads and writes such chunks by our own codecs, which check
/// all lengths in the file, and takes the values of the filter as they are given: for 32008 these
/// are {0, 3, element size, elements of a block or 0, packing}.
///
/// The library does not compare what a filter returns with the size of a chunk: frames of foreign
/// files go through codec::decodeChunk, which does.
/// @throws MRuntimeException when the library refuses them. Thread: any.
void registerFilters();

}  // namespace morvend::imglib::hdf5
