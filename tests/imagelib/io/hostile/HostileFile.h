// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Reads a file as the viewer would, and watches what it says, how long it takes and what it needs.
#pragma once

#include "imagelib/image/PixelBuffer.h"
#include "imagelib/io/MImageSeries.h"
#include "tests/imagelib/io/FileCases.h"

#include <chrono>
#include <ctime>

namespace tarvik::tests {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool Sanitized = true;
#else
inline constexpr bool Sanitized = false;
#endif

/// What came of the reading of a whole series.
struct Outcome {
    std::string failure;  ///< or "no failure" when every image that was asked for could be read
    int images = 0;       ///< that could be read
};

inline std::size_t statusBytes(const char* key)
{
    std::ifstream file("/proc/self/status");
    for (std::string line; std::getline(file, line);)
        if (line.starts_with(key))
            return std::stoul(line.substr(line.find_first_of("0123456789"))) << 10;
    return 0;
}

/// Asks for the image that the path names, the first ones, the middle one and the last one, and
/// expects to be told within a second, in little memory beyond the image, whatever the file says.
inline Outcome outcomeOf(const std::string& path)
{
    image::PixelBuffer::trimPool();
    Outcome outcome;
    std::ofstream("/proc/self/clear_refs") << 5;  // sets the peak back
    const std::size_t before = statusBytes("VmRSS:");
    const std::clock_t processor = std::clock();
    const auto start = std::chrono::steady_clock::now();
    outcome.failure = failureOf([&] {
        MImageSeries series(0);
        const int opened = series.open(path);
        for (const int number :
             {opened, series.first(), series.first() + 1,
              series.first() + (series.last() - series.first()) / 2, series.last()})
            if (number >= series.first() && number <= series.last() &&
                !series.at(static_cast<std::size_t>(number)).empty())
                ++outcome.images;
        series.update();
        series.pathToImage(static_cast<std::size_t>(opened));
    });
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
    EXPECT_LT(std::clock() - processor, CLOCKS_PER_SEC * (Sanitized ? 10 : 1));
    if (!Sanitized) {
        EXPECT_LT(statusBytes("VmHWM:"), before + (std::size_t(640) << 20));
    }
    return outcome;
}

/// Reads a file that must fail, with a sentence that holds a text and ends in its path, or that of
/// another file in its folder which is at fault.
inline void expectFailure(const std::string& path, const std::string& text)
{
    SCOPED_TRACE(path);
    const Outcome outcome = outcomeOf(path);
    EXPECT_THAT(outcome.failure, HasSubstr(": " + path.substr(0, path.rfind('/') + 1)));
    EXPECT_THAT(outcome.failure, HasSubstr(text));
}

/// Reads a file that can be read in spite of all.
inline void expectReadable(const std::string& path)
{
    SCOPED_TRACE(path);
    const Outcome outcome = outcomeOf(path);
    EXPECT_EQ(outcome.failure, "no failure");
    EXPECT_GT(outcome.images, 0);
}

}  // namespace tarvik::tests
