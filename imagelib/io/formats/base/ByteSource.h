// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The bytes of an image file, plain or compressed as a whole.
#pragma once

#include "imagelib/image/PixelBuffer.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace morvend::imglib {

/// Random access to the bytes of a file. Files that begin like gzip or bzip2 are unpacked into
/// memory once, at opening; all others are read by position, never mapped, so that a file which
/// shrinks while it is read is an error and not a crash.
/// Thread: any number of threads may read one source.
class ByteSource {
public:
    /// Largest size of an unpacked file.
    static constexpr std::uint64_t MostUnpacked = std::uint64_t(4) << 30;
    /// A file that unpacks to more than this many times its size is refused as a trap. Below the
    /// size that its image needs it is not, nor below AnyImage if a second image follows.
    static constexpr std::uint64_t BestRatio = 64;
    /// The size that is granted to an image whose head does not give one.
    static constexpr std::uint64_t AnyImage = std::uint64_t(192) << 20;
    /// The unpacked bytes by which a compressed file is judged before the rest is unpacked.
    static constexpr std::size_t HeadBytes = std::size_t(64) << 10;
    /// The most bytes that a file of one image with this head can have. 0 if no image begins so:
    /// then only the head is unpacked.
    using ImageNeed = std::function<std::uint64_t(std::string_view head)>;

    /// @throws MNoFileAccessException when the file can't be opened or is no regular file,
    /// MRuntimeException when a compressed file is damaged or unpacks to more than is allowed
    static std::shared_ptr<const ByteSource> open(const std::string& path,
                                                  const ImageNeed& need = {});
    /// Bytes in memory under a name, for tests and for parts of files.
    static std::shared_ptr<const ByteSource> fromMemory(std::string path,
                                                        std::vector<std::byte> bytes);
    /// The first `size` bytes of a buffer under a name.
    static std::shared_ptr<const ByteSource>
    fromMemory(std::string path, image::PixelBufferPtr bytes, std::size_t size);

    virtual ~ByteSource() = default;

    /// The path as it was opened; belongs into every error message.
    const std::string& path() const { return _path; }
    /// Size in bytes after unpacking. A plain file is asked each time, since it may have grown.
    virtual std::uint64_t size() const = 0;
    /// Reads up to `count` bytes at `offset`, fewer only at the end of the file.
    /// @throws MRuntimeException when the system reports an error
    virtual std::size_t readSome(std::uint64_t offset, void* target, std::size_t count) const = 0;
    /// All bytes when they are in memory, else an empty span.
    virtual std::span<const std::byte> memory() const { return {}; }

    /// Reads exactly `count` bytes. `what` names them in the message, as in "pixel data".
    /// @throws MRuntimeException "<what> ends after n of m bytes: <path>"
    void read(std::uint64_t offset, void* target, std::size_t count, const char* what) const;
    /// The first bytes of the file, at most `count`, for the test of its format.
    std::string head(std::size_t count = 4096) const;

protected:
    explicit ByteSource(std::string path)
        : _path(std::move(path))
    {}

private:
    std::string _path;
};

}  // namespace morvend::imglib
