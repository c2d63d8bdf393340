// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/ImageDrawerThumbnail.h"

#include "gui/render/ImageDrawerMain.h"
#include "gui/render/ThumbnailFrame.h"
#include "gui/render/gestures/ZoomPan.h"
#include "logic/service/TarvikService.h"

#include <QEvent>
#include <QWheelEvent>

#include <algorithm>

ImageDrawerThumbnail::ImageDrawerThumbnail(ImageDrawerMain* main, QWidget* parent)
    : ImageDrawer(&main->service(), main->wantsGlsl(), parent, SurfaceUse::Never)
    , _main(main)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    // Another size of the main view shows another part of the image.
    main->installEventFilter(this);
}

QSize ImageDrawerThumbnail::sizeHint() const
{
    if (!service().imageLoaded())
        return {200, 100};
    const MImage& thumbnail = service().thumbnail();
    return {thumbnail.width(), thumbnail.height()};
}

bool ImageDrawerThumbnail::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == _main && event->type() == QEvent::Resize)
        update();
    return ImageDrawer::eventFilter(watched, event);
}

void ImageDrawerThumbnail::newImageSlot()
{
    ImageDrawer::newImageSlot();
    updateGeometry();
}

void ImageDrawerThumbnail::setViewportSlot(const ViewportData&)
{
    adoptViewport(_main->viewport());
}

ImageDrawer::MImage ImageDrawerThumbnail::baseImage() const { return service().thumbnail(); }

ViewportData ImageDrawerThumbnail::defaultViewport() const { return _main->defaultViewport(); }

ViewportData ImageDrawerThumbnail::correctViewport(const ViewportData& wanted,
                                                   const ViewportData& current) const
{
    return _main->correctViewport(wanted, current);
}

double ImageDrawerThumbnail::imageScaleFactor() const
{
    const int width = service().imageSize().width();
    return width < 1 ? 1.0 : double(service().thumbnail().width()) / width;
}

void ImageDrawerThumbnail::paintRings(QPainter* painter)
{
    _rings.draw(*painter, viewGeometry(), imageBoundary(), service());
}

void ImageDrawerThumbnail::paint(QPainter* painter)
{
    if (!service().imageLoaded())
        return;
    render::drawThumbnailFrame(*painter,
                               render::thumbnailFrame(_main->visibleRange(), imageScaleFactor()));
}

void ImageDrawerThumbnail::virtualWheelEvent(QWheelEvent* event)
{
    const int step = render::wheelStep(event->angleDelta());
    if (!service().imageLoaded() || step == 0)
        return;
    const QPointF centreOfMain(_main->width() * 0.5, _main->height() * 0.5);
    service().setViewportData(
        render::zoomedAbout(viewport(), QPointF(imgX(), imgY()), centreOfMain, step));
}
