// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Defaults, limits and equality of the shared records.
#include "logic/records/ContrastData.h"
#include "logic/records/StatisticsData.h"
#include "logic/records/ViewportData.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// Changes after each of which a record differs from the one before, and such that change nothing.
template <class T>
using Changes = std::vector<std::function<void(T&)>>;

template <class T>
void expectChanges(const T& base, const Changes<T>& different, const Changes<T>& equal = {})
{
    EXPECT_TRUE(base == T(base));
    for (const auto* changes : {&different, &equal})
        for (std::size_t i = 0; i < changes->size(); ++i) {
            T changed = base;
            (*changes)[i](changed);
            EXPECT_EQ(base != changed, changes == &different) << i;
            EXPECT_EQ(changed != base, changes == &different) << i << ", the other way round";
        }
}

TEST(ContrastData, EveryFieldCountsAndNanEqualsAnything)
{
    // Two addresses that no table has: only compared.
    int tables[2];
    const auto* first = reinterpret_cast<const ContrastData::MColorTable*>(&tables[0]);
    const auto* second = reinterpret_cast<const ContrastData::MColorTable*>(&tables[1]);
    using D = ContrastData;
    expectChanges<D>(D(10, 1, first, true),
                     {[](D& d) { d.defined = false; }, [](D& d) { d.foreground = 10.5; },
                      [](D& d) { d.background = -1; }, [second](D& d) { d.colorTable = second; },
                      [](D& d) { d.dragUpdate = false; }},
                     {[](D& d) { d.foreground = nan; }, [](D& d) { d.background = nan; }});
}

TEST(ContrastData, DefaultIsUndefinedInTheCourseOfADrag)
{
    const ContrastData data;
    EXPECT_FALSE(data.defined);
    EXPECT_TRUE(data.dragUpdate);
    EXPECT_EQ(data.foreground, 2.2250738585072014e-308);
    EXPECT_EQ(data.background, data.foreground);
    EXPECT_EQ(data.colorTable, nullptr);
    EXPECT_NE(data, ContrastData(data.foreground, data.background, nullptr, true));
    EXPECT_EQ(ContrastData(7, 0, nullptr, true).logForeground(), 70000.0);
}

TEST(ViewportData, EveryFieldCountsAndNanEqualsAnything)
{
    using D = ViewportData;
    expectChanges<D>(D(1, 2, 3, 4, 5),
                     {[](D& d) { d.defined = false; }, [](D& d) { d.offsetX = 0; },
                      [](D& d) { d.offsetY = 3; }, [](D& d) { d.setZoomPower(2); },
                      [](D& d) { d.rotationX = 0; }, [](D& d) { d.rotationY = 0; }},
                     {[](D& d) { d.offsetX = nan; }, [](D& d) { d.rotationY = float(nan); }});
    EXPECT_NE(D(), D(0, 0, 0, 0, 0));
}

TEST(ViewportData, ZoomIsAPowerOfTwoWithinItsRange)
{
    for (int power = -100; power <= 100; ++power) {
        const ViewportData data(0, 0, power, 0, 0);
        EXPECT_EQ(data.zoomPower, std::clamp(power, -2, 6));
        EXPECT_EQ(data.zoom(), std::exp2(data.zoomPower));
    }
    ViewportData broken;
    broken.zoomPower = 7;
    EXPECT_EQ(broken.zoom(), 0.0);
}

TEST(StatisticsData, EveryFieldCountsAndNanEqualsAnything)
{
    using D = StatisticsData;
    D base;
    base.powderX = 5;
    base.powderY = 6;
    Changes<D> different{[](D& d) { d.defined = true; }, [](D& d) { d.theta = 1; },
                         [](D& d) { d.powderX = 5.25; }, [](D& d) { d.powderY = 5; },
                         [](D& d) { d.roiActive = true; }};
    for (int D::*field : {&D::beginX, &D::beginY, &D::endX, &D::endY, &D::circleX, &D::circleY,
                          &D::radius, &D::innerRadius, &D::outerRadius, &D::roiType})
        different.push_back([field](D& d) { d.*field = 1; });
    expectChanges<D>(base, different,
                     {[](D& d) { d.theta = nan; }, [](D& d) { d.powderX = nan; },
                      [](D& d) { d.powderY = nan; }});
}

TEST(StatisticsData, CentredCircleNeedsACentreAndBothRadii)
{
    StatisticsData data;
    EXPECT_FALSE(data.centredCircleDefined()) << "no centre";
    data.powderX = 1;
    EXPECT_FALSE(data.centredCircleDefined()) << "half a centre";
    data.powderY = 2;
    EXPECT_TRUE(data.centredCircleDefined()) << "radii of 0 are radii";
    for (int StatisticsData::*radius :
         {&StatisticsData::innerRadius, &StatisticsData::outerRadius}) {
        StatisticsData without = data;
        without.*radius = -1;
        EXPECT_FALSE(without.centredCircleDefined());
    }
}

}  // namespace
