// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Zoom and equality of viewports.
#include "logic/records/ViewportData.h"

#include "logic/records/NanEqual.h"

#include <algorithm>
#include <cmath>

ViewportData::ViewportData(double offsetX_, double offsetY_, int zoomPower_, float rotationX_,
                           float rotationY_)
    : defined(true)
    , offsetX(offsetX_)
    , offsetY(offsetY_)
    , rotationX(rotationX_)
    , rotationY(rotationY_)
{
    setZoomPower(zoomPower_);
}

double ViewportData::zoom() const
{
    if (zoomPower < minimumZoomPower || zoomPower > maximumZoomPower)
        return 0.0;
    return std::ldexp(1.0, zoomPower);
}

void ViewportData::setZoomPower(int power)
{
    zoomPower = std::clamp(power, minimumZoomPower, maximumZoomPower);
}

bool ViewportData::operator==(const ViewportData& other) const
{
    return defined == other.defined && records::equal(offsetX, other.offsetX) &&
           records::equal(offsetY, other.offsetY) && zoomPower == other.zoomPower &&
           records::equal(rotationX, other.rotationX) && records::equal(rotationY, other.rotationY);
}
