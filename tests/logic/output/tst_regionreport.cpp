// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Reports of each kind of region, byte for byte.
#include "logic/output/RegionReport.h"

#include "tests/support/Regions.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace {

constexpr double Gap = std::numeric_limits<double>::quiet_NaN();

RoiStatistics numbers()
{
    RoiStatistics result;
    result.integral = 1234567.5;
    result.mean = 12.25;
    result.sigma = 1.0 / 3;
    result.length = 17;
    result.area = 1e7;
    result.backgroundMean = 2.5;
    result.intensity = 1000;
    result.intensitySigma = 31.622776;
    result.centroidX = 1.5;
    result.centroidY = 1234.5678;
    result.minimum = -1;
    result.maximum = 4294967295.0;
    // Masked points are 0; what is neither masked nor not is not masked.
    result.curve = {{0, 12.5, 0}, {1, 99, 1}, {0.123456789, 3, Gap}, {-1234567, 7, -1}};
    result.curveLabels = {"X Pixel", "Counts"};
    return result;
}

std::string report(const StatisticsData& region, const RoiStatistics& result = numbers())
{
    return output::regionReport("/data/a.cbf", region, result).toStdString();
}

const std::string Curve = "\n"
                          "\n"
                          "# X Pixel     Counts\n"
                          "  0           12.5\n"
                          "  1           0\n"
                          "  0.123457    3\n"
                          "  -1.23457e+06 0\n";
const std::string Sums = "# Integral 1.23457e+06\n"
                         "# Mean 12.25\n"
                         "# Sigma 0.333333\n";
const std::string Extremes = "# Min -1\n"
                             "# Max 4.29497e+09\n";

TEST(RegionReport, OfNoRegionIsThePath)
{
    EXPECT_EQ(output::regionReport({}, {}, {}).toStdString(), "# \n");
    StatisticsData idle = regions::box(1, 2, 3, 4);
    idle.roiActive = false;
    EXPECT_EQ(report(idle), "# /data/a.cbf\n");
    EXPECT_EQ(report(regions::ofType(7), {}), "# /data/a.cbf\n\n");
}

TEST(RegionReport, OfALineListsItsReflections)
{
    const std::string head = "# /data/a.cbf\n# Begin X 1\n# Begin Y -2\n# End X 3\n# End Y 4\n" +
                             Sums + "# Length 17\n" + Extremes;
    const std::string headings = "\n\n# Lattice Distances\n# (x1,y1)      (x2,y2)      Distance\n";
    RoiStatistics result = numbers();
    EXPECT_EQ(report(regions::line(1, -2, 3, 4), result), head + Curve);
    result.reflectionPixels = {{1, 2}};
    EXPECT_EQ(report(regions::line(1, -2, 3, 4), result), head + headings + Curve);
    result.reflectionPixels = {{1, 2}, {123456, 123456}, {7, 8}};
    result.lineSpotsString = {"3.2 \u212B", "4.5 \u212B"};
    EXPECT_EQ(report(regions::line(1, -2, 3, 4), result),
              head + headings +
                  "# (1,2)        (123456,123456) 3.2 \u212B\n"
                  "# (123456,123456) (7,8)        4.5 \u212B\n" +
                  Curve);
}

TEST(RegionReport, OfABoxHasTwoCurves)
{
    RoiStatistics result = numbers();
    result.reflectionPixels = {{1, 2}};  // of a line only
    result.secondCurve = {{5, 6, 0}};
    result.secondCurveLabels = {"Y", "Z"};
    EXPECT_EQ(report(regions::box(1, 2, 3, 4), result),
              "# /data/a.cbf\n# Begin X 1\n# Begin Y 2\n# End X 3\n# End Y 4\n" + Sums +
                  "# Area 1e+07\n" + Extremes + Curve + "\n# Y     Z\n  5     6\n");
}

TEST(RegionReport, OfCircles)
{
    EXPECT_EQ(report(regions::circle(5, 6, 7, -0.5)),
              "# /data/a.cbf\n# Centre X 5\n# Centre Y 6\n# Radius X 7\n# Theta/deg -28.6479\n"
              "# Intensity 1000 \u00B1 31.6228\n# Integral 1.23457e+06\n# Background 2.5\n"
              "# Mean 12.25\n# Sigma 0.333333\n# Area 1e+07\n" +
                  Extremes + "# Centroid (1.5 1234.57)\n" + Curve);
    EXPECT_EQ(report(regions::powder(1, 2, 3, 400)),
              "# /data/a.cbf\n# Inner Radius 3\n# Outer Radius 400\n" + Sums + "# Area 1e+07\n" +
                  Extremes + Curve);
}

}  // namespace
