// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Metadata values of data sets and attributes, read with a bound on their size.
#pragma once

#include "imagelib/image/MBasicNeXusTree.h"
#include "imagelib/io/formats/hdf5/library/Hdf5Handles.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace morvend::imglib::hdf5 {

/// Most elements of a value in the metadata tree; larger arrays are data.
inline constexpr std::size_t MostTreeElements = 4096;

/// The extents of a data set or an attribute space; empty for a scalar.
/// Nothing for the null space and for what can't be read.
std::optional<std::vector<hsize_t>> extents(hid_t space);
/// The extents of a data set.
std::optional<std::vector<hsize_t>> datasetExtents(hid_t dataset);

/// A data set as a value: integers, floating numbers, texts (fixed or variable length) and
/// enumerations, as a scalar when it has one element. Nothing when it has more than `most`
/// elements, more than 1 MiB of text, another type, or can't be read.
std::optional<nexus::Value> readDataset(hid_t dataset, std::size_t most = MostTreeElements);

/// An attribute as a value, under the same rules; nothing if it doesn't exist.
std::optional<nexus::Value> readAttribute(hid_t object, const char* name);
/// A text attribute; empty if it doesn't exist.
std::string textAttribute(hid_t object, const char* name);
/// All attributes that can be read.
std::map<std::string, nexus::Value> readAttributes(hid_t object);

}  // namespace morvend::imglib::hdf5
