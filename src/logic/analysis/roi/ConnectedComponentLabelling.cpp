// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The fill by spans.
#include "logic/analysis/roi/ConnectedComponentLabelling.h"

#include <algorithm>

ConnectedComponentLabelling::ConnectedComponentLabelling(int width, int height)
    : _width(width)
    , _height(height)
    , _tiles(_tileAt(0, height + TileSide - 1))
{}

std::size_t ConnectedComponentLabelling::_tileAt(int x, int y) const
{
    const auto across = static_cast<std::size_t>((_width + TileSide - 1) / TileSide);
    return static_cast<std::size_t>(y / TileSide) * across + static_cast<std::size_t>(x / TileSide);
}

bool ConnectedComponentLabelling::visited(int x, int y) const
{
    const auto& tile = _tiles[_tileAt(x, y)];
    return tile && ((tile->rows[y % TileSide] >> (x % TileSide)) & 1U) != 0;
}

void ConnectedComponentLabelling::_mark(int x, int y)
{
    auto& tile = _tiles[_tileAt(x, y)];
    if (!tile)
        tile = std::make_unique<Tile>();
    tile->rows[y % TileSide] |= std::uint64_t(1) << (x % TileSide);
}

void ConnectedComponentLabelling::_seed(const Field& field, int y, int begin, int end)
{
    if (y < 0 || y >= _height)
        return;
    bool inSpan = false;
    for (int x = std::max(begin, 0); x < std::min(end, _width); ++x) {
        const bool fresh = _fresh(field, x, y);
        if (fresh && !inSpan)
            _seeds.push_back({x, y});
        inSpan = fresh;
    }
}

bool ConnectedComponentLabelling::fill(const Field& field, int x, int y,
                                       const std::function<void(int, int, int)>& visit)
{
    if (!_fresh(field, x, y))
        return false;
    _seeds.assign(1, {x, y});
    while (!_seeds.empty()) {
        const Seed seed = _seeds.back();
        _seeds.pop_back();
        if (visited(seed.x, seed.y))
            continue;
        int begin = seed.x;
        int end = seed.x + 1;
        while (begin > 0 && _fresh(field, begin - 1, seed.y))
            --begin;
        while (end < _width && _fresh(field, end, seed.y))
            ++end;
        for (int each = begin; each < end; ++each)
            _mark(each, seed.y);
        if (visit)
            visit(seed.y, begin, end);
        _seed(field, seed.y - 1, begin - 1, end);
        _seed(field, seed.y + 1, begin, end + 1);
    }
    return true;
}

void ConnectedComponentLabelling::label(const std::vector<bool>& field, std::vector<int>& labels,
                                        int width, int height)
{
    const auto position = [&](int x, int y) {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
               static_cast<std::size_t>(x);
    };
    labels.assign(position(0, height), 0);
    ConnectedComponentLabelling components(width, height);
    int next = 1;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            next += components.fill([&](int i, int j) { return field[position(i, j)]; }, x, y,
                                    [&](int row, int begin, int end) {
                                        std::fill_n(labels.begin() +
                                                        std::ptrdiff_t(position(begin, row)),
                                                    end - begin, next);
                                    });
}
