// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Decoded chunks that hold more than one frame, kept for the next frame.
#pragma once

#include "imagelib/image/PixelBuffer.h"

#include <cstdint>
#include <list>

namespace morvend::imglib::hdf5 {

/// The most recently used chunks, up to a number of bytes.
class ChunkCache {
public:
    static constexpr std::size_t MostBytes = std::size_t(128) << 20;

    /// A chunk of a data set, which its owner has numbered.
    struct Key {
        std::uint64_t dataset = 0;
        std::uint64_t chunk = 0;
        bool operator==(const Key&) const = default;
    };

    /// The decoded bytes, null when they are not cached.
    image::PixelBufferPtr find(const Key& key)
    {
        for (auto each = _chunks.begin(); each != _chunks.end(); ++each)
            if (each->key == key) {
                _chunks.splice(_chunks.begin(), _chunks, each);
                return _chunks.front().bytes;
            }
        return {};
    }

    void insert(const Key& key, const image::PixelBufferPtr& bytes)
    {
        _chunks.push_front({key, bytes});
        _bytes += bytes->size();
        while (_bytes > MostBytes && _chunks.size() > 1) {
            _bytes -= _chunks.back().bytes->size();
            _chunks.pop_back();
        }
    }

    void clear()
    {
        _chunks.clear();
        _bytes = 0;
    }

private:
    struct Chunk {
        Key key;
        image::PixelBufferPtr bytes;
    };
    std::list<Chunk> _chunks;
    std::size_t _bytes = 0;
};

}  // namespace morvend::imglib::hdf5
