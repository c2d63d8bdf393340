// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The height map: heights, colours, turns, and what it has in common with the flat image.
#include "tests/gui/render/SharedView.h"

#include <QVector3D>

#include <cmath>

namespace {

using morvend::imglib::MColorTable;
using morvend::imglib::MImage;

constexpr int side = 256;
const ContrastData contrast(50, 10, MColorTable::grey(), false);

/// The height of an intensity by the rules of the plot, in doubles.
double heightOf(double value)
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
    if (height <= 0.5) {
        const auto grey = float(0.7 + 0.3 * height / 0.5);
        return QColor::fromRgbF(grey, grey, grey);
    }
    const auto rest = float(1 - std::min(1.0, (height - 0.5) / 0.5));
    return QColor::fromRgbF(rest, rest, 1);
}

class PlotTest : public SharedView<BareView> {
protected:
    PlotTest()
        : SharedView(QSize(side, side))
    {}
    void open(const MImage& image)
    {
        ASSERT_TRUE(_view.openAnew(image));
        service().setContrastData(contrast);
        drawer().setPlottingMode(PlottingMode::ThreeDimensional);
    }
    QImage turned(float rotationX, float rotationY = 0)
    {
        service().setViewportData({0, 0, 0, rotationX, rotationY});
        return drawer().grab();
    }
    /// Where the plot puts an image point of a height.
    QPointF screenPoint(double x, double y, double height)
    {
        const render::ViewGeometry geometry(QSize(side, side), drawer().size(), viewport());
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
        for (int i = 0; i < 9; ++i) {
            const QPoint place = point.toPoint() + QPoint(i % 3 - 1, i / 3 - 1);
            if (picture.rect().contains(place) &&
                weight(picture.pixelColor(place)) > weight(result))
                result = picture.pixelColor(place);
        }
        return result;
    }
    /// A plain of one intensity is a mesh of one colour; turned, it stands above or below its
    /// centre by its height.
    template <class T>
    void expectPlain(T value)
    {
        SCOPED_TRACE(value);
        open(images::uniform(side, side, value));
        const double height = heightOf(double(value));
        const QColor wanted = colourOf(height);
        // Nearly from above, where a height changes little but the size.
        const QImage top = turned(0);
        for (const int vertex : {20, 64, 100}) {
            const QColor shown =
                heaviestAround(top, screenPoint(vertex * 2, vertex * 2, height), light);
            // Smooth lines let some of the black through.
            const double cover = double(shown.blue()) / wanted.blue();
            EXPECT_GT(cover, 0.45);
            EXPECT_NEAR(shown.red(), wanted.red() * cover, 4);
            EXPECT_NEAR(shown.green(), wanted.green() * cover, 4);
        }
        // From the side the mesh is one line, and nothing is far above or below it.
        const QImage profile = turned(-90);
        const QPointF line = screenPoint(128, 128, height);
        if (line.y() <= 2 || line.y() >= side - 2)
            return;
        int first = -1, last = -1;
        for (int y = 0; y < profile.height(); ++y)
            if (profile.pixelColor(128, y).blue() > 90) {
                first = first < 0 ? y : first;
                last = y;
            }
        EXPECT_NEAR(first, line.y(), 4);
        EXPECT_NEAR(last, line.y(), 4);
    }
};

TEST_F(PlotTest, HeightsFollowTheContrastForAllTypes)
{
    for (const int value : {0, 10, 30, 50, 60, 100, 250, 3000, 500000, 40000000})
        expectPlain(value);
    for (const int value : {10, 60, 500000}) {
        expectPlain(unsigned(value));
        expectPlain(float(value));
    }
    expectPlain<unsigned char>(250);
    expectPlain<long long>(3000);
}

TEST_F(PlotTest, TheMeshCoversTheVisiblePartOnOpaqueBlack)
{
    open(images::uniform(side, side, 30));
    look(-64, -32, 0);
    const QImage picture = drawer().grab();
    EXPECT_EQ(picture.pixelColor(10, 10), QColor(Qt::black));
    EXPECT_EQ(picture.pixelColor(60, 100), QColor(Qt::black));
    EXPECT_NE(heaviestAround(picture, {66, 34}, light), QColor(Qt::black));
    EXPECT_NE(heaviestAround(picture, {250, 250}, light), QColor(Qt::black));
    EXPECT_EQ(picture.convertToFormat(QImage::Format_RGB32).convertToFormat(picture.format()),
              picture);

    look(1000, 0, 0);
    QImage black(side, side, QImage::Format_ARGB32_Premultiplied);
    black.fill(Qt::black);
    EXPECT_EQ(drawer().grab().convertToFormat(black.format()), black);
    drawer().setPlottingMode(PlottingMode::Flat);
    EXPECT_EQ(drawer().grab().pixelColor(5, 5), QColor(Qt::darkGray));
}

/// A peak of one pixel in a plain stands where the flat image shows it, and turns with the angles.
TEST_F(PlotTest, APeakStandsAtItsPixelAndTurns)
{
    open(images::of<int>(side, side,
                         [](int x, int y) { return x == 60 && y == 100 ? 500000 : 10; }));
    for (const auto& [rotationX, rotationY] :
         {std::pair(0.0F, 0.0F), {-60.0F, 0.0F}, {-45.0F, 30.0F}, {-30.0F, -20.0F}}) {
        const QImage picture = turned(rotationX, rotationY);
        const QPointF tip = screenPoint(60, 100, heightOf(500000));
        ASSERT_TRUE(QRectF(picture.rect()).contains(tip));
        EXPECT_GT(blueness(heaviestAround(picture, tip, blueness)), 25)
            << rotationX << " " << rotationY << " at " << tip.x() << ", " << tip.y();
    }
}

TEST_F(PlotTest, TilesAndTexturesGiveTheSamePlot)
{
    MImage image =
        images::of<int>(side, side, [](int x, int y) { return x / 16 * 7 + y / 32 * 11; });
    // Rounding moves smooth lines by parts of a pixel.
    const auto coarse = [&] {
        open(image);
        setGrey(100);
        service().setViewportData({3.3, 5.2, 1, -40, 20});
        return drawer().grab().scaled(16, 16, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    };
    const QImage whole = coarse();
    drawer().limitTextureSize(50);
    image.data();  // pixels of its own
    const QImage tiled = coarse();
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x)
            EXPECT_NEAR(whole.pixelColor(x, y).green(), tiled.pixelColor(x, y).green(), 12)
                << x << " " << y;
    EXPECT_NE(whole, whole.mirrored()) << "the picture is not empty";
}

}  // namespace
