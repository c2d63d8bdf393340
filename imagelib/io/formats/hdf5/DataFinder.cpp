// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The search through the layouts, the likeliest first.
#include "imagelib/io/formats/hdf5/DataFinder.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/formats/hdf5/FrameShape.h"
#include "imagelib/io/formats/hdf5/MetadataTree.h"
#include "imagelib/io/formats/hdf5/SmallValues.h"

#include <algorithm>

namespace morvend::imglib::hdf5 {

namespace {

constexpr std::size_t MostMembers = 100'000;
/// Groups with more members than this hold data, and their members are not looked into one by one.
constexpr std::size_t MostSearched = 200;

enum class Images { No, Dead, Yes };

bool isNumberArray(hid_t dataset, std::size_t leastRank)
{
    const auto shape = datasetExtents(dataset);
    if (!shape || shape->size() < leastRank || shape->size() > FrameShape::LargestRank)
        return false;
    const Datatype type(H5Dget_type(dataset));
    const H5T_class_t kind = H5Tget_class(type.id());
    return kind == H5T_INTEGER || kind == H5T_FLOAT || kind == H5T_ENUM || kind == H5T_BITFIELD;
}

class Search {
public:
    Search(Hdf5Files& files, Hdf5FilePtr file)
        : _files(files)
        , _file(std::move(file))
    {}

    ImageLinks run()
    {
        for (const std::string& entry : _entries())
            if (_inEntry(entry))
                return _found;
        if (_take("/exchange", {"/exchange/data"}))
            return _found;
        if (_largest())
            return _found;
        if (!_dead.blocks.empty())
            return _dead;
        throw MRuntimeException("HDF5: the file holds no images: " + _file->path());
    }

private:
    /// The entries: the one that the file names as its default, those of the class NXentry, other
    /// groups named so, and the root.
    std::vector<std::string> _entries()
    {
        std::vector<std::string> entries;
        const auto root = _find("/");
        if (!root)
            return entries;
        if (const std::string name = textAttribute(root->object.id(), "default"); !name.empty())
            entries.push_back(_below("", name));
        std::vector<std::string> others;
        for (const std::string& name : _members("")) {
            const auto group = _find("/" + name);
            if (!group || !group->isGroup())
                continue;
            if (textAttribute(group->object.id(), "NX_class") == "NXentry")
                entries.push_back("/" + name);
            else if (name.starts_with("entry"))
                others.push_back("/" + name);
        }
        entries.insert(entries.end(), others.begin(), others.end());
        entries.push_back("");
        return entries;
    }

    bool _inEntry(const std::string& entry)
    {
        const auto group = _find(entry.empty() ? "/" : entry);
        if (!group || !group->isGroup())
            return false;
        const std::vector<std::string> members = _members(entry);
        std::vector<std::string> groups;
        if (const std::string name = textAttribute(group->object.id(), "default"); !name.empty())
            groups.push_back(_below(entry, name));
        groups.push_back(entry + "/data");
        for (const std::string& name : members)
            if (_classOf(entry + "/" + name) == "NXdata")
                groups.push_back(entry + "/" + name);
        groups.push_back(entry + "/measurement");
        for (const std::string& path : groups)
            if (_inDataGroup(entry, path))
                return true;
        return _take(entry, {entry + "/data"}) || _take(entry, _numbered(entry, members)) ||
               _inDetectors(entry, members);
    }

    bool _inDataGroup(const std::string& entry, const std::string& path)
    {
        const auto group = _find(path);
        if (!group || !group->isGroup())
            return false;
        const std::vector<std::string> members = _members(path);
        if (_take(entry, _numbered(path, members)))
            return true;
        if (const std::string name = textAttribute(group->object.id(), "signal"); !name.empty())
            if (_take(entry, {_below(path, name)}))
                return true;
        if (_take(entry, {path + "/data"}))
            return true;
        std::vector<std::string> arrays;
        for (std::size_t i = 0; i < members.size() && i < MostSearched; ++i) {
            const auto member = _find(path + "/" + members[i]);
            if (!member || !member->isDataset() || !isNumberArray(member->object.id(), 2))
                continue;
            const std::string name = path + "/" + members[i];
            arrays.insert(
                H5Aexists(member->object.id(), "signal") > 0 ? arrays.begin() : arrays.end(), name);
        }
        return !arrays.empty() && _take(entry, {arrays.front()});
    }

    bool _inDetectors(const std::string& entry, const std::vector<std::string>& members)
    {
        for (const std::string& name : members) {
            if (!name.starts_with("instrument") && _classOf(entry + "/" + name) != "NXinstrument")
                continue;
            for (const std::string& part : _members(entry + "/" + name)) {
                const std::string path = entry + "/" + name + "/" + part;
                const auto group = _find(path);
                if (group && group->isGroup() &&
                    (_take(entry, _numbered(path, _members(path))) ||
                     _take(entry, {path + "/data"})))
                    return true;
            }
        }
        return false;
    }

    /// The largest array of the file, one with three extents before one with two.
    bool _largest()
    {
        std::string best;
        std::pair<bool, double> bestSize;
        readMetadata(_files, _file,
                     [&](const std::string& path, const std::vector<hsize_t>& shape) {
                         double elements = 1;
                         for (const hsize_t extent : shape)
                             elements *= static_cast<double>(extent);
                         const std::pair<bool, double> size(shape.size() == 3, elements);
                         if (shape.size() <= 3 && elements > 0 && size > bestSize) {
                             best = path;
                             bestSize = size;
                         }
                     });
        const std::size_t entryEnd = best.find('/', 1);
        return !best.empty() &&
               _take(entryEnd == std::string::npos ? "" : best.substr(0, entryEnd), {best});
    }

    /// Accepts blocks of which one holds images, looking past dead links in front of it; remembers
    /// them when all links are dead.
    bool _take(const std::string& entry, std::vector<std::string> blocks)
    {
        if (blocks.empty())
            return false;
        Images images = Images::Dead;
        for (std::size_t i = 0; i < blocks.size() && images == Images::Dead; ++i)
            images = _images(blocks[i]);
        if (images == Images::Yes)
            _found = {entry, std::move(blocks)};
        else if (images == Images::Dead && _dead.blocks.empty())
            _dead = {entry, std::move(blocks)};
        return images == Images::Yes;
    }

    Images _images(const std::string& path)
    {
        try {
            const auto found = _files.find(_file, path);
            return found && found->isDataset() && isNumberArray(found->object.id(), 2) ? Images::Yes
                                                                                       : Images::No;
        } catch (const MException&) {
            return Images::Dead;
        }
    }

    std::optional<Found> _find(const std::string& path)
    {
        try {
            return _files.find(_file, path);
        } catch (const MException&) {
            return std::nullopt;  // a dead link is no group to look into
        }
    }

    std::string _classOf(const std::string& path)
    {
        const auto group = _find(path);
        return group && group->isGroup() ? textAttribute(group->object.id(), "NX_class") : "";
    }

    std::vector<std::string> _members(const std::string& path)
    {
        std::vector<std::string> names;
        const auto group = _find(path.empty() ? "/" : path);
        if (!group || !group->isGroup())
            return names;
        H5Literate(
            group->object.id(), H5_INDEX_NAME, H5_ITER_NATIVE, nullptr,
            [](hid_t, const char* name, const H5L_info_t*, void* target) -> herr_t {
                auto& list = *static_cast<std::vector<std::string>*>(target);
                list.emplace_back(name);
                return list.size() >= MostMembers;
            },
            &names);
        takeErrorText();
        std::sort(names.begin(), names.end());
        return names;
    }

    static std::vector<std::string> _numbered(const std::string& path,
                                              const std::vector<std::string>& members)
    {
        std::vector<std::pair<long long, std::string>> numbers;
        for (const std::string& name : members)
            if (const long long number = blockNumber(name); number >= 0)
                numbers.emplace_back(number, path + "/" + name);
        std::sort(numbers.begin(), numbers.end());
        std::vector<std::string> blocks;
        for (auto& [number, block] : numbers)
            blocks.push_back(std::move(block));
        return blocks;
    }

    /// A name in an attribute, which may be a path of its own.
    static std::string _below(const std::string& path, const std::string& name)
    {
        return name.starts_with('/') ? name : path + "/" + name;
    }

    Hdf5Files& _files;
    Hdf5FilePtr _file;
    ImageLinks _found;
    ImageLinks _dead;
};

}  // namespace

ImageLinks findImages(Hdf5Files& files, const Hdf5FilePtr& file)
{
    quiet();
    return Search(files, file).run();
}

}  // namespace morvend::imglib::hdf5
