// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Numbers of the region and peaks that a view holds.
#include "tests/logic/service/ServiceTest.h"
#include "tests/support/HeldRegions.h"
#include "tests/support/Regions.h"

#include <gmock/gmock.h>

#include <QTemporaryDir>

namespace {

using namespace tarvik::tests;

class RegionAndPeaks : public ServiceTest {
protected:
    static StatisticsData box(int width) { return regions::box(0, 0, width, 2); }
    /// One strong pixel on a background of zeros.
    static MImage spot(int x, int y, int value)
    {
        MImage result = image(8, 4, 0);
        static_cast<int*>(result.data())[8 * y + x] = value;
        return result;
    }
    TarvikService* const view = newView();
};

TEST_F(RegionAndPeaks, AreEmptyWithoutImage)
{
    view->setStatisticsData(box(3));
    EXPECT_EQ(view->roiStatistics().area, 0);
    EXPECT_EQ(view->imagePeaks().numberOfPeaks(), 0);
    show(view, spot(5, 2, 9));
    EXPECT_EQ(view->imagePeaks()[0].value, 9) << "asking without image must not settle the matter";
}

TEST_F(RegionAndPeaks, RegionIsComputedOffTheThreadOfTheView)
{
    show(view, image(8, 4, 5));
    QSignalSpy computed(view, &TarvikService::regionComputedSignal);
    const auto is = [&](int width, int value) {
        const TarvikService::ComputedRegion& there = view->computedRegion();
        return there.region == box(width) && there.numbers.integral == width * 2 * value;
    };
    view->setStatisticsData(box(3));
    EXPECT_TRUE(computed.wait(60'000));
    EXPECT_FALSE(view->regionPending());
    EXPECT_TRUE(is(3, 5));
    {
        const HeldRegions held;
        view->setStatisticsData(box(4));
        view->setStatisticsData(box(6));
        EXPECT_TRUE(view->regionPending());
        EXPECT_TRUE(is(3, 5)) << "the old numbers stay, with their own region";
        show(view, image(8, 4, 7));
        EXPECT_FALSE(view->regionPending()) << "the new image brings its own";
        EXPECT_TRUE(is(6, 7));
        view->setStatisticsData(box(2));
    }
    EXPECT_TRUE(computed.wait(60'000));
    EXPECT_TRUE(is(2, 7));
    EXPECT_EQ(computed.size(), 2) << "what was superseded is not announced";
}

TEST_F(RegionAndPeaks, RegionThatIsAskedForIsRightAndAnnouncedOnce)
{
    show(view, image(8, 4, 5));
    QSignalSpy computed(view, &TarvikService::regionComputedSignal);
    {
        const HeldRegions held;
        view->setStatisticsData(box(3));
        EXPECT_EQ(view->roiStatistics().integral, 3 * 2 * 5);
        EXPECT_EQ(view->computedRegion().region, box(3));
        EXPECT_EQ(computed.size(), 0) << "not before the events are handled";
    }
    EXPECT_TRUE(computed.wait(60'000));
    view->setStatisticsData(box(4));
    EXPECT_TRUE(computed.wait(60'000));
    EXPECT_EQ(computed.size(), 2);
}

TEST_F(RegionAndPeaks, RegionIsThereForWhoAsksAtItsSignal)
{
    show(view, image(8, 4, 5));
    double signalled = -1;
    QObject::connect(view, &TarvikService::newStatisticsSignal, view,
                     [&] { signalled = view->roiStatistics().integral; });
    view->setStatisticsData(box(3));
    EXPECT_EQ(signalled, 3 * 2 * 5);
    show(view, image(8, 4, 7));
    EXPECT_EQ(signalled, 3 * 2 * 7) << "the next image brings its own numbers";
    view->setStatisticsData(StatisticsData());
    EXPECT_EQ(signalled, 0);
}

TEST_F(RegionAndPeaks, RegionChangedDuringALoadCountsOnTheNewImage)
{
    show(view, image(8, 4, 5));
    view->setStatisticsData(box(3));
    view->openImage(image(8, 4, 7));
    view->setStatisticsData(box(4));
    arrive(view);
    EXPECT_EQ(view->roiStatistics().integral, 4 * 2 * 7);
}

TEST_F(RegionAndPeaks, RegionOfTheGroupIsComputedOnJoining)
{
    TarvikService* member = newView();
    show(member, image(8, 4, 5));
    show(view, image(4, 4, 5));
    member->setStatisticsData(box(3));
    show(view, image(8, 4, 9));
    EXPECT_EQ(view->roiStatistics().integral, 3 * 2 * 9);
    member->setStatisticsData(box(4));
    EXPECT_EQ(view->statisticsData(), box(4));
    EXPECT_EQ(view->roiStatistics().integral, 3 * 2 * 9) << "the numbers stay until the next image";
}

TEST_F(RegionAndPeaks, ARegionBeyondAllBoundsLeavesNoNumbers)
{
    show(view, image(8, 4, 5));
    view->setStatisticsData(box(3));
    EXPECT_NO_THROW(view->setStatisticsData(box(2'000'000'000)));
    EXPECT_EQ(view->roiStatistics().area, 0);
    show(view, image(8, 4, 7));
    EXPECT_EQ(view->image().pixel<int>(0, 0, 0), 7);
}

TEST_F(RegionAndPeaks, ReportOfTheRegionGoesToAFile)
{
    EXPECT_EQ(view->roiStatisticsToString(), "# \n");
    show(view, image(8, 4, 5));
    view->setStatisticsData(box(3));
    const QString report = view->roiStatisticsToString();
    EXPECT_TRUE(report.contains("# Integral 30\n")) << report.toStdString();
    const QTemporaryDir folder;
    const std::string path = folder.filePath("report.txt").toStdString();
    view->writeRoiStatisticsToFile(path.c_str());
    QFile file(QString::fromStdString(path));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), report.toUtf8());
    const std::string nowhere = path + "/report.txt";
    EXPECT_THAT([&] { view->writeRoiStatisticsToFile(nowhere.c_str()); },
                testing::ThrowsMessage<std::runtime_error>(nowhere));
}

TEST_F(RegionAndPeaks, PeaksAreSearchedForOffTheThreadOfTheViewAndComeWithTheNextImages)
{
    show(view, spot(5, 2, 9));
    QSignalSpy found(view, &TarvikService::peaksComputedSignal);
    PeakData wanted;
    wanted.numberOfPeaks = 3;
    view->setPeakData(wanted);
    EXPECT_TRUE(view->peaksPending());
    EXPECT_EQ(view->computedPeaks().numberOfPeaks(), 0) << "not while somebody waits";
    EXPECT_TRUE(found.wait(Patience));
    EXPECT_FALSE(view->peaksPending());
    EXPECT_EQ(view->computedPeaks()[0].x, 5);
    wanted.numberOfPeaks = 5;
    view->setPeakData(wanted);
    EXPECT_FALSE(view->peaksPending()) << "they are known";
    QObject::connect(view, &TarvikService::newPeakSignal, view,
                     [&] { EXPECT_EQ(view->computedPeaks()[0].x, 2); });
    show(view, spot(2, 1, 4));
    EXPECT_EQ(found.size(), 1) << "they came with the image";
    EXPECT_EQ(view->imagePeaks()[0].x, 2);
}

TEST_F(RegionAndPeaks, PeaksFollowTheImage)
{
    show(view, spot(5, 2, 9));
    const ImagePeaks first = view->imagePeaks();
    EXPECT_EQ(first[0].x, 5);
    EXPECT_EQ(first[0].y, 2);
    show(view, spot(2, 1, 4));
    EXPECT_EQ(view->imagePeaks()[0].x, 2);
    EXPECT_EQ(view->imagePeaks()[0].value, 4);
    EXPECT_EQ(first[0].value, 9) << "what was returned is a copy";
}

}  // namespace
