// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Pixels under their mask as numbers, for code that is compiled once for all pixel types.
#pragma once

#include "imagelib/image/MImage.h"
#include "logic/analysis/roi/RegionSums.h"
#include "logic/analysis/roi/RingStrips.h"
#include "logic/analysis/statistics/GoodPixels.h"

#include <cstddef>
#include <memory>

namespace roi {

/// Where the pixels of a tile are in storage order, and which of them are taken.
struct TilePixels {
    int strips;
    int length;
    std::ptrdiff_t origin;     // the first pixel of the first strip
    std::ptrdiff_t stripStep;  // to the same pixel of the next strip
    std::ptrdiff_t pixelStep;  // to the next pixel of the same strip
    int begin[RingTile::MostStrips];
    int end[RingTile::MostStrips];  // not included
};

/// Image and mask must outlive their source. Thread: any.
class PixelSource {
public:
    /// @throws MNotImplementedException for a pixel type other than the twelve
    static std::unique_ptr<PixelSource> of(const morvend::imglib::MImage& image,
                                           const morvend::imglib::MImage& mask);
    virtual ~PixelSource() = default;
    PixelSource(const PixelSource&) = delete;
    PixelSource& operator=(const PixelSource&) = delete;

    bool good(std::size_t position) const { return (*_good)[position]; }
    virtual double value(std::size_t position) const = 0;
    /// Fills Stride samples for each strip; the others are empty. The extremes are those of
    /// the good pixels that are taken.
    virtual void read(const TilePixels& tile, Sample* samples, Extremes& extremes) const = 0;

protected:
    explicit PixelSource(std::shared_ptr<const GoodPixels> good)
        : _good(std::move(good))
    {}
    const std::shared_ptr<const GoodPixels> _good;
};

}  // namespace roi
