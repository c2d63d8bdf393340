// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A walk over all groups that lists what is an array of numbers, or should be.
#include "imagelib/io/formats/hdf5/nexus/DatasetList.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/formats/hdf5/library/SmallValues.h"
#include "imagelib/io/formats/hdf5/nexus/DataFileNames.h"
#include "imagelib/io/formats/hdf5/nexus/DataFinder.h"
#include "imagelib/io/formats/hdf5/nexus/GroupBrowser.h"
#include "imagelib/io/formats/hdf5/nexus/NexusReader.h"

#include <algorithm>

namespace morvend::imglib {
namespace hdf5 {

namespace {

constexpr std::size_t MostNodes = 10'000;
constexpr std::size_t MostLevels = 24;
constexpr std::size_t MostExternal = 256;

std::string typeOf(hid_t dataset)
{
    const Datatype type(H5Dget_type(dataset));
    const std::string bits = std::to_string(8 * H5Tget_size(type.id()));
    switch (H5Tget_class(type.id())) {
    case H5T_FLOAT:
        return "float" + bits;
    case H5T_ENUM:
        return "enum" + bits;
    case H5T_BITFIELD:
        return "bits" + bits;
    case H5T_INTEGER:
        return (H5Tget_sign(type.id()) == H5T_SGN_2 ? "int" : "uint") + bits;
    default:
        return {};
    }
}

class DatasetWalk {
public:
    explicit DatasetWalk(const std::string& path)
        : _browser(_files, _files.file(path))
    {}

    std::vector<Hdf5Dataset> run()
    {
        if (const auto root = _browser.find(""))
            _group("", *root, 0);
        _markDefault();
        std::ranges::sort(_list, {}, &Hdf5Dataset::path);
        return std::move(_list);
    }

private:
    void _group(const std::string& path, const OpenedObject& found, std::size_t level)
    {
        if (level >= MostLevels || !_entered(found, level))
            return;
        const std::string groupClass = textAttribute(found.object.id(), "NX_class");
        std::vector<GroupLink> links = linksOf(found.object.id(), MostNodes);
        std::vector<std::string> names;
        for (const GroupLink& link : links)
            if (_isBlock(path, link))
                names.push_back(link.name);
        if (names.size() > 1) {
            _blocks(path, groupClass, GroupBrowser::numbered(path, names));
            std::erase_if(links, [&](const GroupLink& link) { return _isBlock(path, link); });
        }
        for (const GroupLink& link : links) {
            const std::string member = path + "/" + link.name;
            if (++_nodes > MostNodes)
                return;
            if (link.type != H5L_TYPE_EXTERNAL || ++_external <= MostExternal)
                _member(member, groupClass, link.type, level);
        }
    }

    /// Other files are not opened to see their contents: there may be thousands.
    bool _isBlock(const std::string& path, const GroupLink& link) const
    {
        return blockNumber(link.name) >= 0 &&
               (link.type == H5L_TYPE_EXTERNAL || !_browser.findGroup(path + "/" + link.name));
    }

    /// Notes a group on the way down; false when the walk has been there before, in a circle.
    bool _entered(const OpenedObject& found, std::size_t level)
    {
        H5O_info_t info = {};
        if (H5Oget_info2(found.object.id(), &info, H5O_INFO_BASIC) < 0)
            return false;
        _way.resize(level);
        const std::pair<std::string, haddr_t> here(found.file->path(), info.addr);
        if (std::ranges::find(_way, here) != _way.end())
            return false;
        _way.push_back(here);
        return true;
    }

    void _member(const std::string& path, const std::string& groupClass, H5L_type_t link,
                 std::size_t level)
    {
        const std::optional<OpenedObject> found = _browser.find(path);
        if (found && found->isGroup())
            return _group(path, *found, level + 1);
        // The target of a dead link among the metadata is usually no image.
        const bool hasImages = groupClass == "NXdata" || groupClass == "NXdetector" ||
                               blockNumber(path.substr(path.rfind('/') + 1)) != -2;
        if (found ? found->isDataset() && arrayKind(found->object.id()) != ArrayKind::None
                  : link != H5L_TYPE_HARD && hasImages)
            _list.push_back(_row(path, groupClass, path));
    }

    /// The numbered blocks of a group as one row, of which only the first is opened.
    void _blocks(const std::string& path, const std::string& groupClass,
                 const std::vector<std::string>& blocks)
    {
        Hdf5Dataset row = _row(path.empty() ? "/" : path, groupClass, blocks.front());
        row.blocks = blocks.size();
        row.missing = 0;
        for (const std::string& block : blocks)
            row.missing += _fileExists(block) ? 0U : 1U;
        _list.push_back(std::move(row));
    }

    bool _fileExists(const std::string& block)
    {
        try {
            return FileStamp(_files.target(_browser.file(), block).file).exists();
        } catch (const MException&) {
            return false;
        }
    }

    Hdf5Dataset _row(const std::string& path, const std::string& groupClass,
                     const std::string& dataset)
    {
        Hdf5Dataset row;
        row.path = path;
        row.groupClass = groupClass;
        const std::string& here = _browser.file()->path();
        try {
            const auto found = _files.find(_browser.file(), dataset);
            if (found && found->isDataset()) {
                // A block may be empty, or hold no numbers at all.
                if (const auto extents = datasetExtents(found->object.id()))
                    row.shape.assign(extents->begin(), extents->end());
                row.type = typeOf(found->object.id());
                if (found->file->path() != here)
                    row.leadsTo = found->file->path() + "::" + found->path;
                else if (found->path != dataset)
                    row.leadsTo = found->path;
            }
        } catch (const MException& error) {
            row.failure = error.what();
            row.missing = 1;
            row.leadsTo = _targetOf(dataset);
        }
        return row;
    }

    std::string _targetOf(const std::string& dataset)
    {
        try {
            const ObjectPath target = _files.target(_browser.file(), dataset);
            return target.file + "::" + target.path;
        } catch (const MException&) {
            return {};
        }
    }

    void _markDefault()
    {
        try {
            const ImageLinks images = findImages(_files, _browser.file());
            const std::string& first = images.blocks.front();
            const std::string shown =
                images.blocks.size() > 1 ? first.substr(0, first.rfind('/')) : first;
            for (Hdf5Dataset& row : _list)
                row.isDefault = row.path == (shown.empty() ? "/" : shown);
        } catch (const MException&) {
            // A file without images of its own has no default.
        }
    }

    OpenFiles _files;
    GroupBrowser _browser;
    std::vector<Hdf5Dataset> _list;
    std::vector<std::pair<std::string, haddr_t>> _way;
    std::size_t _nodes = 0;
    std::size_t _external = 0;
};

}  // namespace

}  // namespace hdf5

std::vector<Hdf5Dataset> listHdf5(const std::string& path)
{
    if (!isHdf5(*ByteSource::open(path)))
        throw MUnknownFormatException("This is no HDF5 file, which alone has data sets: " + path);
    hdf5::silenceErrors();
    return hdf5::DatasetWalk(path).run();
}

}  // namespace morvend::imglib
