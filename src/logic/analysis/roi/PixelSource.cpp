// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Reading of tiles, compiled for each pixel type.
#include "logic/analysis/roi/PixelSource.h"

#include <algorithm>

using morvend::imglib::MImage;

namespace roi {

namespace {

constexpr std::ptrdiff_t RowsAhead = 12;

template <class T>
class TypedSource : public PixelSource {
public:
    TypedSource(const MImage& image, std::shared_ptr<const GoodPixels> good)
        : PixelSource(std::move(good))
        , _pixels(image.pixels<T>())
    {}

    double value(std::size_t position) const override
    {
        return static_cast<double>(_pixels[position]);
    }

    void read(const TilePixels& tile, Sample* samples, Extremes& extremes) const override
    {
        ExtremesOf<T> typed;
        std::fill_n(samples, static_cast<std::size_t>(tile.strips) * RingTile::Stride, Sample{});
        // The part common to all strips is read row by row if the strips are columns.
        const bool columns = tile.stripStep == 1;
        const int begin = columns ? *std::max_element(tile.begin, tile.begin + tile.strips) : 0;
        const int end = columns ? *std::min_element(tile.end, tile.end + tile.strips) : 0;
        for (int i = begin; i < end; ++i)
            readAcross(tile.origin + i * tile.pixelStep, RowsAhead * tile.pixelStep, tile.strips,
                       samples + 1 + i, typed);
        for (int j = 0; j < tile.strips; ++j) {
            const auto readPart = [&](int from, int to) {
                if (from < to)
                    readPixels(tile.origin + j * tile.stripStep + from * tile.pixelStep,
                               tile.pixelStep, to - from,
                               samples + static_cast<std::size_t>(j) * RingTile::Stride + 1 + from,
                               1, typed);
            };
            if (begin < end) {
                readPart(tile.begin[j], begin);
                readPart(end, tile.end[j]);
            } else {
                readPart(tile.begin[j], tile.end[j]);
            }
        }
        extremes.add(typed);
    }

private:
    void readPixels(std::ptrdiff_t position, std::ptrdiff_t step, int count, Sample* samples,
                    std::size_t sampleStep, ExtremesOf<T>& extremes) const
    {
        const std::uint64_t* words = _good->words();
        ExtremesOf<T> found = extremes;
        for (int i = 0; i < count; ++i, position += step, samples += sampleStep) {
            const auto at = static_cast<std::size_t>(position);
            if (((words[at / 64] >> (at % 64)) & 1U) == 0)
                continue;
            const T pixel = _pixels[at];
            *samples = {static_cast<double>(pixel), 1.0};
            found.add(pixel);
        }
        extremes = found;
    }

    /// The same for pixels in a row, whose samples are in different strips. The next rows are
    /// prefetched: no processor predicts steps of whole rows.
    void readAcross(std::ptrdiff_t position, std::ptrdiff_t ahead, int count, Sample* samples,
                    ExtremesOf<T>& extremes) const
    {
        const auto at = static_cast<std::size_t>(position);
        const auto next = static_cast<std::size_t>(
            std::clamp<std::ptrdiff_t>(position + ahead, 0, std::ptrdiff_t(_good->size()) - 1));
        __builtin_prefetch(_pixels + next);
        __builtin_prefetch(_good->words() + next / 64);
        const std::uint64_t* word = _good->words() + at / 64;
        const auto shift = static_cast<unsigned>(at % 64);
        const std::uint64_t bits = word[0] >> shift | (word[1] << 1) << (63 - shift);
        const std::uint64_t all = (std::uint64_t(1) << count) - 1;
        if ((bits & all) != all)
            return readPixels(position, 1, count, samples, RingTile::Stride, extremes);
        ExtremesOf<T> found = extremes;
        const T* pixels = _pixels + at;
        for (int j = 0; j < count; ++j) {
            samples[static_cast<std::size_t>(j) * RingTile::Stride] = {
                static_cast<double>(pixels[j]), 1.0};
            found.add(pixels[j]);
        }
        extremes = found;
    }

    const T* _pixels;
};

}  // namespace

std::unique_ptr<PixelSource> PixelSource::of(const MImage& image, const MImage& mask)
{
    return morvend::datatypes::dispatchPixelType(
        image.type(), image.typeBits(), [&]<class T>() -> std::unique_ptr<PixelSource> {
            return std::make_unique<TypedSource<T>>(image, GoodPixels::of(mask));
        });
}

}  // namespace roi
