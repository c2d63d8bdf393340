// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Shows whether a path still leads to the same file with the same content.
#pragma once

#include <cstdint>
#include <string>

namespace morvend::imglib {

/// Identity, size and time of a file at one moment.
class FileStamp {
public:
    FileStamp() = default;
    /// Of the regular file at `path` now; of no file if there isn't one.
    explicit FileStamp(const std::string& path);

    /// True if there is a file at all.
    bool exists() const { return _exists; }
    /// In bytes; 0 if there isn't one.
    std::uint64_t size() const { return _size; }
    /// True for the same file, whatever was written into it.
    bool sameFile(const FileStamp& other) const
    {
        return _exists == other._exists && _device == other._device && _node == other._node;
    }
    /// True for the same file with more bytes.
    bool grownFrom(const FileStamp& other) const { return sameFile(other) && _size > other._size; }
    /// True for the same file with the same size and time.
    bool operator==(const FileStamp&) const = default;

private:
    bool _exists = false;
    std::uint64_t _device = 0;
    std::uint64_t _node = 0;
    std::uint64_t _size = 0;
    std::int64_t _seconds = 0;
    std::int64_t _nanoseconds = 0;
};

}  // namespace morvend::imglib
