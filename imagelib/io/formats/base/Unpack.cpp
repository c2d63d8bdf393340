// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// libdeflate and libbz2 with a bound on the result; zlib for the head only, which libdeflate can't
// stop at.
#include "imagelib/io/formats/base/Unpack.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/formats/base/Cancellation.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>

#include <bzlib.h>
#include <libdeflate.h>
#include <zlib.h>

namespace morvend::imglib {

namespace {

using Bytes = std::span<const std::byte>;

/// Where unpacked bytes go: memory of the caller, or a buffer that grows up to a limit.
class Output {
public:
    Output(std::span<std::byte> target, const std::string& name)
        : _most(target.size())
        , _name(name)
        , _target(target)
    {}
    Output(std::size_t guess, std::uint64_t most, const std::string& name)
        : _most(most)
        , _name(name)
    {
        _resize(static_cast<std::size_t>(std::min<std::uint64_t>(guess, most)));
    }

    std::span<std::byte> room() const { return _target.subspan(_used); }
    void filled(std::size_t count) { _used += count; }
    std::size_t used() const { return _used; }

    /// Makes more room and keeps the contents.
    void grow()
    {
        constexpr std::size_t LeastGrowth = std::size_t(1) << 20;
        if (_target.size() >= _most)
            tooLarge();
        const std::uint64_t wanted = 2 * static_cast<std::uint64_t>(_target.size()) + LeastGrowth;
        _resize(static_cast<std::size_t>(std::min(wanted, _most)));
    }
    [[noreturn]] void tooLarge() const
    {
        throw MRuntimeException("Compressed data unpack to more than " + std::to_string(_most) +
                                " bytes: " + _name);
    }

    Unpacked take() { return {std::move(_buffer), _used}; }

private:
    void _resize(std::size_t bytes)
    {
        image::PixelBufferPtr larger = image::PixelBuffer::allocate(bytes);
        if (_used > 0)
            std::memcpy(larger->data(), _target.data(), _used);
        _buffer = std::move(larger);
        _target = {_buffer->data(), bytes};
    }

    std::uint64_t _most;
    const std::string& _name;
    image::PixelBufferPtr _buffer;
    std::span<std::byte> _target;
    std::size_t _used = 0;
};

[[noreturn]] void damaged(const char* kind, const char* reason, const std::string& name)
{
    throw MRuntimeException(std::string("Compressed data are damaged (") + kind + ": " + reason +
                            "): " + name);
}

bool isGzip(Bytes bytes)
{
    return bytes.size() >= 2 && bytes[0] == std::byte(0x1f) && bytes[1] == std::byte(0x8b);
}

void unpackDeflate(Bytes packed, Packing packing, Output& output, const std::string& name)
{
    const std::unique_ptr<libdeflate_decompressor, decltype(&libdeflate_free_decompressor)>
        decompressor(libdeflate_alloc_decompressor(), &libdeflate_free_decompressor);
    if (!decompressor)
        throw MRuntimeException("Not enough memory to unpack: " + name);
    const auto decompress =
        packing == Packing::Zlib ? &libdeflate_zlib_decompress_ex : &libdeflate_gzip_decompress_ex;
    bool atEnd = false;
    while (!atEnd) {
        checkCancelled();  // the library can't be interrupted within a member
        const auto room = output.room();
        std::size_t from = 0;
        std::size_t to = 0;
        switch (decompress(decompressor.get(), packed.data(), packed.size(), room.data(),
                           room.size(), &from, &to)) {
        case LIBDEFLATE_SUCCESS:
            output.filled(to);
            packed = packed.subspan(from);
            atEnd = packing == Packing::Zlib || !isGzip(packed);
            break;
        case LIBDEFLATE_INSUFFICIENT_SPACE:
            output.grow();
            break;
        default:
            damaged(packing == Packing::Zlib ? "zlib" : "gzip", "bad data or an early end", name);
        }
    }
}

/// One bzip2 stream; returns what follows it.
Bytes unpackBzip2Stream(Bytes packed, Output& output, const std::string& name)
{
    constexpr std::size_t MostAtOnce = std::size_t(1) << 20;
    bz_stream stream = {};
    if (BZ2_bzDecompressInit(&stream, 0, 0) != BZ_OK)
        throw MRuntimeException("Not enough memory to unpack: " + name);
    const std::unique_ptr<bz_stream, decltype(&BZ2_bzDecompressEnd)> guard(&stream,
                                                                           &BZ2_bzDecompressEnd);
    for (int status = BZ_OK; status != BZ_STREAM_END;) {
        if (packed.empty())
            damaged("bzip2", "it ends early", name);
        // The library has to be asked once more when the space is used up: the end of the stream
        // may be all that is left.
        std::byte spill;
        const bool full = output.room().empty();
        const auto room = full ? std::span(&spill, 1) : output.room();
        stream.next_in = reinterpret_cast<char*>(const_cast<std::byte*>(packed.data()));
        checkCancelled();
        stream.avail_in = static_cast<unsigned int>(std::min(packed.size(), MostAtOnce));
        stream.next_out = reinterpret_cast<char*>(room.data());
        stream.avail_out = static_cast<unsigned int>(std::min(room.size(), MostAtOnce));
        const unsigned int in = stream.avail_in;
        const unsigned int out = stream.avail_out;
        status = BZ2_bzDecompress(&stream);
        packed = packed.subspan(in - stream.avail_in);
        const std::size_t got = out - stream.avail_out;
        if (full && got > 0) {
            output.grow();
            output.room()[0] = spill;
        }
        output.filled(got);
        if (status != BZ_OK && status != BZ_STREAM_END)
            damaged("bzip2", "bad data", name);
    }
    return packed;
}

void unpackTo(Bytes packed, Packing packing, Output& output, const std::string& name)
{
    switch (packing) {
    case Packing::Gzip:
    case Packing::Zlib:
        return unpackDeflate(packed, packing, output, name);
    case Packing::Bzip2:
        do
            packed = unpackBzip2Stream(packed, output, name);
        while (packed.size() >= 3 && std::memcmp(packed.data(), "BZh", 3) == 0);
        return;
    case Packing::None:
        while (output.room().size() < packed.size())
            output.grow();
        std::ranges::copy(packed, output.room().begin());
        output.filled(packed.size());
    }
}

/// Likely unpacked size of a stream.
std::size_t guessSize(Bytes packed, Packing packing)
{
    constexpr std::size_t Least = std::size_t(64) << 10;
    constexpr std::uint64_t BestDeflate = 1032;
    std::uint64_t guess = 4 * static_cast<std::uint64_t>(packed.size());
    if (packing == Packing::Gzip && packed.size() >= 18) {
        std::uint32_t told = 0;  // a gzip member ends with its size, modulo 2^32
        for (const std::byte each :
             {packed.end()[-1], packed.end()[-2], packed.end()[-3], packed.end()[-4]})
            told = told << 8 | std::to_integer<std::uint32_t>(each);
        if (told <= BestDeflate * packed.size())
            guess = told;
    }
    return std::max(Least, static_cast<std::size_t>(guess));
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

Unpacked unpack(std::span<const std::byte> packed, Packing packing, std::uint64_t most,
                const std::string& name)
{
    Output output(guessSize(packed, packing), most, name);
    unpackTo(packed, packing, output, name);
    return output.take();
}

std::string unpackHead(std::span<const std::byte> packed, Packing packing, std::size_t count)
{
    std::string head(count, '\0');
    const auto in = static_cast<unsigned int>(
        std::min<std::size_t>(packed.size(), std::numeric_limits<unsigned int>::max()));
    const auto out = static_cast<unsigned int>(count);
    void* const source = const_cast<std::byte*>(packed.data());
    std::size_t left = count;
    if (packing == Packing::Bzip2) {
        bz_stream stream = {};
        if (BZ2_bzDecompressInit(&stream, 0, 0) == BZ_OK) {
            stream.next_in = static_cast<char*>(source);
            stream.avail_in = in;
            stream.next_out = head.data();
            stream.avail_out = out;
            BZ2_bzDecompress(&stream);
            left = stream.avail_out;
            BZ2_bzDecompressEnd(&stream);
        }
    } else {
        constexpr int GzipOrZlib = 15 + 32;
        z_stream stream = {};
        if (inflateInit2(&stream, GzipOrZlib) == Z_OK) {
            stream.next_in = static_cast<Bytef*>(source);
            stream.avail_in = in;
            stream.next_out = reinterpret_cast<Bytef*>(head.data());
            stream.avail_out = out;
            inflate(&stream, Z_SYNC_FLUSH);
            left = stream.avail_out;
            inflateEnd(&stream);
        }
    }
    head.resize(count - left);
    return head;
}

std::size_t unpackInto(std::span<const std::byte> packed, Packing packing,
                       std::span<std::byte> target, const std::string& name)
{
    Output output(target, name);
    unpackTo(packed, packing, output, name);
    return output.used();
}

}  // namespace morvend::imglib
