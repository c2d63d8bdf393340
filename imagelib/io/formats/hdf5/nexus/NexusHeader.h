// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The image header of a NeXus file, from its metadata tree.
#pragma once

#include "imagelib/image/MBasicImageOptionalData.h"

#include <cstddef>
#include <string>
#include <vector>

namespace morvend::imglib::hdf5 {

/// Reads the fields of the header from a metadata tree; docs/formats/hdf5.md lists the paths. What
/// the tree does not hold stays absent.
class NexusHeader {
public:
    /// @param entry  path of the entry group, such as "/entry"; "" for the root
    /// @param detector  among several detectors the path of the one that took these images: the
    /// values of the others don't apply; empty if unknown: then the first value counts
    NexusHeader(nexus::MBasicNeXusTree tree, std::string entry, const std::string& detector = {});

    /// Images that the metadata announce, over all triggers; 0 if they don't.
    std::size_t plannedImages() const;
    /// Paths where a pixel mask may be, the likeliest first: in the detectors of the entry.
    std::vector<std::string> maskPaths() const;

    /// Sets the number of images of the series, which the tree of every header carries as
    /// "<entry>/instrument/detector/detectorSpecific/nimages", and renders the raw header.
    void setImages(std::size_t images);

    /// The header of a frame, without the mask.
    MBasicImageOptionalData<> of(std::size_t frame) const;

private:
    void _setTree(nexus::MBasicNeXusTree tree);
    void _findDetectors(const std::string& only);
    std::vector<std::string> _inDetectors(const std::vector<std::string>& names) const;
    void _readBeam(MBasicImageOptionalData<>& header, std::size_t frame) const;
    void _readDetector(MBasicImageOptionalData<>& header, std::size_t frame) const;
    void _readGeometry(MBasicImageOptionalData<>& header) const;
    void _readTexts(MBasicImageOptionalData<>& header) const;

    MBasicImageOptionalData<> _common;  // what all frames share: the tree and its text
    std::string _entry;
    std::size_t _images = 0;
    std::vector<std::string> _detectors;  // groups that hold a detector's values
};

}  // namespace morvend::imglib::hdf5
