// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// From a request to the announcement of a new image.
#include "tests/logic/service/ServiceTest.h"
#include "tests/support/EdfFile.h"
#include "tests/support/WaitFor.h"

namespace {

using namespace tarvik::tests;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Opening : public ServiceTest {
protected:
    Opening() { watchAll(log, view); }
    TarvikService* view = newView();
    SignalLog log;
};

TEST_F(Opening, ViewWithoutImageKnowsNothing)
{
    view->openImage(5);
    view->nextImage();
    view->openLast();
    view->resetHeader();
    view->applyHeaderToSeries({});
    QTest::qWait(50);
    EXPECT_THAT(log.take(), IsEmpty());
    EXPECT_FALSE(view->imageLoaded() || view->statistics());
    EXPECT_EQ(view->imageSize(), QSize(-1, -1));
    for (const int number : {view->imageIndex(), view->firstIndex(), view->lastIndex()})
        EXPECT_EQ(number, -1);
    EXPECT_EQ(view->syncID(), "");
    EXPECT_EQ(view->imagePath() + view->imageDescription(), "");
}

TEST_F(Opening, NewImageIsAnnouncedInOrder)
{
    MImage shown = image();
    shown.optionalData().setImageDescription("lysozyme");
    testing::internal::CaptureStdout();
    show(view, shown);
    EXPECT_THAT(log.take(), ElementsAre("image", "statistics", "peaks", "resolution", "powder"));
    EXPECT_THAT(testing::internal::GetCapturedStdout(),
                testing::ContainsRegex("SUBTOTAL TIME LOADING: [0-9]+\n"
                                       "               TOTAL TIME LOADING IMAGE: [0-9]+\n$"));
    EXPECT_TRUE(view->imageLoaded());
    EXPECT_EQ(view->imageSize(), QSize(8, 4));
    EXPECT_EQ(view->imageIndex(), 0);
    EXPECT_EQ(view->lastIndex(), 0);
    EXPECT_EQ(view->syncID(), "8_4_1");
    EXPECT_EQ(view->imageDescription(), "lysozyme");
    EXPECT_EQ(view->statistics()->mean, 1);
    EXPECT_EQ(view->mask().width(), 8);
    EXPECT_EQ(view->thumbnail().width(), 8);
    EXPECT_EQ(view->thumbnailMask().height(), 4);
}

TEST_F(Opening, LoadsFinishedAtOnceAllComeInTheirOrder)
{
    for (int i = 0; i < 3; ++i)
        view->openImage(image(8, 4, i));
    while (view->loading())
        QThread::msleep(1);  // without looking at what is finished
    QSignalSpy shown(view, &TarvikService::newImageSignal);
    EXPECT_TRUE(waitFor([&] { return shown.size() == 3; }));
    EXPECT_EQ(view->imageIndex(), 2);
    EXPECT_EQ(view->image().pixel<int>(0, 0, -1), 2) << "the one that was asked for last";
}

TEST_F(Opening, FailedLoadChangesNothing)
{
    show(view, image());
    ContrastData contrast(5, 1, MColorTable::heat(), false);
    view->setContrastData(contrast);
    log.take();
    QSignalSpy errors(view, &TarvikService::imageLoadErrorSignal);
    view->openImage("/nowhere/a_00012.cbf");
    ASSERT_TRUE(errors.wait(Patience));
    EXPECT_THAT(errors[0][0].toString().toStdString(), HasSubstr("/nowhere/a_00012.cbf"));
    EXPECT_THAT(log.take(), ElementsAre("error"));
    EXPECT_EQ(view->image().pixel<int>(0, 0, -1), 1);
    EXPECT_EQ(view->imageIndex(), 0);
    EXPECT_EQ(view->contrastData(), contrast);
    EXPECT_EQ(view->syncID(), "8_4_1");

    errors.clear();
    view->openImage(MImage());
    ASSERT_TRUE(errors.wait(Patience)) << "an empty image";
    EXPECT_EQ(view->imageIndex(), 0);
    view->nextImage(7, false);
    show(view, image(8, 4, 2));
    EXPECT_EQ(errors.size(), 1) << "a quiet failure is quiet";
}

TEST_F(Opening, StepOntoABrokenOrMissingFrameSaysWhichFileAndWhyAndSteppingGoesOn)
{
    const TempFolder folder;
    const std::vector<std::int32_t> pixels(64, 7);
    writeEdf(folder, "x_001.edf", 8, pixels);
    writeEdf(folder, "x_002.edf", 8, pixels);
    std::filesystem::resize_file(folder / "x_002.edf", 1100);
    folder.write("x_003.edf", "not an image");
    writeEdf(folder, "x_005.edf", 8, pixels);
    view->openImage((folder / "x_001.edf").c_str());
    arrive(view);
    QSignalSpy errors(view, &TarvikService::imageLoadErrorSignal);
    for (const auto& [number, reason] : {std::pair(2, "ends after"),
                                         {3, "ormat, none of"},
                                         {4, "o such file"},
                                         {6, "x_006.edf"}}) {
        errors.clear();
        view->openImage(number);
        ASSERT_TRUE(errors.wait(Patience)) << number;
        const std::string text = errors[0][0].toString().toStdString();
        EXPECT_THAT(text, HasSubstr(folder / ("x_00" + std::to_string(number) + ".edf")));
        EXPECT_THAT(text, HasSubstr(reason));
        EXPECT_EQ(view->imageIndex(), 1);
    }
    view->nextImage(4);
    arrive(view);
    EXPECT_EQ(view->imageIndex(), 5);
    writeEdf(folder, "x_002.edf", 8, pixels);
    writeEdf(folder, "x_006.edf", 8, pixels);
    for (const int number : {2, 6}) {
        view->openImage(number);
        arrive(view);
        EXPECT_EQ(view->imageIndex(), number) << "it has come since the last look";
    }
    EXPECT_EQ(view->lastIndex(), 6);
}

TEST_F(Opening, FilesWithOddNamesOpenAndTheFolderIsWatched)
{
    const TempFolder folder;
    const std::string path = writeEdf(folder, "L\xc3\xa4ufer \xe2\x84\xab 1_001.edf", 2, {1, 2});
    view->openImage(path.c_str());
    arrive(view);
    EXPECT_EQ(view->imagePath().toStdString(), path);
    EXPECT_EQ(view->lastIndex(), 1);
    view->watchImageContainer(true);
    QTest::qWait(110);
    QSignalSpy scanned(view, &TarvikService::imageContainerChangedSignal);
    writeEdf(folder, "L\xc3\xa4ufer \xe2\x84\xab 1_002.edf", 2, {3, 4});
    ASSERT_TRUE(scanned.wait(Patience));
    EXPECT_TRUE(waitFor([&] { return view->lastIndex() == 2; }));
    view->watchImageContainer(false);
    QTest::qWait(250);
    scanned.clear();
    writeEdf(folder, "L\xc3\xa4ufer \xe2\x84\xab 1_003.edf", 2, {3, 4});
    EXPECT_FALSE(scanned.wait(200));
}

}  // namespace
