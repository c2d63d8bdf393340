// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Opening, also of a file that is being written; open files by last use; links followed one step at
// a time.
#include "imagelib/io/formats/hdf5/library/OpenFiles.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/formats/hdf5/library/Hdf5Filters.h"
#include "imagelib/io/formats/hdf5/library/SourceDriver.h"

#include <algorithm>
#include <deque>
#include <filesystem>

#include <fcntl.h>
#include <unistd.h>

namespace morvend::imglib::hdf5 {

namespace fs = std::filesystem;

namespace {

/// True if a writer has opened the file in SWMR mode (single writer, multiple readers). Its mark is
/// in the superblock, after the user block if there is one. Opened without that mode, data
/// appended since would be refused as beyond the end.
bool hasSwmrWriter(const std::string& path, hid_t file)
{
    hsize_t userBlock = 0;
    const Handle<H5Pclose> creation(H5Fget_create_plist(file));
    if (!creation || H5Pget_userblock(creation.id(), &userBlock) < 0)
        return false;
    unsigned char start[12] = {};
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0)
        return false;
    const ssize_t got = ::pread(descriptor, start, sizeof start, static_cast<off_t>(userBlock));
    ::close(descriptor);
    constexpr int VersionAt = 8;
    constexpr int MarksAt = 11;
    constexpr int SwmrWriter = 4;
    return got == sizeof start && start[VersionAt] >= 3 && (start[MarksAt] & SwmrWriter);
}

constexpr std::size_t LongestLink = 64 << 10;

/// The names between the slashes of a path; "." and empty ones are skipped.
std::deque<std::string> namesOf(const std::string& path)
{
    std::deque<std::string> names;
    for (std::size_t begin = 0; begin < path.size();) {
        const std::size_t end = std::min(path.find('/', begin), path.size());
        const std::string name = path.substr(begin, end - begin);
        if (!name.empty() && name != ".")
            names.push_back(name);
        begin = end + 1;
    }
    return names;
}

std::vector<char> linkValue(hid_t group, const std::string& name, const H5L_info_t& info,
                            const std::string& file)
{
    if (info.u.val_size == 0 || info.u.val_size > LongestLink)
        throw MRuntimeException("HDF5: the link " + name + " is damaged: " + file);
    std::vector<char> value(info.u.val_size + 1, '\0');
    check(H5Lget_val(group, name.c_str(), value.data(), info.u.val_size, H5P_DEFAULT),
          "the link " + name + " can't be read", file);
    return value;
}

ObjectPath externalTarget(const std::vector<char>& value, const std::string& name,
                          const std::string& from)
{
    const char* file = nullptr;
    const char* path = nullptr;
    check(H5Lunpack_elink_val(value.data(), value.size() - 1, nullptr, &file, &path),
          "the link " + name + " is damaged", from);
    return {OpenFiles::locate(from, file), path};
}

/// A walk from name to name: the group reached so far and the names still to go.
class LinkWalk {
public:
    LinkWalk(OpenFiles& files, Hdf5FilePtr file, const std::string& path)
        : _files(files)
        , _file(std::move(file))
        , _wanted(path)
        , _origin(_file->path())
        , _rest(namesOf(path))
    {
        _toRoot();
    }

    std::optional<OpenedObject> toObject()
    {
        while (!_rest.empty())
            if (!_step())
                return std::nullopt;
        return OpenedObject{_file, _path.empty() ? "/" : _path, std::move(_here)};
    }

    /// Stops before the file that an external link names.
    ObjectPath toTarget()
    {
        while (!_rest.empty()) {
            if (_rest.size() == 1) {
                const std::optional<H5L_info_t> info = _link();
                if (info && info->type == H5L_TYPE_EXTERNAL)
                    return externalTarget(
                        linkValue(_here.id(), _rest.front(), *info, _file->path()), _rest.front(),
                        _file->path());
            }
            if (!_step())
                throw MRuntimeException("HDF5: there is no " + _wanted + ": " + _origin);
        }
        return {_file->path(), _path};
    }

private:
    void _toRoot()
    {
        _path.clear();
        _here = Object(H5Oopen(_file->id(), "/", H5P_DEFAULT), "the root group can't be opened",
                       _file->path());
    }

    std::optional<H5L_info_t> _link()
    {
        H5L_info_t info = {};
        if (H5Iget_type(_here.id()) == H5I_GROUP &&
            H5Lget_info(_here.id(), _rest.front().c_str(), &info, H5P_DEFAULT) >= 0)
            return info;
        takeErrorText();
        return std::nullopt;
    }

    /// Follows one name. @returns false when there is no such link
    /// @throws MRuntimeException when a link on the way leads to a name that is not there
    bool _step()
    {
        const std::optional<H5L_info_t> info = _link();
        if (!info) {
            if (_namesOfLink > 0)
                throw MRuntimeException("HDF5: the link " + _wanted + " leads to " + _path + "/" +
                                        _rest.front() + ", which does not exist: " + _file->path());
            return false;
        }
        const std::string name = _rest.front();
        _rest.pop_front();
        _namesOfLink -= _namesOfLink > 0 ? 1 : 0;
        if (info->type == H5L_TYPE_HARD) {
            _here = Object(H5Oopen(_here.id(), name.c_str(), H5P_DEFAULT),
                           _path + "/" + name + " can't be opened", _file->path());
            _path += "/" + name;
            return true;
        }
        if (++_links > OpenFiles::MostLinks)
            throw MRuntimeException("HDF5: the links from " + _wanted +
                                    " go in a circle: " + _origin);
        _follow(name, *info);
        return true;
    }

    void _follow(const std::string& name, const H5L_info_t& info)
    {
        const std::vector<char> value = linkValue(_here.id(), name, info, _file->path());
        std::string path = value.data();
        if (info.type == H5L_TYPE_EXTERNAL) {
            const ObjectPath target = externalTarget(value, name, _file->path());
            _file = _files.file(target.file);
            path = target.path;
            _toRoot();
        } else if (info.type != H5L_TYPE_SOFT) {
            throw MRuntimeException("HDF5: the link " + name +
                                    " is of an unknown kind: " + _file->path());
        } else if (path.starts_with('/')) {
            _toRoot();
        }
        const std::deque<std::string> names = namesOf(path);
        _rest.insert(_rest.begin(), names.begin(), names.end());
        _namesOfLink += names.size();
    }

    OpenFiles& _files;
    Hdf5FilePtr _file;
    std::string _wanted;
    std::string _origin;
    std::deque<std::string> _rest;
    std::size_t _namesOfLink = 0;  // at their front: those from a link, not from the request
    std::string _path;
    Object _here;
    int _links = 0;
};

}  // namespace

Hdf5File::Hdf5File(const std::string& path)
    : _path(path)
    , _stamp(path)
{
    silenceErrors();
    registerFilters();
    if (!_stamp.exists())
        throw MNoFileAccessException("HDF5: there is no such file: " + path);
    const Properties access = sourceAccess();
    _file = File(H5Fopen(path.c_str(), H5F_ACC_RDONLY, access.id()));
    if (_file && !hasSwmrWriter(path, _file.id()))
        return;
    const std::string reason = takeErrorText();
    File swmr(H5Fopen(path.c_str(), H5F_ACC_RDONLY | H5F_ACC_SWMR_READ, access.id()));
    if (swmr)
        _file = std::move(swmr);
    takeErrorText();
    if (!_file)
        throw MRuntimeException("HDF5: " + withReason("the file can't be opened", reason) + ": " +
                                path);
}

Hdf5FilePtr OpenFiles::file(const std::string& path)
{
    silenceErrors();
    const auto known = std::find_if(_open.begin(), _open.end(),
                                    [&](const Hdf5FilePtr& each) { return each->path() == path; });
    if (known != _open.end()) {
        if ((*known)->current()) {
            _open.splice(_open.begin(), _open, known);
            return _open.front();
        }
        _open.erase(known);
    }
    _open.push_front(std::make_shared<const Hdf5File>(path));
    if (_open.size() > MostOpen)
        _open.pop_back();
    return _open.front();
}

std::optional<OpenedObject> OpenFiles::find(const Hdf5FilePtr& file, const std::string& path)
{
    silenceErrors();
    return LinkWalk(*this, file, path).toObject();
}

ObjectPath OpenFiles::target(const Hdf5FilePtr& file, const std::string& path)
{
    silenceErrors();
    return LinkWalk(*this, file, path).toTarget();
}

std::string baseName(const std::string& path) { return fs::path(path).filename().string(); }

std::string OpenFiles::locate(const std::string& from, const std::string& name)
{
    const fs::path named(name);
    const fs::path folder = fs::path(from).parent_path();
    std::error_code none;
    for (const fs::path& each : {folder / named, folder / named.filename()})
        if (fs::is_regular_file(each, none))
            return each.string();
    const fs::path realFolder = fs::canonical(from, none).parent_path();
    for (const fs::path& each : {realFolder / named, realFolder / named.filename()})
        if (fs::is_regular_file(each, none))
            return each.string();
    return (named.is_absolute() ? folder / named.filename() : folder / named).string();
}

}  // namespace morvend::imglib::hdf5
