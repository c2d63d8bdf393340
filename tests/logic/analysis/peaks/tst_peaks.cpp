// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The peak search against a plain loop, ties included, and the random numbers.
#include "logic/analysis/peaks/ImagePeaks.h"
#include "logic/analysis/peaks/MersenneTwister.h"
#include "tests/logic/analysis/peaks/PlainPeaks.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

using morvend::imglib::MImage;
using Pixel = ImagePeaks::Pixel;

ImagePeaks peaksOf(const MImage& image, const MImage& mask)
{
    ImagePeaks peaks;
    peaks.setImage(image, mask);
    return peaks;
}

struct Situation {
    const char* name;
    int width, height;
    double mean;    // of the background
    int spots;      // strong pixels
    double masked;  // share
};

template <class L, class R>
void compare(const Situation& situation, unsigned int seed)
{
    std::mt19937 random(seed);
    MImage image(situation.width, situation.height, L(0));
    MImage mask(situation.width, situation.height, R(0));
    L* p = static_cast<L*>(image.data());
    R* m = static_cast<R*>(mask.data());
    for (std::size_t i = 0; i < image.size(); ++i) {
        p[i] = L(situation.mean * double(random() % 1000) / 999);
        if (double(random() % 1000) < 1000 * situation.masked)
            m[i] = R(1);
        if (m[i] != R(0) && random() % 4 == 0)
            p[i] = std::numeric_limits<L>::max();
    }
    for (int k = 0; k < situation.spots; ++k)
        p[random() % image.size()] = L(100 + random() % 27);
    const ImagePeaks peaks = peaksOf(image, mask);
    const std::vector<Pixel> expected = reference::plainPeaks<L, R>(image, mask);
    ASSERT_EQ(peaks.numberOfPeaks(), int(expected.size()));
    for (int i = 0; i < peaks.numberOfPeaks(); ++i) {
        const Pixel &found = peaks[i], &wanted = expected[std::size_t(i)];
        ASSERT_TRUE(found.x == wanted.x && found.y == wanted.y && found.value == wanted.value)
            << "rank " << i << ": (" << found.x << ", " << found.y << ") " << found.value
            << ", expected (" << wanted.x << ", " << wanted.y << ") " << wanted.value;
    }
}

TEST(Peaks, EqualThePlainLoop)
{
    unsigned int seed = 1;
    for (const Situation& situation : {Situation{"one pixel", 1, 1, 5, 0, 0},
                                       {"one column", 1, 500, 5, 3, 0},
                                       {"one row", 700, 1, 90, 3, 0.1},
                                       {"few peaks", 37, 21, 3, 10, 0.2},
                                       {"many ties", 300, 200, 2, 50, 0.05},
                                       {"large with ties", 700, 500, 3, 4000, 0.02},
                                       {"large, few above the bound", 900, 400, 0, 600, 0.02},
                                       {"large, all equal", 600, 400, 0, 0, 0},
                                       {"large, all masked", 600, 400, 9, 5, 1},
                                       {"large, smooth", 800, 400, 120, 0, 0.01}}) {
        SCOPED_TRACE(situation.name);
        compare<int, unsigned int>(situation, ++seed);
        compare<unsigned short, unsigned char>(situation, ++seed);
        compare<unsigned int, unsigned int>(situation, ++seed);
        compare<signed char, bool>(situation, ++seed);
        compare<float, unsigned int>(situation, ++seed);
        compare<double, float>(situation, ++seed);
        compare<unsigned long long, long long>(situation, ++seed);
        compare<bool, char>(situation, ++seed);
    }
}

TEST(Peaks, NeighboursAreTakenByRawIndex)
{
    // The first pixel of row 1 loses to the last pixel of row 0, its left neighbour.
    const int values[] = {0, 0, 9, 5, 0, 0, 0, 0, 0};
    const MImage image(3, 3, MImage::BasicImage(values, 9));
    MImage mask(3, 3, 0u);
    ASSERT_EQ(peaksOf(image, mask).numberOfPeaks(), 1);
    EXPECT_EQ(peaksOf(image, mask)[0].x, 2);
    // An excluded pixel is no peak, and its neighbours lose to it all the same.
    static_cast<unsigned int*>(mask.data())[2] = 2;
    EXPECT_EQ(peaksOf(image, mask).numberOfPeaks(), 0);
}

TEST(Peaks, RanksOutsideTheListAreAPixelOfZeros)
{
    const ImagePeaks peaks = peaksOf(MImage(5, 4, 7), MImage(5, 4, 0u));  // constant: its first
    ASSERT_EQ(peaks.numberOfPeaks(), 1);
    EXPECT_EQ(peaks[0].value, 7);
    EXPECT_EQ(peaks[-1].value, 0.0);
    EXPECT_EQ(peaks[1].value, 0.0);
}

TEST(Peaks, NotANumberIsNoPeak)
{
    MImage image(400, 400, 1.0f);
    float* p = static_cast<float*>(image.data());
    for (std::size_t i = 0; i < image.size(); i += 7)
        p[i] = std::nanf("");
    p[50'000] = 3.0f;
    const ImagePeaks peaks = peaksOf(image, MImage(400, 400, 0u));
    EXPECT_EQ(peaks[0].value, 3.0);
    for (int i = 0; i < peaks.numberOfPeaks(); ++i)
        EXPECT_FALSE(std::isnan(peaks[i].value));
}

TEST(MersenneTwister, IsThePublishedGenerator)
{
    for (const unsigned int seed : {0u, 5489u, 4294967295u}) {
        MersenneTwister mine(seed);
        std::mt19937 theirs(seed);
        for (int i = 0; i < 2000; ++i)
            ASSERT_EQ(mine.rand(), theirs()) << i;
    }
}

}  // namespace
