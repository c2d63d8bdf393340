// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The large image view of a sub-window.
#pragma once

#include "gui/imagedrawer.h"

/// Shows the service's image and adds the gestures of the main view: the wheel zooms about the
/// cursor.
class ImageDrawerMain : public ImageDrawer {
    Q_OBJECT
public:
    ImageDrawerMain(TarvikService* service, bool useGlsl, QWidget* parent = nullptr);

    /// One step in or out about the centre of the view, by the sign of the argument.
    void zoom(int step);

protected:
    MImage baseImage() const override;
    ContrastData defaultContrast() const override;
    ViewportData defaultViewport() const override;
    ViewportData correctViewport(const ViewportData& wanted,
                                 const ViewportData& current) const override;
    ViewportData effectiveViewportData() const override { return viewport(); }
    double imageScaleFactor() const override { return 1.0; }
    int moveDirection() const override { return 1; }

    void virtualWheelEvent(QWheelEvent* event) override;
};
