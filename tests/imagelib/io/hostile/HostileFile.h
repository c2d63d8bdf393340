// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Reads a file as the viewer would, and watches what it says, how long it takes and what it needs.
#pragma once

#include "imagelib/image/PixelBuffer.h"
#include "imagelib/io/MImageSeries.h"

#include <gmock/gmock.h>

#include <chrono>
#include <ctime>
#include <fstream>
#include <string>

namespace tarvik::tests {

/// Whatever a file says, it is told within a second, in this much memory beyond the image.
inline constexpr std::size_t MostMemory = std::size_t(640) << 20;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool Sanitized = true;
#else
inline constexpr bool Sanitized = false;
#endif

/// What came of the reading of a whole series.
struct Outcome {
    std::string failure;  ///< empty when every image that was asked for could be read
    int images = 0;       ///< that could be read
    double seconds = 0;   ///< of the processor
    double elapsed = 0;
    std::size_t memory = 0;  ///< most bytes in use beyond those before

    /// The limits that hold for every file.
    void expectBounded() const
    {
        EXPECT_LT(seconds, Sanitized ? 10.0 : 1.0);
        EXPECT_LT(elapsed, 20.0);
        if (!Sanitized) {
            EXPECT_LT(memory, MostMemory);
        }
    }
};

namespace detail {

inline std::size_t statusBytes(const char* key)
{
    std::ifstream file("/proc/self/status");
    for (std::string line; std::getline(file, line);)
        if (line.starts_with(key))
            return std::stoul(line.substr(line.find_first_of("0123456789"))) << 10;
    return 0;
}

inline double processorSeconds()
{
    timespec time = {};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

/// Asks for the image that the path names, the first ones, the middle one and the last one.
inline void readSeries(const std::string& path, Outcome& outcome)
{
    morvend::imglib::MImageSeries series(0);
    const int opened = series.open(path);
    for (const int number : {opened, series.first(), series.first() + 1,
                             series.first() + (series.last() - series.first()) / 2, series.last()})
        if (number >= series.first() && number <= series.last() &&
            !series.at(static_cast<std::size_t>(number)).empty())
            ++outcome.images;
    series.update();
    series.pathToImage(static_cast<std::size_t>(opened));
}

}  // namespace detail

inline Outcome outcomeOf(const std::string& path)
{
    morvend::image::PixelBuffer::trimPool();
    Outcome outcome;
    std::ofstream("/proc/self/clear_refs") << 5;  // sets the peak back
    const std::size_t before = detail::statusBytes("VmRSS:");
    const double start = detail::processorSeconds();
    const auto clock = std::chrono::steady_clock::now();
    try {
        detail::readSeries(path, outcome);
    } catch (const morvend::MException& error) {
        outcome.failure = error.what();
    }
    outcome.elapsed =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - clock).count();
    outcome.seconds = detail::processorSeconds() - start;
    const std::size_t peak = detail::statusBytes("VmHWM:");
    outcome.memory = peak > before ? peak - before : 0;
    return outcome;
}

/// Reads a file that must fail, with a sentence that holds a text and ends in its path, or that of
/// another file in its folder which is at fault.
inline void expectFailure(const std::string& path, const std::string& text)
{
    const Outcome outcome = outcomeOf(path);
    EXPECT_THAT(outcome.failure, testing::HasSubstr(": " + path.substr(0, path.rfind('/') + 1)));
    EXPECT_THAT(outcome.failure, testing::HasSubstr(text));
    outcome.expectBounded();
}

/// Reads a file that can be read in spite of all.
inline void expectReadable(const std::string& path)
{
    const Outcome outcome = outcomeOf(path);
    EXPECT_EQ(outcome.failure, "");
    EXPECT_GT(outcome.images, 0);
    outcome.expectBounded();
}

}  // namespace tarvik::tests
