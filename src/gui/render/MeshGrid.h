// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The mesh of the height map.
#pragma once

#include <cstdint>
#include <vector>

namespace render {

/// A mesh of width * height vertices over the unit square: vertex row * width + col is at
/// (col / width, row / height), so that the mesh ends one step short of 1.
struct Grid {
    static constexpr int width = 128;
    static constexpr int height = 128;

    Grid();

    /// Two floats per vertex.
    std::vector<float> vertices;
    /// Two indices per segment: along the rows, then along the columns.
    std::vector<std::uint32_t> lineIndices;
    /// Three indices per triangle, two triangles per cell. For filled plots; the plot is drawn as
    /// lines.
    std::vector<std::uint32_t> triangleIndices;
};

/// The mesh of all views.
extern const Grid VERTEX_GRID;

}  // namespace render
