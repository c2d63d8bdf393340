// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A plot under the mouse, and as a file.
#include "gui/plot/Plotter.h"
#include "gui/plot/SavedPlot.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QImage>
#include <QPainter>
#include <QTest>
#include <QWheelEvent>

namespace {

plot::Rows ramp(int count)
{
    plot::Rows rows;
    for (int i = 0; i < count; ++i)
        rows.push_back({double(i), double(i), 0});
    return rows;
}

class PlotterTest : public testing::Test {
protected:
    PlotterTest()
    {
        plotter.show();
        plotter.setPlot(ramp(101), 0, 0, "X Pixel", "Counts");
    }

    /// The x of the rows on show.
    std::pair<double, double> shown() const
    {
        const auto& rows = plotter.picture().rows;
        return {rows.front()[0], rows.back()[0]};
    }
    QPoint at(double x) const
    {
        return {int(std::lround(plotter.picture().scale.pixelOf(x))), 100};
    }
    void turnWheel(QPoint position, int angle)
    {
        QWheelEvent event(position, plotter.mapToGlobal(position), {}, {0, angle}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&plotter, &event);
    }

    Plotter plotter{330, 200, 20};
};

TEST_F(PlotterTest, ShowsTheValuesAtTheCursor)
{
    QTest::mouseMove(&plotter, at(50));
    ASSERT_TRUE(QTest::qWaitFor([&] { return plotter.picture().readout.has_value(); }));
    EXPECT_NEAR(plotter.picture().readout->x, 50, 0.5);
    plotter.clearPlot();
    EXPECT_FALSE(plotter.picture().readout);
    EXPECT_FALSE(plotter.picture().scale.yTicks.empty());
}

TEST_F(PlotterTest, ZoomsByWheelAndDragAndShowsAllAgain)
{
    turnWheel(at(25), 240);
    EXPECT_NEAR(shown().first, 25 - 25 * 0.64, 1.1);
    EXPECT_NEAR(shown().second, 25 + 75 * 0.64, 1.1);
    turnWheel(at(25), -2400);
    EXPECT_EQ(shown(), std::pair(0.0, 100.0));

    const QPoint from = at(40), to = at(60);
    QTest::mousePress(&plotter, Qt::RightButton, {}, from);
    QMouseEvent move(QEvent::MouseMove, to, plotter.mapToGlobal(to), Qt::NoButton, Qt::RightButton,
                     {});
    QCoreApplication::sendEvent(&plotter, &move);
    QTest::mouseRelease(&plotter, Qt::RightButton, {}, to);
    EXPECT_NEAR(shown().first, 40, 1.1);
    EXPECT_NEAR(shown().second, 60, 1.1);
    // New values on the same axis stay zoomed; another axis is shown whole.
    plotter.clearPlot();
    plotter.setPlot(ramp(101), 0, 0, "X Pixel", "Counts");
    EXPECT_NEAR(shown().first, 40, 1.1);
    QTest::mouseDClick(&plotter, Qt::LeftButton, {}, to);
    EXPECT_EQ(shown(), std::pair(0.0, 100.0));
    plotter.showRange({{40, 60}});
    plotter.setPlot(ramp(51), 0, 0, "X Pixel", "Counts");
    EXPECT_EQ(shown(), std::pair(0.0, 50.0));
}

TEST_F(PlotterTest, ArrowsAlternateAndTheBoxMakesItLogarithmic)
{
    for (int i = 0; i < 3; ++i)
        plotter.addLeftRightArrow(i, i + 1, "a");
    EXPECT_TRUE(plotter.picture().arrows[0].level);
    EXPECT_FALSE(plotter.picture().arrows[1].level);
    EXPECT_TRUE(plotter.picture().arrows[2].level);
    const double before = plotter.picture().scale.graph[10].y();
    plotter.findChild<QCheckBox*>()->click();
    EXPECT_LT(plotter.picture().scale.graph[10].y(), before - 20);
}

TEST_F(PlotterTest, IsSavedAsPictureDrawingAndText)
{
    plotter.setPlot({{1, 2, 0}, {2, 7, 1}, {3, 4.5, 0}}, 0, 0, "X", "Y");
    const plot::SavedPlot saved{plotter.picture(), Qt::black, plotter.text()};
    EXPECT_EQ(plot::bytesOf(saved, "txt"), "# X     Y\n1 2\n2 0\n3 4.5\n");
    const QImage png = QImage::fromData(plot::bytesOf(saved, "png"), "PNG");
    EXPECT_EQ(png.size(), plotter.size() * 2);
    EXPECT_EQ(png.pixelColor(plotter.picture().frame.left * 2, 200), QColor(Qt::white));
    EXPECT_TRUE(plot::bytesOf(saved, "svg").contains("<polyline"));
}

TEST_F(PlotterTest, OfWholeNumbersHasGapsAndIsClicked)
{
    plotter.setPlot({{9998, 2, 0}, {9999, 3, 0}, {10000, 0, 1}, {10001, 5, 0}, {10002, 7, 0}}, 0, 0,
                    "Image", "Mean");
    const auto drawing = [this] {
        return plot::bytesOf({plotter.picture(), Qt::black, {}}, "svg");
    };
    const auto joined = drawing().count("<polyline");
    plotter.setWholeX(true);
    EXPECT_EQ(drawing().count("<polyline"), joined + 1) << "one on each side of the gap";
    EXPECT_TRUE(drawing().contains("10000")) << "all digits";
    QTest::mouseMove(&plotter, at(10000.2));
    ASSERT_TRUE(QTest::qWaitFor([&] { return plotter.picture().readout.has_value(); }));
    EXPECT_EQ(plotter.picture().readout->x, 10001);
    std::vector<double> clicked;
    QObject::connect(&plotter, &Plotter::clickedSignal, [&](double x) { clicked.push_back(x); });
    QTest::mouseClick(&plotter, Qt::LeftButton, {}, at(9999.3));
    QTest::mousePress(&plotter, Qt::LeftButton, {}, at(9999));
    QTest::mouseRelease(&plotter, Qt::LeftButton, {}, at(10001));
    EXPECT_EQ(clicked, std::vector<double>{9999}) << "a drag is no click";
}

TEST(PlotPainter, LeavesOutLabelsOfMeasuresThatWouldCoverEachOther)
{
    const auto drawn = [](double begin, const QString& text, bool level) {
        plot::Picture picture;
        picture.frame = {{400, 200}, 40, 20, 20, 40, 0, 0, false};
        picture.rows = ramp(101);
        picture.scale = plot::PlotScale(picture.rows, picture.frame);
        picture.arrows = {{20, 23, "12.34", true}, {begin, begin + 3, text, level}};
        QImage image(picture.frame.size, QImage::Format_RGB32);
        image.fill(Qt::black);
        QPainter painter(&image);
        plot::paint(painter, picture);
        return image;
    };
    EXPECT_EQ(drawn(23, "12.34", true), drawn(23, "", true));
    EXPECT_NE(drawn(23, "12.34", false), drawn(23, "", false)) << "in the other row";
    EXPECT_NE(drawn(60, "12.34", true), drawn(60, "", true));
}

}  // namespace
