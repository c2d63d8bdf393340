// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Connected components of a bit field.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

/// Finds connected components of a field of bits. The neighbours of a pixel are the left, the upper
/// left and the upper one and their opposites, not the upper right one: a diagonal from upper left
/// to lower right is one component, the other diagonal is not.
class ConnectedComponentLabelling {
public:
    /// True if the bit of pixel (x, y) is set. Called only within the field.
    using Field = std::function<bool(int x, int y)>;

    /// A field without visited pixels. Memory and time depend on what fill() visits, not
    /// on the size of the field.
    explicit ConnectedComponentLabelling(int width = 0, int height = 0);

    /// Visits the component of a pixel, which must be in the field, by spans of rows. What was
    /// visited before are skipped.
    /// @param visit  receives each new span, its end excluded; may be empty
    /// @returns false if the pixel's bit is not set or the pixel was visited before
    bool fill(const Field& field, int x, int y,
              const std::function<void(int y, int begin, int end)>& visit = {});
    bool visited(int x, int y) const;

    /// Writes for each set bit the label of its component, at least 1, and 0 elsewhere. Bit i is
    /// pixel (i mod width, i / width); `labels` is resized to width * height.
    static void label(const std::vector<bool>& field, std::vector<int>& labels, int width,
                      int height);

private:
    static constexpr int TileSide = 64;
    struct Tile {
        std::uint64_t rows[TileSide] = {};
    };
    struct Seed {
        int x;
        int y;
    };

    std::size_t _tileAt(int x, int y) const;
    void _mark(int x, int y);
    bool _fresh(const Field& field, int x, int y) const { return !visited(x, y) && field(x, y); }
    /// Notes one pixel of each fresh span of a row that touches the columns from `begin` up to, not
    /// including, `end`.
    void _seed(const Field& field, int y, int begin, int end);

    int _width;
    int _height;
    std::vector<std::unique_ptr<Tile>> _tiles;
    std::vector<Seed> _seeds;  // of the fill in progress
};
