// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What goes to the graphics card: pixel formats, tiles, the mesh and the pixels under it.
#include "gui/render/MeshGrid.h"
#include "gui/render/PlotSample.h"
#include "gui/render/ShaderSource.h"
#include "gui/render/TextureFormat.h"
#include "gui/render/TileGrid.h"

#include <gtest/gtest.h>

#include <QOpenGLFunctions>

#include <set>

namespace {

using namespace morvend::datatypes;
using morvend::imglib::MImage;
using render::Grid;
using render::TextureFormat;

TEST(TextureFormats, NarrowPixelsStayNarrowAndOnlyWideOnesAreConverted)
{
    struct Row {
        Type type;
        std::size_t bits;
        int internalFormat;
        unsigned int format, glType;
        std::size_t bytes;
        bool direct;
    };
    for (const Row& row : {Row{BOOL, 8, GL_R8I, GL_RED_INTEGER, GL_BYTE, 1, true},
                           Row{CHAR, 8, GL_R8I, GL_RED_INTEGER, GL_BYTE, 1, true},
                           Row{INT, 8, GL_R8I, GL_RED_INTEGER, GL_BYTE, 1, true},
                           Row{INT, 16, GL_R16I, GL_RED_INTEGER, GL_SHORT, 2, true},
                           Row{INT, 32, GL_R32I, GL_RED_INTEGER, GL_INT, 4, true},
                           Row{INT, 64, GL_R32I, GL_RED_INTEGER, GL_INT, 4, false},
                           Row{UINT, 8, GL_R8UI, GL_RED_INTEGER, GL_UNSIGNED_BYTE, 1, true},
                           Row{UINT, 16, GL_R16UI, GL_RED_INTEGER, GL_UNSIGNED_SHORT, 2, true},
                           Row{UINT, 32, GL_R32UI, GL_RED_INTEGER, GL_UNSIGNED_INT, 4, true},
                           Row{UINT, 64, GL_R32UI, GL_RED_INTEGER, GL_UNSIGNED_INT, 4, false},
                           Row{FLOAT, 32, GL_R32F, GL_RED, GL_FLOAT, 4, true},
                           Row{FLOAT, 64, GL_R32F, GL_RED, GL_FLOAT, 4, false}}) {
        const TextureFormat expected{row.internalFormat, row.format, row.glType, row.bytes,
                                     row.direct};
        EXPECT_EQ(TextureFormat::ofImage(row.type, row.bits), expected)
            << row.type << " " << row.bits;
    }
    for (const auto& [type, bits] : {std::pair(BOOL, 8), {UINT, 32}, {INT, 16}, {FLOAT, 32}}) {
        const auto mask = TextureFormat::ofMask(type, std::size_t(bits));
        EXPECT_EQ(mask.internalFormat, GL_R8UI) << type << " " << bits;
        EXPECT_EQ(mask.direct, bits == 8) << type << " " << bits;
    }
}

/// Each pixel lies in a tile, no tile is too long, and neighbours share a row or column.
TEST(Tiles, CoverTheImageAndOverlapByOnePixel)
{
    struct Row {
        QSize image;
        int limit;
        std::size_t tiles;
    };
    for (const Row& row :
         {Row{{100, 80}, 100, 1}, Row{{101, 80}, 100, 2}, Row{{199, 80}, 100, 2},
          Row{{200, 80}, 100, 3}, Row{{100, 300}, 100, 4}, Row{{7, 5}, 2, 24}, Row{{1, 1}, 1, 1},
          Row{{1, 9}, 4, 3}, Row{{40000, 1}, 16384, 3}, Row{{2, 2}, 1, 0}, Row{{2, 2}, 0, 0}}) {
        const std::vector<QRect> tiles = render::tilesOf(row.image, row.limit);
        const auto name = ::testing::Message() << row.image.width() << " x " << row.image.height()
                                               << " by " << row.limit;
        EXPECT_EQ(tiles.size(), row.tiles) << name;
        if (tiles.empty())
            continue;
        std::set<std::pair<int, int>> columns, rows;
        for (const QRect& tile : tiles) {
            EXPECT_LE(std::max(tile.width(), tile.height()), row.limit) << name;
            EXPECT_TRUE(QRect(QPoint(0, 0), row.image).contains(tile)) << name;
            columns.emplace(tile.left(), tile.right());
            rows.emplace(tile.top(), tile.bottom());
        }
        EXPECT_EQ(columns.size() * rows.size(), tiles.size()) << name;
        for (const auto& [steps, end] :
             {std::pair(columns, row.image.width() - 1), std::pair(rows, row.image.height() - 1)}) {
            int reached = 0;
            for (const auto& [first, last] : steps) {
                EXPECT_EQ(first, reached) << name;
                reached = last;
            }
            EXPECT_EQ(reached, end) << name;
        }
    }
}

TEST(Mesh, IsThatOf128By128VerticesOverTheUnitSquare)
{
    const Grid& grid = render::VERTEX_GRID;
    ASSERT_EQ(grid.vertices.size(), 2U * 16384);
    ASSERT_EQ(grid.lineIndices.size(), 65024U);
    ASSERT_EQ(grid.triangleIndices.size(), 96774U);
    EXPECT_EQ(grid.vertices[2 * (5 * 128 + 3)], 3 / 128.0F);
    EXPECT_EQ(grid.vertices[2 * (5 * 128 + 3) + 1], 5 / 128.0F);
    EXPECT_EQ(grid.vertices.back(), 127 / 128.0F);
    EXPECT_EQ((std::vector(grid.lineIndices.begin(), grid.lineIndices.begin() + 4)),
              (std::vector<std::uint32_t>{0, 1, 1, 2}));
    const std::size_t columnLines = 2 * 128 * 127;
    EXPECT_EQ((std::vector(grid.lineIndices.begin() + columnLines,
                           grid.lineIndices.begin() + columnLines + 4)),
              (std::vector<std::uint32_t>{0, 128, 128, 256}));
    EXPECT_EQ(grid.lineIndices.back(), 16383U);
    EXPECT_EQ((std::vector(grid.triangleIndices.end() - 6, grid.triangleIndices.end())),
              (std::vector<std::uint32_t>{16254, 16255, 16383, 16254, 16383, 16382}));
}

TEST(Mesh, StandsOnThePixelsOfTheVisiblePart)
{
    MImage image(1000, 600, 0);
    auto* pixels = static_cast<int*>(image.data());
    for (int i = 0; i < 1000 * 600; ++i)
        pixels[i] = i;
    const MImage sample = render::plotSample(image, QRectF(100.5, 50, 640, 320));
    ASSERT_EQ(sample.width(), 128);
    ASSERT_EQ(sample.height(), 128);
    for (const int col : {0, 1, 77, 127}) {
        for (const int row : {0, 2, 127}) {
            EXPECT_EQ(sample.pixel<int>(col, row, -1),
                      (50 + row * 5 / 2) * 1000 + static_cast<int>(100.5 + col * 5));
        }
    }
    const MImage end = render::plotSample(image, QRectF(999.9, 599.9, 0.1, 0.1));
    EXPECT_EQ(end.pixel<int>(127, 127, -1), 1000 * 600 - 1);
}

TEST(Shaders, ShareTextByLinesThatKeepTheirNumbers)
{
    const QByteArray source = render::shaderSource(QStringLiteral(":/fragment2dUInt.glsl"));
    EXPECT_TRUE(source.startsWith("#version 130\n"));
    EXPECT_TRUE(source.contains("#define Value uint\n"));
    EXPECT_TRUE(source.contains("uniform Sampler textureImg;\n"));
    EXPECT_FALSE(source.contains("#include"));
    EXPECT_EQ(source.count("#line"), 2);
}

}  // namespace
