// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Cells of an image and what becomes of them.
#include "logic/loading/Thumbnail.h"

#include "logic/loading/ColumnSums.h"
#include "logic/support/Assert.h"

#include <algorithm>
#include <cstdint>
#include <vector>

using morvend::datatypes::convertPixel;
using morvend::datatypes::dispatchPixelType;
using morvend::imglib::MImage;

namespace {

/// A range of source columns or rows.
struct Span {
    int begin;
    int end;
    bool empty() const { return begin >= end; }
    double size() const { return end - begin; }
};

/// The source pixels of `count` thumbnail pixels in one direction. The last ones may have none,
/// since the width's ratio serves both directions.
std::vector<Span> cells(int count, double averageLength, int limit)
{
    const auto edge = [&](int cell) {
        return static_cast<int>(std::min(cell * averageLength + 0.5, static_cast<double>(limit)));
    };
    std::vector<Span> spans(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        spans[static_cast<std::size_t>(i)] = {edge(i), edge(i + 1)};
    return spans;
}

struct Grid {
    Grid(const MImage& source, const MImage& target)
    {
        assert(source.width() > 0 && source.height() > 0);
        const double averageLength =
            1.0 / (static_cast<double>(target.width()) / static_cast<double>(source.width()));
        assert(averageLength > 0);
        columns = cells(target.width(), averageLength, source.width());
        rows = cells(target.height(), averageLength, source.height());
    }
    std::vector<Span> columns;
    std::vector<Span> rows;
};

/// The pixels of a source image row by row.
template <class T>
struct Source {
    explicit Source(const MImage& image)
        : pixels(image.pixels<T>())
        , width(static_cast<std::size_t>(image.width()))
    {
        assert(width * static_cast<std::size_t>(image.height()) == image.size());
    }
    const T* row(int y) const { return pixels + static_cast<std::size_t>(y) * width; }
    const T* pixels;
    std::size_t width;
};

template <class T>
T firstMark(const Source<T>& mask, Span columns, Span rows)
{
    for (int y = rows.begin; y < rows.end; ++y) {
        const T* row = mask.row(y);
        for (int x = columns.begin; x < columns.end; ++x) {
            if (row[x] != T(0))
                return row[x];
        }
    }
    return T(0);
}

/// The mean of a cell, its pixels taken one after the other as the rule says: sums of floating
/// pixels depend on their order.
template <class T, bool negativesAreMarks>
T mean(const Source<T>& image, Span columns, Span rows)
{
    double sum = 0;
    for (int y = rows.begin; y < rows.end; ++y) {
        const T* row = image.row(y);
        for (int x = columns.begin; x < columns.end; ++x) {
            if constexpr (negativesAreMarks) {
                if (row[x] < T(0))
                    return row[x];
            }
            sum += static_cast<double>(row[x]);
        }
    }
    return convertPixel<T>(sum / (columns.size() * rows.size()));
}

/// Calls band(rows, out) for each row of a thumbnail that has source pixels; the others are 0.
template <class T, class Band>
void forEachBand(MImage& target, const Grid& grid, Band&& band)
{
    T* out = static_cast<T*>(target.data());
    for (const Span rows : grid.rows) {
        if (rows.empty())
            std::fill_n(out, target.width(), T(0));
        else
            band(rows, out);
        out += target.width();
    }
}

/// Means where the order of the pixels counts, cell by cell.
template <class T, bool negativesAreMarks>
void fillInOrder(MImage& target, const MImage& image)
{
    const Grid grid(image, target);
    const Source<T> source(image);
    forEachBand<T>(target, grid, [&](Span rows, T* out) {
        for (const Span columns : grid.columns)
            *out++ = columns.empty() ? T(0) : mean<T, negativesAreMarks>(source, columns, rows);
    });
}

/// The integer of the same width that the vector loops know: `char` is none of them.
template <class T>
using Plain = std::conditional_t<std::is_same_v<T, char>, std::int8_t, T>;

/// Means of integers of at most 32 bits: their sums are exact in whatever order.
template <class T, bool negativesAreMarks>
void fillFromColumns(MImage& target, const MImage& image)
{
    using P = Plain<T>;
    const Grid grid(image, target);
    const Source<T> source(image);
    std::vector<thumbnail::ColumnSum<P>> sums(source.width);
    std::vector<P> bits(source.width);
    const auto value = [&](Span columns, Span rows) -> T {
        double sum = 0;
        P joined = 0;
        for (auto x = std::size_t(columns.begin); x < std::size_t(columns.end); ++x) {
            sum += static_cast<double>(sums[x]);
            joined = static_cast<P>(joined | bits[x]);
        }
        if (negativesAreMarks && joined < 0)
            return mean<T, negativesAreMarks>(source, columns, rows);
        return convertPixel<T>(sum / (columns.size() * rows.size()));
    };
    forEachBand<T>(target, grid, [&](Span rows, T* out) {
        const auto* first = reinterpret_cast<const P*>(source.row(rows.begin));
        thumbnail::addRows<P>(first, source.width, std::size_t(rows.end - rows.begin), sums.data(),
                              bits.data());
        for (const Span columns : grid.columns)
            *out++ = columns.empty() ? T(0) : value(columns, rows);
    });
}

template <class T, bool negativesAreMarks>
void fillMeans(MImage& target, const MImage& image)
{
    constexpr bool orderMatters = !std::is_integral_v<T> || sizeof(T) > 4;
    const auto tallest = static_cast<std::size_t>(image.width() / target.width() + 2);
    if constexpr (!orderMatters) {
        if (tallest <= thumbnail::mostRows)
            return fillFromColumns<T, negativesAreMarks>(target, image);
    }
    fillInOrder<T, negativesAreMarks>(target, image);
}

/// First marks. Most cells have none: the rows of a band are joined first, whatever their type.
template <class T>
void fillMarks(MImage& target, const MImage& mask)
{
    const Grid grid(mask, target);
    const Source<T> source(mask);
    std::vector<std::byte> bits(source.width * sizeof(T));
    forEachBand<T>(target, grid, [&](Span rows, T* out) {
        const auto* first = reinterpret_cast<const std::byte*>(source.row(rows.begin));
        thumbnail::joinRows(first, bits.size(), std::size_t(rows.end - rows.begin), bits.data());
        for (const Span columns : grid.columns) {
            const auto begin = bits.begin() + columns.begin * std::ptrdiff_t(sizeof(T));
            const auto end = bits.begin() + columns.end * std::ptrdiff_t(sizeof(T));
            const bool clear =
                std::all_of(begin, end, [](std::byte b) { return b == std::byte(0); });
            *out++ = clear ? T(0) : firstMark(source, columns, rows);
        }
    });
}

}  // namespace

namespace thumbnail {

MImage emptyThumbnail(const MImage& image)
{
    const int w = image.width();
    const int h = image.height();
    int width = std::min(w, longestSide);
    int height = std::min(h, longestSide);
    if (w >= h)
        height = static_cast<int>(h * (static_cast<double>(width) / w));
    else
        width = static_cast<int>(w * (static_cast<double>(height) / h));
    return MImage(width, height, image.type(), image.typeBits());
}

MImage ofImage(const MImage& image, bool hasNegatives)
{
    MImage result = emptyThumbnail(image);
    if (result.empty())
        return result;  // the shorter side is below half a cell
    dispatchPixelType(image.type(), image.typeBits(), [&]<class T>() {
        if constexpr (std::is_same_v<T, bool>)
            fillMarks<T>(result, image);  // a mean of truth values is not zero if one is true
        else if (std::is_signed_v<T> && !hasNegatives)
            fillMeans<T, std::is_signed_v<T>>(result, image);
        else
            fillMeans<T, false>(result, image);
    });
    return result;
}

MImage ofMask(const MImage& mask)
{
    MImage result = emptyThumbnail(mask);
    if (result.empty())
        return result;
    dispatchPixelType(mask.type(), mask.typeBits(), [&]<class T>() { fillMarks<T>(result, mask); });
    return result;
}

}  // namespace thumbnail
