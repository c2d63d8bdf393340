// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Measures how long the event loop of the viewer stands still while it steps through a series.
//
//   measure-event-loop [--window | --drag | --views] FILE [STEPS]
//
// With --drag a hand runs over the series strip of a window, so many moves at 60 a second; with
// --views it does so in one of twenty views of the file, which are opened before and closed after.
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
#include <functional>
#include <memory>
#include <vector>

namespace {

/// Notes the times between the ticks of a timer of 1 ms.
class GapMeter : public QObject {
public:
    GapMeter()
    {
        _timer.setTimerType(Qt::PreciseTimer);
        connect(&_timer, &QTimer::timeout, this, &GapMeter::_note);
    }
    void start()
    {
        _gaps.clear();
        _clock.start();
        _timer.start(1);
    }
    void print(const char* what, int steps)
    {
        _note();  // the gap that has not ended yet
        std::sort(_gaps.begin(), _gaps.end());
        const auto share = [&](double part) {
            return _gaps[static_cast<std::size_t>(part * static_cast<double>(_gaps.size() - 1))];
        };
        std::printf("%d %s, %zu ticks: median %.2f ms, 99 of 100 below %.2f ms, longest %.2f ms\n",
                    steps, what, _gaps.size(), share(0.5), share(0.99), share(1));
    }

private:
    void _note()
    {
        _gaps.push_back(static_cast<double>(_clock.nsecsElapsed()) / 1e6);
        _clock.start();
    }

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
                meter.print("steps", steps);
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

/// Drags over the strip, there and back, so many moves.
void drag(SubWindow* view, GapMeter& meter, int moves, const std::function<void()>& done)
{
    TarvikService* service = view->service();
    auto* timer = new QTimer(view);
    const auto shown = std::make_shared<int>(0);
    QObject::connect(service, &TarvikService::newImageSignal, timer, [=] { ++*shown; });
    QObject::connect(timer, &QTimer::timeout, view, [=, &meter, move = 0]() mutable {
        auto* strip = view->findChild<SeriesStrip*>();
        const int range = strip->width() - 1;
        const auto send = [&](QEvent::Type type) {
            // A triangle: two seconds from end to end.
            const int phase = move * range / 120 % (2 * range);
            const QPoint at(phase < range ? phase : 2 * range - phase, 5);
            QMouseEvent event(type, at, strip->mapToGlobal(at), Qt::LeftButton, Qt::LeftButton, {});
            QCoreApplication::sendEvent(strip, &event);
        };
        if (move == 0) {
            *shown = 0;
            meter.start();
            send(QEvent::MouseButtonPress);
        } else {
            send(QEvent::MouseMove);
        }
        if (move++ < moves)
            return;
        timer->stop();
        meter.print("moves", moves);
        std::printf("%d images shown\n", *shown);
        done();
    });
    timer->start(16);
}

/// Twenty views of a file: opens and tiles them, drags over the strip of the first, closes them.
void live(MainWindow& window, const QString& file, GapMeter& meter, int moves)
{
    constexpr int Views = 20;
    meter.start();
    window.openFiles(QStringList(Views, file));
    const auto arrived = std::make_shared<int>(0);
    const auto close = [&] {
        meter.start();
        auto* timer = new QTimer(&window);
        QObject::connect(timer, &QTimer::timeout, &window, [&] {
            if (SubWindow* view = window.subWindows().value(0))
                return void(view->close());
            meter.print("views closed", Views);
            QCoreApplication::exit(0);
        });
        timer->start(50);
    };
    for (SubWindow* view : window.subWindows()) {
        auto* once = new QObject(view);
        QObject::connect(view->service(), &TarvikService::newImageSignal, once,
                         [=, &window, &meter] {
                             delete once;
                             if (++*arrived < Views)
                                 return;
                             meter.print("views opened", Views);
                             QTimer::singleShot(1000, &window, [=, &window, &meter] {
                                 drag(window.subWindows().first(), meter, moves, close);
                             });
                         });
    }
}

}  // namespace

int main(int argc, char** argv)
{
    look::beforeApplication();
    QApplication application(argc, argv);
    QStringList words = QCoreApplication::arguments().mid(1);
    const bool drags = words.removeAll(QStringLiteral("--drag")) > 0;
    const bool lives = words.removeAll(QStringLiteral("--views")) > 0;
    const bool withWindow = words.removeAll(QStringLiteral("--window")) > 0 || drags || lives;
    if (words.isEmpty()) {
        std::fputs("usage: measure-event-loop [--window | --drag | --views] FILE [STEPS]\n",
                   stderr);
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
        if (lives) {
            live(*window, words[0], meter, steps);
            return QCoreApplication::exec();
        }
        SubWindow* view = window->newSubWindow();
        service = view->service();
        if (drags) {
            auto* once = new QObject(view);
            QObject::connect(service, &TarvikService::newImageSignal, once, [=, &meter] {
                delete once;
                drag(view, meter, steps, [] { QCoreApplication::exit(0); });
            });
        } else {
            step(service, meter, steps);
        }
        view->loadFile(words[0]);
    } else {
        service = core.newService(QStringLiteral("1"));
        step(service, meter, steps);
        service->openImage(words[0].toLocal8Bit().constData());
    }
    return QCoreApplication::exec();
}
