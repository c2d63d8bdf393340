// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The files of one series that are open at a time, and the way along links from file to file.
#pragma once

#include "imagelib/io/formats/hdf5/library/Hdf5File.h"

#include <list>
#include <optional>
#include <string>
#include <vector>

namespace morvend::imglib::hdf5 {

/// Where something lies: a file and the path of an object in it.
struct Place {
    std::string file;
    std::string path;
};

/// An object that was found along links: its own file and path, and the object, opened.
struct Found {
    Hdf5FilePtr file;
    std::string path;
    Object object;
    bool isGroup() const { return H5Iget_type(object.id()) == H5I_GROUP; }
    bool isDataset() const { return H5Iget_type(object.id()) == H5I_DATASET; }
};

/// Opens files, keeps the few that were used last, and opens a file anew when it has changed on
/// disk. Follows soft and external links itself, so that a dead one is told from a missing one.
/// Thread: callers take turns.
class Hdf5Files {
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
    /// @throws MException when a link leads nowhere, names a file that can't be opened, or goes in
    /// a circle
    std::optional<Found> find(const Hdf5FilePtr& file, const std::string& path);

    /// Where a link leads, without opening what it names; a hard link leads to itself.
    /// @throws MRuntimeException when there is no such link
    Place target(const Hdf5FilePtr& file, const std::string& path);

    /// Closes all files.
    void close() { _open.clear(); }
    std::size_t openCount() const { return _open.size(); }

    /// The path of a file that another one names: as it stands, else beside that other file by
    /// relative path, else beside it by its base name, also where `from` is a symbolic link.
    /// When none exists, the path beside `from` is the answer.
    static std::string locate(const std::string& from, const std::string& name);

private:
    std::list<Hdf5FilePtr> _open;  // the last used first
};

}  // namespace morvend::imglib::hdf5
