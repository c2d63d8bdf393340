// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Building and keeping of ring tables.
#include "logic/analysis/roi/RingTable.h"

#include "logic/analysis/roi/CoveredArea.h"
#include "logic/support/Assert.h"

#include <algorithm>
#include <cmath>
#include <mutex>

namespace roi {

RingTable::RingTable(const Ring& ring)
    : _ring(ring)
{
    const int centreColumn = static_cast<int>(ring.centreX);
    const int centreRow = static_cast<int>(ring.centreY);
    _left = std::max(centreColumn - ring.outer, 0);
    const int right = std::min(centreColumn + ring.outer, ring.width - 1);
    int top = -1;
    int bottom = ring.height;
    for (int x = _left; x <= right; ++x) {
        // The side of the pixel that is nearer to the centre decides how high the column reaches.
        const double d = (x < centreColumn ? x + 1 : x) - ring.centreX;
        const double chord = double(ring.outer) * ring.outer - d * d;
        const int columnTop =
            chord >= 0 ? static_cast<int>(std::sqrt(chord) + ring.centreY) : centreRow - 1;
        const int half = columnTop - centreRow;
        _columnTop.push_back(columnTop);
        _columnBottom.push_back(half >= 0 ? columnTop - 2 * half : columnTop + 1);
        top = std::max(top, columnTop);
        bottom = std::min(bottom, _columnBottom.back());
    }
    for (int y = std::max(bottom, 0); y <= std::min(top, ring.height - 1); ++y)
        _addRow(y);
}

void RingTable::_addRow(int y)
{
    const int end = _left + static_cast<int>(_columnTop.size());
    for (int x = _left; x < end; ++x) {
        const auto column = static_cast<std::size_t>(x - _left);
        if (y > _columnTop[column] || y < _columnBottom[column])
            continue;
        if (coveredArea(x, y, _ring.inner, _ring.centreX, _ring.centreY) == 1) {
            // The hole is convex: its mirror image in this row is the next pixel of interest.
            if (x < _ring.centreX)
                x = std::max(x, static_cast<int>(std::floor(2 * _ring.centreX - x - 1)));
            continue;
        }
        _addPixel(x, y);
    }
}

void RingTable::_addPixel(int x, int y)
{
    const double hole = coveredArea(x, y, _ring.inner, _ring.centreX, _ring.centreY);
    const double weight = coveredArea(x, y, _ring.outer, _ring.centreX, _ring.centreY) - hole;
    if (weight == 0)
        return;
    const auto position = static_cast<std::uint32_t>(y) * static_cast<std::uint32_t>(_ring.width) +
                          static_cast<std::uint32_t>(x);
    if (weight < 1)
        _rim.push_back({position, weight});
    else if (!_runs.empty() && _runs.back().begin + _runs.back().length == position)
        ++_runs.back().length;
    else
        _runs.push_back({position, 1});

    int r0 = -1;
    int r1 = -1;
    double section0 = 0;
    double section1 = 0;
    circleSection(x, y, _ring.centreX, _ring.centreY, r0, section0, r1, section1);
    assert(section0 >= 0);
    assert(section1 >= 0);
    const auto add = [&](int radius, double section) {
        if (radius >= _ring.inner && radius <= _ring.outer)
            _crossings.push_back(
                {position, static_cast<std::uint32_t>(radius - _ring.inner), section});
    };
    add(r0, section0);
    add(r1, section1);
}

std::shared_ptr<const RingTable> RingTable::of(const Ring& ring)
{
    static std::mutex mutex;
    static std::shared_ptr<const RingTable> last;
    {
        const std::lock_guard lock(mutex);
        if (last && last->_ring == ring)
            return last;
    }
    auto table = std::make_shared<const RingTable>(ring);
    if (table->_crossings.size() <= MostKept) {
        const std::lock_guard lock(mutex);
        last = table;
    }
    return table;
}

}  // namespace roi
