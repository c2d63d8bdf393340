// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Random numbers that are the same on every machine, and means turned into counts.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace tarvik::demo {

/// The generator SplitMix64 (Steele, Lea, Flood 2014): any seed is good, streams are cheap.
class Random {
public:
    /// One stream for each set of keys, such as seed, frame and row.
    explicit Random(std::uint64_t seed, std::uint64_t key1 = 0, std::uint64_t key2 = 0)
        : _state(seed)
    {
        _state = next() ^ key1;
        _state = next() ^ key2;
    }

    std::uint64_t next()
    {
        std::uint64_t z = _state += 0x9E3779B97F4A7C15;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
        return z ^ (z >> 31);
    }
    /// From 0 up to, but not including, 1.
    double uniform() { return static_cast<double>(next() >> 11) * 0x1p-53; }
    /// From 0 to count - 1.
    std::uint32_t below(std::uint32_t count)
    {
        return static_cast<std::uint32_t>((next() >> 32) * count >> 32);
    }
    /// A normal deviate, as the sum of twelve uniform ones.
    double normal();

private:
    std::uint64_t _state;
};

/// Poisson deviates for many small means by tables of their distributions.
class PoissonTable {
public:
    static constexpr double MostMean = 16.0;

    PoissonTable();
    /// The index of the table for a mean from 0 to MostMean; larger means use the last table.
    static std::size_t indexOf(double mean);
    /// A count for a random 32-bit number.
    std::uint32_t count(std::size_t index, std::uint32_t random) const
    {
        const auto& limits = _limits[index];
        std::uint32_t k = 0;
        while (k < Counts && random >= limits[k])
            ++k;
        return k;
    }

private:
    static constexpr std::size_t Steps = 64;  // tables for each unit of the mean
    static constexpr std::size_t Counts = 63;
    std::vector<std::array<std::uint32_t, Counts>> _limits;
};

/// A count for any mean, by the normal distribution.
std::uint32_t largeCount(double mean, Random& random);

}  // namespace tarvik::demo
