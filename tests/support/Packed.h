// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Compressed test data, made by other libraries than those that read it where there are two.
#pragma once

#include <bzlib.h>
#include <zlib.h>

#include <stdexcept>
#include <string>

namespace tarvik::tests {

namespace detail {

/// windowBits as of deflateInit2: 15 zlib, 31 gzip.
inline std::string deflated(const std::string& plain, int windowBits)
{
    z_stream stream = {};
    if (deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, windowBits, 8, Z_DEFAULT_STRATEGY) != Z_OK)
        throw std::runtime_error("deflateInit2");
    std::string packed(deflateBound(&stream, static_cast<uLong>(plain.size())) + 32, '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(plain.data()));
    stream.avail_in = static_cast<uInt>(plain.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    if (deflate(&stream, Z_FINISH) != Z_STREAM_END)
        throw std::runtime_error("deflate");
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

}  // namespace detail

inline std::string zlibPacked(const std::string& plain) { return detail::deflated(plain, 15); }
inline std::string gzipPacked(const std::string& plain) { return detail::deflated(plain, 31); }

inline std::string bzip2Packed(const std::string& plain)
{
    std::string packed(plain.size() + plain.size() / 100 + 700, '\0');
    auto size = static_cast<unsigned int>(packed.size());
    if (BZ2_bzBuffToBuffCompress(packed.data(), &size, const_cast<char*>(plain.data()),
                                 static_cast<unsigned int>(plain.size()), 1, 0, 0) != BZ_OK)
        throw std::runtime_error("BZ2_bzBuffToBuffCompress");
    packed.resize(size);
    return packed;
}

}  // namespace tarvik::tests
