// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What the extents of a data set mean: frames, modules, rows and columns.
#pragma once

#include <hdf5.h>

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace morvend::imglib::hdf5 {

/// Extents in the order of the file: (rows, columns) is one frame, (frame, rows, columns) a stack,
/// (frame, module, rows, columns) a stack of frames that are shown module below module.
/// Chunks are described likewise.
struct FrameShape {
    static constexpr std::size_t SmallestRank = 2;
    static constexpr std::size_t LargestRank = 4;

    std::size_t rank = 0;
    hsize_t frames = 1;
    hsize_t modules = 1;
    hsize_t rows = 0;
    hsize_t columns = 0;

    /// @param extents 2 to 4 of them (asserted)
    explicit FrameShape(const std::vector<hsize_t>& extents);
    FrameShape() = default;

    /// Pixels of a frame; only after checkFrame.
    std::size_t framePixels() const { return static_cast<std::size_t>(modules * rows * columns); }
    int width() const { return static_cast<int>(columns); }
    int height() const { return static_cast<int>(modules * rows); }

    /// The coordinates of an element in the order of the file; the first `rank` of the result
    /// count.
    std::array<hsize_t, LargestRank> coordinates(hsize_t frame, hsize_t module, hsize_t row,
                                                 hsize_t column) const;
    /// The same for extents.
    std::array<hsize_t, LargestRank> frameExtents() const
    {
        return coordinates(1, modules, rows, columns);
    }

    /// @throws MRuntimeException when a frame has no pixels or more than 2^31 - 1 of them
    void checkFrame(const std::string& what, const std::string& path) const;
};

}  // namespace morvend::imglib::hdf5
