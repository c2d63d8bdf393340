// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Frames of a chunked data set, chunk by chunk, decoded outside the HDF5 library.
#pragma once

#include "imagelib/codec/ChunkDecoder.h"
#include "imagelib/io/formats/hdf5/frames/ChunkCache.h"
#include "imagelib/io/formats/hdf5/frames/FrameSource.h"

#include <array>
#include <memory>

namespace morvend::imglib::hdf5 {

/// Reads frames from raw chunks. A chunk that is one frame is decoded straight into the image;
/// chunks of several frames, or tiles of a frame, are gathered. Only chunks of several frames
/// are kept for the next frame.
class ChunkReader {
public:
    /// A reader for the chunks of a data set; null when we can't decode its filters. Also
    /// null when it has none: the library then reports the size that a chunk should have, but reads
    /// as many bytes as the file claims, past the end of any memory.
    static std::unique_ptr<ChunkReader> make(const FrameSource& source);

    /// Fills the pixels of a frame. @throws MRuntimeException naming frame, data set and file
    void read(std::size_t frame, std::byte* pixels, ChunkCache& cache) const;

private:
    using Offset = std::array<hsize_t, FrameShape::LargestRank>;

    ChunkReader(const FrameSource& source, FrameShape chunk, codec::ChunkPipeline pipeline);
    bool _chunkIsFrame() const;
    void _gather(std::size_t frame, std::byte* pixels, ChunkCache& cache) const;
    void _copyTile(std::size_t frame, const FrameShape& at, const std::byte* decoded,
                   std::byte* pixels) const;
    /// Shows the fill value where a chunk was never written.
    void _fillTile(const FrameShape& at, std::byte* pixels) const;
    /// Bytes that a chunk takes in the file, 0 when it was never written.
    std::size_t _storedSize(std::size_t frame, const Offset& offset) const;
    bool _wasWritten(const Offset& offset) const;
    void _decode(std::size_t frame, const Offset& offset, std::size_t stored,
                 std::byte* decoded) const;
    /// The pixels of a chunk, null when it was never written.
    image::PixelBufferPtr _tile(std::size_t frame, const FrameShape& at, ChunkCache& cache) const;

    const FrameSource& _source;
    FrameShape _chunk;
    codec::ChunkPipeline _pipeline;
    std::uint64_t _serial;
};

}  // namespace morvend::imglib::hdf5
