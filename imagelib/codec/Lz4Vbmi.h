// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The LZ4 block decoder for processors that permute the bytes of 512-bit vectors.
#pragma once

#include <cstddef>

namespace morvend::codec {

/// A place in a packed block and in what is unpacked from it.
struct Lz4Place {
    const std::byte* in;
    const std::byte* inEnd;       ///< of the block
    const std::byte* inReadable;  ///< of the memory that may be read, at least inEnd
    std::byte* out;
    std::byte* outBegin;
    std::byte* outEnd;       ///< of the block
    std::byte* outWritable;  ///< of the memory that may be written, at least outEnd
};

/// Unpacks from `in` and `out` on to exactly outEnd; false when the block is damaged. Never reads
/// or writes outside the memory given, whatever the block holds. Call it on processors with
/// AVX-512 VBMI only.
bool lz4BlockVbmi(Lz4Place at);

}  // namespace morvend::codec
