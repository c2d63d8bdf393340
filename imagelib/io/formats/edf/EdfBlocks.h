// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Where the blocks of an EDF file stand.
#pragma once

#include "imagelib/io/formats/edf/EdfHeader.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace morvend::imglib::edf {

struct EdfLayout;

/// One header with its binary block, of one or more frames.
struct EdfBlock {
    std::uint64_t header = 0;
    std::size_t headerBytes = 0;
    /// The binary block in this file; empty when it lies in another one.
    std::uint64_t data = 0;
    std::uint64_t dataBytes = 0;
    std::size_t firstFrame = 0;
    std::size_t frames = 1;
};

/// Walks from header to header as far as it is asked for. A walk that meets something that is no
/// block has one more frame, which can't be had: the frames before it stay readable and the damage
/// is not passed over.
/// Thread: one at a time.
class EdfBlocks {
public:
    /// @throws MException when the first frame's header is damaged
    explicit EdfBlocks(std::shared_ptr<const ByteSource> source);

    /// The block of a frame.
    /// @throws MOutOfRangeException beyond the last frame, MRuntimeException with the reason for
    /// the frame where the walk ended
    const EdfBlock& blockOf(std::size_t frame);
    /// Number of frames; walks to the end of the file.
    std::size_t count();
    /// Goes on behind the last block, where a writer may have added more.
    void update();

    /// The header of a block with the general header behind it.
    EdfHeader header(const EdfBlock& block) const;

private:
    bool _walk();
    void _readBlock();
    void _addBlock(const EdfHeader& header, const EdfLayout& layout);
    bool _blockAt(std::uint64_t offset) const;
    std::uint64_t _dataBytes(const EdfLayout& layout, std::uint64_t data) const;
    std::size_t _found() const;

    std::shared_ptr<const ByteSource> _source;
    std::shared_ptr<const EdfHeader> _general;
    std::vector<EdfBlock> _blocks;
    std::uint64_t _next = 0;
    std::uint64_t _lastBytes = 0;  // of the last frame with its header
    std::size_t _headerGuess = 4096;
    std::string _damage;
};

}  // namespace morvend::imglib::edf
