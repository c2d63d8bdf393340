// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Path arithmetic on texts.
#include "paths/MFilesystemUtils.h"

#include "imagelib/image/Assert.h"
#include "imagelib/image/MException.h"

#include <cerrno>
#include <string_view>
#include <system_error>

#include <unistd.h>

namespace morvend::imglib::utils {

namespace {

std::string workingDirectory()
{
    char buffer[1024];
    if (!::getcwd(buffer, sizeof buffer))
        throw MNoFileAccessException("The working directory is not known: " +
                                     std::generic_category().message(errno));
    return buffer;
}

/// Replaces every `text`, which begins and ends with a slash, by "/" until none is left.
void collapse(std::string& path, std::string_view text)
{
    for (std::size_t at = path.find(text); at != std::string::npos; at = path.find(text, at))
        path.replace(at, text.size(), 1, pathSeparator);
}

}  // namespace

void normalizePath(std::string& path)
{
    if (path.empty())
        return;
    std::string result = path;
    if (result.front() != pathSeparator) {
        std::string directory = workingDirectory();
        if (directory != "/")
            directory += pathSeparator;
        result.insert(0, directory);
    }
    collapse(result, "//");
    collapse(result, "/./");

    constexpr std::string_view Up = "/../";
    for (std::size_t at = result.find(Up); at != std::string::npos; at = result.find(Up)) {
        if (at == 0)
            throw MNoFileAccessException("Error: " + path + " is not a valid path");
        const std::size_t parent = result.rfind(pathSeparator, at - 1);
        result.replace(parent, at + Up.size() - parent, 1, pathSeparator);
    }

    if (result.size() >= 2 && result.back() == pathSeparator)
        result.pop_back();
    path = std::move(result);
}

void parseFileName(std::string& fileName, std::string& extension, std::string& baseName,
                   std::string& directory)
{
    normalizePath(fileName);
    extension.clear();
    baseName.clear();
    directory.clear();
    if (fileName.empty())
        return;
    if (fileName.size() == 1) {
        assert(fileName[0] == pathSeparator);
        directory = pathSeparator;
        return;
    }
    const std::size_t slash = fileName.rfind(pathSeparator);
    directory = fileName.substr(0, slash);
    baseName = fileName.substr(slash + 1);
    if (const std::size_t dot = baseName.rfind('.'); dot != std::string::npos) {
        extension = baseName.substr(dot + 1);
        baseName.resize(dot);
    }
}

}  // namespace morvend::imglib::utils
