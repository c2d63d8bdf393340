// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The selected region of interest.
#pragma once

#include <limits>

/// A region of interest, shared by the views of a group. Coordinates and radii are image pixels.
/// A value.
class StatisticsData {
public:
    /// Values of roiType.
    enum RoiType { None = 0, Line = 1, Box = 2, Circle = 3, CentredCircle = 4 };

    StatisticsData() = default;
    virtual ~StatisticsData() = default;
    StatisticsData(const StatisticsData&) = default;
    StatisticsData& operator=(const StatisticsData&) = default;

    /// True if the centred circle has a centre and both radii.
    bool centredCircleDefined() const;

    /// Floating values compare by records::equal: NaN equals anything.
    bool operator==(const StatisticsData& other) const;

    /// True if a selection was ever made.
    bool defined = false;
    /// End points of a line, opposite corners of a box.
    int beginX = 0;
    int beginY = 0;
    int endX = 0;
    int endY = 0;
    /// Free circle.
    int circleX = 0;
    int circleY = 0;
    int radius = 0;
    /// Ring of the centred circle.
    int innerRadius = 0;
    int outerRadius = 0;
    /// Angle of the section through the free circle, in radians.
    double theta = 0;
    /// Centre of the centred circle, the powder region.
    double powderX = std::numeric_limits<double>::quiet_NaN();
    double powderY = std::numeric_limits<double>::quiet_NaN();
    /// True from the moment a region is drawn until the user chooses another tool.
    bool roiActive = false;
    int roiType = None;
};
