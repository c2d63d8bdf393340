// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Which frame of a series is in which block, found with as few files opened as possible.
#pragma once

#include "imagelib/io/formats/hdf5/frames/OpenFrameSets.h"

#include <exception>
#include <optional>
#include <string>
#include <vector>

namespace morvend::imglib::hdf5 {

/// Where a frame of a series is.
struct FrameLocation {
    FrameSourcePtr set;
    std::size_t frame = 0;
    std::string link;  // path of its block in the master
};

/// The blocks of a series, of which more may be planned than exist: the series ends with the last
/// whose file exists.
///
/// Detectors write blocks of equal size, of which only the last may be shorter. So the first and
/// the last are opened, and the others are assumed to be like the first
/// - for certain, if the image numbers that the last block carries (attribute image_nr_low) or
///   the planned number of images agree with it;
/// - never, in short series without such a proof: all blocks are counted;
/// - for now, in longer ones where six more blocks agree: the first block shows its
///   first image at once, and all are counted when the next image is asked for.
/// If a block turns out different, all are counted. A block that can't be opened counts
/// as one of the common size, so that its neighbours keep their numbers.
/// Thread: callers take turns.
class BlockTable {
public:
    /// @param master   the file that holds the links
    /// @param links    paths of the blocks in it; may be empty
    /// @param planned  images that the metadata announce, 0 if they don't
    /// @throws MException if no block exists or can be opened
    BlockTable(OpenFrameSets& sets, std::string master, const std::vector<std::string>& links,
               std::size_t planned);
    /// Blocks in data files of their own, without a master.
    BlockTable(OpenFrameSets& sets, std::vector<ObjectPath> datasets);

    /// Frames of the series.
    std::size_t frames() const { return _frames; }
    std::size_t blocks() const { return _end; }

    /// The data set and the frame in it. May correct frames().
    /// @throws MException naming master, link and file when the block can't be opened
    FrameLocation locate(std::size_t position);
    /// The file that holds a frame, also of a block that can't be opened.
    std::string path(std::size_t position);
    /// The first frame whose pixels are in a file, given by its base name.
    std::optional<std::size_t> firstFrameIn(const std::string& file);

    /// Looks for new blocks and recounts the last ones. After an exception the table is
    /// unusable: update a copy.
    void update();

private:
    enum class Certainty { Estimated, Proved, Counted };
    struct Block {
        std::string link;
        std::optional<ObjectPath> target;   // where the link leads, once looked at
        std::optional<std::size_t> frames;  // once opened
    };
    struct BlockFrame {
        std::size_t block = 0;
        std::size_t frame = 0;
    };

    /// Where the block's link leads. @throws MException when the link is damaged
    const ObjectPath& _target(Block& block);
    /// The block's data set, opened. @throws MException naming master, link and file
    FrameSourcePtr _setOf(Block& block);
    bool _fileExists(Block& block);
    bool _leadsToFile(Block& block, const std::string& name);
    /// Sets the end after the last block whose file exists; it never moves back.
    void _findEnd();
    [[noreturn]] void _failWithoutBlocks();
    /// Finds the number of frames, as surely as the blocks allow, by opening as few as possible.
    void _countBlocks();
    /// Opens a block unless it is known, and stores its number of frames; false when it can't be
    /// opened.
    bool _countBlock(std::size_t block);
    void _countAllBlocks();
    /// True if the planned number of images, or the last block's image number, agrees.
    bool _isProved(std::size_t total);
    /// Opens some blocks spread over the series; true if they are as long as the first.
    bool _samplesAgree();
    /// The number of its first image, as a block states it.
    std::optional<long long> _firstImageNumber(std::size_t block);
    /// Frames of a block: counted, else those of the first one.
    std::size_t _framesOf(std::size_t block) const;
    /// True if a counted block before the last is longer or shorter than the first.
    bool _anyDiffersFromFirst() const;
    /// Sets the first frame of each block, and their sum.
    void _updateStarts();
    std::optional<BlockFrame> _blockOf(std::size_t position) const;

    OpenFrameSets* _sets;  // never null; a pointer, so that tables can be assigned
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
