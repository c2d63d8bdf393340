// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Geometry at the edges of what a header can say. tests/bin/image/test_geometry.py compares them
// with formulas of its own.
#include "logic/geometry/RingAdvice.h"

#include "tests/support/Geometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using geometry::Header;

/// Beam at the origin, pixels of 1 mm, 1 Angstrom.
Header header(double distance)
{
    Header result;
    tarvik::tests::setGeometry(result, 0.F, 0.F, 1e-3F, 1e-3F, float(distance), 1.F);
    return result;
}

TEST(Geometry, LacksWhatTheHeaderLacks)
{
    const Header full = header(0.1);
    EXPECT_EQ(geometry::powderRadius(full, 3, 4), 5);
    Header far = full;
    far.set_beam_center_x(1e30F);
    EXPECT_GT(geometry::powderRadius(far, 0, 0), 2000000000);
    Header rest = full;
    const auto expectLeft = [&](bool resolution, bool distance, bool centre) {
        EXPECT_EQ(geometry::resolutionDefined(rest), resolution);
        EXPECT_EQ(geometry::resolution(rest, 1, 1) != -1, resolution);
        EXPECT_EQ(geometry::distanceDefined(rest), distance);
        EXPECT_EQ(geometry::distance(rest, 1, 1) != -1, distance);
        EXPECT_EQ(geometry::beamCentreDefined(rest), centre);
        EXPECT_EQ(geometry::powderRadius(rest, 1, 1) != -1, centre);
    };
    expectLeft(true, true, true);
    rest.set_detector_distance(boost::none);
    expectLeft(false, true, true);
    rest.set_x_pixel_size(boost::none);
    expectLeft(false, false, true);
    rest.set_beam_center_y(boost::none);
    expectLeft(false, false, false);
}

TEST(RingAdvice, OneRingHasOneDigit)
{
    // Half the way to the corner of 3 x 4 pixels is 2.5 mm; it is to lie at 2.37 Angstrom.
    const double distance = 2.5e-3 / std::tan(2 * std::asin(0.5 / 2.37));
    const geometry::RingAdvice advice = geometry::adviseRings(header(distance), 3, 4, 1);
    ASSERT_EQ(advice.radii.size(), 1U);
    EXPECT_EQ(advice.labels[0], QString::fromUtf8("2\xe2\x84\xab"));
    EXPECT_NEAR(advice.radii[0], 1000 * distance * std::tan(2 * std::asin(0.25)), 1e-6);
}

TEST(RingAdvice, NeverEndsInEndlessOrImpossibleRings)
{
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    constexpr float infinity = std::numeric_limits<float>::infinity();
    for (const float odd : {0.F, -0.1F, nan, infinity, -infinity, 1e-40F, 1e38F}) {
        using Set = void (Header::*)(const float&);
        const Set setters[] = {&Header::set_detector_distance, &Header::set_wavelength,
                               &Header::set_x_pixel_size, &Header::set_beam_center_x};
        for (const Set set : setters) {
            Header oddHeader = header(0.1);
            (oddHeader.*set)(odd);
            const geometry::RingAdvice advice = geometry::adviseRings(oddHeader, 100, 50, 40);
            EXPECT_EQ(advice.radii.size(), advice.labels.size());
            for (const double radius : advice.radii)
                EXPECT_TRUE(std::isfinite(radius) && radius >= 0) << radius;
        }
    }
    EXPECT_EQ(geometry::adviseRings(header(0.1), 100, 50, -5).radii.size(), 0U);
    EXPECT_LE(geometry::adviseRings(header(0.1), 100, 50, 2147483647).radii.size(), 100000U);
}

}  // namespace
