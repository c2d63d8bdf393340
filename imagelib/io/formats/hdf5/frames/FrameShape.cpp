// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Extents to and from the order of the file, and the limits of an image.
#include "imagelib/io/formats/hdf5/frames/FrameShape.h"

#include "imagelib/image/Assert.h"
#include "imagelib/image/MException.h"

#include <limits>

namespace morvend::imglib::hdf5 {

FrameShape::FrameShape(const std::vector<hsize_t>& extents)
    : rank(extents.size())
{
    assert(rank >= SmallestRank && rank <= LargestRank);
    columns = extents[rank - 1];
    rows = extents[rank - 2];
    if (rank > 2)
        frames = extents[0];
    if (rank > 3)
        modules = extents[1];
}

std::array<hsize_t, FrameShape::LargestRank>
FrameShape::coordinates(hsize_t frame, hsize_t module, hsize_t row, hsize_t column) const
{
    switch (rank) {
    case 2:
        return {row, column};
    case 3:
        return {frame, row, column};
    default:
        return {frame, module, row, column};
    }
}

void FrameShape::checkFrame(const std::string& what, const std::string& path) const
{
    constexpr hsize_t most = std::numeric_limits<int>::max();
    const bool fits = rows > 0 && columns > 0 && modules > 0 && rows <= most && modules <= most &&
                      columns <= most / rows && modules <= most / (rows * columns);
    if (!fits)
        throw MRuntimeException("HDF5: " + what + " has frames of " +
                                (rank > 3 ? std::to_string(modules) + " x " : "") +
                                std::to_string(columns) + " x " + std::to_string(rows) +
                                " pixels, which can't be shown: " + path);
}

}  // namespace morvend::imglib::hdf5
