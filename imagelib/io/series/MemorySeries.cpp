// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A queue of images with rising numbers.
#include "imagelib/io/series/MemorySeries.h"

#include <algorithm>
#include <limits>

namespace morvend::imglib {

MemorySeries::MemorySeries(std::size_t bound)
    : _bound(std::max<std::size_t>(bound, 1))
{}

MImage MemorySeries::at(int number) const
{
    if (empty() || number < first() || number > last())
        outOfRange(number, {});
    return _images[static_cast<std::size_t>(number - _first)];
}

std::string MemorySeries::pathToImage(int) const
{
    throw MRuntimeException("An image in memory has no file");
}

void MemorySeries::pushBack(const MImage& image)
{
    if (!empty() && last() == std::numeric_limits<int>::max())
        throw MOutOfRangeException("The series in memory has run out of image numbers");
    _images.push_back(image);
    if (_images.size() > _bound) {
        _images.pop_front();
        ++_first;
    }
}

}  // namespace morvend::imglib
