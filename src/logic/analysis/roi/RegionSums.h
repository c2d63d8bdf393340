// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Sums over the values of a region.
#pragma once

#include "logic/analysis/roi/RoiStatistics.h"

#include <cmath>
#include <cstddef>
#include <limits>

namespace roi {

/// A mean's deviation from the sums of a region. A radicand that is negative only by rounding is
/// 0; one that is negative because squares have wrapped gives NaN.
inline double deviation(double squares, double weight, double mean)
{
    constexpr double Rounding = 1e-9;
    const double radicand = squares / weight - mean * mean;
    return std::sqrt(radicand < 0 && radicand >= -Rounding * mean * mean ? 0.0 : radicand);
}

/// Values weighted by the part of their pixel inside the region.
struct WeightedSums {
    double sum = 0;
    double squares = 0;
    double weight = 0;

    void add(double value, double part)
    {
        sum += value * part;
        squares += value * value * part;
        weight += part;
    }
    void add(const WeightedSums& other)
    {
        sum += other.sum;
        squares += other.squares;
        weight += other.weight;
    }
    /// Mean and deviation; both stay unchanged if nothing has a weight.
    void store(double& mean, double& sigma) const
    {
        if (weight == 0)
            return;
        mean = sum / weight;
        sigma = deviation(squares, weight, mean);
    }
};

/// Smallest and largest value of a region; 0 without values. NaN has no place in their order: it
/// is an extreme only where there is nothing else.
template <class T>
class ExtremesOf {
public:
    void add(T value)
    {
        _any = true;
        _minimum = value < _minimum ? value : _minimum;
        _maximum = value > _maximum ? value : _maximum;
    }
    /// In a loop of which the compiler makes vectors.
    void add(const T* values, std::size_t count)
    {
        T lowest = _minimum;
        T highest = _maximum;
        for (std::size_t i = 0; i < count; ++i) {
            lowest = values[i] < lowest ? values[i] : lowest;
            highest = values[i] > highest ? values[i] : highest;
        }
        _minimum = lowest;
        _maximum = highest;
        _any |= count > 0;
    }
    template <class U>
    void add(const ExtremesOf<U>& other)
    {
        if (!other.any())
            return;
        add(static_cast<T>(other.minimum()));
        add(static_cast<T>(other.maximum()));
    }
    bool any() const { return _any; }
    T minimum() const { return _result(_minimum); }
    T maximum() const { return _result(_maximum); }

private:
    using Limits = std::numeric_limits<T>;
    T _result(T extreme) const
    {
        if (!_any)
            return T(0);
        return _minimum <= _maximum ? extreme : Limits::quiet_NaN();
    }

    T _minimum = Limits::has_infinity ? Limits::infinity() : Limits::max();
    T _maximum = Limits::has_infinity ? -Limits::infinity() : Limits::lowest();
    bool _any = false;
};
using Extremes = ExtremesOf<double>;

/// Sums and extremes of the pixels of a region.
struct RegionSums : WeightedSums {
    Extremes extremes;

    void add(double value, double part)
    {
        WeightedSums::add(value, part);
        extremes.add(value);
    }
    void add(const RegionSums& other)
    {
        WeightedSums::add(other);
        extremes.add(other.extremes);
    }
    void store(RoiStatistics& result) const
    {
        result.integral = sum;
        result.weight = weight;
        result.minimum = extremes.minimum();
        result.maximum = extremes.maximum();
        WeightedSums::store(result.mean, result.sigma);
    }
};

}  // namespace roi
