// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The small image view that steers a main view.
#pragma once

#include "gui/render/ImageDrawer.h"
#include "gui/render/overlays/ResolutionRings.h"

class ImageDrawerMain;

/// Shows the whole image at a reduced size and marks the part that the main view shows. A drag
/// moves that part, the wheel zooms the main view about the point under the cursor; both within the
/// limits of the main view. So few pixels are coloured by the processor: the surfaces are left to
/// main views.
class ImageDrawerThumbnail : public ImageDrawer {
    Q_OBJECT
public:
    /// @param main  the view to steer, whose service and choice of shaders it shares; not owned,
    /// lives as long as this
    explicit ImageDrawerThumbnail(ImageDrawerMain* main, QWidget* parent = nullptr);

    /// The size of the reduced image, 200 by 100 without an image.
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

    bool eventFilter(QObject* watched, QEvent* event) override;

public slots:
    void newImageSlot() override;
    /// Takes over the viewport as adopted by the main view.
    void setViewportSlot(const ViewportData& viewport) override;

protected:
    MImage baseImage() const override;
    ViewportData defaultViewport() const override;
    ViewportData correctViewport(const ViewportData& wanted,
                                 const ViewportData& current) const override;
    ViewportData effectiveViewportData() const override { return {}; }
    double imageScaleFactor() const override;
    int moveDirection() const override { return -1; }

    void paintRings(QPainter* painter) override;
    void paint(QPainter* painter) override;
    void virtualWheelEvent(QWheelEvent* event) override;

private:
    ImageDrawerMain* _main;
    render::ResolutionRings _rings;
};
