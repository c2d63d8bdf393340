// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/MeshGrid.h"

namespace render {

const Grid VERTEX_GRID;

Grid::Grid()
{
    constexpr std::uint32_t columns = width;
    constexpr std::uint32_t rows = height;
    for (int row = 0; row < height; ++row) {
        for (int col = 0; col < width; ++col) {
            vertices.push_back(static_cast<float>(col) / width);
            vertices.push_back(static_cast<float>(row) / height);
        }
    }
    for (std::uint32_t row = 0; row < rows; ++row) {
        for (std::uint32_t col = 0; col + 1 < columns; ++col) {
            const std::uint32_t i = row * columns + col;
            lineIndices.insert(lineIndices.end(), {i, i + 1});
        }
    }
    for (std::uint32_t col = 0; col < columns; ++col) {
        for (std::uint32_t row = 0; row + 1 < rows; ++row) {
            const std::uint32_t i = row * columns + col;
            lineIndices.insert(lineIndices.end(), {i, i + columns});
        }
    }
    for (std::uint32_t row = 0; row + 1 < rows; ++row) {
        for (std::uint32_t col = 0; col + 1 < columns; ++col) {
            const std::uint32_t a = row * columns + col;
            triangleIndices.insert(triangleIndices.end(),
                                   {a, a + 1, a + columns + 1, a, a + columns + 1, a + columns});
        }
    }
}

}  // namespace render
