// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The view panel under mouse and keyboard.
#include "gui/panels/ColorModeSelector.h"
#include "gui/panels/FastContrastControl.h"
#include "gui/panels/GotoButton.h"
#include "gui/panels/GotoWidget.h"
#include "gui/panels/Histogram.h"
#include "gui/panels/ViewBar.h"
#include "gui/render/ImageDrawerThumbnail.h"
#include "tests/gui/render/DrawnImage.h"
#include "tests/gui/render/MouseEvents.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QSlider>
#include <QTimer>
#include <QToolButton>

namespace {

using morvend::imglib::MColorTable;

template <class Widget>
Widget* child(const QWidget& parent, const QString& text)
{
    for (Widget* each : parent.findChildren<Widget*>())
        if (each->text() == text || each->toolTip() == text)
            return each;
    return nullptr;
}

class ViewBarTest : public testing::Test {
protected:
    ViewBarTest()
        : view(QSize(300, 200))
        , bar(1, view.service, view.drawer.get())
        , histogram(*bar.findChild<Histogram*>())
    {
        bar.show();
        view.open(images::patterned(60, 40));
        view.service->setContrastData({50, 10, MColorTable::hdr(), false});
        (void)QTest::qWaitForWindowExposed(&bar, Patience);
        settle();
    }

    ContrastData contrast() const { return view.service->contrastData(); }
    QPoint at(double value) const { return {histogram.model().scale().pixelOf(value), 100}; }
    QDoubleSpinBox* box(int place) const
    {
        return histogram.findChildren<QDoubleSpinBox*>().at(place);
    }
    static void type(QWidget* field, const QString& text)
    {
        field->setFocus();
        QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(field, text);
        QTest::keyClick(field, Qt::Key_Return);
    }

    DrawnImage view;
    ViewBar bar;
    Histogram& histogram;
};

TEST_F(ViewBarTest, ZonesAreDraggedAndLit)
{
    QSignalSpy sent(view.service, &TarvikService::newContrastSignal);
    const QPoint foreground(at(50) + QPoint(4, 0));
    mouse::drag(histogram, Qt::LeftButton, foreground, {foreground + QPoint(10, 0)});
    EXPECT_NEAR(contrast().foreground, histogram.model().scale().valueAt(at(50).x() + 10), 1e-9);
    EXPECT_EQ(contrast().background, 10);
    ASSERT_EQ(sent.count(), 2);
    EXPECT_TRUE(sent[0][0].value<ContrastData>().dragUpdate);
    EXPECT_FALSE(sent[1][0].value<ContrastData>().dragUpdate) << "a drag ends with a full pass";

    const double moved = contrast().foreground;
    mouse::drag(histogram, Qt::LeftButton, at(10), {at(10) - QPoint(500, 0)});
    EXPECT_EQ(contrast().background, histogram.model().span().minimum);
    EXPECT_EQ(contrast().foreground, moved);

    mouse::hover(histogram, {305, 100});
    EXPECT_EQ(histogram.picture().foregroundZone.red(), 200);
    EXPECT_EQ(histogram.picture().backgroundZone.red(), 150);
    EXPECT_EQ(histogram.cursor().shape(), Qt::CrossCursor);
    mouse::hover(histogram, {100, 180});
    EXPECT_EQ(histogram.picture().foregroundZone.red(), 150);
    EXPECT_EQ(histogram.cursor().shape(), Qt::ArrowCursor);
}

TEST_F(ViewBarTest, LevelsStopAtEachOtherAndAtTheBorders)
{
    const QPoint between = (at(50) + at(10)) / 2;
    const int distance = at(50).x() - at(10).x();
    mouse::drag(histogram, Qt::LeftButton, between, {between + QPoint(400, 0)});
    EXPECT_NEAR(contrast().foreground, histogram.model().span().maximum, 1e-9);
    EXPECT_NEAR(histogram.model().foreground() - histogram.model().background(), distance, 1)
        << "the background does not run on alone";
    const double background = contrast().background;
    const QPoint foreground(308, 100);
    mouse::drag(histogram, Qt::LeftButton, foreground, {foreground - QPoint(400, 0)});
    EXPECT_EQ(contrast().foreground, background + 1e-6);
    EXPECT_EQ(contrast().background, background);
    mouse::drag(histogram, Qt::LeftButton, {35, 30}, {{200, 30}});
    EXPECT_EQ(contrast().background, background) << "above the zones";
}

TEST_F(ViewBarTest, ADragEndsWhereTheMouseLeaves)
{
    const QPoint start(at(50) + QPoint(4, 0));
    mouse::send(histogram, QEvent::MouseButtonPress, start, Qt::LeftButton, Qt::LeftButton);
    mouse::send(histogram, QEvent::MouseMove, start + QPoint(5, 0), Qt::NoButton, Qt::LeftButton);
    EXPECT_TRUE(contrast().dragUpdate);
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&histogram, &leave);
    EXPECT_FALSE(contrast().dragUpdate);
    const double before = contrast().foreground;
    mouse::send(histogram, QEvent::MouseMove, start + QPoint(6, 0), Qt::NoButton, Qt::LeftButton);
    EXPECT_LT(contrast().foreground, before * 1.1) << "one pixel further";
    EXPECT_GT(contrast().foreground, before);
}

TEST_F(ViewBarTest, LogBoxesChangeTheAxes)
{
    const auto& scale = histogram.model().scale();
    QTest::mouseClick(child<QCheckBox>(histogram, "Plot intensiy on a logarithmic scale"),
                      Qt::LeftButton);
    EXPECT_FALSE(scale.logX);
    EXPECT_TRUE(scale.logY);
    EXPECT_NEAR(at(50).x(), 40 + 260 * 60 / 120, 1) << "50 of -10 to 110";
    QTest::mouseClick(child<QCheckBox>(histogram, "Plot # pixels on a logarithmic scale"),
                      Qt::LeftButton);
    EXPECT_FALSE(scale.logY);
    EXPECT_NEAR(scale.heightOf(*std::ranges::max_element(histogram.model().bins().linearCounts)),
                90, 1e-9);
}

TEST_F(ViewBarTest, SpinBoxesSetTheLevels)
{
    type(box(1), "42.5");
    EXPECT_EQ(contrast().foreground, 42.5);
    type(box(0), "42.5");
    EXPECT_LT(contrast().background, 42.5) << "stays below the foreground";
    EXPECT_FALSE(contrast().dragUpdate);
    view.service->setContrastData({30, 20, MColorTable::hdr(), false});
    EXPECT_EQ(box(0)->value(), 20);
    EXPECT_EQ(box(1)->value(), 30);
    EXPECT_EQ(box(1)->singleStep(), 1);
}

TEST_F(ViewBarTest, SpinBoxesHoldLevelsOfAnySize)
{
    view.open(images::of<float>(50, 40, [](int x, int y) { return 1e-7 * (x + y); }));
    for (const auto& [typed, level, shown] :
         {std::tuple("2e-7", 2e-7, "2e-7"), std::tuple("0.00000012", 1.2e-7, "1.2e-7"),
          std::tuple("9.99996e-8", 9.99996e-8, "1e-7"),
          std::tuple("1.23456e-7", 1.23456e-7, "1.235e-7"), std::tuple("1e9", 8.9e-6, "8.9e-6")}) {
        type(box(1), typed);
        EXPECT_NEAR(contrast().foreground, level, level * 1e-6);
        EXPECT_EQ(box(1)->text(), shown);
    }
    for (const auto& [level, shown] :
         {std::pair(999.1234, "999.1234"), std::pair(54942.0, "54942.00"),
          std::pair(12345678.0, "12345678"), std::pair(1e9, "1e+9"),
          std::pair(123456789.0, "1.235e+8"), std::pair(1.5e12, "1.5e+12")}) {
        view.service->setContrastData({level, 1e-7, MColorTable::hdr(), false});
        EXPECT_EQ(box(1)->text(), shown) << "the end of a number is not cut off";
    }
    view.service->setContrastData({3e-7, 1e-7, MColorTable::hdr(), false});
    EXPECT_EQ(box(0)->text(), "1e-7");
    type(box(0), "2.5e-7");
    EXPECT_NEAR(contrast().background, 2.5e-7, 1e-12) << "close to the foreground";
}

TEST_F(ViewBarTest, AutoContrastIsThatOfTheStatistics)
{
    QTest::mouseClick(child<QPushButton>(histogram, "Auto Contrast"), Qt::LeftButton);
    EXPECT_EQ(contrast().foreground, view.service->statistics()->foreground);
    EXPECT_EQ(contrast().background, view.service->statistics()->background);
    EXPECT_EQ(contrast().colorTable, MColorTable::hdr());
}

TEST_F(ViewBarTest, ContrastSpansAChosenPartOfThePixels)
{
    // Left and right half have values of their own; only the right one is in view.
    const auto halves = [](int shift) {
        return images::of<int>(600, 40, [=](int x, int y) {
            return (x < 300 ? 0 : 5000) + shift + (x % 10) * 40 + y;
        });
    };
    view.open(halves(0));
    view.service->setViewportData({300, 0, 0, 0, 0});
    auto* button = histogram.findChild<QToolButton*>();
    auto* follow = child<QCheckBox>(histogram, "Follow");
    const auto pick = [&](const QString& text) {
        for (QAction* action : button->menu()->actions())
            if (action->text() == text)
                action->trigger();
    };
    pick("1 \u2013 99 %");
    EXPECT_EQ(contrast().background, 8);
    EXPECT_EQ(contrast().foreground, 5392) << "at once, from the histogram";
    EXPECT_EQ(button->text(), "1 \u2013 99 %");
    pick("Of the Part in View");
    EXPECT_TRUE(waitFor([&] { return contrast().background == 5004; }));
    EXPECT_EQ(contrast().foreground, 5396);
    EXPECT_EQ(contrast().colorTable, MColorTable::hdr());

    view.open(halves(1000));
    EXPECT_EQ(contrast().background, 5004) << "stays as it is";
    QTest::mouseClick(follow, Qt::LeftButton, {}, {8, follow->height() / 2});
    EXPECT_TRUE(waitFor([&] { return contrast().background == 6004; }));
    view.open(halves(2000));
    EXPECT_TRUE(waitFor([&] { return contrast().background == 7004; }));
    pick("Of the Whole Image");
    QSignalSpy sent(view.service, &TarvikService::newContrastSignal);
    view.open(halves(100));
    EXPECT_EQ(contrast().background, 108);
    EXPECT_EQ(sent.count(), 0) << "the image arrives with its contrast";
    EXPECT_EQ(histogram.model().contrast().background, 108);
    view.service->setContrastData({50, 10, MColorTable::hdr(), false});
    QTest::mouseClick(button, Qt::LeftButton, {}, {10, button->height() / 2});
    EXPECT_EQ(contrast().background, 108) << "the button repeats the choice";
}

TEST_F(ViewBarTest, ALevelThatIsSetMeanwhileStays)
{
    ContrastChoice choice;
    choice.partInView = true;
    view.service->setContrastChoice(choice);
    view.service->chooseContrast();
    view.service->setContrastData({77, 10, MColorTable::hdr(), false});
    QSignalSpy sent(view.service, &TarvikService::newContrastSignal);
    choice.range.low = 0;
    view.service->setContrastChoice(choice);
    view.service->setContrastData({78, 10, MColorTable::hdr(), false});
    // A second one is counted after the first.
    view.service->chooseContrast();
    EXPECT_TRUE(waitFor([&] { return contrast().foreground != 78; }));
    EXPECT_EQ(contrast().background, 0) << "only the second one";
    EXPECT_EQ(sent.count(), 2);
}

TEST_F(ViewBarTest, TablesAndTheirInversesAreChosen)
{
    auto* inverse = child<QCheckBox>(bar, "Invert Color");
    QTest::mouseClick(child<QRadioButton>(bar, "Heat"), Qt::LeftButton);
    EXPECT_EQ(contrast().colorTable, MColorTable::heat());
    EXPECT_EQ(view.service->defaultColorTable(), MColorTable::heat());
    QTest::mouseClick(inverse, Qt::LeftButton);
    EXPECT_EQ(contrast().colorTable, MColorTable::heat()->inverseTable());
    QTest::mouseClick(child<QRadioButton>(bar, "Rainbow"), Qt::LeftButton);
    EXPECT_EQ(contrast().colorTable, MColorTable::rainbow()->inverseTable());
    QTest::mouseClick(inverse, Qt::LeftButton);
    EXPECT_EQ(contrast().colorTable, MColorTable::rainbow()) << "inverted twice";
    view.service->setContrastData({50, 10, MColorTable::grey()->inverseTable(), false});
    EXPECT_TRUE(inverse->isChecked());
    EXPECT_TRUE(child<QRadioButton>(bar, "Grey Scale")->isChecked());
}

TEST_F(ViewBarTest, BoxesFollowTheView)
{
    auto* rings = child<QCheckBox>(bar, "Show Resolution Rings");
    auto* saturated = child<QCheckBox>(bar, "Highlight Saturated Pixels");
    auto* plot3d = child<QCheckBox>(bar, "Plot 3D");
    EXPECT_FALSE(rings->isEnabled());
    view.open(images::withGeometry(60, 40, 5, 30, 20));
    EXPECT_TRUE(rings->isEnabled());
    QTest::mouseClick(rings, Qt::LeftButton);
    EXPECT_TRUE(view.service->showResolutionRings());
    view.service->toggleHighlightSaturated(false);
    EXPECT_FALSE(saturated->isChecked());
    EXPECT_EQ(plot3d->isEnabled(), view.drawer->usesGlsl());
    if (plot3d->isEnabled()) {
        QTest::mouseClick(plot3d, Qt::LeftButton, {}, {8, plot3d->height() / 2});
        EXPECT_EQ(view.service->plottingMode(), PlottingMode::ThreeDimensional);
    }
    EXPECT_FALSE(bar.findChild<ImageDrawerThumbnail*>()->hasSurface());
}

TEST(ViewBarWithoutImage, WaitsForOne)
{
    DrawnImage view(QSize(300, 200));
    const ViewBar bar(1, view.service, view.drawer.get());
    EXPECT_FALSE(bar.findChild<Histogram*>()->isEnabled());
    EXPECT_TRUE(child<QCheckBox>(bar, "Plot intensiy on a logarithmic scale")->isHidden());
    EXPECT_FALSE(child<QRadioButton>(bar, "Heat")->isEnabled());
    EXPECT_FALSE(child<QCheckBox>(bar, "Invert Color")->isEnabled());
}

/// Five images in memory, the last on show.
class SeriesTest : public testing::Test {
protected:
    SeriesTest()
        : view(QSize(300, 200))
    {
        for (int i = 0; i < 5; ++i)
            view.open(images::uniform(20, 10, i));
    }

    DrawnImage view;
};

TEST_F(SeriesTest, GoesToATypedNumber)
{
    GotoButton button(view.service, nullptr);
    auto& widget = *qobject_cast<GotoWidget*>(button.popup());
    QSignalSpy scanned(view.service, &TarvikService::imageContainerChangedSignal);
    button.show();
    (void)QTest::qWaitForWindowExposed(&button, Patience);
    const int wanted = view.service->firstIndex() + 1;
    // The click returns when the menu has closed.
    QTimer::singleShot(0, [&] {
        EXPECT_TRUE(widget.isVisible());
        auto* box = widget.findChild<QSpinBox*>();
        auto* slider = widget.findChild<QSlider*>();
        EXPECT_EQ(box->value(), view.service->imageIndex());
        EXPECT_EQ(box->minimum(), view.service->firstIndex());
        EXPECT_EQ(slider->maximum(), view.service->lastIndex());
        QTest::keyClicks(box, QString::number(wanted));
        EXPECT_EQ(slider->value(), wanted);
        QTest::keyClick(box, Qt::Key_Return);
        EXPECT_FALSE(widget.isVisible());
        button.hideMenu();  // were it still open, the test would hang
    });
    QTest::mouseClick(&button, Qt::LeftButton);
    EXPECT_TRUE(scanned.count() > 0 || scanned.wait(Patience)) << "the range is fresh";
    EXPECT_TRUE(waitFor([&] { return view.service->imageIndex() == wanted; }));
}

TEST_F(SeriesTest, NewImagesLeaveTheNumberThatIsTyped)
{
    GotoWidget widget(view.service, nullptr);
    widget.show();
    auto* box = widget.findChild<QSpinBox*>();
    view.open(images::uniform(20, 10, 5));
    EXPECT_EQ(box->value(), view.service->imageIndex()) << "nothing was typed yet";
    const int wanted = view.service->firstIndex() + 1;
    QTest::keyClicks(box, QString::number(wanted));
    view.open(images::uniform(20, 10, 6));
    EXPECT_EQ(box->value(), wanted);
    EXPECT_EQ(box->maximum(), view.service->lastIndex());
    widget.hide();
    EXPECT_EQ(box->value(), view.service->imageIndex()) << "what was not asked for is forgotten";
}

TEST_F(SeriesTest, FastContrastSetsTheForeground)
{
    view.service->setContrastData({1000, 10, MColorTable::hdr(), false});
    FastContrastControl control(view.drawer.get(), view.service);
    control.action()->trigger();
    ASSERT_TRUE(waitFor([&] { return control.isVisible(); }));
    const panels::FastContrastScale scale{10, control.width()};
    QSignalSpy sent(view.service, &TarvikService::newContrastSignal);
    mouse::drag(control, Qt::LeftButton, {50, 10}, {{80, 10}, {5000, 10}, {90, 10}});
    EXPECT_EQ(view.service->contrastData().foreground, std::trunc(scale.valueAt(90)));
    EXPECT_EQ(sent.last()[0].value<ContrastData>().dragUpdate, false);
    EXPECT_EQ(sent[1][0].value<ContrastData>().dragUpdate, true);
    mouse::drag(control, Qt::LeftButton, {50, 10}, {{-5, 10}});
    EXPECT_GT(view.service->contrastData().foreground, 10) << "stays above the background";
}

}  // namespace
