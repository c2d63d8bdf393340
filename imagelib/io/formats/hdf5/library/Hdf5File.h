// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// One HDF5 file, opened for reading.
#pragma once

#include "imagelib/io/formats/hdf5/library/Hdf5Handles.h"

#include <cstdint>
#include <memory>
#include <string>

namespace morvend::imglib::hdf5 {

/// Tells one state of a file on disk from another.
struct FileState {
    std::uint64_t device = 0;
    std::uint64_t node = 0;
    std::uint64_t size = 0;
    std::int64_t changed = 0;  // nanoseconds
    bool operator==(const FileState&) const = default;

    /// The state of a path now; all zero when there is no regular file.
    static FileState of(const std::string& path);
    bool exists() const { return *this != FileState(); }
};

/// An open file. Holds no lock, so that a writer may go on; what it shows is the state at opening.
/// Thread: any, one at a time.
class Hdf5File {
public:
    /// @throws MNoFileAccessException when there is no such file, MRuntimeException with the
    /// library's reason when it can't be opened
    explicit Hdf5File(const std::string& path);

    const std::string& path() const { return _path; }
    hid_t id() const { return _file.id(); }
    /// Bytes of the file at opening: what it holds can't be larger than this times the best ratio
    /// of a compression.
    std::uint64_t size() const { return _state.size; }
    /// Is the file on disk still the one that was opened, unchanged?
    bool current() const { return FileState::of(_path) == _state; }

private:
    std::string _path;
    FileState _state;
    File _file;
};

using Hdf5FilePtr = std::shared_ptr<const Hdf5File>;

}  // namespace morvend::imglib::hdf5
