// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// HDF5 files opened for reading: the few of one series that are open at a time, and the way along
// links from file to file.
#pragma once

#include "imagelib/io/formats/base/FileStamp.h"
#include "imagelib/io/formats/hdf5/library/Hdf5Handles.h"

#include <cstdint>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace morvend::imglib::hdf5 {

/// An open file. Holds no lock, so that a writer may go on; it shows the state at opening.
/// Thread: any, one at a time.
class Hdf5File {
public:
    /// @throws MNoFileAccessException if the file doesn't exist, MRuntimeException with the
    /// library's reason when it can't be opened
    explicit Hdf5File(const std::string& path);

    const std::string& path() const { return _path; }
    hid_t id() const { return _file.id(); }
    /// Bytes of the file at opening: what it holds can't be larger than this times the best ratio
    /// of a compression.
    std::uint64_t size() const { return _stamp.size(); }
    /// True if the file on disk is still the one that was opened, unchanged.
    bool current() const { return FileStamp(_path) == _stamp; }

private:
    std::string _path;
    FileStamp _stamp;
    File _file;
};

using Hdf5FilePtr = std::shared_ptr<const Hdf5File>;

/// The name of a file without its folder.
std::string baseName(const std::string& path);

/// A file and the path of an object in it.
struct ObjectPath {
    std::string file;
    std::string path;
};

/// An object that was found along links: its own file and path, and the object, opened.
struct OpenedObject {
    Hdf5FilePtr file;
    std::string path;
    Object object;
    bool isGroup() const { return H5Iget_type(object.id()) == H5I_GROUP; }
    bool isDataset() const { return H5Iget_type(object.id()) == H5I_DATASET; }
};

/// Opens files, keeps the few most recently used, and opens a file again when it has changed on
/// disk. Follows soft and external links itself, to tell a dead link from a missing one.
/// Thread: callers take turns.
class OpenFiles {
public:
    /// More than a frame needs when each module of a detector has a file of its own.
    static constexpr std::size_t MostOpen = 24;
    /// Links that may lead to one object; more are a loop.
    static constexpr int MostLinks = 16;

    /// The file, in its present state on disk.
    /// @throws as Hdf5File
    Hdf5FilePtr file(const std::string& path);

    /// The object at an absolute path.
    /// @returns nothing when the file has no such link
    /// @throws MException when a link is dead, names a file that can't be opened, or goes in
    /// a circle
    std::optional<OpenedObject> find(const Hdf5FilePtr& file, const std::string& path);

    /// Where a link leads, without opening what it names; a hard link leads to itself.
    /// @throws MRuntimeException if the link doesn't exist
    ObjectPath target(const Hdf5FilePtr& file, const std::string& path);

    /// Closes all files.
    void close() { _open.clear(); }
    std::size_t openCount() const { return _open.size(); }

    /// The path of a file that another one names: as given, else beside that other file by
    /// relative path, else beside it by its base name, also where `from` is a symbolic link.
    /// If none exists, returns the path beside `from`.
    static std::string locate(const std::string& from, const std::string& name);

private:
    std::list<Hdf5FilePtr> _open;  // the last used first
};

}  // namespace morvend::imglib::hdf5
