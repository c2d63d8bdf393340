// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Decides where the file name ends.
#include "imagelib/io/formats/base/ImagePath.h"

#include <sys/stat.h>

namespace morvend::imglib {

namespace {

constexpr const char* Separator = "::/";

bool exists(const std::string& path, bool butNoFolder)
{
    struct stat status = {};
    return ::stat(path.c_str(), &status) == 0 && !(butNoFolder && S_ISDIR(status.st_mode));
}

ImagePath split(const std::string& text, std::size_t at)
{
    ImagePath path{text.substr(0, at), text.substr(at + 2)};
    while (path.dataset.ends_with('/'))
        path.dataset.pop_back();
    return path;
}

}  // namespace

ImagePath ImagePath::of(const std::string& text)
{
    const std::size_t first = text.find(Separator, 1);
    if (first == std::string::npos || exists(text, false))
        return {text, {}};
    for (std::size_t at = first; at != std::string::npos; at = text.find(Separator, at + 1))
        if (exists(text.substr(0, at), true))
            return split(text, at);
    return split(text, first);
}

}  // namespace morvend::imglib
