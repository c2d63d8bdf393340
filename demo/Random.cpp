// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Only sums, products and square roots, which all machines round alike: no library functions.
#include "demo/Random.h"

#include <algorithm>
#include <cmath>

namespace tarvik::demo {

namespace {

/// exp(-x) for x from 0 to 16.
double expOfMinus(double x)
{
    constexpr int Halvings = 10;
    const double y = -x / (1 << Halvings);
    double sum = 1 + y * (1 + y / 2 * (1 + y / 3 * (1 + y / 4 * (1 + y / 5))));
    for (int i = 0; i < Halvings; ++i)
        sum *= sum;
    return sum;
}

}  // namespace

double Random::normal()
{
    double sum = -6;
    for (int i = 0; i < 12; ++i)
        sum += uniform();
    return sum;
}

PoissonTable::PoissonTable()
    : _limits(static_cast<std::size_t>(MostMean) * Steps + 1)
{
    for (std::size_t index = 0; index < _limits.size(); ++index) {
        const double mean = static_cast<double>(index) / Steps;
        double probability = expOfMinus(mean), sum = 0;
        for (std::size_t k = 0; k < Counts; ++k) {
            sum += probability;
            probability *= mean / static_cast<double>(k + 1);
            _limits[index][k] = static_cast<std::uint32_t>(std::min(sum * 0x1p32, 0x1p32 - 1));
        }
    }
}

std::size_t PoissonTable::indexOf(double mean)
{
    return static_cast<std::size_t>(std::clamp(mean, 0.0, MostMean) * Steps);
}

std::uint32_t largeCount(double mean, Random& random)
{
    return static_cast<std::uint32_t>(
        std::max(0.0, mean + std::sqrt(mean) * random.normal() + 0.5));
}

}  // namespace tarvik::demo
