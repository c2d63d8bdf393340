// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The framing that LZ4 chunks and packed bitshuffle chunks share: a head of two lengths, then
// blocks, each after its stored length.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace morvend::codec {

/// One block of a chunk: its stored bytes, and which part of the decoded chunk it gives.
struct StoredBlock {
    std::size_t index = 0;
    std::span<const std::byte> stored;
    std::size_t readable = 0;  ///< bytes of the chunk after the stored ones
    std::size_t at = 0;
    std::size_t bytes = 0;

    /// "block 7 of the chunk <what>", for messages.
    std::string failure(const char* what) const;
};

/// Walks over the blocks of a chunk. A value: a copy goes on from the same place.
class BlockStream {
public:
    static constexpr std::size_t HeadBytes = 12;

    /// Reads the head.
    /// @param unit  blocks are multiples of it; what remains of the chunk below it is the rest
    /// @param defaultBlock  length of a block when the head leaves it 0
    /// @throws MRuntimeException when the head is cut or disagrees with `decodedBytes`
    BlockStream(std::span<const std::byte> stored, std::size_t decodedBytes, std::size_t unit,
                std::size_t defaultBlock);

    /// Length of the longest block.
    std::size_t blockBytes() const { return _blockBytes; }
    bool atEnd() const { return _at == _end; }
    /// The next block. @throws MRuntimeException when its length runs beyond the chunk
    StoredBlock next();
    /// The rest after the last block, stored as it is. @throws MRuntimeException when it is cut
    std::span<const std::byte> rest() const;

private:
    std::span<const std::byte> _stored;  // not read yet
    std::size_t _decodedBytes = 0;
    std::size_t _blockBytes = 0;
    std::size_t _end = 0;  // decoded length of all blocks
    std::size_t _at = 0;
    std::size_t _index = 0;
};

/// Calls decode(block) for every block, on up to `threads` threads; returns the stream at its end.
/// @throws the failure of the first block in order, whatever the number of threads
BlockStream forEachBlock(BlockStream stream, unsigned threads,
                         const std::function<void(const StoredBlock&)>& decode);

/// Appends a head or the length of a block, big-endian.
void appendBigEndian(std::vector<std::byte>& to, std::uint64_t value, std::size_t bytes);

}  // namespace morvend::codec
