// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Look-ups that ignore dead links, and what names and extents say about an array.
#include "imagelib/io/formats/hdf5/nexus/GroupBrowser.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/formats/hdf5/frames/FrameShape.h"
#include "imagelib/io/formats/hdf5/library/SmallValues.h"
#include "imagelib/io/formats/hdf5/nexus/DataFileNames.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>
#include <utility>

namespace morvend::imglib::hdf5 {

namespace {

constexpr hsize_t NarrowestImage = 16;

struct LinkList {
    std::vector<GroupLink> links;
    std::size_t most = 0;
};

std::string lowerCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

/// The last two names of a path.
std::pair<std::string_view, std::string_view> lastNames(std::string_view path)
{
    const std::size_t end = std::min(path.rfind('/'), path.size());
    const std::string_view parents = path.substr(0, end);
    return {parents.substr(parents.rfind('/') + 1), path.substr(std::min(end + 1, path.size()))};
}

}  // namespace

std::vector<GroupLink> linksOf(hid_t group, std::size_t most)
{
    LinkList list{{}, most};
    H5Literate(
        group, H5_INDEX_NAME, H5_ITER_NATIVE, nullptr,
        [](hid_t, const char* name, const H5L_info_t* info, void* target) -> herr_t {
            auto& found = *static_cast<LinkList*>(target);
            found.links.push_back({name, info->type});
            return found.links.size() >= found.most;
        },
        &list);
    takeErrorText();
    std::sort(list.links.begin(), list.links.end(),
              [](const GroupLink& left, const GroupLink& right) { return left.name < right.name; });
    return std::move(list.links);
}

ArrayKind arrayKind(hid_t dataset)
{
    const auto extents = datasetExtents(dataset);
    if (!extents || extents->size() < FrameShape::SmallestRank ||
        extents->size() > FrameShape::LargestRank)
        return ArrayKind::None;
    const Datatype type(H5Dget_type(dataset));
    const H5T_class_t kind = H5Tget_class(type.id());
    if (kind != H5T_INTEGER && kind != H5T_FLOAT && kind != H5T_ENUM && kind != H5T_BITFIELD)
        return ArrayKind::None;
    const FrameShape shape(*extents);
    return std::min(shape.rows, shape.columns) < NarrowestImage ? ArrayKind::Table
                                                                : ArrayKind::Image;
}

bool isAuxiliary(const std::string& path)
{
    static constexpr std::array<std::string_view, 2> Groups{"/detectorspecific/",
                                                            "/detectormodule_"};
    static constexpr std::array<std::string_view, 12> Fields{
        "mask", "masks", "flat",      "flats",      "flatfield",   "flat_field",
        "dark", "darks", "darkfield", "dark_field", "darkcurrent", "dark_current"};
    static constexpr std::array<std::string_view, 13> Names{
        "mask",   "flat",  "dark", "error",      "weight",   "lookup",    "table",
        "offset", "angle", "gain", "efficiency", "distance", "correction"};
    const std::string lower = lowerCase(path);
    const auto [group, name] = lastNames(lower);
    const auto within = [](std::string_view text) {
        return [text](std::string_view part) { return text.find(part) != text.npos; };
    };
    const auto atEnd = [](std::string_view text) {
        return [text](std::string_view part) { return text.ends_with(part); };
    };
    // A group with a name such as "pixel_mask" holds it as "data".
    return std::ranges::any_of(Groups, within(lower)) || std::ranges::any_of(Names, within(name)) ||
           std::ranges::any_of(Fields, atEnd(group));
}

std::optional<OpenedObject> GroupBrowser::find(const std::string& path) const
{
    try {
        return _files.find(_file, path.empty() ? "/" : path);
    } catch (const MException&) {
        return std::nullopt;
    }
}

std::optional<OpenedObject> GroupBrowser::findGroup(const std::string& path) const
{
    std::optional<OpenedObject> found = find(path);
    return found && found->isGroup() ? std::move(found) : std::nullopt;
}

bool GroupBrowser::isDead(const std::string& path) const
{
    try {
        _files.find(_file, path);
        return false;
    } catch (const MException&) {
        return true;
    }
}

bool GroupBrowser::isLost(const std::string& path) const
{
    try {
        _files.find(_file, path);
    } catch (const MNoFileAccessException&) {
        return true;
    } catch (const MException&) {
        // The target may be damaged, or the links go in a circle.
    }
    return false;
}

std::string GroupBrowser::attribute(const std::string& path, const char* name) const
{
    const auto group = findGroup(path);
    const auto value = group ? readAttribute(group->object.id(), name) : std::nullopt;
    if (!value)
        return {};
    if (const auto* text = std::get_if<std::string>(&*value))
        return *text;
    const auto* texts = std::get_if<std::vector<std::string>>(&*value);
    return texts && !texts->empty() ? texts->front() : std::string();
}

std::vector<std::string> GroupBrowser::members(const std::string& path) const
{
    std::vector<std::string> names;
    if (const auto group = findGroup(path))
        for (GroupLink& link : linksOf(group->object.id(), MostMembers))
            names.push_back(std::move(link.name));
    return names;
}

std::vector<std::string> GroupBrowser::detectors(const std::string& entry) const
{
    std::vector<std::string> found;
    for (const std::string& name : members(entry)) {
        const std::string instrument = entry + "/" + name;
        if (!name.starts_with("instrument") && classOf(instrument) != "NXinstrument")
            continue;
        for (const std::string& part : members(instrument))
            if (part.starts_with("detector") || classOf(instrument + "/" + part) == "NXdetector")
                found.push_back(instrument + "/" + part);
    }
    return found;
}

std::string GroupBrowser::below(const std::string& path, const std::string& name)
{
    return name.starts_with('/') ? name : path + "/" + name;
}

std::vector<std::string> GroupBrowser::numbered(const std::string& path,
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

}  // namespace morvend::imglib::hdf5
