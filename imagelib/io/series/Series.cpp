// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What all kinds of series share.
#include "imagelib/io/series/Series.h"

#include <algorithm>
#include <utility>

namespace morvend::imglib {

int Series::next(int number) const { return number >= last() ? -1 : std::max(number + 1, first()); }

int Series::previous(int number) const
{
    return number <= first() ? -1 : std::min(number - 1, last());
}

void Series::pushBack(const MImage&)
{
    throw MRuntimeException("A series of files takes no image from memory");
}

void Series::describe(MImage& image, const std::string& text)
{
    if (!std::as_const(image).optionalData().imageDescription())
        image.optionalData().setImageDescription(text);
}

std::string Series::fileName(const std::string& path)
{
    return path.substr(path.rfind('/') + 1);  // the whole path if it has no slash
}

void Series::outOfRange(int number, const std::string& path) const
{
    const std::string name = std::to_string(number);
    if (empty())
        throw MOutOfRangeException("There is no image " + name + ": the series is empty");
    throw MOutOfRangeException("There is no image " + name + " in the series, which goes from " +
                               std::to_string(first()) + " to " + std::to_string(last()) +
                               (path.empty() ? "" : ": " + path));
}

}  // namespace morvend::imglib
