// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Frames of a virtual data set, read from its sources.
#pragma once

#include "imagelib/image/MImage.h"
#include "imagelib/io/formats/hdf5/frames/HyperslabRange.h"
#include "imagelib/io/formats/hdf5/library/Hdf5Files.h"
#include "imagelib/io/formats/hdf5/library/PixelFormat.h"

#include <optional>
#include <string>
#include <vector>

namespace morvend::imglib::hdf5 {

class FrameSet;
class FrameSets;

/// The mappings of a virtual data set. The library reads a source that it can't open as the fill
/// value, without an error, and can't hand out its raw chunks; so we look up which source holds
/// which part of a frame and read it there. Parts that no source has show the fill value.
class VirtualLayout {
public:
    /// Reads the mappings of a data set, which must outlive this.
    explicit VirtualLayout(const FrameSet& set);

    /// A frame; nothing when the mappings are too irregular to follow: then the library can read
    /// it, as all sources have been found to open.
    /// @throws MException naming the source that can't be opened or has too few frames
    std::optional<MImage> read(std::size_t frame, FrameSets& sets) const;

    std::string holder(std::size_t frame) const;
    std::optional<std::size_t> firstFrameIn(const std::string& file) const;

private:
    /// A box of the virtual data set and the equally large one of a source.
    struct Mapping {
        std::string file;  // may hold "%b", the number of the block of an endless selection
        std::string path;
        std::vector<HyperslabRange> target;
        std::vector<HyperslabRange> source;  // empty: the whole data set, whatever its extents
    };
    /// A rectangle of a source frame that goes to a place of the image.
    struct Part {
        Place place;
        bool ofWhole = false;  // then `frame` counts modules too, until the source is known
        hsize_t frame = 0;
        hsize_t module = 0;
        hsize_t fromRow = 0, fromColumn = 0;
        hsize_t toRow = 0, toColumn = 0;
        hsize_t rows = 0, columns = 0;
    };

    void _addMapping(std::size_t index);
    static bool _followable(const Mapping& mapping);
    static void _setSource(Part& part, const Mapping& mapping, hsize_t index);
    void _addParts(const Mapping& mapping, std::size_t frame, std::vector<Part>& parts) const;
    std::vector<Part> _parts(std::size_t frame) const;
    Place _sourceOf(const Mapping& mapping, hsize_t block) const;
    bool _isWholeFrame(const Part& part, const FrameSet& source) const;
    void _checkPart(const Part& part, const FrameSet& source) const;
    void _copy(const Part& part, const FrameSet& source, const MImage& from,
               std::byte* pixels) const;
    void _openAllSources(FrameSets& sets) const;

    const FrameSet& _set;
    std::vector<Mapping> _mappings;
    bool _regular = true;
};

}  // namespace morvend::imglib::hdf5
