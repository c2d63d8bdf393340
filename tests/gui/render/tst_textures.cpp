// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What goes to the graphics card: pixel formats, tiles, the mesh and the pixels under it.
#include "gui/render/MeshGrid.h"
#include "gui/render/TextureFormat.h"
#include "gui/render/TileGrid.h"

#include <gtest/gtest.h>

#include <QOpenGLFunctions>

#include <set>

namespace {

using namespace morvend::datatypes;
using render::TextureFormat;

/// That they show the right colours is seen in pictures.
TEST(TextureFormats, NarrowPixelsStayNarrowAndOnlyWideOnesAreConverted)
{
    for (const Type type : {INT, UINT, FLOAT, BOOL, CHAR})
        for (const std::size_t bits : {8U, 16U, 32U, 64U}) {
            if ((type == FLOAT && bits < 32) || ((type == BOOL || type == CHAR) && bits > 8))
                continue;
            const TextureFormat format = TextureFormat::ofImage(type, bits);
            EXPECT_EQ(format.bytes, std::min<std::size_t>(bits / 8, 4)) << type << bits;
            EXPECT_EQ(format.direct, bits < 64) << type << ' ' << bits;
        }
    for (const auto& [type, bits] : {std::pair(BOOL, 8), {UINT, 32}, {INT, 16}, {FLOAT, 32}}) {
        const auto mask = TextureFormat::ofMask(type, std::size_t(bits));
        EXPECT_EQ(mask.internalFormat, GL_R8UI) << type << " " << bits;
        EXPECT_EQ(mask.direct, bits == 8) << type << " " << bits;
    }
}

/// Each pixel lies in one tile, and no tile is too long.
TEST(Tiles, CoverTheImageOnce)
{
    struct Row {
        QSize image;
        int limit;
        std::size_t tiles;
    };
    for (const Row& row : {Row{{100, 80}, 100, 1},
                           {{101, 80}, 100, 2},
                           {{200, 80}, 100, 2},
                           {{201, 80}, 100, 3},
                           {{100, 301}, 100, 4},
                           {{7, 5}, 2, 12},
                           {{1, 1}, 1, 1},
                           {{1, 9}, 4, 3},
                           {{40000, 1}, 16384, 3},
                           {{2, 2}, 1, 0},
                           {{2, 2}, 0, 0}}) {
        SCOPED_TRACE(testing::Message()
                     << row.image.width() << " x " << row.image.height() << " by " << row.limit);
        const std::vector<QRect> tiles = render::tilesOf(row.image, row.limit);
        EXPECT_EQ(tiles.size(), row.tiles);
        std::set<std::pair<int, int>> columns, rows;
        for (const QRect& tile : tiles) {
            EXPECT_LE(std::max(tile.width(), tile.height()), row.limit);
            columns.emplace(tile.left(), tile.right());
            rows.emplace(tile.top(), tile.bottom());
        }
        EXPECT_EQ(columns.size() * rows.size(), tiles.size());
        for (const auto& [steps, end] :
             {std::pair(columns, row.image.width() - 1), std::pair(rows, row.image.height() - 1)}) {
            int next = 0;
            for (const auto& [first, last] : steps)
                EXPECT_EQ(first, std::exchange(next, last + 1));
            EXPECT_EQ(next, tiles.empty() ? 0 : end + 1);
        }
    }
}

TEST(Mesh, IsThatOf128By128VerticesOverTheUnitSquare)
{
    using Indices = std::vector<std::uint32_t>;
    const auto& [vertices, lines, triangles] = render::VERTEX_GRID;
    ASSERT_EQ(vertices.size(), 2U * 16384);
    ASSERT_EQ(lines.size(), 65024U);
    ASSERT_EQ(triangles.size(), 96774U);
    EXPECT_EQ(vertices[2 * (5 * 128 + 3)], 3 / 128.0F);
    EXPECT_EQ(vertices[2 * (5 * 128 + 3) + 1], 5 / 128.0F);
    EXPECT_EQ(vertices.back(), 127 / 128.0F);
    const auto columns = lines.begin() + 2 * 127 * 128;
    EXPECT_EQ(Indices(lines.begin(), lines.begin() + 4), (Indices{0, 1, 1, 2}));
    EXPECT_EQ(Indices(columns, columns + 4), (Indices{0, 128, 128, 256}));
    EXPECT_EQ(lines.back(), 16383U);
    EXPECT_EQ(Indices(triangles.end() - 6, triangles.end()),
              (Indices{16254, 16255, 16383, 16254, 16383, 16382}));
}

}  // namespace
