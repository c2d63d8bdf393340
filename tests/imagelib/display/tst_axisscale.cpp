// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Round numbers for axes: cases worked by hand through the published steps.
#include "imagelib/display/AxisScale.h"

#include "imagelib/image/MException.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

using namespace morvend;
using namespace morvend::imglib;

namespace {

struct Case {
    double xmin, xmax;
    int n;
    double newMin, newMax, distance;
};

TEST(AxisScale, HasExactlySoManyRoundIntervals)
{
    for (const auto& [xmin, xmax, n, newMin, newMax, distance] :
         std::vector<Case>{{-3.1, 11.1, 5, -5, 20, 5},  // three would do; one more at the upper end
                           {5.2, 10.1, 5, 4, 14, 2},    // six of 1: the second pass takes 2
                           {-12000, -100, 9, -14000, 4000, 2000},  // spare intervals at both ends
                           {0, 4, 4, 0, 4, 1},                     // limits that are round stay
                           {0, 100, 4, -50, 150, 50},              // centred
                           {0, 0.3, 3, 0, 0.3, 0.1},               // 0.3 / 0.1 is a hair below 3
                           {1e-12, 5e-12, 4, 1e-12, 5e-12, 1e-12},
                           {-1e300, 1e300, 2, -1e300, 1e300, 1e300}}) {
        double foundMin = 0, foundMax = 0, found = 0;
        scale_463_2(xmin, xmax, n, foundMin, foundMax, found);
        const double rounding = distance * 1e-9;
        EXPECT_NEAR(found, distance, rounding) << xmin << ' ' << xmax;
        EXPECT_NEAR(foundMin, newMin, rounding) << xmin << ' ' << xmax;
        EXPECT_NEAR(foundMax, newMax, rounding) << xmin << ' ' << xmax;
        EXPECT_LE(foundMin, xmin);
        EXPECT_GE(foundMax, xmax);
    }
}

TEST(AxisScale, RefusesWhatHasNoRoundNumbers)
{
    constexpr double Infinity = std::numeric_limits<double>::infinity();
    constexpr double Most = std::numeric_limits<double>::max();
    double a = 0, b = 0, c = 0;
    for (const auto& [xmin, xmax, n] :
         std::vector<std::tuple<double, double, int>>{{1, 1, 4},
                                                      {2, 1, 4},
                                                      {0, 1, 1},
                                                      {0, Infinity, 4},
                                                      {Infinity - Infinity, 1, 4},
                                                      {-Most, Most, 4},
                                                      {0, 4e-324, 4}})
        EXPECT_THROW(scale_463_2(xmin, xmax, n, a, b, c), MBadParameterException)
            << xmin << ' ' << xmax;
}

}  // namespace
