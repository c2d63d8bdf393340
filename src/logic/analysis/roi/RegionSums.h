// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Sums over the values of a region.
#pragma once

#include "logic/analysis/roi/RoiStatistics.h"

#include <cmath>

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

/// Smallest and largest value of a region; the first value that enters initialises both.
template <class T>
struct ExtremesOf {
    T minimum = T(0);
    T maximum = T(0);
    bool any = false;
    void add(T value)
    {
        if (!any)
            minimum = maximum = value;
        any = true;
        minimum = value < minimum ? value : minimum;
        maximum = value > maximum ? value : maximum;
    }
    template <class U>
    void add(const ExtremesOf<U>& other)
    {
        if (!other.any)
            return;
        add(static_cast<T>(other.minimum));
        add(static_cast<T>(other.maximum));
    }
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
        result.minimum = extremes.minimum;
        result.maximum = extremes.maximum;
        WeightedSums::store(result.mean, result.sigma);
    }
};

}  // namespace roi
