// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Rings at the edges of what a header can say. tests/bin/image/test_geometry.py compares them with
// formulas of its own.
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
