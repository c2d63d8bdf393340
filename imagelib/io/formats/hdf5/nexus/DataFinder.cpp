// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The search through the layouts, the likeliest first.
#include "imagelib/io/formats/hdf5/nexus/DataFinder.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/formats/hdf5/library/SmallValues.h"
#include "imagelib/io/formats/hdf5/nexus/DataFileNames.h"
#include "imagelib/io/formats/hdf5/nexus/GroupBrowser.h"
#include "imagelib/io/formats/hdf5/nexus/ImageDetector.h"
#include "imagelib/io/formats/hdf5/nexus/MetadataTree.h"

#include <algorithm>
#include <tuple>

namespace morvend::imglib::hdf5 {

namespace {

using Paths = std::vector<std::string>;

/// Groups with more members than this hold data, and their members are not looked into one by one.
constexpr std::size_t MostSearched = 1000;
constexpr int LongestDefault = 16;

/// How sure it is that a place holds the images.
enum class Claim {
    Guessed,  ///< it may hold them
    Stated    ///< the file says so: a dead link there means they are lost
};

class Search {
public:
    Search(OpenFiles& files, const Hdf5FilePtr& file)
        : _browser(files, file)
    {}

    /// The whole search through the file. @returns false if there isn't even a dead link
    bool inFile()
    {
        for (const std::string& entry : entries())
            if (_inEntry(entry))
                return true;
        return _take("/exchange", {"/exchange/data"}, Claim::Guessed) || _takeDead() ||
               _elsewhere() || _takeTable();
    }

    bool inGroup(const std::string& entry, const std::string& path)
    {
        const bool plots =
            _browser.classOf(path) != "NXentry" && _browser.attribute(path, "default").empty();
        return (plots && _inDataGroup(entry, path, Claim::Stated)) || _inEntry(path) ||
               _takeDead() || _takeTable();
    }

    /// The entries: the one that the file names as its default, those of the class NXentry, other
    /// groups with such a name, and the root.
    Paths entries()
    {
        Paths entries;
        if (const std::string name = _browser.attribute("", "default"); !name.empty())
            entries.push_back(GroupBrowser::below("", name));
        Paths others;
        for (const std::string& name : _browser.members("")) {
            const std::string path = "/" + name;
            if (_browser.classOf(path) == "NXentry")
                entries.push_back(path);
            else if (name.starts_with("entry") &&
                     (_browser.findGroup(path) || _browser.isDead(path)))
                others.push_back(path);
        }
        entries.insert(entries.end(), others.begin(), others.end());
        entries.emplace_back();
        return entries;
    }

    const ImageLinks& found() const { return _found; }

    /// An array that is no image by itself; empty when there is none.
    const std::string& auxiliary() const { return _auxiliary; }

private:
    bool _inEntry(const std::string& entry)
    {
        if (!_browser.findGroup(entry))
            return _browser.isDead(entry) && _take(entry, {entry}, Claim::Guessed);
        if (!entry.empty() && _followDefault(entry))
            return true;
        const Paths members = _browser.members(entry);
        Paths groups = {entry + "/data"};
        for (const std::string& name : members)
            if (const std::string path = entry + "/" + name;
                !isAuxiliary(path + "/data") &&
                (blockNumber(name) >= 0 || _browser.classOf(path) == "NXdata"))
                groups.push_back(path);
        groups.push_back(entry + "/measurement");
        for (const std::string& path : groups)
            if (_inDataGroup(entry, path, Claim::Guessed))
                return true;
        return _take(entry, {entry + "/data"}, Claim::Guessed) ||
               _take(entry, GroupBrowser::numbered(entry, members), Claim::Guessed) ||
               _inDetectors(entry, members);
    }

    /// Goes from the entry along the attributes `default` as long as there are any.
    bool _followDefault(const std::string& entry)
    {
        std::string path = entry;
        for (int step = 0; step < LongestDefault; ++step) {
            const std::string name = _browser.attribute(path, "default");
            const std::string next = GroupBrowser::below(path, name);
            if (name.empty() || name == "." || next == path)
                break;
            if (!_browser.findGroup(next)) {
                if (_take(entry, {next}, Claim::Stated))
                    return true;
                break;
            }
            path = next;
        }
        return path != entry && _inDataGroup(entry, path, Claim::Stated);
    }

    bool _inDataGroup(const std::string& entry, const std::string& path, Claim claim)
    {
        if (!_browser.findGroup(path))
            return _browser.isDead(path) && _take(entry, {path}, claim);
        const Paths members = _browser.members(path);
        const Paths blocks = GroupBrowser::numbered(path, members);
        if (_take(entry, blocks, Claim::Guessed))
            return true;
        const std::string signal = _browser.attribute(path, "signal");
        if (!signal.empty() && (blocks.empty() || blockNumber(signal) < 0) &&
            _take(entry, {GroupBrowser::below(path, signal)}, claim))
            return true;
        return _take(entry, {path + "/data"}, claim) || _take(entry, blocks, Claim::Stated) ||
               _takeMember(entry, path, members);
    }

    /// The best of the arrays of a group: the one that an attribute of its own calls the signal,
    /// else the first stack, the first image, the first table.
    bool _takeMember(const std::string& entry, const std::string& path, const Paths& members)
    {
        using Rank = std::tuple<bool, ArrayKind, bool>;
        std::string best, dead;
        Rank bestRank;
        for (std::size_t i = 0; i < members.size() && i < MostSearched; ++i) {
            const std::string name = path + "/" + members[i];
            const auto member = _browser.find(name);
            if (!member && dead.empty() && !isAuxiliary(name) && _browser.isLost(name))
                dead = name;
            if (!member || !member->isDataset())
                continue;
            const hid_t id = member->object.id();
            const ArrayKind kind = arrayKind(id);
            const bool signal = _isSignal(id);
            if (kind == ArrayKind::None || (isAuxiliary(name) && !signal))
                continue;
            const Rank rank(signal, kind, datasetExtents(id)->size() > 2);
            if (best.empty() || rank > bestRank) {
                best = name;
                bestRank = rank;
            }
        }
        return (!best.empty() && _take(entry, {best}, Claim::Guessed)) ||
               (!dead.empty() && _take(entry, {dead}, Claim::Guessed));
    }

    /// Old files mark the data set itself, by 1 for the first signal.
    static bool _isSignal(hid_t dataset)
    {
        const auto value = readAttribute(dataset, "signal");
        return value && (*value == nexus::Value(std::int64_t(1)) || *value == nexus::Value(1.0) ||
                         *value == nexus::Value(std::string("1")));
    }

    bool _inDetectors(const std::string& entry, const Paths& members)
    {
        for (const std::string& detector : _browser.detectors(entry))
            if (_inDetector(entry, detector))
                return true;
        for (const std::string& name : members) {
            const std::string instrument = entry + "/" + name;
            if (!name.starts_with("instrument") && _browser.classOf(instrument) != "NXinstrument")
                continue;
            for (const std::string& part : _browser.members(instrument))
                if (_browser.findGroup(instrument + "/" + part) &&
                    _inDetector(entry, instrument + "/" + part))
                    return true;
        }
        return false;
    }

    bool _inDetector(const std::string& entry, const std::string& path)
    {
        if (!_browser.findGroup(path))
            return _browser.isDead(path) && _take(entry, {path}, Claim::Guessed);
        const Paths members = _browser.members(path);
        if (_take(entry, GroupBrowser::numbered(path, members), Claim::Guessed))
            return true;
        if (const std::string name = _browser.attribute(path, "signal"); !name.empty())
            if (_take(entry, {GroupBrowser::below(path, name)}, Claim::Guessed))
                return true;
        return _take(entry, {path + "/data"}, Claim::Guessed);
    }

    /// The largest array anywhere, a stack before a single image before a table.
    bool _elsewhere()
    {
        using Rank = std::tuple<bool, bool, double>;
        std::string best;
        Rank bestRank;
        const Paths detectors = _allDetectors();
        readMetadata(_browser.files(), _browser.file(),
                     [&](const std::string& path, const std::vector<hsize_t>& shape) {
                         double elements = 1;
                         for (const hsize_t extent : shape)
                             elements *= static_cast<double>(extent);
                         if (shape.size() > 3 || elements == 0)
                             return;
                         const bool setting =
                             shape.size() == 2 &&
                             std::ranges::any_of(detectors, [&](const std::string& detector) {
                                 return path.starts_with(detector + "/");
                             });
                         if (setting || isAuxiliary(path)) {
                             _auxiliary = _auxiliary.empty() ? path : _auxiliary;
                             return;
                         }
                         const auto found = _browser.find(path);
                         const Rank rank(found && arrayKind(found->object.id()) == ArrayKind::Image,
                                         shape.size() == 3, elements);
                         if (best.empty() || rank > bestRank) {
                             best = path;
                             bestRank = rank;
                         }
                     });
        const std::size_t entryEnd = best.find('/', 1);
        return !best.empty() && _take(entryEnd == std::string::npos ? "" : best.substr(0, entryEnd),
                                      {best}, Claim::Guessed);
    }

    Paths _allDetectors()
    {
        Paths all;
        for (const std::string& entry : entries())
            for (std::string& detector : _browser.detectors(entry))
                all.push_back(std::move(detector));
        return all;
    }

    /// Accepts blocks of which the first that is not dead is an image, or whose dead link is the
    /// answer; remembers the first dead ones and the first table.
    bool _take(const std::string& entry, Paths blocks, Claim claim)
    {
        if (blocks.empty())
            return false;
        for (const std::string& block : blocks) {
            if (_browser.isDead(block))
                continue;
            const auto found = _browser.find(block);
            const ArrayKind kind =
                found && found->isDataset() ? arrayKind(found->object.id()) : ArrayKind::None;
            if (kind == ArrayKind::Image)
                _found = {entry, std::move(blocks)};
            else if (kind == ArrayKind::Table && _table.blocks.empty())
                _table = {entry, std::move(blocks)};
            return kind == ArrayKind::Image;
        }
        if (claim == Claim::Stated)
            _found = {entry, std::move(blocks)};
        else if (_dead.blocks.empty())
            _dead = {entry, std::move(blocks)};
        return claim == Claim::Stated;
    }

    bool _takeDead() { return _takeKept(_dead); }
    bool _takeTable() { return _takeKept(_table); }
    bool _takeKept(const ImageLinks& kept)
    {
        if (!kept.blocks.empty())
            _found = kept;
        return !kept.blocks.empty();
    }

    GroupBrowser _browser;
    ImageLinks _found;
    ImageLinks _dead;
    ImageLinks _table;
    std::string _auxiliary;
};

ImageLinks withDetector(OpenFiles& files, const Hdf5FilePtr& file, ImageLinks images)
{
    images.detector = detectorOf(files, file, images.entry, images.blocks.front());
    return images;
}

}  // namespace

ImageLinks findImages(OpenFiles& files, const Hdf5FilePtr& file)
{
    silenceErrors();
    Search search(files, file);
    if (search.inFile())
        return withDetector(files, file, search.found());
    const std::string aside =
        search.auxiliary().empty()
            ? ""
            : ", only tables such as " + search.auxiliary() + ", to be opened by FILE::/path";
    throw MRuntimeException("HDF5: the file holds no images" + aside + ": " + file->path());
}

ImageLinks findImagesAt(OpenFiles& files, const Hdf5FilePtr& file, const std::string& path)
{
    silenceErrors();
    Search search(files, file);
    std::string entry;
    std::string fallback;
    for (const std::string& each : search.entries()) {
        fallback = fallback.empty() ? each : fallback;
        if (path.starts_with(each + "/") && each.size() > entry.size())
            entry = each;
    }
    const GroupBrowser browser(files, file);
    const auto found = browser.find(path);
    if (!found && !browser.isDead(path))
        throw MRuntimeException(
            "HDF5: there is no " + path +
            " in the file (tarvik-image info --datasets lists its images): " + file->path());
    if (!found || !found->isGroup())
        return withDetector(files, file, {entry.empty() ? fallback : entry, {path}});
    if (!search.inGroup(entry.empty() ? path : entry, path))
        throw MRuntimeException("HDF5: the group " + path + " holds no images: " + file->path());
    return withDetector(files, file, search.found());
}

}  // namespace morvend::imglib::hdf5
