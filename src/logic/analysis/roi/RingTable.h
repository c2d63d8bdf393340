// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Which pixels a ring around a real-valued centre covers, and which integer radii cross them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace roi {

/// A ring in an image.
struct Ring {
    double centreX;
    double centreY;
    int inner;
    int outer;
    int width;  // of the image
    int height;
    bool operator==(const Ring&) const = default;
};

/// The geometry of a ring, apart from any pixel value: all that the powder plot of the next image
/// with the same centre needs no more to compute. Positions count in storage order.
class RingTable {
public:
    /// Pixels that lie wholly in the ring, one after the other in a row.
    struct Run {
        std::uint32_t begin;
        std::uint32_t length;
    };
    /// A pixel at a rim with its part in the ring, above 0 and below 1 but for rounding.
    struct RimPixel {
        std::uint32_t position;
        double weight;
    };
    /// A radius that crosses a pixel: number of the curve point, length of the arc.
    struct Crossing {
        std::uint32_t position;
        std::uint32_t point;
        double section;
    };

    explicit RingTable(const Ring& ring);

    /// The table of a ring: the last one made, if it is the same, else a new one. Tables beyond
    /// MostKept crossings are made anew each time and not kept.
    /// Thread: any.
    static std::shared_ptr<const RingTable> of(const Ring& ring);
    /// Bounds the memory that is kept to 16 bytes each.
    static constexpr std::size_t MostKept = std::size_t(8) << 20;

    const std::vector<Run>& runs() const { return _runs; }
    const std::vector<RimPixel>& rim() const { return _rim; }
    const std::vector<Crossing>& crossings() const { return _crossings; }

private:
    void _addRow(int y);
    void _addPixel(int x, int y);

    Ring _ring;
    int _left = 0;                // first column of the circle that lies in the image
    std::vector<int> _columnTop;  // largest and smallest row of each column from _left on
    std::vector<int> _columnBottom;
    std::vector<Run> _runs;
    std::vector<RimPixel> _rim;
    std::vector<Crossing> _crossings;
};

}  // namespace roi
