// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A new HDF5 file that stays hidden until it is worth reading.
#pragma once

#include "imagelib/io/formats/hdf5/library/Hdf5Handles.h"

#include <cstddef>
#include <string>

namespace morvend::imglib::hdf5 {

/// Creates the file beside its final place under a hidden name. Once published it stays open and
/// may grow under its final name; never published, it is removed.
class PendingFile {
public:
    /// @param replaces  a file of that name
    /// @throws MNoFileAccessException when the file can't be created
    explicit PendingFile(const std::string& path, bool replaces = true);
    ~PendingFile();
    PendingFile(const PendingFile&) = delete;
    PendingFile& operator=(const PendingFile&) = delete;

    hid_t id() const { return _file.id(); }
    const std::string& path() const { return _path; }
    /// Makes sure of room for so many bytes more, where the file system can: a write that fails for
    /// lack of it would leave a file that no library opens. @throws MRuntimeException without room
    void reserve(std::size_t bytes);
    /// Writes all that the library still holds. @throws MRuntimeException
    void flush();
    /// Flushes and, the first time, renames to the final name. @throws MRuntimeException, also when
    /// there is a file of that name that is not to be replaced
    void publish();

private:
    std::string _path;
    std::string _temporary;  // empty once published
    bool _replaces;
    bool _reserved = false;
    File _file;
};

}  // namespace morvend::imglib::hdf5
