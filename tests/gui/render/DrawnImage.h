// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A view on the screen that shows an image from memory.
#pragma once

#include "gui/render/ImageDrawerMain.h"
#include "imagelib/display/MColorTable.h"
#include "logic/TarvikService.h"
#include "logic/tarvikcore.h"
#include "tests/support/WaitFor.h"

#include <QApplication>
#include <QScreen>
#include <QSignalSpy>

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
        (void)QTest::qWaitForWindowExposed(drawer.get());
        settle();
    }
    ~DrawnView() { drawer.reset(); }

    /// Loads an image and waits until it is on show.
    bool open(const morvend::imglib::MImage& image)
    {
        QSignalSpy arrived(service, &TarvikService::newImageSignal);
        service->openImage(image);
        const bool came = arrived.count() > 0 || arrived.wait(10000);
        settle();
        hideCursor();
        return came;
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
