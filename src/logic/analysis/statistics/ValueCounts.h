// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// How often each value occurs among good integer pixels.
#pragma once

#include "imagelib/image/PixelBuffer.h"
#include "logic/analysis/statistics/GoodPixels.h"
#include "logic/analysis/statistics/HistogramBlocks.h"
#include "logic/analysis/statistics/PairCounts.h"
#include "logic/analysis/statistics/PixelTotals.h"

#include <array>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

/// Types whose values are counted.
template <class T>
inline constexpr bool CountsValues =
    std::is_same_v<T, unsigned char> || std::is_same_v<T, unsigned short> ||
    std::is_same_v<T, short> || std::is_same_v<T, unsigned int> || std::is_same_v<T, int>;

/// One pass over the pixels from which both totals and histogram follow. Values within a window of
/// 256 are counted, good pixels outside of it listed. The window begins at 0 and moves to where
/// most pixels are; its counts are exact wherever it is.
///
/// Memory: scratch of the image's size from the pool, touched only as far as there are pixels
/// outside of the window, and the tables of PairCounts if larger counts need them.
template <class T>
class ValueCounts {
public:
    /// Both outlive the object; 64 bytes past the last pixel are readable.
    ValueCounts(const T* pixels, const GoodPixels& good);

    /// Counts up to a pixel: a multiple of 4096, or the end of the image.
    void upTo(std::size_t end);

    // Of the whole image, once all of it is counted.
    std::size_t size() const { return _good.size(); }
    PixelTotals<T> totals(int saturation) const;
    /// Calls f(value, times) for all good pixels, in no particular order; a value may come more
    /// than once.
    template <class Function>
    void forEach(Function&& f) const
    {
        for (const auto& [value, times] : _counted)
            f(value, times);
        for (std::size_t i = 0; i < _otherCount; ++i)
            f(static_cast<T>(_others[i]), 1U);
    }

private:
    using Lane = histogramblocks::Lane<T>;

    void _addBlock(std::size_t count);
    void _moveWindow();
    void _closeWindow();

    const T* _pixels;
    const GoodPixels& _good;
    std::size_t _at = 0;  // pixels before it are counted
    std::vector<std::pair<T, unsigned int>> _counted;
    morvend::image::PixelBufferPtr _memory;
    Lane* _others;
    std::size_t _otherCount = 0;
    // The window.
    Lane _base = 0;
    std::size_t _begin = 0;  // first pixel that it was used for
    std::size_t _othersBefore = 0;
    std::array<unsigned int, 256> _counts{};
    std::optional<PairCounts> _pairs;
    int _movesLeft;
    std::size_t _othersAtLastLook = 0;
};
