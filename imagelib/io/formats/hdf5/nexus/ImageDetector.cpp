// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Comparing objects, and where dead links lead.
#include "imagelib/io/formats/hdf5/nexus/ImageDetector.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/formats/hdf5/library/SmallValues.h"
#include "imagelib/io/formats/hdf5/nexus/DataFileNames.h"
#include "imagelib/io/formats/hdf5/nexus/GroupBrowser.h"

#include <algorithm>

namespace morvend::imglib::hdf5 {

namespace {

constexpr std::size_t MostDetectors = 100;

/// The identity of a data set, however it is reached: its file and its address there,
/// or the place that its dead link names.
std::string identityOf(const GroupBrowser& browser, const std::string& path)
{
    H5O_info_t info = {};
    if (const auto found = browser.find(path))
        return H5Oget_info2(found->object.id(), &info, H5O_INFO_BASIC) < 0
                   ? std::string()
                   : found->file->path() + '@' + std::to_string(info.addr);
    try {
        const ObjectPath target = browser.files().target(browser.file(), path);
        return target.file + ':' + target.path;
    } catch (const MException&) {
        return {};
    }
}

bool holds(const GroupBrowser& browser, const std::string& detector, const std::string& identity)
{
    const std::vector<std::string> members = browser.members(detector);
    return std::ranges::any_of(members, [&](const std::string& name) {
        return blockNumber(name) != -2 && identityOf(browser, detector + "/" + name) == identity;
    });
}

}  // namespace

std::string detectorOf(OpenFiles& files, const Hdf5FilePtr& file, const std::string& entry,
                       const std::string& image)
{
    const GroupBrowser browser(files, file);
    const std::vector<std::string> detectors = browser.detectors(entry);
    if (detectors.size() < 2 || detectors.size() > MostDetectors)
        return {};
    const auto found = browser.find(image);
    const bool here = found && found->file->path() == file->path();
    std::string target;
    if (found && found->isDataset())
        target = textAttribute(found->object.id(), "target");
    const std::string identity = identityOf(browser, image);
    for (const std::string& detector : detectors) {
        const std::string inside = detector + "/";
        if (image.starts_with(inside) || target.starts_with(inside) ||
            (here && found->path.starts_with(inside)))
            return detector;
    }
    for (const std::string& detector : detectors)
        if (!identity.empty() && holds(browser, detector, identity))
            return detector;
    return {};
}

}  // namespace morvend::imglib::hdf5
