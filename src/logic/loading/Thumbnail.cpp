// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Cells of an image and their reduction to pixels.
#include "logic/loading/Thumbnail.h"

#include "logic/loading/ColumnSums.h"
#include "logic/support/Assert.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

using morvend::datatypes::convertPixel;
using morvend::datatypes::dispatchPixelType;
using morvend::imglib::MImage;

namespace thumbnail {

class Builder::Work {
public:
    virtual ~Work() = default;
    virtual void upTo(std::size_t end) = 0;
    virtual MImage finish(bool hasNegatives) = 0;
};

namespace {

/// A range of source columns or rows.
struct Span {
    int begin;
    int end;
    bool empty() const { return begin >= end; }
    int length() const { return end - begin; }
    double size() const { return length(); }
};

/// The source pixels of `count` thumbnail pixels in one direction. The last ones may be empty,
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

/// The first pixel of a cell, row by row, that is a marked value, else 0.
template <class T, class IsMark>
T first(const Source<T>& image, Span columns, Span rows, IsMark&& isMark)
{
    for (int y = rows.begin; y < rows.end; ++y) {
        const T* row = image.row(y);
        for (int x = columns.begin; x < columns.end; ++x) {
            if (isMark(row[x]))
                return row[x];
        }
    }
    return T(0);
}

/// Cells of pixels, filled row by row of cells, while the pixels of a row are in the cache.
template <class T>
class Bands : public Builder::Work {
public:
    Bands(const MImage& image, MImage target)
        : source(image)
        , _target(std::move(target))
        , _grid(image, _target)
        , _out(static_cast<T*>(_target.data()))
    {}

    void upTo(std::size_t end) override
    {
        for (; _next < _grid.rows.size(); ++_next) {
            const Span rows = _grid.rows[_next];
            if (static_cast<std::size_t>(rows.end) * source.width > end)
                return;
            T* const out = _out + _next * columns().size();
            if (rows.empty())
                std::fill_n(out, columns().size(), T(0));
            else
                fill(rows, out);
        }
    }
    MImage finish(bool hasNegatives) override
    {
        upTo(source.width * static_cast<std::size_t>(_grid.rows.back().end));
        complete(hasNegatives);
        return std::move(_target);
    }

protected:
    /// Fills a row of cells that is not empty.
    virtual void fill(Span rows, T* out) = 0;
    virtual void complete(bool) {}
    const std::vector<Span>& columns() const { return _grid.columns; }

    const Source<T> source;

private:
    MImage _target;
    const Grid _grid;
    T* _out;
    std::size_t _next = 0;
};

/// The mean of each cell. Only at the end is it known whether negative pixels are marks: cells that
/// hold one are then processed again.
template <class T>
class Means : public Bands<T> {
public:
    using Bands<T>::Bands;

protected:
    void add(Span rows, Span columns, double sum, bool negative, T& out)
    {
        out = convertPixel<T>(sum / (columns.size() * rows.size()));
        if (negative)
            _negative.push_back({rows, columns, &out});
    }
    void complete(bool hasNegatives) override
    {
        if (hasNegatives)
            return;
        for (const Cell& cell : _negative)
            *cell.out = first(this->source, cell.columns, cell.rows, [](T v) { return v < T(0); });
    }

private:
    struct Cell {
        Span rows, columns;
        T* out;
    };
    std::vector<Cell> _negative;
};

/// Means for types where the order of summation matters, as it does for sums of floating pixels.
/// Each row goes to all cells before the next one: the sum of a cell waits for each of its
/// additions, those of its neighbours don't.
template <class T>
class MeansInOrder : public Means<T> {
public:
    MeansInOrder(const MImage& image, MImage target)
        : Means<T>(image, std::move(target))
        , _cells(this->columns().size())
    {}

private:
    struct Cell {
        double sum = 0;
        T lowest = T(0);

        void add(T value)
        {
            lowest = value < lowest ? value : lowest;  // never NaN
            sum += static_cast<double>(value);
        }
    };
    static constexpr std::size_t Together = 4;

    void fill(Span rows, T* out) override
    {
        std::fill(_cells.begin(), _cells.end(), Cell());
        for (int y = rows.begin; y < rows.end; ++y)
            _addRow(this->source.row(y));
        for (std::size_t i = 0; i < _cells.size(); ++i, ++out) {
            const Span columns = this->columns()[i];
            if (columns.empty())
                *out = T(0);
            else
                this->add(rows, columns, _cells[i].sum, _cells[i].lowest < T(0), *out);
        }
    }

    void _addRow(const T* row)
    {
        const std::vector<Span>& columns = this->columns();
        std::size_t i = 0;
        for (; i + Together <= columns.size(); i += Together) {
            std::array<Cell, Together> cells;
            std::copy_n(_cells.begin() + std::ptrdiff_t(i), Together, cells.begin());
            int shortest = columns[i].length();
            for (std::size_t k = 1; k < Together; ++k)
                shortest = std::min(shortest, columns[i + k].length());
            std::array<const T*, Together> first;
            for (std::size_t k = 0; k < Together; ++k)
                first[k] = row + columns[i + k].begin;
            for (int x = 0; x < shortest; ++x) {
#pragma GCC unroll 4
                for (std::size_t k = 0; k < Together; ++k)
                    cells[k].add(first[k][x]);
            }
            for (std::size_t k = 0; k < Together; ++k) {
                for (int x = shortest; x < columns[i + k].length(); ++x)
                    cells[k].add(first[k][x]);
            }
            std::copy(cells.begin(), cells.end(), _cells.begin() + std::ptrdiff_t(i));
        }
        for (; i < columns.size(); ++i) {
            for (int x = columns[i].begin; x < columns[i].end; ++x)
                _cells[i].add(row[x]);
        }
    }

    std::vector<Cell> _cells;
};

/// The integer of the same width that the vector loops know: `char` is not one.
template <class T>
using Plain = std::conditional_t<std::is_same_v<T, char>, std::int8_t, T>;

/// Means of integers of at most 32 bits: their sums are exact in whatever order.
template <class T>
class MeansOfColumns : public Means<T> {
public:
    MeansOfColumns(const MImage& image, MImage target)
        : Means<T>(image, std::move(target))
        , _sums(this->source.width)
        , _bits(this->source.width)
    {}

private:
    using P = Plain<T>;

    void fill(Span rows, T* out) override
    {
        addRows<P>(reinterpret_cast<const P*>(this->source.row(rows.begin)), this->source.width,
                   static_cast<std::size_t>(rows.end - rows.begin), _sums.data(), _bits.data());
        for (const Span columns : this->columns()) {
            std::int64_t sum = 0;
            P joined = 0;
            for (auto x = std::size_t(columns.begin); x < std::size_t(columns.end); ++x) {
                sum += _sums[x];
                if constexpr (std::is_signed_v<P>)
                    joined = static_cast<P>(joined | _bits[x]);
            }
            if (columns.empty())
                *out++ = T(0);
            else
                this->add(rows, columns, static_cast<double>(sum), joined < P(0), *out++);
        }
    }

    std::vector<ColumnSum<P>> _sums;
    std::vector<P> _bits;
};

/// First marks. Most cells have no mark, so the rows of a band are joined first to find those that
/// have one.
template <class T>
class Marks : public Bands<T> {
public:
    Marks(const MImage& image, MImage target)
        : Bands<T>(image, std::move(target))
        , _bits(this->source.width)
    {}

private:
    /// All the bits of a pixel, whatever its type.
    using Bits = std::conditional_t<
        sizeof(T) == 1, std::uint8_t,
        std::conditional_t<sizeof(T) == 2, std::uint16_t,
                           std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>>>;

    void fill(Span rows, T* out) override
    {
        joinRows(reinterpret_cast<const std::byte*>(this->source.row(rows.begin)),
                 this->source.width * sizeof(T), static_cast<std::size_t>(rows.end - rows.begin),
                 reinterpret_cast<std::byte*>(_bits.data()));
        for (const Span columns : this->columns()) {
            const Span marked = _marked(columns);
            *out++ = marked.empty()
                         ? T(0)
                         : first(this->source, marked, rows, [](T v) { return v != T(0); });
        }
    }

    /// The columns of a cell without those at its ends that have no mark.
    Span _marked(Span columns) const
    {
        const auto clear = [this](int column) {
            return _bits[static_cast<std::size_t>(column)] == Bits(0);
        };
        while (!columns.empty() && clear(columns.begin))
            ++columns.begin;
        while (!columns.empty() && clear(columns.end - 1))
            --columns.end;
        return columns;
    }

    std::vector<Bits> _bits;
};

template <class T>
std::unique_ptr<Builder::Work> workOf(const MImage& image, MImage target)
{
    if constexpr (std::is_same_v<T, bool>) {
        // A mean of truth values is not zero if one is true.
        return std::make_unique<Marks<T>>(image, std::move(target));
    } else {
        if constexpr (std::is_integral_v<T> && sizeof(T) <= 4) {
            const auto tallest = static_cast<std::size_t>(image.width() / target.width() + 2);
            if (tallest <= mostRows)
                return std::make_unique<MeansOfColumns<T>>(image, std::move(target));
        }
        return std::make_unique<MeansInOrder<T>>(image, std::move(target));
    }
}

}  // namespace

Builder::Builder(const MImage& image)
    : _empty(emptyThumbnail(image))
{
    if (_empty.empty())
        return;  // the shorter side is below half a cell
    _work = dispatchPixelType(image.type(), image.typeBits(), [&]<class T>() {
        return workOf<T>(image, std::exchange(_empty, {}));
    });
}

Builder::~Builder() = default;

void Builder::upTo(std::size_t end)
{
    if (_work)
        _work->upTo(end);
}

MImage Builder::finish(bool hasNegatives) { return _work ? _work->finish(hasNegatives) : _empty; }

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
    return Builder(image).finish(hasNegatives);
}

MImage ofMask(const MImage& mask)
{
    MImage result = emptyThumbnail(mask);
    if (result.empty())
        return result;
    return dispatchPixelType(mask.type(), mask.typeBits(), [&]<class T>() {
        return Marks<T>(mask, std::move(result)).finish(false);
    });
}

}  // namespace thumbnail
