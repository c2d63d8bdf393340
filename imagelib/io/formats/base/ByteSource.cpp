// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Plain files by positioned reads, unpacked files in memory.
#include "imagelib/io/formats/base/ByteSource.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/formats/base/Cancellation.h"
#include "imagelib/io/formats/base/Unpack.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace morvend::imglib {

namespace {

/// Bytes read between two checks whether they are still wanted.
constexpr std::size_t ReadBlock = std::size_t(8) << 20;

std::string systemError(int number) { return std::generic_category().message(number); }

class FileSource : public ByteSource {
public:
    explicit FileSource(const std::string& path)
        : ByteSource(path)
    {
        // Without O_NONBLOCK the opening of a named pipe would wait for its writer for ever.
        _file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
        if (_file < 0)
            throw MNoFileAccessException("Cannot open file: " + systemError(errno) + ": " + path);
        struct stat status = {};
        if (::fstat(_file, &status) != 0 || !S_ISREG(status.st_mode)) {
            ::close(_file);
            throw MNoFileAccessException((S_ISDIR(status.st_mode)
                                              ? "Cannot open file: it is a directory: "
                                              : "Cannot open file: it is no regular file: ") +
                                         path);
        }
    }
    FileSource(const FileSource&) = delete;
    FileSource& operator=(const FileSource&) = delete;
    ~FileSource() override { ::close(_file); }

    std::uint64_t size() const override
    {
        struct stat status = {};
        if (::fstat(_file, &status) != 0)
            throw MRuntimeException("Cannot read file: " + systemError(errno) + ": " + path());
        return static_cast<std::uint64_t>(status.st_size);
    }

    std::size_t readSome(std::uint64_t offset, void* target, std::size_t count) const override
    {
        // The system refuses offsets that no file can have; nothing can be read there.
        constexpr std::uint64_t LargestFile = std::numeric_limits<off_t>::max();
        if (offset > LargestFile || count > LargestFile - offset)
            return 0;
        std::size_t done = 0;
        while (done < count) {
            checkCancelled();
            const ssize_t got =
                ::pread(_file, static_cast<char*>(target) + done, std::min(count - done, ReadBlock),
                        static_cast<off_t>(offset + done));
            if (got < 0 && errno == EINTR)
                continue;
            if (got < 0)
                throw MRuntimeException("Cannot read file: " + systemError(errno) + ": " + path());
            if (got == 0)
                break;
            done += static_cast<std::size_t>(got);
        }
        return done;
    }

private:
    int _file = -1;
};

/// Bytes that some owner keeps in memory.
template <class Owner>
class MemorySource : public ByteSource {
public:
    MemorySource(std::string path, Owner owner, const std::byte* bytes, std::size_t size)
        : ByteSource(std::move(path))
        , _owner(std::move(owner))
        , _bytes(bytes, size)
    {}

    std::uint64_t size() const override { return _bytes.size(); }
    std::span<const std::byte> memory() const override { return _bytes; }

    std::size_t readSome(std::uint64_t offset, void* target, std::size_t count) const override
    {
        if (offset >= _bytes.size())
            return 0;
        const std::size_t got = std::min(count, _bytes.size() - static_cast<std::size_t>(offset));
        if (got > 0)
            std::memcpy(target, _bytes.data() + offset, got);
        return got;
    }

private:
    Owner _owner;
    std::span<const std::byte> _bytes;
};

/// True if another image begins after the first one of a compressed file, which has this many
/// bytes.
bool anotherFollows(const ByteSource& file, Packing packing, std::uint64_t first,
                    const ByteSource::ImageNeed& need)
{
    const std::string packed = file.head(static_cast<std::size_t>(file.size()));
    const std::string head = unpackHead(std::as_bytes(std::span(packed)), packing,
                                        static_cast<std::size_t>(first) + ByteSource::HeadBytes);
    return head.size() > first && need(std::string_view(head).substr(first)) != 0;
}

Unpacked unpackFile(const ByteSource& file, Packing packing, std::uint64_t most)
{
    const std::uint64_t size = file.size();
    if (size > most)
        throw MRuntimeException("Compressed file is larger than " + std::to_string(most) +
                                " bytes: " + file.path());
    const auto packed = image::PixelBuffer::allocate(static_cast<std::size_t>(size));
    const std::size_t got = file.readSome(0, packed->data(), packed->size());
    return unpack({packed->cdata(), got}, packing, most, file.path());
}

}  // namespace

std::shared_ptr<const ByteSource> ByteSource::open(const std::string& path, const ImageNeed& need)
{
    auto file = std::make_shared<const FileSource>(path);
    const Packing packing = packingOf(file->head(4));
    if (packing == Packing::None)
        return file;
    std::uint64_t needed = AnyImage;
    if (need) {
        const std::string packedHead = file->head(16 * HeadBytes);
        const std::string head =
            unpackHead(std::as_bytes(std::span(packedHead)), packing, HeadBytes);
        // A short or a damaged file: unpacking all of it gives the better message.
        if (head.size() == HeadBytes)
            needed = need(head);
        if (needed == 0) {
            const auto bytes = std::as_bytes(std::span(head));
            return fromMemory(path, {bytes.begin(), bytes.end()});
        }
    }
    const std::uint64_t packed = std::min(file->size(), MostUnpacked);
    const std::uint64_t most = std::min(std::max(packed * BestRatio, needed), MostUnpacked);
    Unpacked unpacked = [&] {
        try {
            return unpackFile(*file, packing, most);
        } catch (const MRuntimeException&) {
            if (most >= AnyImage || !anotherFollows(*file, packing, needed, need))
                throw;
            return unpackFile(*file, packing,
                              AnyImage);  // a series of nearly empty images
        }
    }();
    return fromMemory(path, std::move(unpacked.buffer), unpacked.size);
}

std::shared_ptr<const ByteSource> ByteSource::fromMemory(std::string path,
                                                         std::vector<std::byte> bytes)
{
    const std::byte* const first = bytes.data();
    const std::size_t size = bytes.size();
    return std::make_shared<const MemorySource<std::vector<std::byte>>>(
        std::move(path), std::move(bytes), first, size);
}

std::shared_ptr<const ByteSource>
ByteSource::fromMemory(std::string path, image::PixelBufferPtr bytes, std::size_t size)
{
    const std::byte* const first = bytes->cdata();
    return std::make_shared<const MemorySource<image::PixelBufferPtr>>(
        std::move(path), std::move(bytes), first, size);
}

void ByteSource::read(std::uint64_t offset, void* target, std::size_t count, const char* what) const
{
    const std::size_t got = readSome(offset, target, count);
    if (got != count)
        throw MRuntimeException(std::string(what) + " ends after " + std::to_string(got) + " of " +
                                std::to_string(count) + " bytes: " + path());
}

std::string ByteSource::head(std::size_t count) const
{
    std::string bytes(count, '\0');
    bytes.resize(readSome(0, bytes.data(), count));
    return bytes;
}

}  // namespace morvend::imglib
