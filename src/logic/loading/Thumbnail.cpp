// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Cells of an image and what becomes of them.
#include "logic/loading/Thumbnail.h"

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

/// Sums of integers up to 32 bits are exact in 64 bits as they are in double.
template <class T>
using Sum =
    std::conditional_t<!std::is_integral_v<T> || (sizeof(T) > 4), double,
                       std::conditional_t<std::is_signed_v<T>, std::int64_t, std::uint64_t>>;

template <class T, bool negativesAreMarks>
T mean(const Source<T>& image, Span columns, Span rows)
{
    if (columns.empty() || rows.empty())
        return T(0);
    Sum<T> sum = 0;
    for (int y = rows.begin; y < rows.end; ++y) {
        const T* row = image.row(y);
        for (int x = columns.begin; x < columns.end; ++x) {
            if constexpr (negativesAreMarks) {
                if (row[x] < T(0))
                    return row[x];
            }
            sum += static_cast<Sum<T>>(row[x]);
        }
    }
    const double count = static_cast<double>(columns.end - columns.begin) *
                         static_cast<double>(rows.end - rows.begin);
    const double result = static_cast<double>(sum) / count;
    if constexpr (std::is_same_v<T, bool>)
        return result != 0;
    else
        return convertPixel<T>(result);
}

template <class T, class Cell>
void fill(MImage& target, const MImage& source, Cell&& cell)
{
    if (target.empty())
        return;  // the shorter side is below half a cell
    const Grid grid(source, target);
    const Source<T> pixels(source);
    T* out = static_cast<T*>(target.data());
    for (const Span rows : grid.rows) {
        for (const Span columns : grid.columns)
            *out++ = cell(pixels, columns, rows);
    }
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
    dispatchPixelType(image.type(), image.typeBits(), [&]<class T>() {
        if (std::is_signed_v<T> && !hasNegatives)
            fill<T>(result, image, mean<T, std::is_signed_v<T>>);
        else
            fill<T>(result, image, mean<T, false>);
    });
    return result;
}

MImage ofMask(const MImage& mask)
{
    MImage result = emptyThumbnail(mask);
    dispatchPixelType(mask.type(), mask.typeBits(),
                      [&]<class T>() { fill<T>(result, mask, firstMark<T>); });
    return result;
}

}  // namespace thumbnail
