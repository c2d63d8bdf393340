// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Depth first over the groups of a file.
#include "imagelib/io/formats/hdf5/nexus/MetadataTree.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/formats/hdf5/library/SmallValues.h"
#include "imagelib/io/formats/hdf5/nexus/DataFileNames.h"

#include <algorithm>

namespace morvend::imglib::hdf5 {

namespace {

constexpr std::size_t MostNodes = 10'000;
constexpr std::size_t MostLevels = 24;
constexpr std::size_t MostExternal = 64;
/// One-dimensional arrays hold a value for each frame, such as the angles of a long series: they
/// may be larger than others, within this sum of elements.
constexpr std::size_t MostLongElements = std::size_t(4) << 20;

struct Link {
    std::string name;
    H5L_type_t type;
};

class Gatherer {
public:
    Gatherer(OpenFiles& files, const ArrayVisitor& visitArray)
        : _files(files)
        , _visitArray(visitArray)
    {}

    /// `path` is where the group is reached, `found` the group itself.
    void group(const std::string& path, const OpenedObject& found, std::size_t level)
    {
        nexus::Node& node = _tree.node(path.empty() ? "/" : path);
        node.attributes = readAttributes(found.object.id());
        const auto kind = node.attributes.find("NX_class");
        const bool holdsImages =
            kind != node.attributes.end() && kind->second == nexus::Value(std::string("NXdata"));
        if (level >= MostLevels)
            return;
        for (const Link& link : _links(found.object.id())) {
            if (_tree.nodes().size() >= MostNodes)
                return;
            if (link.type == H5L_TYPE_EXTERNAL &&
                (holdsImages || blockNumber(link.name) != -2 || ++_external > MostExternal))
                continue;
            _member(path + "/" + link.name, found, link, level + 1);
        }
    }

    nexus::MBasicNeXusTree take() { return std::move(_tree); }

private:
    static std::vector<Link> _links(hid_t group)
    {
        std::vector<Link> links;
        H5Literate(
            group, H5_INDEX_NAME, H5_ITER_NATIVE, nullptr,
            [](hid_t, const char* name, const H5L_info_t* info, void* target) -> herr_t {
                auto& list = *static_cast<std::vector<Link>*>(target);
                list.push_back({name, info->type});
                return list.size() >= MostNodes;
            },
            &links);
        takeErrorText();
        std::sort(links.begin(), links.end(),
                  [](const Link& left, const Link& right) { return left.name < right.name; });
        return links;
    }

    void _member(const std::string& path, const OpenedObject& parent, const Link& link,
                 std::size_t level)
    {
        std::optional<OpenedObject> found;
        try {
            if (link.type == H5L_TYPE_HARD)
                found = OpenedObject{
                    parent.file, _below(parent.path, link.name),
                    Object(H5Oopen(parent.object.id(), link.name.c_str(), H5P_DEFAULT))};
            else
                found = _files.find(parent.file, _below(parent.path, link.name));
        } catch (const MException&) {
            return;  // a dead link among the metadata costs only its value
        }
        if (!found || !found->object) {
            takeErrorText();
            return;
        }
        if (found->isGroup() && _entered(*found, level))
            group(path, *found, level);
        else if (found->isDataset())
            _dataset(path, found->object.id());
    }

    static std::string _below(const std::string& path, const std::string& name)
    {
        return path == "/" ? path + name : path + "/" + name;
    }

    /// Notes a group on the way down; false when the walk has been there before, in a circle.
    bool _entered(const OpenedObject& found, std::size_t level)
    {
        H5O_info_t info = {};
        if (H5Oget_info2(found.object.id(), &info, H5O_INFO_BASIC) < 0)
            return false;
        _way.resize(level - 1);
        const std::pair<std::string, haddr_t> here(found.file->path(), info.addr);
        if (std::find(_way.begin(), _way.end(), here) != _way.end())
            return false;
        _way.push_back(here);
        return true;
    }

    void _dataset(const std::string& path, hid_t dataset)
    {
        const auto shape = datasetExtents(dataset);
        if (shape && shape->size() >= 2 && _visitArray) {
            const Datatype type(H5Dget_type(dataset));
            const H5T_class_t kind = H5Tget_class(type.id());
            if (kind == H5T_INTEGER || kind == H5T_FLOAT)
                _visitArray(path, *shape);
        }
        if (_isImage(path, shape.value_or(std::vector<hsize_t>())) || _liesElsewhere(dataset))
            return;
        std::size_t most = MostTreeElements;
        if (shape && shape->size() == 1 && shape->front() > most &&
            shape->front() <= MostLongElements - _longElements) {
            most = static_cast<std::size_t>(shape->front());
            _longElements += most;
        }
        if (auto value = readDataset(dataset, most)) {
            nexus::Node& node = _tree.node(path);
            node.value = std::move(*value);
            node.attributes = readAttributes(dataset);
        }
    }

    /// Images and masks don't belong in the tree, however small they are.
    static bool _isImage(const std::string& path, const std::vector<hsize_t>& shape)
    {
        const std::string name = path.substr(path.rfind('/') + 1);
        return shape.size() > 2 ||
               (shape.size() == 2 && (blockNumber(name) != -2 || name.starts_with("pixel_mask")));
    }

    /// The library follows virtual data sets that refer to each other until its stack is full, and
    /// waits for ever if the bytes of a data set are in a pipe.
    static bool _liesElsewhere(hid_t dataset)
    {
        const Properties creation(H5Dget_create_plist(dataset));
        return H5Pget_layout(creation.id()) == H5D_VIRTUAL ||
               H5Pget_external_count(creation.id()) > 0;
    }

    OpenFiles& _files;
    const ArrayVisitor& _visitArray;
    nexus::MBasicNeXusTree _tree;
    std::vector<std::pair<std::string, haddr_t>> _way;
    std::size_t _external = 0;
    std::size_t _longElements = 0;
};

}  // namespace

nexus::MBasicNeXusTree readMetadata(OpenFiles& files, const Hdf5FilePtr& file,
                                    const ArrayVisitor& visitArray)
{
    silenceErrors();
    Gatherer gatherer(files, visitArray);
    if (const auto root = files.find(file, "/"))
        gatherer.group("", *root, 0);
    return gatherer.take();
}

}  // namespace morvend::imglib::hdf5
