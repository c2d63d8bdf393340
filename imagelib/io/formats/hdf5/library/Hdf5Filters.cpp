// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The library's filter interface over the chunk codecs.
#include "imagelib/io/formats/hdf5/library/Hdf5Filters.h"

#include "imagelib/codec/Bitshuffle.h"
#include "imagelib/codec/ChunkDecoder.h"
#include "imagelib/codec/Lz4.h"
#include "imagelib/image/MException.h"
#include "imagelib/io/formats/hdf5/library/Hdf5Handles.h"

#include <algorithm>
#include <cstring>
#include <mutex>
#include <span>
#include <vector>

namespace morvend::imglib::hdf5 {

namespace {

using Bytes = std::span<const std::byte>;

/// The largest chunk of the library.
constexpr std::size_t MostBytes = 0xffffffff;

/// Bytes that one byte of a packed block can stand for, at most.
constexpr std::size_t BestLz4 = 255;
constexpr std::size_t BestZstd = 40'000;

/// The decoded length at the head of a chunk; 0 when it is impossible.
std::size_t announcedBytes(Bytes stored, std::size_t bestRatio)
{
    std::size_t announced = 0;
    if (stored.size() < 8)
        return 0;
    for (const std::byte byte : stored.first(8))
        announced = announced << 8 | std::to_integer<std::size_t>(byte);
    return announced <= std::min(MostBytes, bestRatio * stored.size()) ? announced : 0;
}

/// Replaces the library's buffer by one of its own kind; returns the number of bytes, 0 on failure.
std::size_t replace(Bytes content, std::size_t* capacity, void** buffer)
{
    void* fresh = H5allocate_memory(std::max<std::size_t>(1, content.size()), 0);
    if (!fresh)
        return 0;
    std::memcpy(fresh, content.data(), content.size());
    H5free_memory(*buffer);
    *buffer = fresh;
    *capacity = content.size();
    return content.size();
}

std::vector<std::byte> decode(unsigned id, std::vector<unsigned> values, Bytes stored)
{
    const bool plain = id == codec::BitshuffleFilter && (values.size() < 5 || values[4] == 0);
    const bool zstd = id == codec::BitshuffleFilter && !plain &&
                      values[4] == static_cast<unsigned>(codec::BlockPacking::Zstd);
    std::vector<std::byte> decoded(plain ? stored.size()
                                         : announcedBytes(stored, zstd ? BestZstd : BestLz4));
    codec::decodeChunk({{{id, std::move(values)}}, 1, decoded.size()}, stored, 0, decoded);
    return decoded;
}

std::vector<std::byte> encode(unsigned id, const std::vector<unsigned>& values, Bytes raw)
{
    if (id == codec::Lz4Filter)
        return codec::lz4Encode(raw);
    if (values.size() < 5 || values[2] == 0 || values[3] % 8 != 0 || values[4] > 2 ||
        values[4] == 1)
        throw MBadParameterException("bitshuffle with values that are not known");
    return codec::bitshuffleEncode(raw, values[2], static_cast<codec::BlockPacking>(values[4]),
                                   values[3]);
}

/// H5Z_func_t for both filters: 0 reports failure to the library.
template <unsigned Id>
std::size_t filter(unsigned flags, std::size_t valueCount, const unsigned* values,
                   std::size_t bytes, std::size_t* capacity, void** buffer)
{
    try {
        const Bytes content(static_cast<const std::byte*>(*buffer), bytes);
        const std::vector<unsigned> list(values, values + valueCount);
        return replace(flags & H5Z_FLAG_REVERSE ? decode(Id, list, content)
                                                : encode(Id, list, content),
                       capacity, buffer);
    } catch (const std::exception&) {
        return 0;  // no exception may pass through the library's C code
    }
}

template <unsigned Id>
void registerFilter(const char* name)
{
    static const H5Z_class2_t description = {
        H5Z_CLASS_T_VERS, static_cast<H5Z_filter_t>(Id), 1, 1, name, nullptr, nullptr, filter<Id>};
    check(H5Zregister(&description), "cannot register " + codec::filterText(Id), name);
}

}  // namespace

void registerFilters()
{
    static std::once_flag once;
    std::call_once(once, [] {
        registerFilter<codec::BitshuffleFilter>("bitshuffle");
        registerFilter<codec::Lz4Filter>("LZ4");
    });
}

}  // namespace morvend::imglib::hdf5
