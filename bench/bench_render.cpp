// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Times of a view of 1200 x 800 pixels, by shaders and by the processor: a pan, a contrast step, a
// new image, each until its picture is drawn. Where no display has graphics hardware this measures
// the software renderer. Needs a display: xvfb-run -a -s "-screen 0 1600x1200x24" bench_render.
#include "gui/kit/Look.h"
#include "imagelib/display/MColorTable.h"
#include "tests/gui/render/BareView.h"
#include "tests/gui/render/DrawnImage.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QOpenGLWidget>

#include <cstring>

namespace {

using morvend::imglib::MColorTable;
using morvend::imglib::MImage;

struct Size {
    int width, height;
};
constexpr Size sizes[] = {{2070, 2167}, {4148, 4362}};

template <class T>
MImage frame(const Size& size, int seed)
{
    MImage image(size.width, size.height, T(0));
    auto* pixels = static_cast<T*>(image.data());
    unsigned int state = static_cast<unsigned int>(seed);
    for (std::size_t i = 0; i < image.size(); ++i) {
        state = state * 1664525U + 1013904223U;
        pixels[i] = static_cast<T>((state >> 24) % 20 + (state % 997 == 0 ? 10000 : 0));
    }
    return image;
}

/// Draws, and waits until the picture is on the screen: a repaint that follows another one closely
/// is only put on the event loop by Qt.
void drawn(ImageDrawer& view)
{
    bool swapped = false;
    auto* canvas = view.findChild<QOpenGLWidget*>();
    const auto connection = QObject::connect(canvas, &QOpenGLWidget::frameSwapped, canvas,
                                             [&swapped] { swapped = true; });
    view.update();
    while (!swapped)
        QCoreApplication::processEvents();
    QObject::disconnect(connection);
}

/// A view at zoom 1/4 to 1 over an image; arguments: shaders, size, zoom power.
struct Scene {
    explicit Scene(const benchmark::State& state)
        : size(sizes[state.range(1)])
        , view(QSize(1200, 800), state.range(0) != 0)
        , mask(size.width, size.height, 0U)
    {
        MImage image = frame<int>(size, 1);
        image.optionalData().set_pixel_mask(mask);
        view.open(image);
        view.service->setContrastData({20, 0, MColorTable::hdr(), false});
        move(0);
        finish();
    }

    void move(int step)
    {
        view.service->setViewportData({100.0 + step % 7, 50.0 + step % 5, zoomPower, 0, 0});
    }
    void finish() { drawn(*view.drawer); }

    Size size;
    int zoomPower = 0;
    DrawnView<BareView> view;
    MImage mask;
};

void pan(benchmark::State& state)
{
    Scene scene(state);
    scene.zoomPower = static_cast<int>(state.range(2));
    int step = 0;
    for (auto _ : state) {
        scene.move(++step);
        scene.finish();
    }
}

void contrastStep(benchmark::State& state)
{
    Scene scene(state);
    scene.zoomPower = static_cast<int>(state.range(2));
    scene.move(0);
    int step = 0;
    for (auto _ : state) {
        scene.view.service->setContrastData({20.0 + ++step % 9, 0, MColorTable::hdr(), true});
        scene.finish();
    }
}

/// One view shows one image after the other: what newImageSlot and the first repaint cost.
template <class T>
void newImage(benchmark::State& state)
{
    Scene scene(state);
    MImage images[2] = {frame<T>(scene.size, 1), frame<T>(scene.size, 2)};
    for (MImage& image : images)
        image.optionalData().set_pixel_mask(scene.mask);
    struct Feed : BareView {
        using BareView::BareView;
        MImage baseImage() const override { return shown; }
        MImage shown;
    };
    Feed feed(scene.view.service, state.range(0) != 0);
    feed.shown = images[0];
    feed.resize(1200, 800);
    feed.show();
    (void)QTest::qWaitForWindowExposed(&feed);
    settle();
    const auto show = [&](int i) {
        feed.shown = images[i & 1];
        feed.newImageSlot();
        drawn(feed);
    };
    for (int i = 0; i < 3; ++i)
        show(i);
    int i = 1;
    for (auto _ : state)
        show(i++);
    // Against one copy of the pixels, in the same run.
    MImage copy = images[0];
    void* to = copy.data();
    double best = 1e9;
    for (int k = 0; k < 7; ++k) {
        QElapsedTimer clock;
        clock.start();
        std::memcpy(to, images[1].cdata(), copy.dataSize());
        best = std::min(best, double(clock.nsecsElapsed()) / 1e6);
    }
    state.counters["copy_ms"] = best;
}

void arguments(benchmark::internal::Benchmark* bench)
{
    bench->ArgNames({"glsl", "size", "zoom"})->Unit(benchmark::kMillisecond)->MinTime(0.3);
    for (const int glsl : {1, 0}) {
        bench->Args({glsl, 0, 0})->Args({glsl, 0, -2});
        bench->Args({glsl, 1, 0})->Args({glsl, 1, -2});
    }
}

BENCHMARK(pan)->Apply(arguments)->UseRealTime();
BENCHMARK(contrastStep)->Apply(arguments)->UseRealTime();
BENCHMARK(newImage<int>)->Args({1, 1})->Args({0, 1})->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(newImage<unsigned short>)->Args({1, 1})->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(newImage<unsigned char>)->Args({1, 1})->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(newImage<double>)->Args({1, 1})->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    look::beforeApplication();
    QApplication application(argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    std::exit(0);  // without taking the graphics driver apart
}
