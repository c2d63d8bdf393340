// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Setting up a batch over the files of a series.
#include "logic/headerfiles/WriteHeaderToFilesThread.h"
#include "logic/service/TarvikServicePrivate.h"

#include "imagelib/image/MException.h"

#include <charconv>

std::unique_ptr<WriteHeaderToFilesThread>
TarvikService::writeHeaderToFilesThread(const Header& header) const
{
    const std::string& path = _d->_imagePath;
    const std::size_t slash = path.rfind('/');
    const std::size_t name = slash == std::string::npos ? 0 : slash + 1;
    const std::size_t dot = path.rfind('.');
    if (dot == std::string::npos || dot < name || dot + 1 == path.size())
        throw morvend::MUnknownFormatException("File format of " + path +
                                               " cannot be determined from ending");
    std::size_t digits = dot;
    while (digits > name && path[digits - 1] >= '0' && path[digits - 1] <= '9')
        --digits;
    int number = 0;  // stays without digits, and for more than a number can have
    std::from_chars(path.data() + digits, path.data() + dot, number);

    auto batch = std::make_unique<WriteHeaderToFilesThread>();
    batch->setNeXuS(header, number);
    batch->setImageSeries(path.substr(0, name == 0 ? 0 : slash), path.substr(name, digits - name),
                          path.substr(dot + 1), dot - digits);
    return batch;
}
