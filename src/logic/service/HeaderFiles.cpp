// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/service/HeaderFiles.h"

#include "imagelib/image/MException.h"

#include <charconv>

std::unique_ptr<WriteHeaderToFilesThread> headerFilesBatch(const std::string& path,
                                                           const HeaderEdits::Header& header)
{
    const std::size_t slash = path.rfind('/');
    const std::size_t name = slash == std::string::npos ? 0 : slash + 1;
    const std::size_t dot = path.rfind('.');
    if (dot == std::string::npos || dot < name || dot + 1 == path.size())
        throw morvend::MUnknownFormatException("File format of " + path +
                                               " cannot be determined from ending");
    std::size_t digits = dot;
    while (digits > name && path[digits - 1] >= '0' && path[digits - 1] <= '9')
        --digits;
    int number = 0;  // stays if there are no digits, or too many
    std::from_chars(path.data() + digits, path.data() + dot, number);

    auto batch = std::make_unique<WriteHeaderToFilesThread>();
    batch->setNeXuS(header, number);
    batch->setImageSeries(path.substr(0, name == 0 ? 0 : slash), path.substr(name, digits - name),
                          path.substr(dot + 1), dot - digits);
    return batch;
}
