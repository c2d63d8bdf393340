// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Below 1:1 the largest of the covered pixels: the same picture by shaders, by the processor and by
// views without surface, which is that of plain loops.
#include "imagelib/display/MColorMap.h"
#include "tests/gui/render/SharedView.h"

namespace {

using morvend::imglib::MColorTable;
using morvend::imglib::MImage;

/// Spots of one pixel, gaps with larger pixels in them, defective and saturated ones.
MImage spotted(int seed)
{
    MImage image = images::of<int>(311, 187, [seed](int x, int y) {
        return x % 31 == 5 ? 99 : (x * 71 + y * 37 + seed) % 97 == 0 ? 100 + x % 15 : (x + y) % 20;
    });
    image.optionalData().set_pixel_mask(images::of<unsigned int>(311, 187, [](int x, int y) {
        return x % 31 == 5 || (x > 100 && x < 120 && y > 60) ? 1 : (x * y) % 41 == 3 ? 4 : 0;
    }));
    image.optionalData().set_saturation_value(112);
    return image;
}

/// The colours of the largest pixels, block by block.
MImage reducedColours(const TarvikService& service, int side)
{
    const MImage& image = service.image();
    const MImage& mask = service.mask();
    const int width = (image.width() + side - 1) / side;
    const int height = (image.height() + side - 1) / side;
    MImage largest(width, height, 0);
    MImage marks(width, height, 0U);
    for (int i = 0; i < width * height; ++i) {
        auto& value = static_cast<int*>(largest.data())[i];
        auto& mark = static_cast<unsigned int*>(marks.data())[i];
        value = image.pixel<int>(i % width * side, i / width * side, 0);
        mark = mask.pixel<unsigned int>(i % width * side, i / width * side, 0);
        bool good = false;
        for (int k = 0; k < side * side; ++k) {
            const int x = i % width * side + k % side;
            const int y = i / width * side + k / side;
            if ((mask.pixel<unsigned int>(x, y, 1) & 31) != 0)
                continue;
            value = good ? std::max(value, image.pixel<int>(x, y, 0)) : image.pixel<int>(x, y, 0);
            mark = 0;
            good = true;
        }
    }
    const ContrastData contrast = service.contrastData();
    MImage colours;
    morvend::imglib::MColorMap::rgb(colours, largest, contrast.foreground, contrast.background,
                                    contrast.logForeground(), *contrast.colorTable, "ARGB", &marks,
                                    nullptr, 112, service.highlightDefective(),
                                    service.highlightSaturated());
    return colours;
}

/// Compares a picture with the blocks that the nearest pixels are in.
/// @returns the first difference in words, empty for none
std::string difference(const QImage& picture, const TarvikService& service, double ratio,
                       QRgb background)
{
    const ViewportData viewport = service.viewportData();
    const double scale = viewport.zoom() * ratio;
    const int side = scale >= 1 ? 1 : scale >= 0.5 ? 2 : 4;
    const MImage colours = reducedColours(service, side);
    for (int py = 0; py < picture.height(); ++py)
        for (int px = 0; px < picture.width(); ++px) {
            const auto block = [&](int pixel, double offset) {
                return int(std::floor((std::ceil((pixel + 0.5) / scale + offset) - 1) / side));
            };
            const auto wanted = colours.pixel<unsigned int>(
                block(px, viewport.offsetX), block(py, viewport.offsetY), background);
            if (const QRgb shown = picture.pixel(px, py); shown != wanted)
                return QString::asprintf("at (%d, %d): %08x, not %08x, power %d, ratio %g", px, py,
                                         shown, wanted, viewport.zoomPower, ratio)
                    .toStdString();
        }
    return {};
}

/// Goes through zooms, offsets and scales of the desktop.
template <class View>
void expectLargestPixels(DrawnView<View>& view)
{
    TarvikService& service = *view.service;
    ASSERT_TRUE(view.openAnew(spotted(0)));
    service.setContrastData({120, 3, MColorTable::grey(), false});
    service.setMinification(Minification::Largest);
    ASSERT_TRUE(waitFor([&] { return service.blockMaxima() != nullptr; }));
    const auto expectEverywhere = [&](const char* what) {
        for (const auto& [x, y] : {std::pair(0.0, 0.0), {-50, -20}, {3, 1}, {17.6, -3.1}, {310, 0}})
            for (const int power : {-2, -1}) {
                service.setViewportData({x, y, power, 0, 0});
                for (const double ratio : {1.0, 1.5})
                    EXPECT_EQ(difference(view.drawer->grab(ratio), service, ratio,
                                         view.drawer->backgroundColor().rgb()),
                              "")
                        << what << ' ' << x << ' ' << y;
            }
    };
    expectEverywhere("first image");
    service.setContrastData({60, 0, MColorTable::grey(), false});
    service.toggleHighlightDefective(false);
    expectEverywhere("other colours");
    bool whole = false;
    QObject::connect(&service, &TarvikService::newImageSignal, view.drawer.get(),
                     [&] { whole = service.blockMaxima() != nullptr; });
    ASSERT_TRUE(view.open(spotted(5)));
    EXPECT_TRUE(whole) << "the image comes with its largest pixels";
    expectEverywhere("next image");

    const QImage largest = view.drawer->grab();
    service.setMinification(Minification::Nearest);
    EXPECT_EQ(service.blockMaxima(), nullptr);
    EXPECT_NE(view.drawer->grab(), largest);
}

class LargestOnAnySurface : public testing::TestWithParam<bool> {};

TEST_P(LargestOnAnySurface, IsThatOfEachBlock)
{
    DrawnView<BareView> view(QSize(200, 120), GetParam());
    expectLargestPixels(view);
}

INSTANTIATE_TEST_SUITE_P(Views, LargestOnAnySurface, testing::Bool(), [](const auto& row) {
    return row.param ? "WithShaders" : "WithoutShaders";
});

struct ViewWithoutSurface : BareView {
    ViewWithoutSurface(TarvikService* service, bool useGlsl)
        : BareView(service, useGlsl, nullptr, SurfaceUse::Never)
    {}
};

TEST(LargestWithoutSurface, IsThatOfEachBlock)
{
    DrawnView<ViewWithoutSurface> view(QSize(200, 120));
    expectLargestPixels(view);
}

}  // namespace
