// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The crossings, for each instruction set. A circle enters a strip at its edge far from the centre
// and leaves it at the near one; between them it crosses at most one border between pixels. Where
// it does is found from the squared distances of corners, by which pixels are judged inside or
// outside everywhere.
#include "logic/analysis/roi/RingStrips.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "logic/analysis/roi/RingStrips.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h, which may include this file again for each instruction set.
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace roi::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using D = hn::ScalableTag<double>;
using V = hn::Vec<D>;

/// Radii that a tile of the largest size can meet, and a vector more.
constexpr std::size_t MostRadii = RingTile::MostLength + RingTile::MostStrips + 32;

/// Far above the rounding of a distance within any image, far below a pixel.
constexpr double Rounding = 1e-6;

/// Where circles cross an edge of a strip, by radius.
struct Edge {
    double distance;
    double cut[MostRadii];     // distance along the strip
    double inside[MostRadii];  // borders between pixels within the circle, from the first
};

/// The parts of circles in one strip, by radius.
struct Pieces {
    double far[MostRadii];  // length in the pixel at the far edge
    double near[MostRadii];
    std::int32_t farPixel[MostRadii];  // number of the sample
    std::int32_t nearPixel[MostRadii];
};

class Borders {
public:
    explicit Borders(const RingTile& tile)
        : _first(hn::Set(D(), tile.first))
        , _direction(hn::Set(D(), tile.direction))
        , _centre(hn::Set(D(), tile.centre))
    {}
    /// Distance of a border from the centre, with the sign of the direction.
    HWY_INLINE V distance(V number) const
    {
        return hn::Sub(hn::Add(_first, hn::Mul(_direction, number)), _centre);
    }

private:
    V _first, _direction, _centre;
};

HWY_INLINE V square(V v) { return hn::Mul(v, v); }

void cutEdge(const RingTile& tile, double distance, int lowest, std::size_t count, Edge& edge)
{
    const D d;
    const Borders borders(tile);
    edge.distance = distance;
    const V square2 = hn::Set(d, distance * distance);
    const V start = hn::Set(d, tile.direction * (tile.first - tile.centre));
    const V one = hn::Set(d, 1.0);
    const V most = hn::Set(d, double(tile.length) + 1);
    // A vector more than the radii: strips begin at any of them.
    for (std::size_t k = 0; k < count + hn::Lanes(d); k += hn::Lanes(d)) {
        const V r2 = square(hn::Iota(d, double(lowest) + double(k)));
        const V cut = hn::Sqrt(hn::Sub(r2, square2));
        const V place = hn::Add(hn::Sub(cut, start), one);
        V inside = hn::Floor(place);
        // Right except for rounding near a border: there the corners themselves decide.
        const V offBorder = hn::Abs(hn::Sub(place, hn::Round(place)));
        if (!hn::AllTrue(d, hn::Gt(offBorder, hn::Set(d, Rounding)))) {
            const auto within = [&](V border) {
                return hn::Le(hn::Add(square(borders.distance(border)), square2), r2);
            };
            const V last = hn::Sub(inside, one);
            inside = hn::IfThenElse(within(inside), hn::Add(inside, one),
                                    hn::IfThenElse(within(last), inside, last));
        }
        hn::StoreU(cut, d, edge.cut + k);
        hn::StoreU(hn::Min(hn::Max(inside, hn::Zero(d)), most), d, edge.inside + k);
    }
}

void cutStrip(const RingTile& tile, const Edge& near, const Edge& far, int lowest,
              std::size_t begin, std::size_t end, Pieces& pieces)
{
    const D d;
    const hn::Rebind<std::int32_t, D> di;
    const Borders borders(tile);
    const V one = hn::Set(d, 1.0);
    const V none = hn::Set(d, double(tile.length) + 1);  // an empty sample
    const V nearEdge = hn::Set(d, near.distance);
    const V farEdge = hn::Set(d, far.distance);
    for (std::size_t k = begin; k < end; k += hn::Lanes(d)) {
        const V r2 = square(hn::Iota(d, double(lowest) + double(k)));
        const V atNear = hn::LoadU(d, near.cut + k);
        const V atFar = hn::LoadU(d, far.cut + k);
        const V inside = hn::LoadU(d, far.inside + k);
        const auto split = hn::Gt(hn::LoadU(d, near.inside + k), inside);
        hn::StoreU(hn::DemoteTo(di, inside), di, pieces.farPixel + k);
        if (hn::AllFalse(d, split)) {
            const V e = hn::Sub(atNear, atFar);
            hn::StoreU(hn::Sqrt(hn::Add(square(e), one)), d, pieces.far + k);
            hn::StoreU(hn::Zero(d), d, pieces.near + k);
            hn::StoreU(hn::DemoteTo(di, none), di, pieces.nearPixel + k);
            continue;
        }
        // The border between the two pixels, and where the circle crosses it.
        const V along = hn::Abs(borders.distance(inside));
        const V across = hn::Sqrt(hn::Sub(r2, square(along)));
        const V e = hn::IfThenElse(split, hn::Sub(atFar, along), hn::Sub(atNear, atFar));
        const V f = hn::IfThenElse(split, hn::Sub(across, farEdge), one);
        const V g = hn::Sub(atNear, along);
        const V h = hn::Sub(across, nearEdge);
        const V near2 = hn::IfThenElseZero(split, hn::Add(square(g), square(h)));
        hn::StoreU(hn::Sqrt(hn::Add(square(e), square(f))), d, pieces.far + k);
        hn::StoreU(hn::Sqrt(near2), d, pieces.near + k);
        hn::StoreU(hn::DemoteTo(di, hn::IfThenElse(split, hn::Add(inside, one), none)), di,
                   pieces.nearPixel + k);
    }
}

/// Value and length of a point stand side by side, as do those of a sample.
void addPieces(const Pieces& pieces, std::size_t begin, std::size_t end, const Sample* strip,
               CurvePoint* points)
{
    const hn::CappedTag<double, 2> d;
    for (std::size_t k = begin; k < end; ++k) {
        const double* far = &strip[pieces.farPixel[k]].value;
        const double* near = &strip[pieces.nearPixel[k]].value;
        double* point = &points[k].value;
        const auto farLength = hn::Set(d, pieces.far[k]);
        const auto nearLength = hn::Set(d, pieces.near[k]);
        for (std::size_t i = 0; i < 2; i += hn::Lanes(d)) {
            const auto added = hn::Add(hn::Mul(farLength, hn::LoadU(d, far + i)),
                                       hn::Mul(nearLength, hn::LoadU(d, near + i)));
            hn::StoreU(hn::Add(hn::LoadU(d, point + i), added), d, point + i);
        }
    }
}

void addSections(const RingTile& tile, const Sample* samples, CurvePoint* points, int firstRadius)
{
    int lowest = 1;
    int highest = 0;
    for (int j = 0; j < tile.strips; ++j) {
        if (tile.lowest[j] > tile.highest[j])
            continue;
        lowest = highest < lowest ? tile.lowest[j] : std::min(lowest, tile.lowest[j]);
        highest = std::max(highest, tile.highest[j]);
    }
    if (lowest > highest)
        return;
    Edge edges[2];
    Pieces pieces;
    const auto count = static_cast<std::size_t>(highest - lowest + 1);
    Edge* before = &edges[0];
    Edge* after = &edges[1];
    cutEdge(tile, tile.edges[0], lowest, count, *before);
    for (int j = 0; j < tile.strips; ++j, std::swap(before, after)) {
        cutEdge(tile, tile.edges[j + 1], lowest, count, *after);
        if (tile.lowest[j] > tile.highest[j])
            continue;
        const auto begin = static_cast<std::size_t>(tile.lowest[j] - lowest);
        const auto end = static_cast<std::size_t>(tile.highest[j] - lowest + 1);
        const bool away = before->distance < after->distance;
        cutStrip(tile, away ? *before : *after, away ? *after : *before, lowest, begin, end,
                 pieces);
        addPieces(pieces, begin, end, samples + static_cast<std::size_t>(j) * RingTile::Stride,
                  points + (lowest - firstRadius));
    }
}

void addSamples(const Sample* samples, std::size_t count, SampleSums& sums)
{
    constexpr std::size_t Width = hn::MaxLanes(D());
    constexpr std::size_t Step = Width < SampleSums::Lanes ? Width : SampleSums::Lanes;
    const hn::CappedTag<double, Step> d;
    const double* numbers = &samples->value;
    for (std::size_t lane = 0; lane < SampleSums::Lanes; lane += Step) {
        auto sum = hn::LoadU(d, sums.sums + lane);
        auto squares = hn::LoadU(d, sums.squares + lane);
        for (std::size_t i = lane; i < 2 * count; i += SampleSums::Lanes) {
            const auto number = hn::LoadU(d, numbers + i);
            sum = hn::Add(sum, number);
            squares = hn::Add(squares, hn::Mul(number, number));
        }
        hn::StoreU(sum, d, sums.sums + lane);
        hn::StoreU(squares, d, sums.squares + lane);
    }
}

}  // namespace roi::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace roi {

HWY_EXPORT(addSections);
HWY_EXPORT(addSamples);

void addSections(const RingTile& tile, const Sample* samples, CurvePoint* points, int firstRadius)
{
    HWY_DYNAMIC_DISPATCH(addSections)(tile, samples, points, firstRadius);
}

void addSamples(const Sample* samples, std::size_t count, SampleSums& sums)
{
    HWY_DYNAMIC_DISPATCH(addSamples)(samples, count, sums);
}

}  // namespace roi

#endif
