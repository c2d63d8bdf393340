// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Times of a view of 1200 x 800 pixels, by shaders and by the processor: a pan, below 1:1 also of
// the largest of the covered pixels, a contrast step, a new image, each until its picture is drawn;
// and of the way of an image to the graphics card alone; and of the overlays during a pan. Where no
// display has graphics hardware this measures the software renderer. Needs a display with OpenGL:
// xvfb-run -a -s "-screen 0 1600x1200x24" bench_render.
#include "bench/Peer.h"
#include "gui/kit/Look.h"
#include "gui/render/ImageTextures.h"
#include "gui/render/OpenGlSupport.h"
#include "imagelib/display/BlockMaxima.h"
#include "imagelib/display/MColorTable.h"
#include "tests/gui/render/DrawnImage.h"
#include "tests/gui/render/MouseEvents.h"
#include "tests/support/Regions.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QOpenGLWidget>

#include <chrono>
#include <cstdio>
#include <cstring>

namespace {

using morvend::imglib::MColorTable;
using morvend::imglib::MDrawingEllipse;
using morvend::imglib::MDrawingList;
using morvend::imglib::MDrawingPixel;
using morvend::imglib::MImage;
using tarvik::bench::median;

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

/// Tells so, instead of measuring something else.
bool hasShaders(benchmark::State& state)
{
    if (render::OpenGlSupport::ofThisProcess().info->glslPossible())
        return true;
    state.SkipWithError("no shaders here");
    return false;
}

double milliseconds(std::chrono::steady_clock::duration time)
{
    return std::chrono::duration<double, std::milli>(time).count();
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
    if (state.range(0) != 0 && !hasShaders(state))
        return;
    Scene scene(state);
    scene.zoomPower = static_cast<int>(state.range(2));
    int step = 0;
    for (auto _ : state) {
        scene.move(++step);
        scene.finish();
    }
}

/// The same of the largest of the covered pixels.
void panLargest(benchmark::State& state)
{
    if (state.range(0) != 0 && !hasShaders(state))
        return;
    Scene scene(state);
    scene.view.service->setMinification(Minification::Largest);
    while (!scene.view.service->blockMaxima())
        QCoreApplication::processEvents();
    scene.zoomPower = static_cast<int>(state.range(2));
    int step = 0;
    scene.move(++step);
    scene.finish();
    for (auto _ : state) {
        scene.move(++step);
        scene.finish();
    }
}

/// The making of its reduced images against one copy of the image; argument: with a mask.
void maxima(benchmark::State& state)
{
    using Clock = std::chrono::steady_clock;
    const MImage image = frame<int>(sizes[1], 1);
    const MImage mask(image, 0U);
    MImage copy(image, 0);
    void* to = copy.data();
    std::vector<double> copies, times;
    for (auto _ : state) {
        const auto start = Clock::now();
        std::memcpy(to, image.cdata(), image.dataSize());
        const auto copied = Clock::now();
        benchmark::DoNotOptimize(
            morvend::imglib::BlockMaxima::of(image, state.range(0) != 0 ? &mask : nullptr));
        const auto made = Clock::now();
        copies.push_back(milliseconds(copied - start));
        times.push_back(milliseconds(made - copied));
        state.SetIterationTime(times.back() / 1e3);
    }
    state.counters["copy_ms"] = median(copies);
    state.counters["copies"] = median(times) / median(copies);
}

void contrastStep(benchmark::State& state)
{
    if (state.range(0) != 0 && !hasShaders(state))
        return;
    Scene scene(state);
    scene.zoomPower = static_cast<int>(state.range(2));
    scene.move(0);
    int step = 0;
    for (auto _ : state) {
        scene.view.service->setContrastData({20.0 + ++step % 9, 0, MColorTable::hdr(), true});
        scene.finish();
    }
}

/// A pan of a main view with something over its image.
class OverlaidPan {
public:
    explicit OverlaidPan(bool glsl)
        : _view(QSize(1200, 800), glsl)
    {
        MImage image = frame<int>(sizes[0], 1);
        auto& header = image.optionalData();
        header.set_pixel_mask(MImage(image, 0U));
        header.set_beam_center_x(centre.x());
        header.set_beam_center_y(centre.y());
        header.set_x_pixel_size(172e-6F);
        header.set_y_pixel_size(172e-6F);
        header.set_detector_distance(0.2F);
        header.set_wavelength(1.0F);
        _view.open(image);
        _service.toggleShowResolutionRings(false);
        mouse::enter(*_view.drawer, {600, 400});
    }

    void rings() { _service.toggleShowResolutionRings(true); }
    void peaks()
    {
        PeakData peaks;
        peaks.defined = true;
        peaks.numberOfPeaks = 1000;
        peaks.highlightedPeaks = {0, 1, 2};
        _service.setPeakData(peaks);
    }
    void primitives()
    {
        MDrawingList<> list;
        for (int i = 0; i < 500; ++i) {
            const double x = centre.x() + i % 30 * 20 - 300;
            const double y = centre.y() + i / 30 * 20 - 200;
            list.pushBack(MDrawingPixel(x, y, 255, 255, 0));
            list.pushBack(MDrawingEllipse(x, y, 8, 5, 0.3, 0, 255, 255));
        }
        _service.setPaintList(list);
    }
    void powder() { _service.setStatisticsData(regions::powder(centre.x(), centre.y(), 150, 250)); }
    void values() { _zoomPower = ViewportData::maximumZoomPower; }

    void step()
    {
        const double zoom = std::ldexp(1.0, _zoomPower);
        _service.setViewportData({centre.x() - 600 / zoom + ++_step % 7 / zoom,
                                  centre.y() - 400 / zoom, _zoomPower, 0, 0});
        drawn(*_view.drawer);
    }

private:
    static constexpr QPointF centre{1035, 1080};

    DrawnImage _view;
    TarvikService& _service = *_view.service;
    int _zoomPower = 0;
    int _step = 0;
};

void panUnder(benchmark::State& state, const std::vector<void (OverlaidPan::*)()>& overlays)
{
    if (state.range(0) != 0 && !hasShaders(state))
        return;
    OverlaidPan pan(state.range(0) != 0);
    for (const auto overlay : overlays)
        (pan.*overlay)();
    pan.step();
    for (auto _ : state)
        pan.step();
}

/// One view shows one image after the other: what newImageSlot and the first repaint cost.
template <class T>
void newImage(benchmark::State& state)
{
    if (state.range(0) != 0 && !hasShaders(state))
        return;
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
}

/// Conversion and upload of one image after the other, until the card has them, against plain
/// copies of the same images between the uploads; arguments: size, and whether each is the first of
/// its view, with a mask and textures to be made, or one of a series.
template <class T>
void upload(benchmark::State& state)
{
    if (!hasShaders(state))
        return;
    using Clock = std::chrono::steady_clock;
    const Size size = sizes[state.range(0)];
    MImage images[2] = {frame<T>(size, 1), frame<T>(size, 2)};
    const MImage mask(size.width, size.height, 0U);
    for (MImage& image : images)
        image.optionalData().set_pixel_mask(mask);
    MImage copy(size.width, size.height, T(0));
    void* to = copy.data();

    QOffscreenSurface surface;
    surface.create();
    QOpenGLContext context;
    context.create();
    context.makeCurrent(&surface);
    std::vector<double> copies, uploads;
    render::ImageTextures textures;
    constexpr int warming = 3;
    for (int i = -warming; i < 0 || state.KeepRunning(); ++i) {
        const MImage& image = images[i & 1];
        const auto start = Clock::now();
        std::memcpy(to, image.cdata(), image.dataSize());
        const auto copied = Clock::now();
        if (state.range(1) != 0)
            textures.release();
        context.functions()->glFinish();
        const auto released = Clock::now();
        textures.uploadImage(render::DisplayImage(image), 1 << 14);
        context.functions()->glFinish();
        const auto uploaded = Clock::now();
        if (i < 0)
            continue;
        copies.push_back(milliseconds(copied - start));
        uploads.push_back(milliseconds(uploaded - released));
        state.SetIterationTime(uploads.back() / 1e3);
    }
    textures.release();
    state.counters["copy_ms"] = median(copies);
    state.counters["copies"] = median(uploads) / median(copies);
}

void arguments(benchmark::internal::Benchmark* bench)
{
    bench->ArgNames({"glsl", "size", "zoom"})->Unit(benchmark::kMillisecond);
    bench->MeasureProcessCPUTime()->UseRealTime();
    for (const int glsl : {1, 0}) {
        bench->Args({glsl, 0, 0})->Args({glsl, 0, -2});
        bench->Args({glsl, 1, 0})->Args({glsl, 1, -1})->Args({glsl, 1, -2});
    }
}

BENCHMARK(pan)->Apply(arguments);
void reduced(benchmark::internal::Benchmark* bench)
{
    bench->ArgNames({"glsl", "size", "zoom"})->Unit(benchmark::kMillisecond);
    bench->MeasureProcessCPUTime()->UseRealTime();
    for (const int glsl : {1, 0})
        bench->Args({glsl, 1, -1})->Args({glsl, 1, -2});
}
BENCHMARK(panLargest)->Apply(reduced);
BENCHMARK(maxima)->ArgName("mask")->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond)->UseManualTime();
BENCHMARK(contrastStep)->Apply(arguments);
void bothWays(benchmark::internal::Benchmark* bench)
{
    bench->ArgName("glsl")->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond);
    bench->MeasureProcessCPUTime()->UseRealTime();
}

using Over = std::vector<void (OverlaidPan::*)()>;
BENCHMARK_CAPTURE(panUnder, cursor_box, Over{})->Apply(bothWays);
BENCHMARK_CAPTURE(panUnder, rings, Over{&OverlaidPan::rings})->Apply(bothWays);
BENCHMARK_CAPTURE(panUnder, peaks_1000, Over{&OverlaidPan::peaks})->Apply(bothWays);
BENCHMARK_CAPTURE(panUnder, primitives_1000, Over{&OverlaidPan::primitives})->Apply(bothWays);
BENCHMARK_CAPTURE(panUnder, powder_ring, Over{&OverlaidPan::powder})->Apply(bothWays);
BENCHMARK_CAPTURE(panUnder, values, Over{&OverlaidPan::values})->Apply(bothWays);
BENCHMARK_CAPTURE(panUnder, all,
                  Over{&OverlaidPan::rings, &OverlaidPan::peaks, &OverlaidPan::primitives,
                       &OverlaidPan::powder})
    ->Apply(bothWays);

BENCHMARK(newImage<int>)->Args({1, 1})->Args({0, 1})->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(newImage<unsigned short>)->Args({1, 1})->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(newImage<unsigned char>)->Args({1, 1})->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(newImage<double>)->Args({1, 1})->Unit(benchmark::kMillisecond)->UseRealTime();

void bothSizes(benchmark::internal::Benchmark* bench)
{
    bench->ArgNames({"size", "first"})->Args({0, 0})->Args({1, 0})->Args({1, 1});
    bench->Unit(benchmark::kMillisecond)->UseManualTime();
}

BENCHMARK(upload<signed char>)->Apply(bothSizes);
BENCHMARK(upload<unsigned char>)->Apply(bothSizes);
BENCHMARK(upload<short>)->Apply(bothSizes);
BENCHMARK(upload<unsigned short>)->Apply(bothSizes);
BENCHMARK(upload<int>)->Apply(bothSizes);
BENCHMARK(upload<unsigned int>)->Apply(bothSizes);
BENCHMARK(upload<long long>)->Apply(bothSizes);
BENCHMARK(upload<unsigned long long>)->Apply(bothSizes);
BENCHMARK(upload<float>)->Apply(bothSizes);
BENCHMARK(upload<double>)->Apply(bothSizes);

}  // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    look::beforeApplication();
    QApplication application(argc, argv);
    if (!render::OpenGlSupport::ofThisProcess().usable) {
        std::fputs("bench_render: nothing is measured without OpenGL\n", stderr);
        std::_Exit(1);
    }
    benchmark::RunSpecifiedBenchmarks();
    std::exit(0);  // without taking the graphics driver apart
}
