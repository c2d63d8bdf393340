// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Header edits over a series, geometry, and the texts under the cursor.
#include "imagelib/image/MException.h"
#include "imagelib/io/MImageWriter.h"
#include "logic/headerfiles/WriteHeaderToFilesThread.h"
#include "tests/logic/service/ServiceTest.h"
#include "tests/support/Regions.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WaitFor.h"

#include <cmath>

namespace {

using namespace tarvik::tests;
using testing::ElementsAre;

using Header = TarvikService::Header;

class HeaderOfView : public ServiceTest {
protected:
    /// Shows an image with the given start angle, 0 for none.
    void showAt(float angle)
    {
        MImage next = imageWithGeometry();
        if (angle != 0)
            next.optionalData().set_rotation_angle(angle);
        show(view, next);
    }
    static Header rotation(float start, boost::optional<float> step)
    {
        Header header;
        header.set_rotation_angle(start);
        header.set_rotation_angle_step(step);
        return header;
    }
    static StatisticsData circle(double x, double y, bool active = true)
    {
        StatisticsData data = regions::powder(x, y, 0, 5);
        data.roiActive = active;
        return data;
    }
    QPointF beam() const
    {
        double x = 0, y = 0;
        view->beamCentre(x, y);
        return {x, y};
    }
    /// What is signalled from now on.
    SignalLog& logOf(const TarvikService* observed)
    {
        watchAll(_log, observed);
        return _log;
    }
    TarvikService* view = newView();

private:
    SignalLog _log;
};

TEST_F(HeaderOfView, EditsStayForTheSeriesAndAnglesGoOnCounting)
{
    showAt(10);
    showAt(11);
    Header edits = rotation(20.F, 0.5F);
    edits.set_wavelength(0.7F);
    SignalLog& log = logOf(view);
    view->applyHeaderToSeries(edits);
    EXPECT_THAT(log.take(), ElementsAre("header"));
    EXPECT_EQ(*view->optionalData().rotation_angle(), 20.F);
    showAt(12);
    EXPECT_EQ(*view->optionalData().wavelength(), 0.7F);
    EXPECT_EQ(*view->optionalData().rotation_angle(), 20.5F);
    EXPECT_EQ(*view->optionalData().rotation_angle_step(), 0.5F);
    view->nextImage(-2);
    arrive(view);
    EXPECT_EQ(*view->optionalData().rotation_angle(), 19.5F);
    EXPECT_EQ(*view->optionalData().detector_distance(), 0.1F) << "other fields stay";
}

TEST_F(HeaderOfView, StartAngleWithoutStepIsNoEdit)
{
    showAt(10);
    view->applyHeaderToSeries(rotation(20.F, boost::none));
    EXPECT_FALSE(view->globalHeader().rotation_angle());
    EXPECT_EQ(*view->optionalData().rotation_angle(), 10.F);
    showAt(0);
    EXPECT_FALSE(view->optionalData().rotation_angle()) << "an absent angle stays absent";
}

TEST_F(HeaderOfView, EditsGoWithTheGroupAndOnReset)
{
    showAt(10);
    view->applyHeaderToSeries(rotation(20.F, 1.F));
    view->resetHeader();
    EXPECT_EQ(*view->optionalData().rotation_angle(), 10.F);
    EXPECT_FALSE(view->globalHeader().rotation_angle());

    view->applyHeaderToSeries(rotation(20.F, 1.F));
    show(view, image(5, 5));
    EXPECT_FALSE(view->globalHeader().rotation_angle());
    EXPECT_FALSE(view->optionalData().rotation_angle());
}

TEST_F(HeaderOfView, IsWrittenIntoAllFilesOfTheSeries)
{
    showAt(0);
    EXPECT_THROW(view->writeHeaderToFilesThread({}), morvend::MUnknownFormatException)
        << "an image without file";
    const TempFolder folder;
    const std::string stem = folder / "run.2_0";
    for (const char* number : {"08", "09", "10"})
        morvend::imglib::MImageWriter::write(image(), stem + number + ".cbf",
                                             morvend::imglib::MImageWriter::CBF);
    view->openImage((stem + "09.cbf").c_str());
    arrive(view);
    Header values;
    values.set_wavelength(1.25F);
    const auto batch = view->writeHeaderToFilesThread(values);
    EXPECT_FALSE(batch->isRunning());
    QSignalSpy progress(batch.get(), &WriteHeaderToFilesThread::progress);
    batch->start();
    ASSERT_TRUE(batch->wait(Patience));
    EXPECT_EQ(progress.size(), 4);
    for (const int number : {8, 9, 10}) {
        view->openImage(number);
        arrive(view);
        EXPECT_EQ(view->optionalData().wavelength().get_value_or(0), 1.25F);
    }
}

TEST_F(HeaderOfView, CircleThatMovesTakesTheBeamAlong)
{
    showAt(0);
    SignalLog& log = logOf(view);
    view->setStatisticsData(circle(30.1, 40.2, false));
    EXPECT_THAT(log.take(), ElementsAre("statistics")) << "only an active one";
    view->setStatisticsData(circle(30.1, 40.2));
    EXPECT_THAT(log.take(), ElementsAre("header", "statistics"));
    EXPECT_EQ(beam(), QPointF(30.1F, 40.2F));
    EXPECT_EQ(*view->globalHeader().beam_center_x(), 30.1F);
    view->setStatisticsData(circle(30.1, 40.2));
    EXPECT_THAT(log.take(), ElementsAre("statistics"));
    showAt(0);
    EXPECT_EQ(beam(), QPointF(30.1F, 40.2F));
}

TEST_F(HeaderOfView, BeamThatMovesTakesTheCircleAlong)
{
    showAt(0);
    view->setStatisticsData(circle(30, 40));
    SignalLog& log = logOf(view);
    Header edits;
    edits.set_beam_center_x(60.F);
    edits.set_beam_center_y(70.F);
    view->applyHeaderToSeries(edits);
    EXPECT_THAT(log.take(), ElementsAre("header", "statistics"));
    EXPECT_EQ(view->statisticsData(), circle(60, 70));
    view->resetHeader();
    EXPECT_THAT(log.take(), ElementsAre("header", "statistics"));
    EXPECT_EQ(view->statisticsData(), circle(100.5, 50));
    EXPECT_EQ(beam(), QPointF(100.5, 50));
}

TEST_F(HeaderOfView, CircleOfAGroupMovesTheBeamOfItsMembers)
{
    TarvikService* member = newView();
    showAt(0);
    show(member, imageWithGeometry());
    SignalLog& log = logOf(member);
    view->setStatisticsData(circle(30, 40));
    EXPECT_THAT(log.take(), ElementsAre("header", "statistics"));
    EXPECT_EQ(*member->optionalData().beam_center_x(), 30.F);
}

TEST_F(HeaderOfView, GeometryFollowsTheHeaderWithItsEdits)
{
    EXPECT_TRUE(std::isnan(beam().x()) && std::isnan(beam().y()));
    MImage incomplete = imageWithGeometry();
    incomplete.optionalData().set_wavelength(boost::none);
    show(view, incomplete);
    double x = 7, y = 8;
    std::vector<double> radii = {1};
    std::vector<QString> labels = {"1"};
    view->recommendResolutionRadius(3, x, y, radii, labels);
    EXPECT_TRUE(radii.empty() && labels.empty());
    EXPECT_EQ(x, 7) << "the centre stays as it was";
    EXPECT_EQ(view->resolution(130, 90), -1);
    Header edits;
    edits.set_wavelength(1.F);
    edits.set_beam_center_x(100.F);
    view->applyHeaderToSeries(edits);
    view->recommendResolutionRadius(3, x, y, radii, labels);
    EXPECT_TRUE(x == 100 && y == 50);
    EXPECT_TRUE(radii.size() == 3 && labels.size() == 3);
    EXPECT_EQ(view->computePowderRadius(103, 54), 5);
    EXPECT_NEAR(view->distance(130, 90), std::hypot(30 * 100e-6, 40 * 200e-6), 1e-9);
    EXPECT_TRUE(std::isinf(view->resolution(100, 50)));
    EXPECT_EQ(view->intensityString(100, 50), "3");
    QSignalSpy cursor(view, &TarvikService::cursorInfoSignal);
    view->setCursorCoordinates(100, 50);
    EXPECT_EQ(cursor[0][0].value<CursorInfo>().resolution(), "inf");
    EXPECT_EQ(CursorInfo(view, 130, 90).distance(), "8.5");
}

TEST(CursorInfo, TextsFollowWhatIsDefined)
{
    const QStringList plain = {"Image X", "Image Y", "Intensity"};
    const QStringList full = {"Distance (mm)", "Image X", "Image Y", "Intensity",
                              QString::fromUtf8("Resolution (\xe2\x84\xab)")};
    EXPECT_TRUE(CursorInfo().imgX().isNull());
    const CursorInfo none = CursorInfo::of(MImage(), 3, 4);
    EXPECT_EQ(none.infoKeys(), plain);
    EXPECT_EQ(none.infoValues(), QStringList({"", "", ""}));
    EXPECT_TRUE(none.distance().isNull());

    MImage image(200, 100, 3);
    setGeometry(image.optionalData(), 100.5F, 50.F, 100e-6F, 200e-6F, 0.1F, 1.F);
    for (const auto& [x, y] : {std::pair(-1.0, 4.0), {4.0, -0.1}, {std::nan(""), 4.0}}) {
        const CursorInfo outside = CursorInfo::of(image, x, y);
        EXPECT_EQ(outside.infoKeys(), full);
        EXPECT_EQ(outside.infoValues().join(""), "");
    }
    EXPECT_EQ(CursorInfo::of(image, 100.9, 90.2).infoValues(),
              QStringList({"8.0", "100", "90", "3", "12.530"}));
    EXPECT_EQ(CursorInfo::of(image, 1e30, 1).intensity(), "0");
}

TEST(CursorInfo, IntensityIsWrittenByPixelType)
{
    EXPECT_EQ(CursorInfo::intensityOf(MImage(), 0, 0), "");
    for (const auto& [pixels, text] : {std::pair(MImage(1, 1, 1234567.0F), "1.23457e+06"),
                                       {MImage(1, 1, 0.25), "0.25"},
                                       {MImage(1, 1, -2), "-2"},
                                       {MImage(1, 1, 4294967295U), "4294967295"},
                                       {MImage(1, 1, true), "1"}}) {
        EXPECT_EQ(CursorInfo::intensityOf(pixels, 0, 0), text);
        EXPECT_EQ(CursorInfo::intensityOf(pixels, 1, 0), "0");
    }
}

}  // namespace
