// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A file whose content is replaced as a whole or not at all.
#pragma once

#include <cstddef>
#include <limits>
#include <string>

#include <sys/stat.h>

/// Reads a file and puts another content in its place. A symbolic link is followed: the file that
/// it leads to is replaced. Thread: one at a time.
class ReplacedFile {
public:
    static constexpr std::size_t All = std::numeric_limits<std::size_t>::max();

    /// Reads the file, or at most so many bytes from its start.
    /// @throws HeaderFileError
    explicit ReplacedFile(std::string path, std::size_t most = All);
    ~ReplacedFile();
    ReplacedFile(const ReplacedFile&) = delete;
    ReplacedFile& operator=(const ReplacedFile&) = delete;

    const std::string& content() const { return _content; }
    /// Of the whole file, in bytes.
    std::size_t size() const { return static_cast<std::size_t>(_status.st_size); }
    /// Of the file itself, where a link leads to.
    const std::string& path() const { return _path; }

    /// Writes the new content beside the file, with its owner, permissions and extended attributes,
    /// waits until it is on the disk, and renames it over the file. The temporary file is removed
    /// when that fails, except when the renaming itself does.
    /// @throws HeaderFileError, also if someone has the file open for writing or changed it since
    /// it was read
    void replace(const std::string& content);

    /// The name of the temporary file of the process with this number.
    static std::string temporaryName(const std::string& path, long process);

private:
    class Temporary;

    void _write(Temporary& temporary, const std::string& content) const;
    /// @throws HeaderFileError if the file isn't the one that was read
    void _checkUnchanged() const;

    const std::string _given;
    std::string _path;
    std::string _content;
    int _file = -1;
    struct stat _status = {};
};
