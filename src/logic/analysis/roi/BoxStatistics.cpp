// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The box in bands of rows, compiled for each pixel type.
#include "logic/analysis/roi/RegionFunctor.h"

#include "imagelib/image/PixelTypes.h"
#include "logic/analysis/roi/Blocks.h"
#include "logic/analysis/roi/RegionSums.h"
#include "logic/analysis/statistics/GoodPixels.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <type_traits>

using morvend::imglib::MImage;
using namespace roi;

namespace {

/// Parts of the work; fixed, as the order of sums depends on it.
constexpr int Bands = 16;

/// Integers of up to 32 bits are summed as integers, exactly: a row of them does not overflow.
template <class T>
using Sum = std::conditional_t<std::is_integral_v<T> && sizeof(T) <= 4, long long, double>;

/// The square in the arithmetic of the pixel type, at least int, where it may wrap.
template <class T>
auto square(T value)
{
    if constexpr (std::is_floating_point_v<T>) {
        return static_cast<double>(value) * static_cast<double>(value);
    } else {
        using Promoted = decltype(value + value);
        using Unsigned = std::make_unsigned_t<Promoted>;
        const auto wide = static_cast<Unsigned>(static_cast<Promoted>(value));
        return static_cast<Promoted>(wide * wide);
    }
}

/// A column or row of the box.
struct Projection {
    double sum = 0;
    bool good = false;
};

/// The part of a box inside the image.
struct Inside {
    int left;
    int top;
    int right;
    int bottom;
};

/// Sums over some rows.
struct Band {
    std::vector<double> columns;
    std::vector<char> columnGood;
    double squares = 0;
    std::size_t good = 0;
    Extremes extremes;
};

template <class T>
class BandReader {
public:
    BandReader(const MImage& image, const GoodPixels& good, const Inside& box)
        : _pixels(image.pixels<T>())
        , _width(static_cast<std::size_t>(image.width()))
        , _good(good)
        , _left(static_cast<std::size_t>(box.left))
        , _right(static_cast<std::size_t>(box.right))
    {}

    void addRow(int y, Projection& row, Band& band) const
    {
        constexpr std::size_t Bits = GoodPixels::WordBits;
        const std::size_t begin = static_cast<std::size_t>(y) * _width;
        Totals totals;
        T marked[Bits];
        for (std::size_t x = _left, count = 0; x < _right; x += count) {
            const std::size_t position = begin + x;
            count = std::min(Bits - position % Bits, _right - x);
            const std::uint64_t all = ~std::uint64_t(0) >> (Bits - count);
            const std::uint64_t good = (_good.words()[position / Bits] >> (position % Bits)) & all;
            const T* pixels = _pixels + position;
            if (good != all) {
                // Excluded pixels enter as zeros.
                for (std::size_t i = 0; i < count; ++i)
                    marked[i] = ((good >> i) & 1U) != 0 ? pixels[i] : T(0);
                pixels = marked;
            }
            for (std::size_t i = 0; i < count; ++i)
                band.columnGood[x - _left + i] |= static_cast<char>((good >> i) & 1U);
            addValues(pixels, count, &band.columns[x - _left], totals);
            band.good += static_cast<std::size_t>(std::popcount(good));
            row.good |= good != 0;
        }
        row.sum += static_cast<double>(totals.sum);
        band.squares += static_cast<double>(totals.squares);
        band.extremes.add(totals.extremes);
    }

private:
    struct Totals {
        Sum<T> sum = 0;
        Sum<T> squares = 0;
        ExtremesOf<T> extremes;
    };

    /// One loop for each kind of sum, so that the compiler makes vectors of them.
    static void addValues(const T* values, std::size_t count, double* columns, Totals& totals)
    {
        for (std::size_t i = 0; i < count; ++i)
            columns[i] += static_cast<double>(values[i]);
        Sum<T> sum = 0;
        for (std::size_t i = 0; i < count; ++i)
            sum += static_cast<Sum<T>>(values[i]);
        Sum<T> squares = 0;
        for (std::size_t i = 0; i < count; ++i)
            squares += static_cast<Sum<T>>(square(values[i]));
        totals.sum += sum;
        totals.squares += squares;
        totals.extremes.add(values, count);
    }

    const T* _pixels;
    std::size_t _width;
    const GoodPixels& _good;
    std::size_t _left;
    std::size_t _right;
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

/// Goes over the rows in bands; `rows` begins with the first row of the box in the image.
template <class T>
std::vector<Band> readBands(const MImage& image, const GoodPixels& good, const Inside& box,
                            Projection* rows, const std::stop_token& stop)
{
    const BandReader<T> reader(image, good, box);
    std::vector<Band> bands(Bands);
    forEachBlock(Bands, [&](int number) {
        Band& band = bands[static_cast<std::size_t>(number)];
        band.columns.resize(static_cast<std::size_t>(box.right - box.left));
        band.columnGood.resize(band.columns.size());
        const auto border = [&](int i) {
            return int(std::int64_t(box.bottom - box.top) * i / Bands);
        };
        for (int i = border(number); i < border(number + 1) && !stop.stop_requested(); ++i)
            reader.addRow(box.top + i, rows[i], band);
    });
    return bands;
}

}  // namespace

template <>
RoiStatistics ComputeBoxStatistics::compute(const MImage& image, const MImage& mask) const
{
    const auto [x0, x1] = std::minmax(_selection->beginX, _selection->endX);
    const auto [y0, y1] = std::minmax(_selection->beginY, _selection->endY);
    std::vector<Projection> columns(static_cast<std::size_t>(x1 - x0));
    std::vector<Projection> rows(static_cast<std::size_t>(y1 - y0));
    RoiStatistics result;
    result.area = static_cast<double>(columns.size()) * static_cast<double>(rows.size());

    const Inside box{std::max(x0, 0), std::max(y0, 0), std::min(x1, image.width()),
                     std::min(y1, image.height())};
    // Pixels outside the image are excluded and count as zeros; only the extremes show that.
    const bool meetsImage = box.left < box.right && box.top < box.bottom;
    const bool leavesImage = box.left != x0 || box.right != x1 || box.top != y0 || box.bottom != y1;
    Extremes extremes;
    if (result.area > 0 && leavesImage)
        extremes.add(0);
    double squares = 0;
    std::size_t good = 0;
    if (meetsImage) {
        const auto bits = GoodPixels::of(mask);
        const auto bands =
            morvend::datatypes::dispatchPixelType(image.type(), image.typeBits(), [&]<class T>() {
                return readBands<T>(image, *bits, box, &rows[std::size_t(box.top - y0)], _stop);
            });
        for (const Band& band : bands) {
            for (std::size_t i = 0; i < band.columns.size(); ++i) {
                Projection& column = columns[static_cast<std::size_t>(box.left - x0) + i];
                column.sum += band.columns[i];
                column.good |= band.columnGood[i] != 0;
            }
            squares += band.squares;
            good += band.good;
            extremes.add(band.extremes);
        }
    }
    for (const Projection& row : rows)
        result.integral += row.sum;
    result.minimum = extremes.minimum();
    result.maximum = extremes.maximum();
    result.weight = static_cast<double>(good);
    if (good != 0) {
        result.mean = result.integral / static_cast<double>(good);
        result.sigma = deviation(squares, static_cast<double>(good), result.mean);
    }
    result.curve = projectionCurve(columns, x0, rows.size());
    result.secondCurve = projectionCurve(rows, y0, columns.size());
    return result;
}
