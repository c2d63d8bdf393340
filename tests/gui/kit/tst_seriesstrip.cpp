// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The line that shows a series and goes through it.
#include "gui/kit/SeriesStrip.h"
#include "tests/support/WaitFor.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QHelpEvent>
#include <QSignalSpy>
#include <QToolTip>
#include <QWheelEvent>

namespace {

TEST(SeriesStripTest, EachNumberHasItsColumnsAndEachColumnItsNumber)
{
    for (const auto& [first, last, width] :
         std::initializer_list<std::array<int, 3>>{{1, 10, 300},
                                                   {0, 1, 7},
                                                   {5, 5, 100},
                                                   {7, 1'000'006, 300},
                                                   {0, std::numeric_limits<int>::max(), 1000},
                                                   {100, 399, 300}}) {
        SCOPED_TRACE(last);
        SeriesStrip strip;
        strip.resize(width, SeriesStrip::FixedHeight);
        strip.setSeries(first, last);
        EXPECT_EQ(strip.numberAt(-5), first);
        EXPECT_LE(strip.numberAt(width + 5), last);
        for (int x = 0; x < width; ++x) {
            const int number = strip.numberAt(x);
            const QRect columns = strip.columns({number, number});
            ASSERT_TRUE(columns.left() <= x && x <= columns.right()) << x;
            ASSERT_LT(columns.right(), width);
        }
        EXPECT_EQ(strip.columns({first, last}).width(), width);
    }
    EXPECT_EQ(SeriesStrip().columns({1, 2}), QRect());
}

TEST(SeriesStripTest, TheHandAsksForEachNumberOnceAndTheWheelForSteps)
{
    SeriesStrip strip;
    strip.resize(100, SeriesStrip::FixedHeight);
    strip.setSeries(1, 10);
    strip.show();
    settle();
    const QSignalSpy requested(&strip, &SeriesStrip::requested);
    const QSignalSpy stepped(&strip, &SeriesStrip::stepped);
    const auto move = [&strip](int x, Qt::MouseButtons held) {
        const QPoint at(x, 5);
        QMouseEvent event(QEvent::MouseMove, at, strip.mapToGlobal(at), Qt::NoButton, held, {});
        QApplication::sendEvent(&strip, &event);
    };
    move(95, Qt::NoButton);
    EXPECT_EQ(requested.count(), 0);
    QTest::mousePress(&strip, Qt::LeftButton, {}, QPoint(15, 5));
    for (const int x : {16, 17, 45, 47, 500})
        move(x, Qt::LeftButton);
    QTest::mouseRelease(&strip, Qt::LeftButton, {}, QPoint(95, 5));
    move(20, Qt::LeftButton);
    QList<int> numbers;
    for (const auto& each : requested)
        numbers << each[0].toInt();
    EXPECT_EQ(numbers, QList<int>({2, 5, 10}));

    for (const int delta : {-60, -60, 240, 30})
        QApplication::sendEvent(&strip, std::make_unique<QWheelEvent>(QPointF(5, 5), QPointF(5, 5),
                                                                      QPoint(), QPoint(0, delta),
                                                                      Qt::NoButton, Qt::NoModifier,
                                                                      Qt::NoScrollPhase, false)
                                            .get());
    ASSERT_EQ(stepped.count(), 2);
    EXPECT_EQ(stepped[0][0].toInt(), 1);
    EXPECT_EQ(stepped[1][0].toInt(), -2);
}

TEST(SeriesStripTest, ShowsWhatIsHeldMissingAndFailedAmongAMillion)
{
    SeriesStrip strip;
    strip.resize(1000, SeriesStrip::FixedHeight);
    strip.setSeries(1, 1'000'000);
    strip.setPosition(500'001);
    strip.setHeld({{100'001, 200'000}});
    strip.setMissing({{300'001, 400'000}});
    strip.setFailed({{700'123, "x.cbf: <b>cut</b>"}, {800'123, "a & b.cbf"}});
    const QImage picture = strip.grab().toImage();
    const auto at = [&](int x) { return picture.pixelColor(x, SeriesStrip::FixedHeight / 2); };
    const QColor present = at(50);
    EXPECT_GT(at(150).blue(), present.blue());
    EXPECT_LT(at(350).lightness(), present.lightness());
    EXPECT_GT(at(700).red(), present.red());
    EXPECT_EQ(at(500), QColor(Qt::white));
    EXPECT_EQ(at(900), present);
    EXPECT_TRUE(strip.textOf(700'123).endsWith(": x.cbf: <b>cut</b>"));
    EXPECT_TRUE(strip.textOf(350'000).endsWith("is missing"));
    EXPECT_TRUE(strip.textOf(150'000).endsWith("read ahead"));
    strip.show();
    const auto toolTipAt = [&strip](QPoint place) {
        QHelpEvent help(QEvent::ToolTip, place, strip.mapToGlobal(place));
        QApplication::sendEvent(&strip, &help);
        return QToolTip::text();
    };
    EXPECT_TRUE(toolTipAt({800, 5}).endsWith("a & b.cbf")) << "no markup";
    EXPECT_TRUE(toolTipAt({700, 5}).contains("&lt;b&gt;cut")) << "nothing bold";
}

}  // namespace
