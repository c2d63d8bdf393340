// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The ring in blocks of rows and of columns. A pixel wholly in the ring is taken along
// its row where circles cross rows steeply, left and right of the centre, and along its column
// above and below it. Along the diagonals, at the rims and on the lines through the centre pixels
// are handled one by one.
#include "logic/analysis/roi/RingSums.h"

#include "logic/analysis/roi/Blocks.h"
#include "logic/analysis/roi/CoveredArea.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace roi {

namespace {

/// Parts of the work, of rows and of columns each; fixed, as the order of sums depends on it.
constexpr int Blocks = 32;

struct BlockSums {
    SampleSums samples;
    RegionSums single;  // pixels taken one by one, and the extremes of all
    std::vector<CurvePoint> points;
};

/// The radii that cross an image, from the smallest to the largest.
std::pair<int, int> radiiInImage(const Ring& ring)
{
    const double x = std::clamp(ring.centreX, 0.0, double(ring.width));
    const double y = std::clamp(ring.centreY, 0.0, double(ring.height));
    const double least = std::hypot(x - ring.centreX, y - ring.centreY);
    const double most = std::hypot(std::max(ring.centreX, ring.width - ring.centreX),
                                   std::max(ring.centreY, ring.height - ring.centreY));
    return {std::max(ring.inner, static_cast<int>(least) - 1),
            std::min(ring.outer, static_cast<int>(most) + 2)};
}

/// Rows, or columns, with the sides of their pixels.
struct Axis {
    double centre;  // across the strips
    int strips;
    bool columns;
    std::array<RingSide, 2> sides;  // along the strips
};

Axis axisOf(const Ring& ring, bool columns)
{
    const double along = columns ? ring.centreY : ring.centreX;
    const int extent = columns ? ring.height : ring.width;
    return {columns ? ring.centreX : ring.centreY,
            columns ? ring.width : ring.height,
            columns,
            {RingSide(along, extent, 1), RingSide(along, extent, -1)}};
}

class Block {
public:
    Block(const Ring& ring, const RingColumns& columns, const PixelSource& pixels, int firstRadius,
          BlockSums& sums)
        : _ring(ring)
        , _columns(columns)
        , _pixels(pixels)
        , _firstRadius(firstRadius)
        , _sums(sums)
        , _samples(RingTile::MostStrips * RingTile::Stride)
    {}

    /// Strips whose pixels farther from the centre than the strip are taken along it.
    void addStrips(const Axis& axis, int begin, int end)
    {
        for (const RingSide& side : axis.sides)
            _addSide(axis, side, begin, end);
    }

    /// All pixels of a row that belong to no strip.
    void addRest(const Axis& rows, int y)
    {
        const RingStrip strip(y, rows.centre);
        const int axisColumn = static_cast<int>(std::floor(_ring.centreX));
        if (axisColumn != _ring.centreX && axisColumn >= 0 && axisColumn < _ring.width)
            _addPixel(axisColumn, y);
        for (const RingSide& side : rows.sides) {
            const StripParts parts(_ring, strip, side);
            for (int i = parts.hole; i < parts.reach; ++i) {
                if (!strip.holdsCentre && i >= parts.fullBegin && i < parts.fullEnd) {
                    // Skip to the first that is not taken along its column or row.
                    if (i < parts.steepEnd)
                        i = std::min(parts.steepEnd, parts.fullEnd);
                    if (i >= parts.flatBegin)
                        i = std::max(i, parts.fullEnd);
                    if (i >= parts.reach)
                        break;
                }
                _addPixel(side.pixel(i), y);
            }
        }
    }

private:
    void _addSide(const Axis& axis, const RingSide& side, int begin, int end)
    {
        std::vector<std::pair<int, int>> taken;
        int first = side.end();
        int last = side.begin();
        for (int number = begin; number < end; ++number) {
            const RingStrip strip(number, axis.centre);
            const StripParts parts(_ring, strip, side);
            const int from = std::max(parts.fullBegin, parts.flatBegin);
            const int to = strip.holdsCentre ? from : std::max(parts.fullEnd, from);
            taken.emplace_back(from, to);
            if (from < to) {
                first = std::min(first, from);
                last = std::max(last, to);
            }
        }
        for (int from = first; from < last; from += RingTile::MostLength)
            _addTile(axis, side, begin, taken, from, std::min(from + RingTile::MostLength, last));
    }

    void _addTile(const Axis& axis, const RingSide& side, int firstStrip,
                  const std::vector<std::pair<int, int>>& taken, int from, int to)
    {
        const int across = axis.columns ? 1 : _ring.width;
        const int along = axis.columns ? _ring.width : 1;
        const auto strips = static_cast<int>(taken.size());
        TilePixels place{strips,
                         to - from,
                         std::ptrdiff_t(firstStrip) * across +
                             std::ptrdiff_t(side.pixel(from)) * along,
                         across,
                         std::ptrdiff_t(side.direction()) * along,
                         {},
                         {}};
        RingTile tile{
            strips, to - from, side.centre(), side.border(from), double(side.direction()), {},
            {},     {}};
        for (int j = 0; j < strips; ++j) {
            const RingStrip strip(firstStrip + j, axis.centre);
            tile.edges[j] = std::abs(firstStrip + j - axis.centre);
            tile.edges[j + 1] = std::abs(firstStrip + j + 1 - axis.centre);
            const auto [begin, end] = taken[static_cast<std::size_t>(j)];
            const int b = std::clamp(begin, from, to);
            const int e = std::clamp(end, b, to);
            place.begin[j] = b - from;
            place.end[j] = e - from;
            // Empty: the first is above the last.
            tile.lowest[j] = 1;
            tile.highest[j] = 0;
            if (b < e) {
                const double nearest = side.distance(b);
                const double farthest = side.distance(e);
                tile.lowest[j] = static_cast<int>(
                    std::ceil(std::sqrt(nearest * nearest + strip.near * strip.near)));
                tile.highest[j] =
                    static_cast<int>(std::sqrt(farthest * farthest + strip.far * strip.far));
            }
        }
        _pixels.read(place, _samples.data(), _sums.single.extremes);
        addSamples(_samples.data(), static_cast<std::size_t>(strips) * RingTile::Stride,
                   _sums.samples);
        addSections(tile, _samples.data(), _sums.points.data(), _firstRadius);
    }

    void _addPixel(int x, int y)
    {
        const auto position = static_cast<std::size_t>(y) * static_cast<std::size_t>(_ring.width) +
                              static_cast<std::size_t>(x);
        if (!_columns.has(x, y) || !_pixels.good(position))
            return;
        const double hole = coveredArea(x, y, _ring.inner, _ring.centreX, _ring.centreY);
        if (hole == 1)
            return;
        const double part =
            std::min(coveredArea(x, y, _ring.outer, _ring.centreX, _ring.centreY) - hole, 1.0);
        if (part == 0)
            return;
        const double value = _pixels.value(position);
        _sums.single.add(value, part);
        int r0 = -1;
        int r1 = -1;
        double section0 = 0;
        double section1 = 0;
        circleSection(x, y, _ring.centreX, _ring.centreY, r0, section0, r1, section1);
        _addSection(r0, section0, value);
        _addSection(r1, section1, value);
    }

    void _addSection(int radius, double section, double value)
    {
        if (radius < _ring.inner || radius > _ring.outer)
            return;
        CurvePoint& point = _sums.points[static_cast<std::size_t>(radius - _firstRadius)];
        point.value += value * section;
        point.length += section;
    }

    const Ring& _ring;
    const RingColumns& _columns;
    const PixelSource& _pixels;
    const int _firstRadius;
    BlockSums& _sums;
    std::vector<Sample> _samples;
};

void add(RingSums& sums, const BlockSums& block)
{
    sums.pixels.add(block.single);
    for (std::size_t lane = 0; lane < SampleSums::Lanes; lane += 2) {
        const SampleSums& samples = block.samples;
        sums.pixels.WeightedSums::add(
            {samples.sums[lane], samples.squares[lane], samples.sums[lane + 1]});
    }
    for (std::size_t i = 0; i < sums.points.size(); ++i) {
        sums.points[i].value += block.points[i].value;
        sums.points[i].length += block.points[i].length;
    }
}

}  // namespace

RingSums sumRing(const Ring& ring, const PixelSource& pixels, const std::stop_token& stop)
{
    RingSums result;
    const auto [firstRadius, lastRadius] = radiiInImage(ring);
    result.firstRadius = firstRadius;
    result.points.resize(static_cast<std::size_t>(std::max(lastRadius - firstRadius + 1, 0)));
    const RingColumns columns(ring);
    const std::array<Axis, 2> axes{axisOf(ring, false), axisOf(ring, true)};
    std::vector<BlockSums> blocks(2 * Blocks);
    forEachBlock(2 * Blocks, [&](int number) {
        const Axis& axis = axes[static_cast<std::size_t>(number % 2)];
        BlockSums& sums = blocks[static_cast<std::size_t>(number)];
        sums.points.resize(result.points.size());
        Block block(ring, columns, pixels, firstRadius, sums);
        const auto border = [&](int i) { return int(std::int64_t(axis.strips) * i / Blocks); };
        const int end = border(number / 2 + 1);
        for (int begin = border(number / 2); begin < end && !stop.stop_requested();
             begin += RingTile::MostStrips) {
            const int after = std::min(begin + RingTile::MostStrips, end);
            block.addStrips(axis, begin, after);
            if (!axis.columns)
                for (int y = begin; y < after; ++y)
                    block.addRest(axis, y);
        }
    });
    for (const BlockSums& block : blocks)
        if (!stop.stop_requested())
            add(result, block);
    return result;
}

}  // namespace roi
