// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Counting block by block, and the window that follows the values.
#include "logic/analysis/statistics/ValueCounts.h"

#include "logic/analysis/statistics/ExactTotals.h"

#include <algorithm>
#include <cstring>
#include <limits>

using namespace histogramblocks;

namespace {

constexpr std::size_t PixelsOfLook = 16 * histogramblocks::BlockPixels;
constexpr int MostMoves = 8;  // each costs as much as counting some 100,000 pixels
constexpr std::int64_t WindowSize = 256;

}  // namespace

template <class T>
ValueCounts<T>::ValueCounts(const T* pixels, const GoodPixels& good)
    : _pixels(pixels)
    , _good(good)
    , _memory(morvend::image::PixelBuffer::allocate((good.size() + Padding) * sizeof(Lane)))
    , _others(reinterpret_cast<Lane*>(_memory->data()))
    , _movesLeft(sizeof(T) > 1 ? MostMoves : 0)
{}

template <class T>
void ValueCounts<T>::upTo(std::size_t end)
{
    while (_at < end) {
        _addBlock(std::min(histogramblocks::BlockPixels, end - _at));
        if (_at % PixelsOfLook != 0)
            continue;
        if (_movesLeft > 0 && 2 * (_otherCount - _othersAtLastLook) > PixelsOfLook)
            _moveWindow();
        _othersAtLastLook = _otherCount;
    }
    if (_at == size() && _begin < _at)
        _closeWindow();
}

template <class T>
void ValueCounts<T>::_addBlock(std::size_t count)
{
    std::array<std::uint8_t, histogramblocks::BlockPixels + Padding> codes;
    const auto* bits = reinterpret_cast<const std::uint8_t*>(_good.words());
    const Encoded found =
        encode<T>(_pixels + _at, bits + _at / 8, count, _base, codes.data(), _others + _otherCount);
    _otherCount += found.others;
    _at += count;
    if (found.highest <= MostCompared) {
        std::memset(codes.data() + count, 0, Padding);
        countCodes(codes.data(), count, found.highest, _counts.data());
    } else {
        if (!_pairs)
            _pairs.emplace();
        _pairs->add(codes.data(), count);
    }
}

template <class T>
void ValueCounts<T>::_moveWindow()
{
    --_movesLeft;
    // The median of a sample: neither hot nor dead pixels move it.
    std::array<Lane, 101> some;
    const std::size_t step = (_otherCount - _othersAtLastLook) / some.size();
    for (std::size_t i = 0; i < some.size(); ++i)
        some[i] = _others[_othersAtLastLook + i * step];
    std::nth_element(some.begin(), some.begin() + some.size() / 2, some.end());
    using Limits = std::numeric_limits<T>;
    const std::int64_t base = std::clamp<std::int64_t>(
        static_cast<std::int64_t>(some[some.size() / 2]) - WindowSize / 2, Limits::min(),
        static_cast<std::int64_t>(Limits::max()) - WindowSize + 1);
    _closeWindow();
    _base = static_cast<Lane>(base);
}

template <class T>
void ValueCounts<T>::_closeWindow()
{
    if (_pairs) {
        const auto paired = _pairs->counts();
        for (std::size_t code = 1; code < paired.size(); ++code)
            _counts[code] += paired[code];
        _pairs.reset();
    }
    // Code 0 stands for bad pixels and others too.
    const bool whole = _begin == 0 && _at == size();
    std::size_t rest = whole ? _good.good() : _good.count(_begin, _at);
    rest -= _otherCount - _othersBefore;
    for (std::size_t code = 1; code < _counts.size(); ++code)
        rest -= _counts[code];
    _counts[0] = static_cast<unsigned int>(rest);
    for (std::size_t code = 0; code < _counts.size(); ++code)
        if (_counts[code] > 0)
            _counted.emplace_back(static_cast<T>(_base + static_cast<Lane>(code)), _counts[code]);
    _counts = {};
    _begin = _at;
    _othersBefore = _otherCount;
}

template <class T>
PixelTotals<T> ValueCounts<T>::totals(int saturation) const
{
    ExactTotals<Lane> exact(static_cast<Lane>(_pixels[0]), saturation);
    for (const auto& [value, times] : _counted)
        exact.add(static_cast<Lane>(value), times);
    exact.addAll(_others, _otherCount);
    PixelTotals<T> totals(_pixels[0]);
    totals.minimum = static_cast<T>(exact.minimum);
    totals.maximum = static_cast<T>(exact.maximum);
    totals.zeros = exact.zeros;
    totals.saturated = exact.saturated;
    totals.sum = static_cast<double>(exact.sum);
    totals.squares = static_cast<double>(exact.squares);
    return totals;
}

template class ValueCounts<unsigned char>;
template class ValueCounts<unsigned short>;
template class ValueCounts<short>;
template class ValueCounts<unsigned int>;
template class ValueCounts<int>;
