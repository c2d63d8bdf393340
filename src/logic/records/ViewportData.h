// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The part of an image that a view shows.
#pragma once

/// Position, zoom and rotation of a view, shared by the views of a group. A value.
class ViewportData {
public:
    /// Range of the zoom as a power of two.
    static constexpr int minimumZoomPower = -2;
    static constexpr int maximumZoomPower = 6;

    ViewportData() = default;
    ViewportData(double offsetX, double offsetY, int zoomPower, float rotationX, float rotationY);
    virtual ~ViewportData() = default;
    ViewportData(const ViewportData&) = default;
    ViewportData& operator=(const ViewportData&) = default;

    /// Screen pixels for each image pixel: 0.25 to 64; 0 for a power outside the range, which only
    /// a direct write can cause.
    double zoom() const;
    /// Clamps to the range.
    void setZoomPower(int power);

    /// Floating values compare by records::equal: NaN equals anything.
    bool operator==(const ViewportData& other) const;

    /// True if a viewport was ever chosen.
    bool defined = false;
    /// Image coordinates of the view's reference point, in pixels.
    double offsetX = 0;
    double offsetY = 0;
    int zoomPower = 0;
    /// Rotation of the 3D plot in degrees about the axes (1,0,0) and (0,1,0).
    float rotationX = 0;
    float rotationY = 0;
};
