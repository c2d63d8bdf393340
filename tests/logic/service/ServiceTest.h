// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A core with views of it, for tests of the view service.
#pragma once

#include "imagelib/display/MColorTable.h"
#include "logic/core/TarvikCore.h"
#include "logic/service/TarvikService.h"
#include "tests/support/Geometry.h"
#include "tests/support/SignalLog.h"
#include "tests/support/WaitFor.h"

#include <QSignalSpy>
#include <QTest>

#include <gmock/gmock.h>

namespace tarvik::tests {

using morvend::imglib::MColorTable;
using morvend::imglib::MImage;

class ServiceTest : public testing::Test {
protected:
    ServiceTest() { core.setDefaultColorTable("Grey Scale"); }

    TarvikService* newView(const QString& mainWindow = "1") { return core.newService(mainWindow); }

    /// Opens an image and waits until it is shown.
    static void show(TarvikService* view, const MImage& image)
    {
        view->openImage(image);
        arrive(view);
    }
    /// Waits for the image that was asked for.
    static void arrive(TarvikService* view)
    {
        QSignalSpy spy(view, &TarvikService::newImageSignal);
        EXPECT_TRUE(spy.wait(Patience));
    }
    static bool reaches(const TarvikService* view, int index)
    {
        return waitFor([&] { return view->imageIndex() == index; });
    }
    void removeNow(TarvikService* view)
    {
        core.deleteService(view);
        QCoreApplication::sendPostedEvents(view, QEvent::DeferredDelete);
    }
    static MImage image(int width = 8, int height = 4, int value = 1)
    {
        return MImage(width, height, value);
    }
    /// An image with a complete geometry: beam at (100.5, 50), 100 x 200 um pixels, 0.1 m, 1 A.
    static MImage imageWithGeometry()
    {
        MImage result = image(200, 100, 3);
        setGeometry(result.optionalData(), 100.5F, 50.F, 100e-6F, 200e-6F, 0.1F, 1.F);
        return result;
    }
    /// Logs all signals that announce a state of the view.
    static void watchAll(SignalLog& log, const TarvikService* view)
    {
        using S = TarvikService;
        log.watch(view, &S::newImageSignal, "image");
        log.watch(view, &S::imageLoadErrorSignal, "error");
        log.watch(view, &S::headerChangedSignal, "header");
        log.watch(view, &S::newViewportSignal, "viewport");
        log.watch(view, &S::newContrastSignal, "contrast");
        log.watch(view, &S::newStatisticsSignal, "statistics");
        log.watch(view, &S::newPeakSignal, "peaks");
        log.watch(view, &S::plottingModeSignal, "plotting");
        log.watch(view, &S::resolutionRingsSignal, "rings");
        log.watch(view, &S::resolutionDefinedSignal, "resolution");
        log.watch(view, &S::powderPlotDefinedSignal, "powder");
        log.watch(view, &S::defectiveSignal, "defective");
        log.watch(view, &S::saturatedSignal, "saturated");
        log.watch(view, &S::paintListSignal, "paintlist");
        log.watchFlag(view, &S::movieModeSignal, "movie");
        log.watchFlag(view, &S::watchSeriesModeSignal, "watch");
        log.watchFlag(view, &S::halvoMonitorModeSignal, "monitor");
        log.watch(view, &S::halvoMonitorHostSignal, "address");
    }

    TarvikCore core;
};

}  // namespace tarvik::tests
