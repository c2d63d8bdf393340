// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The peak search, written once over all pixel types.
#include "logic/analysis/peaks/ComputePeaks.h"

#include "imagelib/image/BinaryDispatcher.h"
#include "imagelib/image/MaskBits.h"
#include "logic/analysis/peaks/BlockSearch.h"

#include <algorithm>
#include <limits>
#include <vector>

using morvend::datatypes::convertPixel;
using morvend::imglib::MImage;

namespace {

constexpr std::size_t SampleSize = 1 << 14;
constexpr std::size_t FirstRank = 16'000;  // pixels that the first bound should leave
constexpr std::size_t NextRank = 16 * FirstRank;

template <class L, class R>
class Search {
public:
    Search(const MImage& image, const MImage& mask)
        : _pixels(image.pixels<L>())
        , _mask(mask.pixels<R>())
        , _size(image.size())
        , _width(static_cast<std::size_t>(image.width()))
    {}

    ComputePeaks::PeakSet run() const
    {
        const L lowest = std::is_floating_point_v<L> ? -std::numeric_limits<L>::infinity()
                                                     : std::numeric_limits<L>::min();
        if (_size > 2 * SampleSize) {
            const std::vector<L> sample = sortedSample();
            for (const std::size_t rank : {FirstRank, NextRank}) {
                const L bound = boundFor(sample, rank, lowest);
                if (!(bound > lowest))
                    break;
                ComputePeaks::PeakSet found = scan(bound);
                if (found.size() == ImagePeaks::MostPeaks)
                    return found;
            }
        }
        return scan(lowest);
    }

private:
    /// Good pixels at even distances, largest first.
    std::vector<L> sortedSample() const
    {
        std::vector<L> sample;
        sample.reserve(SampleSize + 1);
        // An odd stride visits all columns of images whose width is a power of two.
        const std::size_t stride = (_size / SampleSize) | 1;
        for (std::size_t i = 0; i < _size; i += stride)
            if (maskrule::good(_mask[i]) && _pixels[i] == _pixels[i])
                sample.push_back(_pixels[i]);
        const std::size_t needed = std::min(sample.size(), rankInSample(sample, NextRank) + 1);
        std::partial_sort(sample.begin(), sample.begin() + std::ptrdiff_t(needed), sample.end(),
                          [](L a, L b) { return a > b; });
        return sample;
    }
    std::size_t rankInSample(const std::vector<L>& sample, std::size_t rank) const
    {
        return rank * sample.size() / _size;
    }
    L boundFor(const std::vector<L>& sample, std::size_t rank, L lowest) const
    {
        const std::size_t index = rankInSample(sample, rank);
        return index < sample.size() ? sample[index] : lowest;
    }

    bool isLocalMaximum(std::size_t i) const
    {
        const L value = _pixels[i];
        const std::size_t w = _width;
        // Indices before the image wrap to numbers far beyond its size.
        for (const std::size_t before : {i - w - 1, i - w, i - w + 1, i - 1})
            if (before <= i && _pixels[before] >= value)
                return false;
        for (const std::size_t after : {i + 1, i + w - 1, i + w, i + w + 1})
            if (after < _size && _pixels[after] > value)
                return false;
        return true;
    }

    /// The peaks at or above a bound by the rule of the working set.
    ComputePeaks::PeakSet scan(L bound) const
    {
        ComputePeaks::PeakSet found;
        using Lane = peaks::Lane<L>;
        const auto* lanes = reinterpret_cast<const Lane*>(_pixels);
        std::size_t begin = 0;
        while ((begin = peaks::nextBlock(lanes, begin, _size, static_cast<Lane>(bound))) < _size) {
            const std::size_t end = std::min(begin + peaks::BlockSize, _size);
            scanBlock(found, begin, end, bound);
            begin = end;
        }
        return found;
    }

    /// Raises the bound to the smallest peak once the set is full.
    void scanBlock(ComputePeaks::PeakSet& found, std::size_t begin, std::size_t end, L& bound) const
    {
        for (std::size_t i = begin; i < end; ++i) {
            if (!(_pixels[i] >= bound))
                continue;
            const auto value = static_cast<double>(_pixels[i]);
            const bool full = found.size() == ImagePeaks::MostPeaks;
            if ((full && !(value > found.begin()->value)) || !maskrule::good(_mask[i]) ||
                !isLocalMaximum(i))
                continue;
            found.insert({static_cast<int>(i % _width), static_cast<int>(i / _width), value});
            if (found.size() > ImagePeaks::MostPeaks)
                found.erase(found.begin());
            if (found.size() == ImagePeaks::MostPeaks)
                bound = std::max(bound, convertPixel<L>(found.begin()->value));
        }
    }

    const L* _pixels;
    const R* _mask;
    std::size_t _size;
    std::size_t _width;
};

}  // namespace

template <class L, class R>
ComputePeaks::PeakSet ComputePeaks::operator()(const MImage& image, const MImage& mask) const
{
    return Search<L, R>(image, mask).run();
}

ComputePeaks::PeakSet ComputePeaks::compute(const MImage& image, const MImage& mask) const
{
    if (image.width() != mask.width() || image.height() != mask.height())
        throw morvend::MBadParameterException("The mask has another size than its image");
    return morvend::datatypes::BinaryDispatcher<ComputePeaks, const MImage, const MImage,
                                                PeakSet>::Go(image, mask, *this);
}
