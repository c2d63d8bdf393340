// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Streaming through zlib and libbz2 with a bound on the result.
#include "imagelib/io/formats/base/Unpack.h"

#include "imagelib/image/MException.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include <bzlib.h>
#include <zlib.h>

namespace morvend::imglib {

namespace {

constexpr std::size_t FirstCapacity = std::size_t(1) << 20;

/// A growing output: `room` hands out free space, `filled` says how much of it was used.
class Output {
public:
    Output(std::uint64_t most, const std::string& name)
        : _most(most)
        , _name(name)
    {}

    std::span<std::byte> room()
    {
        if (_used == _bytes.size()) {
            if (_used >= _most)
                throw MRuntimeException("Compressed file unpacks to more than " +
                                        std::to_string(_most) + " bytes: " + _name);
            const std::uint64_t wanted = std::max<std::uint64_t>(FirstCapacity, 2 * _used);
            _bytes.resize(static_cast<std::size_t>(std::min(wanted, _most)));
        }
        return std::span(_bytes).subspan(
            _used,
            std::min<std::size_t>(_bytes.size() - _used, std::numeric_limits<unsigned int>::max()));
    }
    void filled(std::size_t count) { _used += count; }
    std::vector<std::byte> take()
    {
        _bytes.resize(_used);
        return std::move(_bytes);
    }

private:
    std::uint64_t _most;
    const std::string& _name;
    std::vector<std::byte> _bytes;
    std::size_t _used = 0;
};

[[noreturn]] void damaged(const char* kind, const char* reason, const std::string& name)
{
    throw MRuntimeException(std::string("Compressed file is damaged (") + kind + ": " + reason +
                            "): " + name);
}

/// The input in pieces that fit the 32-bit counters of the libraries.
class Input {
public:
    explicit Input(std::span<const std::byte> bytes)
        : _rest(bytes)
    {}
    std::span<const std::byte> next()
    {
        const auto piece = _rest.first(std::min<std::size_t>(_rest.size(), std::size_t(1) << 30));
        _rest = _rest.subspan(piece.size());
        return piece;
    }

private:
    std::span<const std::byte> _rest;
};

std::vector<std::byte> unpackDeflate(std::span<const std::byte> packed, int windowBits,
                                     std::uint64_t most, const std::string& name)
{
    z_stream stream = {};
    if (inflateInit2(&stream, windowBits) != Z_OK)
        throw MRuntimeException("Not enough memory to unpack: " + name);
    const std::unique_ptr<z_stream, int (*)(z_stream*)> guard(&stream, inflateEnd);
    Input input(packed);
    Output output(most, name);
    bool atMemberEnd = false;
    for (;;) {
        if (stream.avail_in == 0) {
            const auto piece = input.next();
            stream.next_in = reinterpret_cast<Bytef*>(const_cast<std::byte*>(piece.data()));
            stream.avail_in = static_cast<uInt>(piece.size());
            if (piece.empty()) {
                if (atMemberEnd)
                    return output.take();
                damaged("gzip", "it ends early", name);
            }
        }
        if (atMemberEnd) {
            // Blanks or zeros behind the last member are padding, as tapes and some writers leave.
            if (*stream.next_in != 0x1f)
                return output.take();
            inflateReset(&stream);
        }
        const auto room = output.room();
        stream.next_out = reinterpret_cast<Bytef*>(room.data());
        stream.avail_out = static_cast<uInt>(room.size());
        const int status = inflate(&stream, Z_NO_FLUSH);
        output.filled(room.size() - stream.avail_out);
        atMemberEnd = status == Z_STREAM_END;
        if (status != Z_OK && status != Z_STREAM_END && status != Z_BUF_ERROR)
            damaged("gzip", stream.msg ? stream.msg : "bad data", name);
    }
}

std::vector<std::byte> unpackBzip2(std::span<const std::byte> packed, std::uint64_t most,
                                   const std::string& name)
{
    Input input(packed);
    Output output(most, name);
    std::span<const std::byte> piece = input.next();
    while (!piece.empty()) {
        bz_stream stream = {};
        if (BZ2_bzDecompressInit(&stream, 0, 0) != BZ_OK)
            throw MRuntimeException("Not enough memory to unpack: " + name);
        const std::unique_ptr<bz_stream, int (*)(bz_stream*)> guard(&stream, BZ2_bzDecompressEnd);
        for (int status = BZ_OK; status != BZ_STREAM_END;) {
            if (piece.empty())
                piece = input.next();
            if (piece.empty())
                damaged("bzip2", "it ends early", name);
            stream.next_in = reinterpret_cast<char*>(const_cast<std::byte*>(piece.data()));
            stream.avail_in = static_cast<unsigned int>(piece.size());
            const auto room = output.room();
            stream.next_out = reinterpret_cast<char*>(room.data());
            stream.avail_out = static_cast<unsigned int>(room.size());
            status = BZ2_bzDecompress(&stream);
            output.filled(room.size() - stream.avail_out);
            piece = piece.last(stream.avail_in);
            if (status != BZ_OK && status != BZ_STREAM_END)
                damaged("bzip2", "bad data", name);
        }
        if (piece.empty())
            piece = input.next();
    }
    return output.take();
}

}  // namespace

Packing packingOf(std::string_view head)
{
    if (head.starts_with("\x1f\x8b"))
        return Packing::Gzip;
    if (head.starts_with("BZh"))
        return Packing::Bzip2;
    return Packing::None;
}

std::vector<std::byte> unpack(std::span<const std::byte> packed, Packing packing,
                              std::uint64_t most, const std::string& name)
{
    constexpr int GzipOnly = 16 + MAX_WBITS;
    switch (packing) {
    case Packing::Gzip:
        return unpackDeflate(packed, GzipOnly, most, name);
    case Packing::Zlib:
        return unpackDeflate(packed, MAX_WBITS, most, name);
    case Packing::Bzip2:
        return unpackBzip2(packed, most, name);
    case Packing::None:
        break;
    }
    return {packed.begin(), packed.end()};
}

std::vector<std::byte> unpack(const ByteSource& file, Packing packing, std::uint64_t most)
{
    const std::uint64_t size = file.size();
    if (size > most)
        throw MRuntimeException("Compressed file is larger than " + std::to_string(most) +
                                " bytes: " + file.path());
    std::vector<std::byte> packed(static_cast<std::size_t>(size));
    packed.resize(file.readSome(0, packed.data(), packed.size()));
    return unpack(packed, packing, most, file.path());
}

}  // namespace morvend::imglib
