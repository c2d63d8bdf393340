// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The height map: heights, colours, turns, and what it has in common with the flat image.
#include "tests/gui/render/BareView.h"
#include "tests/gui/render/DrawnImage.h"

#include <gtest/gtest.h>

#include <QVector3D>

#include <cmath>

namespace {

using morvend::imglib::MColorTable;
using morvend::imglib::MImage;
using render::ViewGeometry;

constexpr int side = 256;

template <class T>
MImage imageOf(T value)
{
    MImage image(side, side, value);
    image.optionalData().set_pixel_mask(MImage(side, side, 0U));
    return image;
}

/// The height of an intensity by the rules of the plot, in doubles.
double heightOf(double value, const ContrastData& contrast)
{
    const double background = contrast.background;
    const double intensity = std::max(0.0, value - background);
    const double range = std::max(1.0, contrast.foreground - background);
    if (intensity <= contrast.foreground)
        return 0.5 * intensity / range;
    const double x =
        std::max(1.0, contrast.logForeground() - background) / std::max(1.0, std::log(range));
    const double slope = 0.5 / std::log(std::max(1.0001, x));
    return slope * (std::log(intensity) - std::log(range)) + 0.5;
}

QColor colourOf(double height)
{
    const auto mixed = [](double from, double to, double part) {
        return from + (to - from) * part;
    };
    if (height <= 0.5) {
        const double grey = mixed(0.7, 1, height / 0.5);
        return QColor::fromRgbF(float(grey), float(grey), float(grey));
    }
    const double rest = mixed(1, 0, std::min(1.0, (height - 0.5) / 0.5));
    return QColor::fromRgbF(float(rest), float(rest), 1);
}

class PlotTest : public testing::Test {
protected:
    PlotTest()
        : _view(QSize(side, side))
    {
        drawer().setPlottingMode(PlottingMode::ThreeDimensional);
    }

    BareView& drawer() { return *_view.drawer; }

    template <class T>
    void open(T value, ContrastData contrast)
    {
        ASSERT_TRUE(_view.open(imageOf(value)));
        _view.service->setContrastData(contrast);
    }

    /// Where the plot puts an image point of a height.
    QPointF screenPoint(double x, double y, double height)
    {
        const ViewGeometry geometry(QSize(side, side), drawer().size(),
                                    _view.service->viewportData());
        const QVector3D clip =
            geometry.plotMatrix().map(QVector3D(float(x / side), float(y / side), float(height)));
        return {(double(clip.x()) + 1) / 2 * side, (1 - double(clip.y())) / 2 * side};
    }

    static int light(const QColor& color) { return color.blue(); }
    static int blueness(const QColor& color) { return color.blue() - color.red(); }
    /// The pixel of greatest weight around a point: a line may stand half a pixel off.
    static QColor heaviestAround(const QImage& picture, QPointF point, int (*weight)(const QColor&))
    {
        QColor result = Qt::black;
        for (int dy = -1; dy <= 1; ++dy) {
            for (int dx = -1; dx <= 1; ++dx) {
                const QPoint place = point.toPoint() + QPoint(dx, dy);
                if (picture.rect().contains(place) &&
                    weight(picture.pixelColor(place)) > weight(result))
                    result = picture.pixelColor(place);
            }
        }
        return result;
    }

    DrawnView<BareView> _view;
};

template <class T>
class PlotHeights : public PlotTest {};

using PlotTypes = testing::Types<int, unsigned int, float, unsigned char, long long>;
TYPED_TEST_SUITE(PlotHeights, PlotTypes);

/// A plain of one intensity is a mesh of one colour; turned, it stands above or below its centre by
/// its height.
TYPED_TEST(PlotHeights, FollowTheContrast)
{
    const ContrastData contrast(50, 10, MColorTable::grey(), false);
    for (const double value :
         {0.0, 10.0, 30.0, 50.0, 60.0, 100.0, 250.0, 3000.0, 500000.0, 40000000.0}) {
        if (double(TypeParam(value)) != value)
            continue;
        this->open(TypeParam(value), contrast);
        const double height = heightOf(value, contrast);
        // Nearly from above, where a height changes little but the size.
        this->_view.service->setViewportData({0, 0, 0, 0, 0});
        const QImage top = this->drawer().grab();
        for (const int vertex : {20, 64, 100}) {
            const QColor shown = PlotTest::heaviestAround(
                top, this->screenPoint(vertex * 2, vertex * 2, height), PlotTest::light);
            const QColor wanted = colourOf(height);
            // Smooth lines let some of the black through.
            const double cover = double(shown.blue()) / wanted.blue();
            EXPECT_GT(cover, 0.45) << value;
            EXPECT_NEAR(shown.red(), wanted.red() * cover, 4) << value;
            EXPECT_NEAR(shown.green(), wanted.green() * cover, 4) << value;
        }
        // From the side the mesh is one line, and nothing is far above or below it.
        this->_view.service->setViewportData({0, 0, 0, -90, 0});
        const QImage profile = this->drawer().grab();
        const QPointF line = this->screenPoint(128, 128, height);
        int first = -1, last = -1;
        for (int y = 0; y < profile.height(); ++y) {
            if (profile.pixelColor(128, y).blue() > 90) {
                first = first < 0 ? y : first;
                last = y;
            }
        }
        if (line.y() > 2 && line.y() < side - 2) {
            EXPECT_NEAR(first, line.y(), 4) << value;
            EXPECT_NEAR(last, line.y(), 4) << value;
        }
    }
}

TEST_F(PlotTest, TheMeshCoversTheVisiblePartOnBlack)
{
    open(30, {50, 10, MColorTable::grey(), false});
    _view.service->setViewportData({-64, -32, 0, 0, 0});
    const QImage picture = drawer().grab();
    EXPECT_EQ(picture.pixelColor(10, 10), QColor(Qt::black));
    EXPECT_EQ(picture.pixelColor(60, 100), QColor(Qt::black));
    EXPECT_NE(heaviestAround(picture, {66, 34}, light), QColor(Qt::black));
    EXPECT_NE(heaviestAround(picture, {250, 250}, light), QColor(Qt::black));

    _view.service->setViewportData({1000, 0, 0, 0, 0});
    QImage black(side, side, QImage::Format_RGB32);
    black.fill(Qt::black);
    EXPECT_EQ(drawer().grab().convertToFormat(QImage::Format_RGB32), black);
    drawer().setPlottingMode(PlottingMode::Flat);
    EXPECT_EQ(drawer().grab().pixelColor(5, 5), QColor(Qt::darkGray));
}

/// A peak of one pixel in a plain stands where the flat image shows it, and turns with the angles.
TEST_F(PlotTest, APeakStandsAtItsPixelAndTurns)
{
    MImage image = imageOf(10);
    static_cast<int*>(image.data())[100 * side + 60] = 50 * 10000;
    ASSERT_TRUE(_view.open(image));
    const ContrastData contrast(50, 10, MColorTable::grey(), false);
    _view.service->setContrastData(contrast);
    const double height = heightOf(500000, contrast);
    for (const auto& [rotationX, rotationY] :
         {std::pair(0.0F, 0.0F), {-60.0F, 0.0F}, {-45.0F, 30.0F}, {-30.0F, -20.0F}}) {
        _view.service->setViewportData({0, 0, 0, rotationX, rotationY});
        const QImage picture = drawer().grab();
        const QPointF tip = screenPoint(60, 100, height);
        ASSERT_TRUE(QRectF(picture.rect()).contains(tip));
        EXPECT_GT(blueness(heaviestAround(picture, tip, blueness)), 25)
            << rotationX << " " << rotationY << " at " << tip.x() << ", " << tip.y();
    }
}

TEST_F(PlotTest, TilesAndTexturesGiveTheSamePlot)
{
    MImage image = imageOf(0);
    auto* pixels = static_cast<int*>(image.data());
    for (int i = 0; i < side * side; ++i)
        pixels[i] = (i % side) / 16 * 7 + (i / side) / 32 * 11;
    ASSERT_TRUE(_view.open(image));
    _view.service->setContrastData({100, 0, MColorTable::grey(), false});
    _view.service->setViewportData({3.3, 5.2, 1, -40, 20});
    const QImage whole = drawer().grab();
    drawer().limitTextureSize(50);
    MImage copy = image;
    copy.data();
    ASSERT_TRUE(_view.open(copy));
    const QImage tiled = drawer().grab();
    // Rounding moves smooth lines by parts of a pixel.
    const auto coarse = [](const QImage& picture) {
        return picture.scaled(16, 16, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    };
    const QImage left = coarse(whole), right = coarse(tiled);
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x)
            EXPECT_NEAR(left.pixelColor(x, y).green(), right.pixelColor(x, y).green(), 12)
                << x << " " << y;
    EXPECT_NE(left, coarse(whole.mirrored())) << "the picture is not empty";
}

}  // namespace
