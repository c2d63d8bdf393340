// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Raw chunk reads and the copying of tiles.
#include "imagelib/io/formats/hdf5/frames/ChunkReader.h"

#include "imagelib/image/MException.h"

#include <algorithm>
#include <atomic>
#include <cstring>

namespace morvend::imglib::hdf5 {

using image::PixelBuffer;
using image::PixelBufferPtr;

namespace {

constexpr int MostFilters = 32;
constexpr std::size_t MostFilterValues = 64;
/// Beyond this size a chunk's claim is checked: no filter gives more than deflate's 1032 to 1.
constexpr std::size_t LargeChunk = std::size_t(256) << 20;
constexpr std::size_t BestRatio = 1100;

/// The filters of a data set in the order in which its writer applied them.
std::optional<std::vector<codec::ChunkFilter>> filtersOf(hid_t creation)
{
    const int count = H5Pget_nfilters(creation);
    if (count < 0 || count > MostFilters)
        return std::nullopt;
    std::vector<codec::ChunkFilter> filters;
    for (int i = 0; i < count; ++i) {
        codec::ChunkFilter filter;
        filter.values.resize(MostFilterValues);
        std::size_t values = MostFilterValues;
        unsigned flags = 0;
        const H5Z_filter_t id = H5Pget_filter2(creation, static_cast<unsigned>(i), &flags, &values,
                                               filter.values.data(), 0, nullptr, nullptr);
        if (id < 0 || values > MostFilterValues)
            return std::nullopt;
        filter.id = static_cast<unsigned>(id);
        filter.values.resize(values);
        filters.push_back(std::move(filter));
    }
    return filters;
}

std::uint64_t nextSerial()
{
    static std::atomic<std::uint64_t> last{0};
    return ++last;
}

/// Number of chunks along an extent.
hsize_t chunksIn(hsize_t extent, hsize_t chunk) { return (extent + chunk - 1) / chunk; }

}  // namespace

std::unique_ptr<ChunkReader> ChunkReader::make(const FrameSource& source)
{
    std::vector<hsize_t> extents(source.shape().rank);
    const int rank =
        H5Pget_chunk(source.creation(), static_cast<int>(extents.size()), extents.data());
    auto filters = filtersOf(source.creation());
    if (rank != static_cast<int>(extents.size()) || !filters || filters->empty())
        return nullptr;
    codec::ChunkPipeline pipeline;
    pipeline.filters = std::move(*filters);
    pipeline.elementSize = source.format().storedBytes();
    // The library holds chunks below 4 GiB, in which the product can't overflow.
    hsize_t bytes = pipeline.elementSize;
    for (const hsize_t extent : extents)
        bytes *= extent;
    pipeline.chunkBytes = static_cast<std::size_t>(bytes);
    if (!codec::canDecode(pipeline))
        return nullptr;
    return std::unique_ptr<ChunkReader>(
        new ChunkReader(source, FrameShape(extents), std::move(pipeline)));
}

ChunkReader::ChunkReader(const FrameSource& source, FrameShape chunk, codec::ChunkPipeline pipeline)
    : _source(source)
    , _chunk(chunk)
    , _pipeline(std::move(pipeline))
    , _serial(nextSerial())
{}

bool ChunkReader::_chunkIsFrame() const
{
    const FrameShape& shape = _source.shape();
    return _chunk.frames == 1 && _chunk.modules == shape.modules && _chunk.rows == shape.rows &&
           _chunk.columns == shape.columns;
}

void ChunkReader::read(std::size_t frame, std::byte* pixels, ChunkCache& cache) const
{
    if (!_chunkIsFrame()) {
        _gather(frame, pixels, cache);
        return;
    }
    const Offset offset = _source.shape().coordinates(frame, 0, 0, 0);
    const std::size_t stored = _storedSize(frame, offset);
    if (stored == 0) {
        _source.fill(pixels, _source.shape().framePixels());
        return;
    }
    if (_source.format().inPlace()) {
        _decode(frame, offset, stored, pixels);
        _source.format().convert({pixels, _pipeline.chunkBytes}, pixels);
    } else {
        const PixelBufferPtr decoded = PixelBuffer::allocate(_pipeline.chunkBytes);
        _decode(frame, offset, stored, decoded->data());
        _source.format().convert({decoded->cdata(), _pipeline.chunkBytes}, pixels);
    }
}

std::size_t ChunkReader::_storedSize(std::size_t frame, const Offset& offset) const
{
    hsize_t stored = 0;
    if (H5Dget_chunk_storage_size(_source.id(), offset.data(), &stored) < 0) {
        const std::string reason = takeErrorText();
        if (!_wasWritten(offset))
            return 0;
        _source.fail(frame, withReason("can't be found", reason));
    }
    if (stored > _source.file()->size())
        _source.fail(frame, "is damaged: it claims " + std::to_string(stored) +
                                " bytes of a file of " + std::to_string(_source.file()->size()));
    return static_cast<std::size_t>(stored);
}

bool ChunkReader::_wasWritten(const Offset& offset) const
{
    // Asked only after a failure: the time of this call may grow with the number of chunks.
    haddr_t address = HADDR_UNDEF;
    hsize_t size = 0;
    unsigned mask = 0;
    const herr_t status =
        H5Dget_chunk_info_by_coord(_source.id(), offset.data(), &mask, &address, &size);
    takeErrorText();
    return status < 0 || address != HADDR_UNDEF;
}

void ChunkReader::_decode(std::size_t frame, const Offset& offset, std::size_t stored,
                          std::byte* decoded) const
{
    const PixelBufferPtr raw = PixelBuffer::allocate(stored);
    std::uint32_t filterMask = 0;
    if (H5Dread_chunk(_source.id(), H5P_DEFAULT, offset.data(), &filterMask, raw->data()) < 0)
        _source.fail(frame, "can't be read");
    try {
        codec::decodeChunk(_pipeline, {raw->cdata(), stored}, filterMask,
                           {decoded, _pipeline.chunkBytes});
    } catch (const MException& error) {
        takeErrorText();
        _source.fail(frame, std::string("is damaged: ") + error.what());
    }
}

void ChunkReader::_gather(std::size_t frame, std::byte* pixels, ChunkCache& cache) const
{
    const FrameShape& shape = _source.shape();
    FrameShape at = shape;
    at.frames = frame / _chunk.frames * _chunk.frames;
    for (at.modules = 0; at.modules < shape.modules; at.modules += _chunk.modules)
        for (at.rows = 0; at.rows < shape.rows; at.rows += _chunk.rows)
            for (at.columns = 0; at.columns < shape.columns; at.columns += _chunk.columns) {
                if (const PixelBufferPtr tile = _tile(frame, at, cache))
                    _copyTile(frame, at, tile->cdata(), pixels);
                else
                    _fillTile(at, pixels);
            }
}

PixelBufferPtr ChunkReader::_tile(std::size_t frame, const FrameShape& at, ChunkCache& cache) const
{
    const FrameShape& shape = _source.shape();
    const hsize_t number = ((at.frames / _chunk.frames * chunksIn(shape.modules, _chunk.modules) +
                             at.modules / _chunk.modules) *
                                chunksIn(shape.rows, _chunk.rows) +
                            at.rows / _chunk.rows) *
                               chunksIn(shape.columns, _chunk.columns) +
                           at.columns / _chunk.columns;
    const bool keep = _chunk.frames > 1;
    if (keep)
        if (PixelBufferPtr kept = cache.find({_serial, number}))
            return kept;
    const PixelFormat& format = _source.format();
    const std::size_t count = _pipeline.chunkBytes / _pipeline.elementSize;
    const Offset offset = shape.coordinates(at.frames, at.modules, at.rows, at.columns);
    const std::size_t stored = _storedSize(frame, offset);
    if (stored == 0)
        return {};
    if (_pipeline.chunkBytes > LargeChunk && _pipeline.chunkBytes / BestRatio > stored)
        _source.fail(frame, "is damaged: " + std::to_string(stored) +
                                " bytes can't hold a chunk of " +
                                std::to_string(_pipeline.chunkBytes));
    PixelBufferPtr tile = PixelBuffer::allocate(count * format.pixelBytes());
    if (format.inPlace()) {
        _decode(frame, offset, stored, tile->data());
        format.convert({tile->cdata(), _pipeline.chunkBytes}, tile->data());
    } else {
        const PixelBufferPtr decoded = PixelBuffer::allocate(_pipeline.chunkBytes);
        _decode(frame, offset, stored, decoded->data());
        format.convert({decoded->cdata(), _pipeline.chunkBytes}, tile->data());
    }
    if (keep)
        cache.insert({_serial, number}, tile);
    return tile;
}

void ChunkReader::_copyTile(std::size_t frame, const FrameShape& at, const std::byte* decoded,
                            std::byte* pixels) const
{
    const FrameShape& shape = _source.shape();
    const std::size_t size = _source.format().pixelBytes();
    const hsize_t modules = std::min(_chunk.modules, shape.modules - at.modules);
    const hsize_t rows = std::min(_chunk.rows, shape.rows - at.rows);
    const hsize_t columns = std::min(_chunk.columns, shape.columns - at.columns);
    const hsize_t first = (frame - at.frames) * _chunk.modules;
    for (hsize_t module = 0; module < modules; ++module)
        for (hsize_t row = 0; row < rows; ++row) {
            const hsize_t from = ((first + module) * _chunk.rows + row) * _chunk.columns;
            const hsize_t to =
                ((at.modules + module) * shape.rows + at.rows + row) * shape.columns + at.columns;
            std::memcpy(pixels + to * size, decoded + from * size, columns * size);
        }
}

void ChunkReader::_fillTile(const FrameShape& at, std::byte* pixels) const
{
    const FrameShape& shape = _source.shape();
    const std::size_t size = _source.format().pixelBytes();
    const hsize_t modules = std::min(_chunk.modules, shape.modules - at.modules);
    const hsize_t rows = std::min(_chunk.rows, shape.rows - at.rows);
    const hsize_t columns = std::min(_chunk.columns, shape.columns - at.columns);
    const std::byte* first = nullptr;
    for (hsize_t module = 0; module < modules; ++module)
        for (hsize_t row = 0; row < rows; ++row) {
            std::byte* const to =
                pixels + (((at.modules + module) * shape.rows + at.rows + row) * shape.columns +
                          at.columns) *
                             size;
            if (first)
                std::memcpy(to, first, columns * size);
            else
                _source.fill(to, columns);
            first = first ? first : to;
        }
}

}  // namespace morvend::imglib::hdf5
