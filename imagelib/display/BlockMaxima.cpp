// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Columns first, then rows: so the loop over all pixels is one that compilers make vectors of.
#include "imagelib/display/BlockMaxima.h"

#include "imagelib/display/DisplayValue.h"
#include "imagelib/image/Assert.h"
#include "imagelib/image/MaskBits.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

namespace morvend::imglib {

namespace {

using Marks = std::vector<std::uint8_t>;

/// The mask of a row, whose bits are taken as they are drawn.
void readMarks(const MImage& mask, int row, Marks& marks)
{
    datatypes::dispatchPixelType(mask.type(), mask.typeBits(), [&]<class M>() {
        const M* const from = mask.pixels<M>() + static_cast<std::size_t>(row) * marks.size();
        std::uint8_t* const to = marks.data();
        const std::size_t size = marks.size();
        for (std::size_t i = 0; i < size; ++i)
            to[i] = static_cast<std::uint8_t>(maskValue(from[i]));
    });
}

bool isGood(std::uint8_t mark) { return (mark & maskrule::Excluding) == 0; }

/// The largest good pixel of each column of a row of blocks.
template <class T>
class Columns {
public:
    explicit Columns(std::size_t width)
        : _largest(std::make_unique<T[]>(width))
        , _good(width)
        , _width(width)
    {}

    void clear()
    {
        std::fill_n(_largest.get(), _width, Lowest);
        std::fill(_good.begin(), _good.end(), std::uint8_t(0));
    }
    void add(const T* pixels)
    {
        // What is no number is not larger either.
        T* const largest = _largest.get();
        for (std::size_t x = 0; x < _width; ++x)
            largest[x] = pixels[x] > largest[x] ? pixels[x] : largest[x];
        std::fill(_good.begin(), _good.end(), std::uint8_t(1));
    }
    void add(const T* pixels, const Marks& marks)
    {
        T* const largest = _largest.get();
        const std::uint8_t* const mark = marks.data();
        for (std::size_t x = 0; x < _width; ++x) {
            const T value = isGood(mark[x]) ? pixels[x] : Lowest;
            largest[x] = value > largest[x] ? value : largest[x];
        }
        std::uint8_t* const good = _good.data();
        for (std::size_t x = 0; x < _width; ++x)
            good[x] = isGood(mark[x]) ? 1 : good[x];
    }
    /// @returns whether there is a good pixel
    bool ofBlock(std::size_t begin, std::size_t end, T& result) const
    {
        T largest = Lowest;
        unsigned int good = 0;
        for (std::size_t x = begin; x < end; ++x) {
            largest = _largest[x] > largest ? _largest[x] : largest;
            good |= _good[x];
        }
        result = largest;
        return good != 0;
    }

private:
    static constexpr T Lowest = std::numeric_limits<T>::has_infinity
                                    ? static_cast<T>(-std::numeric_limits<T>::infinity())
                                    : std::numeric_limits<T>::lowest();
    std::unique_ptr<T[]> _largest;
    Marks _good;
    std::size_t _width;
};

template <class T>
void reduce(const MImage& image, const MImage* mask, int side, MImage& result, MImage& marks)
{
    const auto width = static_cast<std::size_t>(image.width());
    const auto length = static_cast<std::size_t>(side);
    Columns<T> columns(width);
    Marks first(width, 0);
    Marks row(width, 0);
    T* to = static_cast<T*>(result.data());
    auto* toMark = static_cast<std::uint8_t*>(marks.data());
    for (int top = 0; top < image.height(); top += side) {
        const T* const pixels = image.pixels<T>() + static_cast<std::size_t>(top) * width;
        columns.clear();
        for (int y = top; y < std::min(top + side, image.height()); ++y) {
            const T* const line = pixels + static_cast<std::size_t>(y - top) * width;
            if (mask) {
                readMarks(*mask, y, y == top ? first : row);
                columns.add(line, y == top ? first : row);
            } else {
                columns.add(line);
            }
        }
        std::size_t x = 0;
        for (; side == 2 && x + 1 < width; x += 2, ++to, ++toMark) {
            const bool good = columns.ofBlock(x, x + 2, *to);
            *toMark = good ? 0 : first[x];
            if (!good)
                *to = pixels[x];
        }
        for (; x < width; x += length, ++to, ++toMark) {
            const bool good = columns.ofBlock(x, std::min(x + length, width), *to);
            *toMark = good ? 0 : first[x];
            if (!good)
                *to = pixels[x];
        }
    }
}

}  // namespace

MImage blockMaxima(const MImage& image, const MImage* mask, int side)
{
    assert(side > 0);
    assert(!mask || (mask->width() == image.width() && mask->height() == image.height()));
    if (image.empty())
        return {};
    const auto blocks = [side](int pixels) { return (pixels - 1) / side + 1; };
    MImage result(blocks(image.width()), blocks(image.height()), image.type(), image.typeBits());
    MImage marks(result.width(), result.height(), datatypes::UINT, 8);
    datatypes::dispatchPixelType(image.type(), image.typeBits(),
                                 [&]<class T>() { reduce<T>(image, mask, side, result, marks); });
    result.optionalData().set_pixel_mask(marks);
    if (const auto& saturation = image.optionalData().saturation_value())
        result.optionalData().set_saturation_value(*saturation);
    return result;
}

BlockMaxima BlockMaxima::of(const MImage& image, const MImage* mask)
{
    BlockMaxima maxima;
    maxima.halves = blockMaxima(image, mask, 2);
    if (!maxima.halves.empty()) {
        const MImage halfMask = *std::as_const(maxima.halves).optionalData().pixel_mask();
        maxima.quarters = blockMaxima(maxima.halves, &halfMask, 2);
    }
    return maxima;
}

}  // namespace morvend::imglib
