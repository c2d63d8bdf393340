// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A mask as one bit a pixel.
#pragma once

#include "imagelib/image/MImage.h"

#include <bit>
#include <cstdint>
#include <memory>
#include <vector>

/// Which pixels a mask does not exclude, by the rules of MaskBits.h: a sixteenth or less of the
/// mask's own memory, the same for all types of masks.
/// Thread: built once, then read by any.
class GoodPixels {
public:
    static constexpr std::size_t WordBits = 64;

    /// The bits of a mask. Those of the last few masks are kept by the identity of their pixels,
    /// as all images of a series share one. Thread: any.
    /// @throws MNotImplementedException for a mask without a pixel type, MRuntimeException when
    /// memory is short
    static std::shared_ptr<const GoodPixels> of(const morvend::imglib::MImage& mask);

    /// The bits of `size` mask pixels.
    template <class M>
    GoodPixels(const M* marks, std::size_t size);

    std::size_t size() const { return _size; }
    unsigned int good() const { return _good; }
    unsigned int defective() const { return _defective; }
    bool operator[](std::size_t pixel) const
    {
        return ((_words[pixel / WordBits] >> (pixel % WordBits)) & 1U) != 0;
    }
    /// Pixel 64 w + b is bit b of word w. Bits beyond the image are 0, and one more word follows.
    const std::uint64_t* words() const { return _words.data(); }

    /// Calls f(pixel) for each good pixel from `begin`, a multiple of 64, up to `end`, in order.
    template <class Function>
    void forEach(std::size_t begin, std::size_t end, Function&& f) const
    {
        for (std::size_t w = begin / WordBits; w * WordBits < end; ++w)
            for (std::uint64_t rest = _words[w]; rest != 0; rest &= rest - 1)
                f(w * WordBits + static_cast<std::size_t>(std::countr_zero(rest)));
    }
    /// Number of good pixels in a range that begins at a multiple of 64 and ends at one or at the
    /// end of the image.
    std::size_t count(std::size_t begin, std::size_t end) const
    {
        std::size_t number = 0;
        for (std::size_t w = begin / WordBits; w * WordBits < end; ++w)
            number += static_cast<std::size_t>(std::popcount(_words[w]));
        return number;
    }

private:
    std::vector<std::uint64_t> _words;
    std::size_t _size;
    unsigned int _good = 0;
    unsigned int _defective = 0;
};
