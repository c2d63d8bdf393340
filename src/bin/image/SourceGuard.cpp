// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Compares files by device and inode.
#include "bin/image/SourceGuard.h"

#include "imagelib/io/formats/base/ImagePath.h"

#include <sys/stat.h>

namespace tarvik::tool {

SourceGuard::SourceGuard(const std::string& path, const morvend::imglib::MImageSeries& series)
    : _path(morvend::imglib::ImagePath::of(path).file)
    , _series(series)
{}

void SourceGuard::check(const std::string& target)
{
    struct stat status = {};
    if (::stat(target.c_str(), &status) != 0)
        return;
    if (_sources.empty())
        collect();
    if (_sources.contains({status.st_dev, status.st_ino}))
        throw morvend::MBadParameterException("The output would replace its own source: " + target);
}

void SourceGuard::collect()
{
    add(_path);
    std::string last;
    for (int number = _series.first(); number >= 0; number = _series.next(number)) {
        std::string path = _series.pathToImage(number);
        if (path != last)
            add(path);
        last = std::move(path);
    }
}

void SourceGuard::add(const std::string& path)
{
    struct stat status = {};
    if (::stat(path.c_str(), &status) == 0)
        _sources.emplace(status.st_dev, status.st_ino);
}

}  // namespace tarvik::tool
