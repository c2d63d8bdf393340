// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Measures how long the event loop of the viewer stands still while it steps through a series.
//
//   measure-event-loop [--window | --drag] FILE [STEPS]
//
// With --drag a hand runs over the series strip of a window, so many moves at 60 a second.
// Without --window only the view service works, as for a view whose widgets cost nothing.
#include "gui/kit/Look.h"
#include "gui/kit/SeriesStrip.h"
#include "gui/window/MainWindow.h"
#include "gui/window/SubWindow.h"
#include "logic/core/TarvikCore.h"
#include "logic/service/TarvikService.h"
#include "logic/support/Console.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QMouseEvent>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

namespace {

/// Notes the times between the ticks of a timer of 1 ms.
class GapMeter : public QObject {
public:
    GapMeter()
    {
        _timer.setTimerType(Qt::PreciseTimer);
        connect(&_timer, &QTimer::timeout, this, [this] {
            _gaps.push_back(static_cast<double>(_clock.nsecsElapsed()) / 1e6);
            _clock.start();
        });
    }
    void start()
    {
        _gaps.clear();
        _clock.start();
        _timer.start(1);
    }
    void print(int steps)
    {
        std::sort(_gaps.begin(), _gaps.end());
        const auto share = [&](double part) {
            return _gaps[static_cast<std::size_t>(part * static_cast<double>(_gaps.size() - 1))];
        };
        std::printf(
            "%d steps, %zu ticks: median %.2f ms, 99 of 100 below %.2f ms, longest %.2f ms\n",
            steps, _gaps.size(), share(0.5), share(0.99), share(1));
    }

private:
    QTimer _timer;
    QElapsedTimer _clock;
    std::vector<double> _gaps;
};

/// Steps forward and back through the series, each step when the one before is shown.
void step(TarvikService* service, GapMeter& meter, int steps)
{
    static int done = 0;
    static int way = 1;
    static QElapsedTimer clock;
    QObject::connect(service, &TarvikService::imageLoadErrorSignal, service,
                     [](const QString& text) {
                         std::fprintf(stderr, "%s\n", qPrintable(text));
                         QCoreApplication::exit(1);
                     });
    QObject::connect(
        service, &TarvikService::newImageSignal, service,
        [=, &meter] {
            if (done++ == 0) {
                meter.start();
                clock.start();
            }
            if (done > steps) {
                meter.print(steps);
                std::printf("%.1f ms a step\n", static_cast<double>(clock.elapsed()) / steps);
                return QCoreApplication::exit(0);
            }
            if (service->imageIndex() == service->lastIndex())
                way = -1;
            else if (service->imageIndex() == service->firstIndex())
                way = 1;
            service->nextImage(way);
        },
        Qt::QueuedConnection);
}

/// Drags over the strip, there and back, once the first image is shown.
void drag(SubWindow* view, GapMeter& meter, int moves)
{
    TarvikService* service = view->service();
    auto* timer = new QTimer(view);
    const auto shown = std::make_shared<int>(0);
    QObject::connect(service, &TarvikService::newImageSignal, timer, [=] { ++*shown; });
    QObject::connect(timer, &QTimer::timeout, view, [=, &meter, done = 0]() mutable {
        auto* strip = view->findChild<SeriesStrip*>();
        const int range = strip->width() - 1;
        const auto send = [&](QEvent::Type type) {
            // A triangle: two seconds from end to end.
            const int phase = done * range / 120 % (2 * range);
            const QPoint at(phase < range ? phase : 2 * range - phase, 5);
            QMouseEvent event(type, at, strip->mapToGlobal(at), Qt::LeftButton, Qt::LeftButton, {});
            QCoreApplication::sendEvent(strip, &event);
        };
        if (done == 0) {
            *shown = 0;
            meter.start();
            send(QEvent::MouseButtonPress);
        } else {
            send(QEvent::MouseMove);
        }
        if (done++ < moves)
            return;
        meter.print(moves);
        std::printf("%d images shown\n", *shown);
        QCoreApplication::exit(0);
    });
    QObject::connect(service, &TarvikService::newImageSignal, timer,
                     [timer] { timer->isActive() ? void() : timer->start(16); });
}

}  // namespace

int main(int argc, char** argv)
{
    look::beforeApplication();
    QApplication application(argc, argv);
    QStringList words = QCoreApplication::arguments().mid(1);
    const bool drags = words.removeAll(QStringLiteral("--drag")) > 0;
    const bool withWindow = words.removeAll(QStringLiteral("--window")) > 0 || drags;
    if (words.isEmpty()) {
        std::fputs("usage: measure-event-loop [--window | --drag] FILE [STEPS]\n", stderr);
        return 2;
    }
    const int steps = words.size() > 1 ? std::max(1, words[1].toInt()) : 50;
    console::muteInformation();
    TarvikCore core;
    core.setDefaultColorTable(QStringLiteral("High Dynamic Range"));
    GapMeter meter;
    std::unique_ptr<MainWindow> window;
    TarvikService* service = nullptr;
    if (withWindow) {
        look::applyToApplication();
        window = std::make_unique<MainWindow>(core, true, true);
        window->resize(1200, 800);
        window->show();
        SubWindow* view = window->newSubWindow();
        service = view->service();
        if (drags)
            drag(view, meter, steps);
        else
            step(service, meter, steps);
        view->loadFile(words[0]);
    } else {
        service = core.newService(QStringLiteral("1"));
        step(service, meter, steps);
        service->openImage(words[0].toLocal8Bit().constData());
    }
    return QCoreApplication::exec();
}
