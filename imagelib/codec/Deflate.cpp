// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// libdeflate with one object for each thread.
#include "imagelib/codec/Deflate.h"

#include "imagelib/image/MException.h"

#include <memory>
#include <string>

#include <libdeflate.h>

namespace morvend::codec {

void inflateExactly(std::span<const std::byte> packed, std::span<std::byte> unpacked)
{
    struct Free {
        void operator()(libdeflate_decompressor* d) const { libdeflate_free_decompressor(d); }
    };
    thread_local const std::unique_ptr<libdeflate_decompressor, Free> decompressor(
        libdeflate_alloc_decompressor());
    if (!decompressor)
        throw MRuntimeException("not enough memory to unpack a deflate stream");
    std::size_t got = 0;
    switch (libdeflate_zlib_decompress(decompressor.get(), packed.data(), packed.size(),
                                       unpacked.data(), unpacked.size(), &got)) {
    case LIBDEFLATE_SUCCESS:
        break;
    case LIBDEFLATE_INSUFFICIENT_SPACE:
        throw MRuntimeException("the deflate stream unpacks to more than " +
                                std::to_string(unpacked.size()) + " bytes");
    default:
        throw MRuntimeException("the deflate stream is damaged or ends early");
    }
    if (got != unpacked.size())
        throw MRuntimeException("the deflate stream unpacks to " + std::to_string(got) +
                                " instead of " + std::to_string(unpacked.size()) + " bytes");
}

std::vector<std::byte> deflate(std::span<const std::byte> unpacked, int level)
{
    struct Free {
        void operator()(libdeflate_compressor* c) const { libdeflate_free_compressor(c); }
    };
    const std::unique_ptr<libdeflate_compressor, Free> compressor(
        libdeflate_alloc_compressor(level));
    if (!compressor)
        throw MRuntimeException("not enough memory to pack a deflate stream");
    std::vector<std::byte> packed(
        libdeflate_zlib_compress_bound(compressor.get(), unpacked.size()));
    packed.resize(libdeflate_zlib_compress(compressor.get(), unpacked.data(), unpacked.size(),
                                           packed.data(), packed.size()));
    return packed;
}

}  // namespace morvend::codec
