// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Views on the screen that show images from memory.
#pragma once

#include "gui/render/ImageDrawerMain.h"
#include "imagelib/display/MColorTable.h"
#include "logic/core/TarvikCore.h"
#include "logic/service/TarvikService.h"
#include "tests/support/Geometry.h"
#include "tests/support/WaitFor.h"

#include <QApplication>
#include <QScreen>
#include <QSignalSpy>

namespace images {

using morvend::imglib::MImage;

/// Pixels by a function of their place; none masked.
template <class T, class Value>
MImage of(int width, int height, Value&& value)
{
    MImage image(width, height, T(0));
    auto* pixel = static_cast<T*>(image.data());
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            *pixel++ = static_cast<T>(value(x, y));
    image.optionalData().set_pixel_mask(MImage(width, height, 0U));
    return image;
}

/// Pixels unlike their neighbours, from 0 to 100.
template <class T = int>
MImage patterned(int width, int height, int step = 7)
{
    return of<T>(width, height, [&](int x, int y) { return (x * step + y * 13) % 101; });
}

/// All pixels of one value.
template <class T = int>
MImage uniform(int width, int height, T value)
{
    return of<T>(width, height, [&](int, int) { return value; });
}

/// The same with all that rings of resolution need.
inline MImage withGeometry(int width, int height, int value, float beamX, float beamY)
{
    MImage image = uniform(width, height, value);
    tarvik::tests::setGeometry(image.optionalData(), beamX, beamY, 172e-6F, 172e-6F, 0.2F, 1.0F);
    return image;
}

}  // namespace images

/// Shows the service's image under any viewport, as it comes.
class BareView : public ImageDrawer {
public:
    using ImageDrawer::ImageDrawer;

protected:
    MImage baseImage() const override { return service().image(); }
    std::shared_ptr<const morvend::imglib::BlockMaxima> baseMaxima() const override
    {
        return service().blockMaxima();
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

/// A core, one service and one view of a given size.
template <class View>
class DrawnView {
public:
    explicit DrawnView(QSize size, bool useGlsl = true)
    {
        core.setDefaultColorTable("High Dynamic Range");
        service = core.newService("test");
        drawer = std::make_unique<View>(service, useGlsl);
        drawer->resize(size);
        drawer->show();
        (void)QTest::qWaitForWindowExposed(drawer.get(), Patience);
        settle();
    }
    ~DrawnView() { drawer.reset(); }

    /// Loads an image and waits until it is on show. The first one of a size has a contrast from 0
    /// to 100 in a bare view.
    bool open(const morvend::imglib::MImage& image)
    {
        const std::string group = service->syncID();
        QSignalSpy arrived(service, &TarvikService::newImageSignal);
        service->openImage(image);
        const bool came = arrived.count() > 0 || arrived.wait(Patience);
        if (std::is_same_v<View, BareView> && service->syncID() != group)
            service->setContrastData({100, 0, service->defaultColorTable(), false});
        settle();
        hideCursor();
        return came;
    }
    /// The same in a view that then is as if it were new.
    bool openAnew(const morvend::imglib::MImage& image)
    {
        drawer->setMoveImage(true);
        drawer->setPlottingMode(PlottingMode::Flat);
        service->setPlottingMode(PlottingMode::Flat);
        service->toggleHighlightDefective(true);
        service->toggleHighlightSaturated(true);
        service->toggleShowResolutionRings(false);
        service->clearPaintList();
        // The records of a size go with its last image.
        return open(images::uniform(1, 1, 0)) && open(image);
    }

    /// What stands on the screen where the view is.
    QImage screen() const
    {
        const QWidget* window = drawer->window();
        const QPoint place = drawer->mapTo(window, QPoint());
        return drawer->screen()
            ->grabWindow(window->winId(), place.x(), place.y(), drawer->width(), drawer->height())
            .toImage()
            .convertToFormat(QImage::Format_RGB32);
    }

    /// Takes the box of values beside the mouse cursor away.
    void hideCursor()
    {
        QEvent leave(QEvent::Leave);
        QApplication::sendEvent(drawer.get(), &leave);
    }

    TarvikCore core;
    TarvikService* service = nullptr;
    std::unique_ptr<View> drawer;
};

using DrawnImage = DrawnView<ImageDrawerMain>;
