// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A file that appears under its name only when it is complete.
#pragma once

#include <cstddef>
#include <string>

namespace morvend::imglib {

/// A name for a temporary file in the folder of `path`: hidden, ending in ".tmp", given only once.
/// It doesn't contain the file's own name, which may have the greatest possible length. Thread:
/// any.
std::string temporaryName(const std::string& path);

/// Writes beside the target under a temporary name (hidden, ending in ".tmp") and renames it by
/// commit(): readers see the old file or the new one, never a part. Without commit() nothing is
/// left behind. A replaced file keeps its permissions. Writing follows checkCancelled().
/// Thread: one at a time; several objects may write to one path, the last commit wins.
class AtomicFile {
public:
    /// @throws MNoFileAccessException when the folder can't be written
    explicit AtomicFile(const std::string& path);
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    const std::string& path() const { return _path; }
    /// The open file, for libraries that write to one. This object keeps owning it.
    int descriptor() const { return _file; }
    /// Appends bytes. @throws MRuntimeException with the system's reason, such as a full disk
    void write(const void* bytes, std::size_t count);
    /// Closes and renames. @throws MRuntimeException with the system's reason
    void commit();

private:
    [[noreturn]] void _fail(int error) const;

    std::string _path;
    std::string _temporary;
    int _file = -1;
};

}  // namespace morvend::imglib
