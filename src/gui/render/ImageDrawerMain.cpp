// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The large image view of a sub-window.
#include "gui/render/ImageDrawerMain.h"

#include "gui/kit/Resources.h"
#include "gui/render/gestures/ZoomPan.h"
#include "logic/TarvikService.h"

#include <QCursor>
#include <QPixmap>
#include <QWheelEvent>

#include <cmath>

ImageDrawerMain::ImageDrawerMain(TarvikService* service, bool useGlsl, QWidget* parent)
    : ImageDrawer(service, useGlsl, parent)
{
    initResources();
    setCursor(QCursor(QPixmap(QStringLiteral(":icons/crosscursor.xpm")), -1, -1));
    connect(this, &ImageDrawer::newCursorCoordinates, service,
            &TarvikService::setCursorCoordinates);
}

void ImageDrawerMain::zoom(int step)
{
    if (!service().imageLoaded())
        return;
    const QPoint centre(width() / 2, height() / 2);
    service().setViewportData(render::zoomedAbout(
        viewport(), QPointF(imgX(centre.x()), imgY(centre.y())), centre, step > 0 ? 1 : -1));
}

ImageDrawer::MImage ImageDrawerMain::baseImage() const { return service().image(); }

ContrastData ImageDrawerMain::defaultContrast() const
{
    const auto statistics = service().statistics();
    const auto* colorTable = service().contrastData().colorTable;
    return {std::trunc(statistics->foreground), std::trunc(statistics->background),
            colorTable ? colorTable : service().defaultColorTable(), false};
}

ViewportData ImageDrawerMain::defaultViewport() const
{
    return render::centredViewport(service().imageSize(), size());
}

ViewportData ImageDrawerMain::correctViewport(const ViewportData& wanted,
                                              const ViewportData& current) const
{
    return render::withoutWiderBorder(wanted, current, service().imageSize(), size());
}

void ImageDrawerMain::virtualWheelEvent(QWheelEvent* event)
{
    if (!service().imageLoaded())
        return;
    service().setViewportData(render::zoomedAbout(viewport(), QPointF(imgX(), imgY()),
                                                  QPoint(cursorX(), cursorY()),
                                                  event->angleDelta().y() >= 1 ? 1 : -1));
}
