// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Movies, watching and monitoring: how they exclude each other and how they move.
#include "logic/HalvoService.h"
#include "logic/detector/HalvoClient.h"
#include "tests/logic/service/ServiceTest.h"
#include "tests/support/EdfText.h"
#include "tests/support/HangingReads.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WaitFor.h"

#include <QElapsedTimer>
#include <QSettings>

namespace {

using namespace tarvik::tests;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Modes : public ServiceTest {
protected:
    Modes()
    {
        QSettings().clear();
        watchAll(log, view);
        QObject::connect(view, &TarvikService::newImageSignal, view, [this] {
            shown.push_back(view->imageIndex());
            times.push_back(clock.elapsed());
        });
        clock.start();
    }
    ~Modes() override { QSettings().clear(); }

    /// Opens a file of frames, counted from 0.
    void openSeries(int frames)
    {
        for (int i = 0; i < frames; ++i)
            write(i);
        view->openImage((folder / "m_0000.edf").c_str());
        arrive(view);
        log.take();
        shown.clear();
        times.clear();
    }
    void write(int number, const std::string& text = edfFrame({1, 2, 3}))
    {
        folder.write("m_" + std::to_string(10000 + number).substr(1) + ".edf", text);
    }
    bool reaches(int index) { return ServiceTest::reaches(view, index); }
    static void fire(TarvikService* view, const std::string& step)
    {
        const bool on = step.ends_with("on");
        if (step.starts_with("movie"))
            view->setMovieMode(on);
        else if (step.starts_with("watch"))
            view->setWatchSeriesMode(on);
        else
            view->setHalvoMonitorMode(on);
    }

    const TempFolder folder;
    TarvikService* view = newView();
    SignalLog log;
    QElapsedTimer clock;
    std::vector<int> shown;
    std::vector<qint64> times;
};

TEST_F(Modes, WithoutImageOnlyTheMonitorBegins)
{
    for (const char* step : {"movie on", "movie off", "watch on", "watch off"})
        fire(view, step);
    EXPECT_THAT(log.take(), IsEmpty());
    EXPECT_FALSE(view->movieMode() || view->watchSeriesMode());
    testing::internal::CaptureStderr();
    view->setHalvoMonitorMode(true);
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("detector: 0.0.0.0:80"))
        << "there is no detector, and that is said";
    EXPECT_TRUE(view->halvoMonitorMode());
    fire(view, "monitor on");
    fire(view, "monitor off");
    EXPECT_THAT(log.take(), ElementsAre("monitor on", "monitor off"));
}

TEST_F(Modes, ExcludeEachOther)
{
    struct Row {
        const char* before;
        const char* step;
        std::vector<std::string> signalled;
        std::string on;  // the mode that is on afterwards, empty for none
    };
    for (const Row& row : std::initializer_list<Row>{
             {"", "movie on", {"movie on"}, "movie"},
             {"", "movie off", {"movie off"}, ""},
             {"movie on", "movie on", {"movie on"}, "movie"},
             {"movie on", "movie off", {"movie off"}, ""},
             {"watch on", "movie on", {"watch off", "movie on"}, "movie"},
             {"watch on", "movie off", {"movie off"}, "watch"},
             {"monitor on", "movie on", {"movie on"}, "movie"},
             {"", "watch on", {"watch on"}, "watch"},
             {"watch on", "watch off", {"watch off"}, ""},
             {"movie on", "watch on", {"movie off", "watch on"}, "watch"},
             {"movie on", "watch off", {"watch off"}, "movie"},
             {"monitor on", "watch on", {"watch on"}, "watch"},
             {"", "monitor on", {"watch off", "movie off", "monitor on"}, "monitor"},
             {"movie on", "monitor on", {"watch off", "movie off", "monitor on"}, "monitor"},
             {"watch on", "monitor on", {"watch off", "movie off", "monitor on"}, "monitor"},
             {"monitor on", "monitor on", {"watch off", "movie off"}, "monitor"},
             {"monitor on", "monitor off", {"monitor off"}, ""}}) {
        view = newView();
        openSeries(1);
        if (*row.before)
            fire(view, row.before);
        SignalLog signalled;
        watchAll(signalled, view);
        fire(view, row.step);
        EXPECT_EQ(signalled.take(), row.signalled) << row.step;
        EXPECT_EQ(view->movieMode(), row.on == "movie") << row.step;
        EXPECT_EQ(view->watchSeriesMode(), row.on == "watch") << row.step;
        EXPECT_EQ(view->halvoMonitorMode(), row.on == "monitor") << row.step;
    }
}

TEST_F(Modes, MovieStepsAtItsPaceAndSleepsAtTheEndUntilTheSeriesGrows)
{
    openSeries(8);
    EXPECT_EQ(view->movieModeStep(), 1);
    view->setMovieModeStep(2);
    EXPECT_EQ(view->movieModeStep(), 2);
    view->setMovieMode(true);
    ASSERT_TRUE(reaches(2));
    QThread::msleep(300);  // the request for the next image waits in the event queue by now
    view->setMovieMode(true);
    ASSERT_TRUE(reaches(7));
    EXPECT_THAT(shown, ElementsAre(2, 4, 6, 7)) << "the last step takes what is left";
    EXPECT_GE(times.back() - times[times.size() - 2], 150);
    QTest::qWait(300);
    EXPECT_THAT(shown, ElementsAre(2, 4, 6, 7));
    write(8);
    EXPECT_TRUE(reaches(8));
    EXPECT_EQ(log.take().back(), "powder") << "an image came, and no mode changed";
}

TEST_F(Modes, NothingComesAfterTheEndOfAMode)
{
    openSeries(10);
    for (int round = 0; round < 2; ++round) {
        view->setMovieMode(true);
        EXPECT_TRUE(reaches(view->imageIndex() + 2));
        view->setMovieMode(false);
        const int index = view->imageIndex();
        view->openImage(index);  // after what may be under way
        arrive(view);
        QTest::qWait(250);
        EXPECT_EQ(view->imageIndex(), index);
    }
}

TEST_F(Modes, MovieGoesOverABrokenFrameAndWaitsForOneAtTheEnd)
{
    openSeries(5);
    const std::string whole = edfFrame({1, 2, 3});
    for (const int broken : {2, 4})
        write(broken, whole.substr(0, whole.size() - 5));
    QSignalSpy notices(view, &TarvikService::noticeSignal);
    view->setMovieMode(true);
    ASSERT_TRUE(reaches(3));
    ASSERT_EQ(notices.size(), 1);
    EXPECT_THAT(notices[0][0].toString().toStdString(), HasSubstr("Left out: image 2 can't be"));
    QSignalSpy scans(view, &TarvikService::imageContainerChangedSignal);
    ASSERT_TRUE(waitFor([&] { return scans.size() >= 2; }));
    write(4);
    EXPECT_TRUE(reaches(4));
    EXPECT_THAT(shown, ElementsAre(1, 3, 4));
    EXPECT_EQ(notices.size(), 1) << "a frame that is not there yet is no unreadable one";
    EXPECT_THAT(log.take(), testing::Not(testing::Contains("error")));
}

TEST_F(Modes, WatchedSeriesShowsItsNewestImage)
{
    openSeries(3);
    view->setWatchSeriesMode(true);
    ASSERT_TRUE(reaches(2));
    EXPECT_THAT(shown, ElementsAre(2));
    for (int number : {3, 4, 9}) {
        write(number);
        EXPECT_TRUE(reaches(number));
    }
    view->setWatchSeriesMode(false);
    write(10);
    QTest::qWait(400);
    EXPECT_EQ(view->imageIndex(), 9);
}

TEST_F(Modes, SwitchingNeverWaitsForALoad)
{
    // What is queued is dropped, what runs still arrives.
    openSeries(6);
    {
        const HangingReads hanging(folder / "m_0002.edf");
        view->openImage(2);
        ASSERT_TRUE(HangingReads::waitFor(1));
        view->openImage(3);
        view->openImage(4);
        view->setMovieMode(true);
        view->setWatchSeriesMode(true);
        view->setWatchSeriesMode(false);
        EXPECT_TRUE(view->loading());
    }
    EXPECT_TRUE(waitFor([&] { return !shown.empty() && !view->loading(); }));
    settle();
    EXPECT_THAT(shown, ElementsAre(2));
    EXPECT_THAT(log.take(), ElementsAre("movie on", "movie off", "watch on", "watch off", "image",
                                        "statistics", "peaks", "resolution", "powder"));
}

TEST_F(Modes, AddressOfTheMonitorIsKeptAndSharedWithTheDetector)
{
    EXPECT_EQ(view->halvoMonitorHost(), "0.0.0.0");
    EXPECT_EQ(view->halvoMonitorPort(), 80);
    EXPECT_EQ(view->halvoMonitorMinPause(), 0);
    view->setHalvoMonitorHost("0.0.0.0", 80, 0);
    EXPECT_THAT(log.take(), IsEmpty());
    view->setHalvoMonitorHost("beamline", 8080, 0.5);
    EXPECT_THAT(log.take(), ElementsAre("address"));
    EXPECT_EQ(newView()->halvoMonitorHost(), "beamline");
    EXPECT_EQ(newView()->halvoMonitorMinPause(), 0.5);
    EXPECT_EQ(HalvoService::defaultHost(), "beamline");
    EXPECT_EQ(HalvoService::defaultPort(), 8080);

    view->setHalvoMonitorMode(true);
    log.take();
    testing::internal::CaptureStderr();
    view->setHalvoMonitorHost("other", 8080, 0.5);
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("other:8080"))
        << "a running monitor changes over";
    EXPECT_THAT(log.take(), ElementsAre("address"));
    QSettings().setValue("HalvoPort", "no number");
    EXPECT_EQ(HalvoService::defaultPort(), 0) << "a value of a wrong type";
}

TEST_F(Modes, PicturesOfADetectorReachTheirViewOnly)
{
    TarvikService* other = newView();
    QSignalSpy otherShown(other, &TarvikService::newImageSignal);
    emit core.halvoService()->monitorSignal(view->halvoClient(), image());
    EXPECT_TRUE(waitFor([&] { return view->imageLoaded(); }));
    EXPECT_EQ(otherShown.size(), 0);
    QSignalSpy errors(core.halvoService().get(), &HalvoService::error);
    core.halvoService()->setConnected(true);
    ASSERT_EQ(errors.size(), 1);
    EXPECT_FALSE(core.halvoService()->connected());
}

}  // namespace
