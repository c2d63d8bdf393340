// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Groups, small data sets and attributes written into an HDF5 file.
#pragma once

#include "imagelib/image/MBasicNeXusTree.h"
#include "imagelib/io/formats/hdf5/library/Hdf5Handles.h"

#include <string>

namespace morvend::imglib::hdf5 {

/// Creation properties of data sets that keep no time stamp: the same content gives the same file.
Properties untimedDataset(const std::string& path);

/// Writes into one open file; `path` names it in messages.
/// Errors: MRuntimeException as fail() throws them. Thread: one at a time.
class TreeOutput {
public:
    TreeOutput(hid_t file, std::string path);

    /// Writes every node: groups with their attributes, values as data sets. A node below a value
    /// can't exist in a file and is left out, as are paths that don't begin with '/'.
    void write(const nexus::MBasicNeXusTree& tree);
    /// Makes a group with all groups above it, unless it exists.
    void group(const std::string& name);
    /// Writes an attribute of an open object.
    void attribute(hid_t object, const std::string& name, const nexus::Value& value);

private:
    void _dataset(const std::string& name, const nexus::Node& node);

    hid_t _file;
    std::string _path;
};

}  // namespace morvend::imglib::hdf5
