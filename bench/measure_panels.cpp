// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Measures what the panels of a view cost the GUI thread.
//
//   measure-panels FILE [STEPS]
//
// In a window without panels and in one with all of them it steps through the series of FILE, and
// then drags the foreground in the histogram. Paints of the window are counted apart: without
// graphics hardware they would hide all else. Needs a display:
// xvfb-run -a -s "-screen 0 1600x1200x24" measure-panels FILE
#include "gui/kit/Look.h"
#include "gui/panels/Histogram.h"
#include "gui/window/MainWindow.h"
#include "gui/window/SubWindow.h"
#include "logic/core/TarvikCore.h"
#include "logic/service/TarvikService.h"
#include "logic/support/Console.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QMouseEvent>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

double milliseconds(const QElapsedTimer& clock)
{
    return static_cast<double>(clock.nsecsElapsed()) / 1e6;
}

/// Sums up how long events are handled.
class TimedApplication : public QApplication {
public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override
    {
        if (_inside)
            return QApplication::notify(receiver, event);
        _inside = true;
        QElapsedTimer clock;
        clock.start();
        const bool paints =
            event->type() == QEvent::UpdateRequest || event->type() == QEvent::Paint;
        const bool handled = QApplication::notify(receiver, event);
        _inside = false;
        (paints ? painting : working) += milliseconds(clock);
        return handled;
    }
    /// Handles what is there until a condition holds; the loop itself costs nothing here.
    template <class Condition>
    void until(Condition&& condition)
    {
        while (!condition())
            processEvents(QEventLoop::WaitForMoreEvents, 50);
        processEvents();
    }

    double working = 0;
    double painting = 0;

private:
    bool _inside = false;
};

struct Cost {
    std::vector<double> working;
    std::vector<double> painting;

    void add(const TimedApplication& application)
    {
        working.push_back(application.working);
        painting.push_back(application.painting);
    }
    void print(const char* what)
    {
        std::ranges::sort(working);
        std::ranges::sort(painting);
        std::printf("%-32s median %6.2f ms, longest %6.2f ms; paints %6.2f ms\n", what,
                    working[working.size() / 2], working.back(), painting[painting.size() / 2]);
    }
};

/// Steps to and fro between the first two images.
Cost step(TimedApplication& application, TarvikService& service, int steps)
{
    Cost cost;
    int shown = 0;
    const auto connection =
        QObject::connect(&service, &TarvikService::newImageSignal, &service, [&shown] { ++shown; });
    for (int i = 0; i < steps; ++i) {
        application.working = application.painting = 0;
        const int before = shown;
        service.nextImage(i % 2 == 0 ? 1 : -1);
        application.until([&] { return shown > before; });
        cost.add(application);
    }
    QObject::disconnect(connection);
    return cost;
}

Cost dragForeground(TimedApplication& application, Histogram& histogram, int moves)
{
    Cost cost;
    const int left = histogram.model().foreground() + 4;
    const auto send = [&](QEvent::Type type, int x) {
        QMouseEvent event(type, QPoint(x, 100), histogram.mapToGlobal(QPoint(x, 100)),
                          Qt::LeftButton, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&histogram, &event);
    };
    send(QEvent::MouseButtonPress, left);
    for (int i = 1; i <= moves; ++i) {
        application.working = application.painting = 0;
        send(QEvent::MouseMove, left - (i % 40 < 20 ? i % 40 : 40 - i % 40));
        QCoreApplication::processEvents();
        cost.add(application);
    }
    return cost;
}

}  // namespace

int main(int argc, char** argv)
{
    look::beforeApplication();
    TimedApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments().mid(1);
    if (words.isEmpty()) {
        std::fputs("usage: measure-panels FILE [STEPS]\n", stderr);
        return 2;
    }
    const int steps = words.size() > 1 ? std::max(1, words[1].toInt()) : 40;
    console::muteInformation();
    look::applyToApplication();
    TarvikCore core;
    core.setDefaultColorTable(QStringLiteral("High Dynamic Range"));
    MainWindow window(core, true, true);
    window.resize(1400, 1100);
    window.show();
    SubWindow* const view = window.newSubWindow();
    view->loadFile(words[0]);
    application.until([&] { return view->service()->imageLoaded(); });
    for (int round = 0; round < 2; ++round) {
        window.toggleSideBar(false);
        application.until([] { return true; });
        step(application, *view->service(), steps).print("new image, without panels");
        window.toggleSideBar(true);
        application.until([] { return true; });
        step(application, *view->service(), steps).print("new image, with all panels");
        if (auto* histogram = window.findChild<Histogram*>())
            dragForeground(application, *histogram, steps).print("move of a contrast drag");
    }
    std::fflush(stdout);
    std::_Exit(0);  // without taking the graphics driver apart
}
