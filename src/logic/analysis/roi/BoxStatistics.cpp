// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The box, written once over all pixel types.
#include "logic/analysis/roi/BoxStatistics.h"

#include "imagelib/image/BinaryDispatcher.h"
#include "logic/analysis/roi/PixelReader.h"

#include <algorithm>
#include <type_traits>

using morvend::imglib::MImage;
using namespace roi;

namespace {

/// The square in the arithmetic of the pixel type, at least int, where it may wrap.
template <class L>
double square(L value)
{
    if constexpr (std::is_floating_point_v<L>) {
        return static_cast<double>(value) * static_cast<double>(value);
    } else {
        using Promoted = decltype(value + value);
        using Unsigned = std::make_unsigned_t<Promoted>;
        const auto wide = static_cast<Unsigned>(static_cast<Promoted>(value));
        return static_cast<double>(static_cast<Promoted>(wide * wide));
    }
}

struct Projection {
    double sum = 0;
    bool good = false;
};

std::vector<std::vector<double>> projectionCurve(const std::vector<Projection>& projection,
                                                 int begin, std::size_t across)
{
    std::vector<std::vector<double>> curve;
    curve.reserve(projection.size());
    for (std::size_t i = 0; i < projection.size(); ++i)
        curve.push_back({double(begin) + static_cast<double>(i),
                         projection[i].sum / static_cast<double>(std::max<std::size_t>(across, 1)),
                         projection[i].good ? 0.0 : 1.0});
    return curve;
}

}  // namespace

template <class L, class R>
RoiStatistics ComputeBoxStatistics::operator()(const MImage& image, const MImage& mask) const
{
    const auto [x0, x1] = std::minmax(_selection->beginX, _selection->endX);
    const auto [y0, y1] = std::minmax(_selection->beginY, _selection->endY);
    std::vector<Projection> columns(static_cast<std::size_t>(x1 - x0));
    std::vector<Projection> rows(static_cast<std::size_t>(y1 - y0));
    RoiStatistics result;
    result.area = static_cast<double>(columns.size()) * static_cast<double>(rows.size());

    const PixelReader<L, R> reader(image, mask);
    // Pixels outside the image are excluded and enter as zeros, which only the extremes can tell.
    const int left = std::max(x0, 0);
    const int right = std::min(x1, reader.width());
    const int top = std::max(y0, 0);
    const int bottom = std::min(y1, reader.height());
    const bool leavesImage = left != x0 || right != x1 || top != y0 || bottom != y1;
    Extremes extremes;
    if (result.area > 0 && (left != x0 || top != y0 || left >= right || top >= bottom))
        extremes.add(0);
    double squares = 0;
    std::size_t good = 0;
    for (int y = top; y < bottom; ++y) {
        Projection& row = rows[static_cast<std::size_t>(y - y0)];
        const L* pixels = reader.row(y);
        const R* marks = reader.maskRow(y);
        for (int x = left; x < right; ++x) {
            Projection& column = columns[static_cast<std::size_t>(x - x0)];
            L value = 0;
            if (maskrule::good(marks[x])) {
                value = pixels[x];
                column.good = row.good = true;
                ++good;
            }
            const auto number = static_cast<double>(value);
            result.integral += number;
            column.sum += number;
            row.sum += number;
            squares += square(value);
            extremes.add(number);
        }
    }
    if (result.area > 0 && leavesImage)
        extremes.add(0);
    result.minimum = extremes.minimum;
    result.maximum = extremes.maximum;
    if (good != 0) {
        result.mean = result.integral / static_cast<double>(good);
        result.sigma = deviation(squares, static_cast<double>(good), result.mean);
    }
    result.curve = projectionCurve(columns, x0, rows.size());
    result.secondCurve = projectionCurve(rows, y0, columns.size());
    return result;
}

RoiStatistics ComputeBoxStatistics::compute(const MImage& image, const MImage& mask) const
{
    return morvend::datatypes::BinaryDispatcher<const ComputeBoxStatistics&, const MImage,
                                                const MImage, RoiStatistics>::Go(image, mask,
                                                                                 *this);
}
