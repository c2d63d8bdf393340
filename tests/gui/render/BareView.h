// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A view of an image with nothing over it.
#pragma once

#include "gui/imagedrawer.h"
#include "logic/TarvikService.h"

/// Shows the service's image under any viewport, as it comes.
class BareView : public ImageDrawer {
public:
    using ImageDrawer::ImageDrawer;

protected:
    MImage baseImage() const override { return service().image(); }
    ContrastData defaultContrast() const override
    {
        return {100, 0, service().defaultColorTable(), false};
    }
    ViewportData defaultViewport() const override { return {0, 0, 0, 0, 0}; }
    ViewportData correctViewport(const ViewportData& wanted, const ViewportData&) const override
    {
        return wanted;
    }
    ViewportData effectiveViewportData() const override { return viewport(); }
    double imageScaleFactor() const override { return 1; }
    int moveDirection() const override { return 1; }
};
