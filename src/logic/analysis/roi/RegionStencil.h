// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Which part of which pixel belongs to a line, a circle or a ring.
#pragma once

#include "imagelib/image/MImage.h"
#include "logic/records/StatisticsData.h"

#include <cstddef>
#include <vector>

/// The pixels of an area in an image of one size: runs of whole pixels, and those of which a part
/// belongs to it. Of a line it is the length in each pixel.
struct StencilArea {
    struct Run {
        std::size_t begin;
        std::size_t end;
    };
    struct Part {
        std::size_t pixel;
        double weight;
    };
    std::vector<Run> runs;
    std::vector<Part> parts;

    /// By rising pixels, row by row.
    void add(std::size_t pixel, double weight)
    {
        if (weight == 0)
            return;
        if (weight < 1)
            parts.push_back({pixel, weight});
        else if (!runs.empty() && runs.back().end == pixel)
            ++runs.back().end;
        else
            runs.push_back({pixel, pixel + 1});
    }
};

/// The areas of a circle, whose background is the ring around it, or of a line or a centred circle,
/// which have none. Thread: built once, then read by any.
class RegionStencil {
public:
    /// @param region  a line, a circle or a defined centred circle within RoiComputer::MostPixels
    RegionStencil(const StatisticsData& region, int width, int height);

    bool fits(const morvend::imglib::MImage& image) const
    {
        return image.width() == _width && image.height() == _height;
    }
    const StencilArea& area() const { return _area; }
    const StencilArea& background() const { return _background; }

private:
    void _addLine(const StatisticsData& region);
    void _addCircle(const StatisticsData& region);
    void _addRing(const StatisticsData& region);

    const int _width;
    const int _height;
    StencilArea _area;
    StencilArea _background;
};
