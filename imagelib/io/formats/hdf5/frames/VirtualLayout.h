// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Frames of a virtual data set, read from its sources.
#pragma once

#include "imagelib/io/formats/hdf5/frames/FrameSource.h"

#include <optional>
#include <string>
#include <vector>

namespace morvend::imglib::hdf5 {

/// The mappings of a virtual data set. The library reads a source that it can't open as the fill
/// value, without an error, and can't hand out its raw chunks; so we look up which source holds
/// which rectangle of a frame and read it there. Pixels without a source show the fill value.
class VirtualLayout {
public:
    /// Reads the mappings of a data set, which must outlive this.
    explicit VirtualLayout(const FrameSource& set);
    ~VirtualLayout();

    /// A frame; nothing when the mappings are too irregular for us: the library can then read
    /// it, as all sources have been found to open.
    /// @throws MException naming the source that can't be opened or has too few frames
    std::optional<MImage> read(std::size_t frame, SourceOpener& sources) const;

    std::string holder(std::size_t frame) const;
    std::optional<std::size_t> firstFrameIn(const std::string& file) const;

private:
    struct Mapping;          // a box of this data set and the box of the source that fills it
    struct SourceRectangle;  // of a source frame, and where in the image it goes

    /// Reads one mapping as the library has it; one that can't be followed marks all as irregular.
    void _addMapping(std::size_t index);
    static bool _followable(const Mapping& mapping);
    /// The position in the source of the `index`th rectangle of its mapping.
    static void _setOrigin(SourceRectangle& rectangle, const Mapping& mapping, hsize_t index);
    void _addRectangles(const Mapping& mapping, std::size_t frame,
                        std::vector<SourceRectangle>& rectangles) const;
    std::vector<SourceRectangle> _rectanglesOf(std::size_t frame) const;
    /// The data set that a mapping names, for a numbered one that of a block.
    ObjectPath _sourceOf(const Mapping& mapping, hsize_t block) const;
    bool _isWholeFrame(const SourceRectangle& rectangle, const FrameSource& source) const;
    void _checkFits(const SourceRectangle& rectangle, const FrameSource& source) const;
    void _copy(const SourceRectangle& rectangle, const FrameSource& source, const MImage& from,
               std::byte* pixels) const;
    /// Checks that each source opens: the library would read a missing one as fill value.
    /// @throws MException naming the source
    void _openAllSources(SourceOpener& sources) const;

    const FrameSource& _set;
    std::vector<Mapping> _mappings;
    bool _regular = true;
};

}  // namespace morvend::imglib::hdf5
