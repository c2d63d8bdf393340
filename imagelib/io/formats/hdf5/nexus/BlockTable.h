// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Which frame of a series lies in which block, found with as few files opened as possible.
#pragma once

#include "imagelib/io/formats/hdf5/frames/FrameSets.h"

#include <exception>
#include <optional>
#include <string>
#include <vector>

namespace morvend::imglib::hdf5 {

/// The blocks of a series, of which more may be planned than exist: the series ends with the last
/// whose file exists.
///
/// Detectors write blocks of equal size, of which only the last may be shorter. So the first and
/// the last are opened, and the others are taken to be like the first
/// - without a doubt, if the image numbers that the last block carries (attribute image_nr_low) or
///   the planned number of images agree with it;
/// - never, in short series without such a proof: all blocks are counted;
/// - for the time being, in longer ones where six more blocks agree: the first block shows its
/// first
///   image at once, and all are counted when the next image is asked for.
/// A block that turns out different has all of them counted. A block that can't be opened counts
/// as one of the common size, so that its neighbours keep their numbers.
/// Thread: callers take turns.
class BlockTable {
public:
    /// @param master   the file in which the links lie
    /// @param links    paths of the blocks in it; may be empty
    /// @param planned  images that the metadata announce, 0 when they don't
    /// @throws MException when no block exists or none can be opened
    BlockTable(FrameSets& sets, std::string master, const std::vector<std::string>& links,
               std::size_t planned);
    /// Blocks in data files of their own, without a master.
    BlockTable(FrameSets& sets, std::vector<Place> places);

    /// Frames of the series.
    std::size_t frames() const { return _frames; }
    std::size_t blocks() const { return _end; }

    struct Spot {
        FrameSetPtr set;
        std::size_t frame = 0;
        std::string link;  // path of its block in the master
    };
    /// The data set and the frame in it. May correct frames().
    /// @throws MException naming master, link and file when the block can't be opened
    Spot spot(std::size_t position);
    /// The file that holds a frame, also of a block that can't be opened.
    std::string path(std::size_t position);
    /// The first frame whose pixels lie in a file, by its base name.
    std::optional<std::size_t> firstFrameIn(const std::string& file);

    /// Looks for new blocks and counts the last ones anew. A table that threw is of no more use:
    /// update a copy.
    void update();

private:
    enum class Certainty { Estimated, Proved, Counted };
    struct Block {
        std::string link;
        std::optional<Place> place;
        std::optional<std::size_t> frames;  // once opened
    };
    struct Position {
        std::size_t block = 0;
        std::size_t frame = 0;
    };

    const Place& _place(Block& block);
    /// The block's data set, opened. @throws MException naming master, link and file
    FrameSetPtr _setOf(Block& block);
    bool _exists(Block& block);
    bool _leadsTo(Block& block, const std::string& name);
    void _findEnd();
    [[noreturn]] void _failWithoutBlocks();
    void _settle();
    bool _open(std::size_t block);
    void _countAll();
    bool _proved(std::size_t total);
    bool _samplesAgree();
    std::optional<long long> _imageNumber(std::size_t block);
    std::size_t _size(std::size_t block) const;
    bool _middleDiffers() const;
    void _sum();
    std::optional<Position> _position(std::size_t position) const;

    FrameSets* _sets;  // never null; a pointer, so that tables can be assigned
    std::string _master;
    std::size_t _planned = 0;
    std::vector<Block> _blocks;
    std::size_t _end = 0;     // blocks up to the last that exists
    std::size_t _common = 0;  // frames of a block
    std::size_t _frames = 0;
    Certainty _certainty = Certainty::Estimated;
    bool _asked = false;               // a frame was asked for
    std::vector<std::size_t> _starts;  // position of each block's first frame
    std::exception_ptr _firstFailure;
};

}  // namespace morvend::imglib::hdf5
