// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Raw chunks of HDF5 data sets, decoded outside the HDF5 library: no global lock, no scratch
// copies.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace morvend::codec {

/// Numbers of the HDF5 filters that are decoded here.
enum FilterId : unsigned {
    DeflateFilter = 1,
    ShuffleFilter = 2,
    Lz4Filter = 32004,
    BitshuffleFilter = 32008
};

/// One filter of a data set, as H5Pget_filter2 reports it.
struct ChunkFilter {
    unsigned id = 0;
    std::vector<unsigned> values;  ///< the cd_values
};

/// How the chunks of a data set are stored: its filters in the order in which the writer applied
/// them, empty for plain chunks.
struct ChunkPipeline {
    std::vector<ChunkFilter> filters;
    std::size_t elementSize = 0;  ///< bytes of one element of the stored type
    std::size_t chunkBytes = 0;   ///< bytes of one whole chunk, decoded
};

/// Why chunks of this pipeline can't be decoded here, as in "filter 32015 (zstd) is not known";
/// empty if they can. `filterMask` as for decodeChunk. What can't be decoded here may still be
/// read through the HDF5 library with a plug-in.
std::string decodingObstacle(const ChunkPipeline& pipeline, std::uint32_t filterMask = 0);

/// True if every chunk of this pipeline can be decoded here.
inline bool canDecode(const ChunkPipeline& pipeline) { return decodingObstacle(pipeline).empty(); }

/// A filter's number with its name where it is known, as in "filter 32008 (bitshuffle)".
std::string filterText(unsigned id);

/// Decodes one chunk straight into its final place. No length inside `stored` is trusted.
///
/// @param stored      the bytes as H5Dread_chunk gives them
/// @param filterMask  bit i set: filter i was left out for this chunk
/// @param decoded     exactly pipeline.chunkBytes bytes, all of them filled on return; the byte
///                    order stays that of the file
/// @param threads     upper bound of threads for one chunk; the result is the same for any number
/// @throws MRuntimeException with the reason, without file and frame, which the caller adds;
/// `decoded` is then undefined. Thread: any. Cost: bitshuffle and LZ4 work in blocks inside the
/// first-level cache; deflate and byte shuffle together take a scratch buffer from the pixel pool.
void decodeChunk(const ChunkPipeline& pipeline, std::span<const std::byte> stored,
                 std::uint32_t filterMask, std::span<std::byte> decoded, unsigned threads = 1);

}  // namespace morvend::codec
