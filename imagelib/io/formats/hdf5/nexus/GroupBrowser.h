// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Looks at the groups and data sets of a file by their paths.
#pragma once

#include "imagelib/io/formats/hdf5/library/OpenFiles.h"

#include <string>
#include <vector>

namespace morvend::imglib::hdf5 {

/// One link of a group.
struct GroupLink {
    std::string name;
    H5L_type_t type;
};

/// The links of a group by name, at most a given number of them.
std::vector<GroupLink> linksOf(hid_t group, std::size_t most);

/// The kind of a data set, judged by its extents and elements.
enum class ArrayKind {
    None,   ///< no numbers, or fewer than two or more than four extents
    Table,  ///< frames that are narrower than 16 pixels one way: spectra, positions, matrices
    Image
};
ArrayKind arrayKind(hid_t dataset);

/// True if a path names something made for images but not an image: a mask, a flat or dark field, a
/// table of corrections, or anything among a detector's settings.
bool isAuxiliary(const std::string& path);

/// A file seen by paths; "" is the root. Only isDead() tells a dead link from a missing one.
/// Thread: callers take turns.
class GroupBrowser {
public:
    static constexpr std::size_t MostMembers = 100'000;

    GroupBrowser(OpenFiles& files, Hdf5FilePtr file)
        : _files(files)
        , _file(std::move(file))
    {}

    const Hdf5FilePtr& file() const { return _file; }
    OpenFiles& files() const { return _files; }

    std::optional<OpenedObject> find(const std::string& path) const;
    std::optional<OpenedObject> findGroup(const std::string& path) const;
    /// True if there is a dead link on the way or at the end.
    bool isDead(const std::string& path) const;
    /// True if a link leads to a file that doesn't exist.
    bool isLost(const std::string& path) const;
    /// A text attribute of a group; empty if there isn't one. Of several texts the first.
    std::string attribute(const std::string& path, const char* name) const;
    std::string classOf(const std::string& path) const { return attribute(path, "NX_class"); }
    /// Names of the links of a group.
    std::vector<std::string> members(const std::string& path) const;
    /// Groups of an entry's instruments that are detectors by class or name.
    std::vector<std::string> detectors(const std::string& entry) const;

    /// The object that a name in an attribute of a group means; it may be a path of its own.
    static std::string below(const std::string& path, const std::string& name);
    /// The members "data_<number>" of a group, by number.
    static std::vector<std::string> numbered(const std::string& path,
                                             const std::vector<std::string>& members);

private:
    OpenFiles& _files;
    Hdf5FilePtr _file;
};

}  // namespace morvend::imglib::hdf5
