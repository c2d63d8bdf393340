// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The large image view of a sub-window.
#pragma once

#include "gui/render/ImageDrawer.h"
#include "gui/render/gestures/NewRegion.h"
#include "gui/render/gestures/RegionCursors.h"
#include "gui/render/gestures/RegionDrag.h"
#include "gui/render/overlays/ResolutionRings.h"
#include "imagelib/display/MDrawingList.h"
#include "logic/analysis/peaks/ImagePeaks.h"
#include "logic/records/PeakData.h"
#include "logic/records/StatisticsData.h"
#include "logic/service/CursorInfo.h"

#include <optional>
#include <vector>

/// Shows the service's image and adds the gestures of the main view. The wheel zooms about the
/// cursor. The right button draws a region of the kind that the service's record names, or with the
/// Control key a powder ring round the cursor instead of the beam centre. Any button drags a region
/// or one of its handles, which the hovering cursor shows; elsewhere the left button moves
/// the image, and the middle one turns the height map. A double click there fits the image into the
/// view, or shows a fitted one at 1:1 about the cursor.
class ImageDrawerMain : public ImageDrawer {
    Q_OBJECT
public:
    /// What the mouse does in a view, in words.
    struct Gesture {
        const char* mouse;
        const char* effect;
    };
    static const std::vector<Gesture>& gestures();

    ImageDrawerMain(TarvikService* service, bool useGlsl, QWidget* parent = nullptr);

    /// One step in or out about the centre of the view, by the sign of the argument.
    void zoom(int step);
    /// Shows the whole image, as large as it fits.
    void fit();
    /// One screen pixel for each image pixel, about a widget coordinate or the centre of the view.
    void oneToOne(const QPoint& about);
    void oneToOne() { oneToOne(rect().center()); }
    /// The texts about the pixel under the cursor; nothing if it is beside the image.
    std::optional<CursorInfo> infoAtCursor() const;

    // What a thumbnail shares with this view.
    using ImageDrawer::service;
    using ImageDrawer::viewport;
    ViewportData defaultViewport() const override;
    ViewportData correctViewport(const ViewportData& wanted,
                                 const ViewportData& current) const override;

public slots:
    void newImageSlot() override;
    void setViewportSlot(const ViewportData& viewport) override;
    /// Takes the scripting clients' overlay from the service.
    void updatePaintListSlot();

protected:
    std::shared_ptr<const morvend::imglib::BlockMaxima> baseMaxima() const override;
    MImage baseImage() const override;
    QSize baseSize() const override;
    ViewportData effectiveViewportData() const override { return viewport(); }
    double imageScaleFactor() const override { return 1.0; }
    void letPixelsBePacked(bool may) override;
    int moveDirection() const override { return 1; }

    void paintRings(QPainter* painter) override;
    void paint(QPainter* painter) override;
    void virtualMousePressEvent(QMouseEvent* event) override;
    void virtualMouseMoveEvent(QMouseEvent* event) override;
    void virtualWheelEvent(QWheelEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    /// Keeps the image point in the middle of the view there, even beyond the limits of a pan, so
    /// that a window that is maximised and restored shows the same as before.
    void resizeEvent(QResizeEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

private slots:
    void _setStatisticsSlot(const StatisticsData& region);
    void _setPeakData(const PeakData& selection);
    void _takePeaks();
    void _setCursorInfo(const CursorInfo& info);

private:
    QPoint _cursor() const { return {cursorX(), cursorY()}; }
    bool _cursorOnImage() const;
    /// A right drag draws a region of the chosen kind, unless it moves the existing one.
    bool _drawsRegion(Qt::MouseButtons buttons) const;
    void _shareResize();
    /// Another image pixel may be under the cursor, which stands still.
    void _tellCursor();
    void _hover();
    void _drag(Qt::MouseButtons buttons);
    void _rotatePlot(QPoint move);
    void _extendRegion();
    void _moveRegion();
    void _paintPixelValues(QPainter& painter, const render::ViewGeometry& geometry) const;

    render::RegionCursors _cursors;
    render::ResolutionRings _rings;
    /// The size for which the viewport was set while the view could be seen; none if it was
    /// never visible, since its sizes are temporary.
    std::optional<QSize> _viewportSize;
    /// The service's viewport before a resize not yet reported to it.
    std::optional<ViewportData> _viewportBeforeResize;
    bool _cursorInside = false;
    CursorInfo _cursorInfo;
    StatisticsData _statisticsData;
    PeakData _peakData;
    ImagePeaks _imagePeaks;
    morvend::imglib::MDrawingList<> _paintList;
    // What a drag will do, decided while the cursor hovers.
    bool _rotateSelection = false;
    bool _moveSelection = false;
    render::RegionHandle _handle = render::RegionHandle::Body;
    render::NewRegion _newRegion;
    render::RegionDrag _regionDrag;
    QPoint _last;
};
