// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Setting records, sharing them in a group and changing groups.
#include "tests/logic/service/ServiceTest.h"
#include "tests/support/Regions.h"

#include <cmath>

namespace {

using namespace tarvik::tests;
using testing::ElementsAre;
using testing::IsEmpty;

class ViewRecords : public ServiceTest {
protected:
    static ContrastData contrast(double foreground)
    {
        return ContrastData(foreground, 1, MColorTable::heat(), false);
    }
    static ViewportData viewport(double x) { return ViewportData(x, 0, 1, 0, 0); }
    static StatisticsData region(int radius) { return regions::circle(1, 2, radius); }
    static PeakData peaks(int number)
    {
        PeakData data;
        data.numberOfPeaks = number;
        return data;
    }
    static void setAll(TarvikService* view, int value)
    {
        view->setContrastData(contrast(value));
        view->setViewportData(viewport(value));
        view->setStatisticsData(region(value));
        view->setPeakData(peaks(value));
    }
    static void expectAll(const TarvikService* view, int value)
    {
        EXPECT_EQ(view->contrastData(), contrast(value));
        EXPECT_EQ(view->viewportData(), viewport(value));
        EXPECT_EQ(view->statisticsData(), region(value));
        EXPECT_EQ(view->peakData(), peaks(value));
    }
    /// A view that shows an image.
    TarvikService* shownView(const MImage& shown = image(), const QString& window = "1")
    {
        TarvikService* view = newView(window);
        show(view, shown);
        return view;
    }
};

TEST_F(ViewRecords, WithoutImageAreSignalledButTheRegion)
{
    TarvikService* view = newView();
    SignalLog log;
    watchAll(log, view);
    setAll(view, 5);
    EXPECT_THAT(log.take(), ElementsAre("contrast", "viewport", "peaks"));
    expectAll(view, 5);
}

TEST_F(ViewRecords, SpreadToViewsOfEqualSizeInOneMainWindow)
{
    TarvikService *view = shownView(), *member = shownView();
    TarvikService *otherSize = shownView(image(4, 8)), *otherWindow = shownView(image(), "2");
    SignalLog own, members, others;
    watchAll(own, view);
    watchAll(members, member);
    watchAll(others, otherSize);
    watchAll(others, otherWindow);
    setAll(view, 5);
    setAll(view, 5);
    expectAll(member, 5);
    EXPECT_THAT(own.take(), ElementsAre("contrast", "viewport", "statistics", "peaks", "contrast",
                                        "viewport", "statistics", "peaks"));
    EXPECT_THAT(members.take(), ElementsAre("contrast", "viewport", "statistics", "peaks"))
        << "the group hears of equal records once";
    EXPECT_THAT(others.take(), IsEmpty());
}

TEST_F(ViewRecords, NewImageOfTheSameSizeKeepsThem)
{
    TarvikService* view = shownView();
    setAll(view, 5);
    show(view, image(8, 4, 9));
    expectAll(view, 5);
}

TEST_F(ViewRecords, AreTakenFromTheGroupThatTheViewJoins)
{
    TarvikService* member = shownView();
    setAll(member, 5);
    TarvikService* view = newView();
    SignalLog log;
    watchAll(log, view);
    show(view, image());
    expectAll(view, 5);
    EXPECT_THAT(log.take(), ElementsAre("statistics", "peaks", "image", "statistics", "peaks",
                                        "resolution", "powder"));

    show(view, image(4, 8));
    // A new group begins with defaults.
    const auto statistics = view->statistics();
    const ContrastData first(std::trunc(statistics->foreground), std::trunc(statistics->background),
                             MColorTable::grey(), false);
    EXPECT_EQ(view->contrastData(), first) << "a contrast without any widget";
    TarvikService* second = newView();
    show(second, image(4, 8, 1000));
    EXPECT_EQ(second->contrastData(), first) << "the group's, not its own";
    EXPECT_EQ(view->viewportData(), ViewportData());
    EXPECT_EQ(view->statisticsData(), StatisticsData());
    EXPECT_EQ(view->peakData(), PeakData());
    setAll(view, 6);
    expectAll(member, 5);

    show(view, image());
    expectAll(view, 5);
}

TEST_F(ViewRecords, FirstLevelsAreWholeWhereThatLosesNothing)
{
    for (const float scale : {1.F, 100.F}) {
        MImage shown(60, 60, 0.F);
        auto* pixels = static_cast<float*>(shown.data());
        for (std::size_t i = 0; i < shown.size(); ++i)
            pixels[i] = scale * static_cast<float>(i % 61) / 61;
        const TarvikService* view = shownView(shown, QString::number(scale));
        const auto statistics = view->statistics();
        const bool whole = scale > 10;
        EXPECT_EQ(view->contrastData().foreground,
                  whole ? std::trunc(statistics->foreground) : statistics->foreground);
        EXPECT_LT(view->contrastData().background, view->contrastData().foreground);
    }
}

TEST_F(ViewRecords, ChangedDuringTheLoadStay)
{
    TarvikService* member = shownView();
    setAll(member, 5);
    TarvikService* view = newView();
    view->openImage(image());
    setAll(view, 7);
    arrive(view);
    expectAll(view, 7);
    expectAll(member, 5);
    view->setContrastData(contrast(8));
    EXPECT_EQ(member->contrastData(), contrast(8));
}

TEST_F(ViewRecords, AnswerOfAReceiverIsNotOverwritten)
{
    TarvikService *view = shownView(), *member = shownView();
    QObject::connect(view, &TarvikService::newContrastSignal, view, [&](const ContrastData& data) {
        if (data.foreground == 5)
            view->setContrastData(contrast(6));
    });
    view->setContrastData(contrast(5));
    EXPECT_EQ(view->contrastData(), contrast(6));
    EXPECT_EQ(member->contrastData(), contrast(6));
}

TEST_F(ViewRecords, FlagsSignalChangesOnly)
{
    TarvikService* view = newView();
    SignalLog log;
    watchAll(log, view);
    EXPECT_TRUE(view->highlightDefective());
    EXPECT_TRUE(view->highlightSaturated());
    EXPECT_FALSE(view->showResolutionRings());
    view->toggleHighlightDefective(true);
    view->toggleHighlightSaturated(true);
    view->toggleShowResolutionRings(false);
    EXPECT_THAT(log.take(), IsEmpty());
    view->toggleHighlightDefective(false);
    view->toggleHighlightSaturated(false);
    view->toggleShowResolutionRings(true);
    EXPECT_THAT(log.take(), ElementsAre("defective", "saturated", "rings"));
    view->setPlottingMode(PlottingMode::Flat);
    EXPECT_THAT(log.take(), ElementsAre("plotting")) << "the mode is always signalled";
}

TEST_F(ViewRecords, PaintListGrowsAndIsReplaced)
{
    TarvikService* view = newView();
    SignalLog log;
    watchAll(log, view);
    TarvikService::MDrawingList list;
    list.pushBack(morvend::imglib::MDrawingPixel(1, 2, 255, 0, 0, 255));
    list.pushBack(morvend::imglib::MDrawingPixel(3, 4, 255, 0, 0, 255));
    view->addToPaintList(list);
    view->addToPaintList(list);
    EXPECT_EQ(view->paintList().size(), 4U);
    view->setPaintList(list);
    EXPECT_EQ(view->paintList().size(), 2U);
    view->clearPaintList();
    EXPECT_EQ(view->paintList().size(), 0U);
    EXPECT_THAT(log.take(), testing::AllOf(testing::SizeIs(4), testing::Each("paintlist")));
}

}  // namespace
