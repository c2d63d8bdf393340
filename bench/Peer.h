// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Comparison of a benchmark with another program in the same run.
#pragma once

#include "tests/support/SourcePath.h"
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

namespace tarvik::bench {

/// The number that a Python script of this folder prints, or 0 when it fails.
inline double pythonSeconds(const std::string& script, const std::string& arguments)
{
    const std::string command =
        TARVIK_PYTHON " " + tests::sourcePath("/bench/") + script + ' ' + arguments;
    double seconds = 0;
    if (std::FILE* child = ::popen(command.c_str(), "r")) {
        if (std::fscanf(child, "%lf", &seconds) != 1)
            seconds = 0;
        ::pclose(child);
    }
    return seconds;
}

/// The same. @throws std::runtime_error when it fails
inline double neededPythonSeconds(const std::string& script, const std::string& arguments)
{
    const double seconds = pythonSeconds(script, arguments);
    if (!(seconds > 0))
        throw std::runtime_error("the peer gave no time: " + script + ' ' + arguments);
    return seconds;
}

/// The value in the middle, the upper one of two.
inline double median(std::vector<double> values)
{
    std::ranges::nth_element(values,
                             values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2));
    return values[values.size() / 2];
}

/// Times the iterations of a benchmark; reports the shortest one in milliseconds, and how many
/// times as long the peer took where there is one.
class Stopwatch {
public:
    Stopwatch(benchmark::State& state, double peerSeconds)
        : _state(state)
        , _peer(peerSeconds)
    {}
    Stopwatch(const Stopwatch&) = delete;
    Stopwatch& operator=(const Stopwatch&) = delete;
    ~Stopwatch()
    {
        _state.counters["least_ms"] = _least * 1e3;
        if (_peer > 0) {
            _state.counters["peer_ms"] = _peer * 1e3;
            _state.counters["x_peer"] = _peer / _least;
        }
    }

    template <class Work>
    void time(Work&& work)
    {
        const auto start = std::chrono::steady_clock::now();
        work();
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        _least = std::min(_least, taken.count());
    }

private:
    benchmark::State& _state;
    double _peer;
    double _least = std::numeric_limits<double>::infinity();
};

}  // namespace tarvik::bench
