// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Defaults, limits and equality of the shared records.
#include "logic/records/ContrastData.h"
#include "logic/records/PeakData.h"
#include "logic/records/StatisticsData.h"
#include "logic/records/ViewportData.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// A change of one field and whether the record then differs from the one before.
template <class T>
struct Change {
    const char* name;
    std::function<void(T&)> apply;
    bool differs;
};

template <class T>
void expectChanges(const T& base, const std::vector<Change<T>>& changes)
{
    EXPECT_TRUE(base == T(base));
    for (const Change<T>& change : changes) {
        T changed = base;
        change.apply(changed);
        EXPECT_EQ(base != changed, change.differs) << change.name;
        EXPECT_EQ(changed != base, change.differs) << change.name << ", the other way round";
    }
}

TEST(ContrastData, EveryFieldCountsAndNanEqualsAnything)
{
    // Two addresses that no table has: only compared.
    int tables[2];
    const auto* table = reinterpret_cast<const ContrastData::MColorTable*>(&tables[1]);
    expectChanges<ContrastData>(
        ContrastData(10, 1, reinterpret_cast<const ContrastData::MColorTable*>(&tables[0]), true),
        {{"defined", [](auto& data) { data.defined = false; }, true},
         {"foreground", [](auto& data) { data.foreground = 10.5; }, true},
         {"foreground NaN", [](auto& data) { data.foreground = nan; }, false},
         {"background", [](auto& data) { data.background = -1; }, true},
         {"background NaN", [](auto& data) { data.background = nan; }, false},
         {"table", [table](auto& data) { data.colorTable = table; }, true},
         {"drag", [](auto& data) { data.dragUpdate = false; }, true}});
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
    expectChanges<ViewportData>(
        ViewportData(1, 2, 3, 4, 5),
        {{"defined", [](auto& data) { data.defined = false; }, true},
         {"offsetX", [](auto& data) { data.offsetX = 0; }, true},
         {"offsetX NaN", [](auto& data) { data.offsetX = nan; }, false},
         {"offsetY", [](auto& data) { data.offsetY = 3; }, true},
         {"zoom", [](auto& data) { data.setZoomPower(2); }, true},
         {"rotationX", [](auto& data) { data.rotationX = 0; }, true},
         {"rotationY", [](auto& data) { data.rotationY = 0; }, true},
         {"rotationY NaN", [](auto& data) { data.rotationY = float(nan); }, false}});
    EXPECT_NE(ViewportData(), ViewportData(0, 0, 0, 0, 0));
}

TEST(ViewportData, ZoomIsAPowerOfTwoWithinItsRange)
{
    const std::pair<int, double> rows[] = {{-100, 0.25}, {-3, 0.25}, {-2, 0.25}, {-1, 0.5},
                                           {0, 1},       {1, 2},     {5, 32},    {6, 64},
                                           {7, 64},      {100, 64}};
    for (const auto& [power, zoom] : rows) {
        const ViewportData data(0, 0, power, 0, 0);
        EXPECT_EQ(data.zoom(), zoom) << power;
        EXPECT_EQ(data.zoomPower, std::clamp(power, -2, 6));
    }
    ViewportData broken;
    broken.zoomPower = 7;
    EXPECT_EQ(broken.zoom(), 0.0);
}

TEST(StatisticsData, EveryFieldCountsAndNanEqualsAnything)
{
    StatisticsData base;
    base.powderX = 5;
    base.powderY = 6;
    expectChanges<StatisticsData>(base,
                                  {{"defined", [](auto& data) { data.defined = true; }, true},
                                   {"beginX", [](auto& data) { data.beginX = 1; }, true},
                                   {"beginY", [](auto& data) { data.beginY = 1; }, true},
                                   {"endX", [](auto& data) { data.endX = 1; }, true},
                                   {"endY", [](auto& data) { data.endY = 1; }, true},
                                   {"circleX", [](auto& data) { data.circleX = 1; }, true},
                                   {"circleY", [](auto& data) { data.circleY = 1; }, true},
                                   {"radius", [](auto& data) { data.radius = 1; }, true},
                                   {"innerRadius", [](auto& data) { data.innerRadius = 1; }, true},
                                   {"outerRadius", [](auto& data) { data.outerRadius = 1; }, true},
                                   {"theta", [](auto& data) { data.theta = 1; }, true},
                                   {"theta NaN", [](auto& data) { data.theta = nan; }, false},
                                   {"powderX", [](auto& data) { data.powderX = 5.25; }, true},
                                   {"powderX NaN", [](auto& data) { data.powderX = nan; }, false},
                                   {"powderY", [](auto& data) { data.powderY = 5; }, true},
                                   {"powderY NaN", [](auto& data) { data.powderY = nan; }, false},
                                   {"roiActive", [](auto& data) { data.roiActive = true; }, true},
                                   {"roiType", [](auto& data) { data.roiType = 4; }, true}});
}

TEST(StatisticsData, CentredCircleNeedsACentreAndBothRadii)
{
    StatisticsData data;
    EXPECT_FALSE(data.centredCircleDefined()) << "no centre";
    data.powderX = 1;
    EXPECT_FALSE(data.centredCircleDefined()) << "half a centre";
    data.powderY = 2;
    EXPECT_TRUE(data.centredCircleDefined()) << "radii of 0 are radii";
    data.innerRadius = -1;
    EXPECT_FALSE(data.centredCircleDefined());
    data.innerRadius = 0;
    data.outerRadius = -1;
    EXPECT_FALSE(data.centredCircleDefined());
}

TEST(PeakData, EveryFieldCounts)
{
    PeakData base;
    base.highlightedPeaks = {1, 2};
    expectChanges<PeakData>(base,
                            {{"defined", [](auto& data) { data.defined = true; }, true},
                             {"number", [](auto& data) { data.numberOfPeaks = 9; }, true},
                             {"more", [](auto& data) { data.highlightedPeaks.insert(3); }, true},
                             {"others",
                              [](auto& data) {
                                  data.highlightedPeaks = {1, 3};
                              },
                              true},
                             {"none", [](auto& data) { data.highlightedPeaks.clear(); }, true}});
}

}  // namespace
