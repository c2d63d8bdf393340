// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/headerfiles/FolderLocks.h"

#include "logic/headerfiles/HeaderFileError.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

FolderLocks::~FolderLocks()
{
    for (const auto& [folder, file] : _known)
        ::close(file);
}

void FolderLocks::lock(const std::string& folder)
{
    std::error_code ignored;
    const std::string place = std::filesystem::canonical(folder, ignored).string();
    if (place.empty() || _known.contains(place))
        return;
    const int file = ::open(place.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (file < 0)
        return;
    if (::flock(file, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        ::close(file);
        throw HeaderFileError("Headers of this folder are being rewritten by another batch: " +
                              folder);
    }
    _known.emplace(place, file);
}

void FolderLocks::lockFolderOf(const std::string& path)
{
    std::error_code ignored;
    const std::filesystem::path file = std::filesystem::canonical(path, ignored);
    if (!file.empty())
        lock(file.parent_path().string());
}
