// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Movies, watching and monitoring: how they exclude each other and how they move.
#include "imagelib/control/MHalvoDetector.h"
#include "logic/detector/HalvoClient.h"
#include "logic/detector/HalvoService.h"
#include "logic/service/AutoModes.h"
#include "tests/logic/service/HandView.h"
#include "tests/logic/service/ServiceTest.h"
#include "tests/support/EdfText.h"
#include "tests/support/HangingReads.h"
#include "tests/support/SimulatedDetector.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WaitFor.h"

#include <QSettings>

namespace {

using namespace tarvik::tests;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// The modes of a view without service.
class Switches : public testing::Test {
protected:
    Switches() { QSettings().clear(); }
    ~Switches() override { QSettings().clear(); }

    void fire(const std::string& step)
    {
        const bool on = step.ends_with("on");
        if (step.starts_with("movie"))
            modes.setMovie(on);
        else if (step.starts_with("watch"))
            modes.setWatchSeries(on);
        else if (step.starts_with("monitor"))
            modes.setHalvoMonitor(on);
    }
    /// The mode that is on, empty for none.
    std::string mode() const
    {
        using Mode = ViewDriver::Mode;
        return modes.on(Mode::Movie)         ? "movie"
               : modes.on(Mode::WatchSeries) ? "watch"
               : modes.on(Mode::Monitor)     ? "monitor"
                                             : "";
    }

    HandView view;
    AutoModes modes{view};
};

TEST_F(Switches, WithoutImageOnlyTheMonitorBegins)
{
    view.number = -1;
    for (const char* step : {"movie on", "movie off", "watch on", "watch off"})
        fire(step);
    EXPECT_THAT(view.take(), IsEmpty());
    EXPECT_EQ(mode(), "");
    modes.setHalvoMonitorHost("127.0.0.1", 1, 0);
    view.take();
    QSignalSpy errors(&modes.monitor(), &HalvoMonitor::errorSignal);
    fire("monitor on");
    EXPECT_EQ(mode(), "monitor");
    ASSERT_TRUE(waitFor([&] { return !errors.empty(); }));
    EXPECT_THAT(errors[0][0].toString().toStdString(), HasSubstr("127.0.0.1:1"));
    fire("monitor on");
    fire("monitor off");
    EXPECT_THAT(view.take(), ElementsAre("monitor on", "monitor off"));
}

TEST_F(Switches, ExcludeEachOther)
{
    struct Row {
        const char* before;
        const char* step;
        std::vector<std::string> signalled;
        std::string on;
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
        SCOPED_TRACE(std::string(row.before) + ", " + row.step);
        for (const char* off : {"movie off", "watch off", "monitor off"})
            fire(off);
        fire(row.before);
        view.take();
        fire(row.step);
        EXPECT_EQ(view.take(), row.signalled);
        EXPECT_EQ(mode(), row.on);
        EXPECT_EQ(view.watched(), row.on == "movie" || row.on == "watch");
        EXPECT_EQ(modes.monitor().running(), row.on == "monitor");
    }
}

TEST_F(Switches, AddressOfTheMonitorIsKeptAndSharedWithTheDetector)
{
    EXPECT_EQ(modes.host(), "0.0.0.0");
    EXPECT_EQ(modes.port(), 80);
    EXPECT_EQ(modes.minPause(), 0);
    modes.setHalvoMonitorHost("0.0.0.0", 80, 0);
    EXPECT_THAT(view.take(), IsEmpty());
    modes.setHalvoMonitorHost("beamline", 8080, 0.5);
    EXPECT_THAT(view.take(), ElementsAre("address"));
    EXPECT_EQ(AutoModes(view).host(), "beamline");
    EXPECT_EQ(AutoModes(view).minPause(), 0.5);
    EXPECT_EQ(HalvoService::defaultHost(), "beamline");
    EXPECT_EQ(HalvoService::defaultPort(), 8080);

    modes.setHalvoMonitor(true);
    view.take();
    QSignalSpy errors(&modes.monitor(), &HalvoMonitor::errorSignal);
    modes.setHalvoMonitorHost("127.0.0.1", 1, 0.5);
    EXPECT_THAT(view.take(), ElementsAre("watch off", "movie off", "address"));
    ASSERT_TRUE(waitFor([&] { return !errors.empty(); })) << "a running monitor changes over";
    EXPECT_THAT(errors[0][0].toString().toStdString(), HasSubstr("127.0.0.1:1"));
    QSettings().setValue("HalvoPort", "no number");
    EXPECT_EQ(HalvoService::defaultPort(), 0) << "a value of a wrong type";
}

/// A view that plays a series of files.
class Modes : public ServiceTest {
protected:
    Modes()
    {
        watchAll(log, view);
        QObject::connect(view, &TarvikService::newImageSignal, view,
                         [this] { shown.push_back(view->imageIndex()); });
    }

    /// Opens a file of frames, counted from 0.
    void openSeries(int frames)
    {
        for (int i = 0; i < frames; ++i)
            write(i);
        view->openImage((folder / "m_0000.edf").c_str());
        arrive(view);
        log.take();
        shown.clear();
    }
    void write(int number, const std::string& text = edfFrame({1, 2, 3}))
    {
        folder.write("m_" + std::to_string(10000 + number).substr(1) + ".edf", text);
    }
    bool reaches(int index) { return ServiceTest::reaches(view, index); }

    const TempFolder folder;
    TarvikService* view = newView();
    SignalLog log;
    std::vector<int> shown;
};

TEST_F(Modes, MovieGoesOverABrokenFrameAndWaitsForOneAtTheEnd)
{
    openSeries(6);
    view->setMovieModeStep(2);
    const std::string whole = edfFrame({1, 2, 3});
    for (const int broken : {2, 5})
        write(broken, whole.substr(0, whole.size() - 5));
    QSignalSpy notices(view, &TarvikService::noticeSignal);
    view->setMovieMode(true);
    ASSERT_TRUE(reaches(3));
    ASSERT_EQ(notices.size(), 1);
    EXPECT_THAT(notices[0][0].toString().toStdString(), HasSubstr("Left out: image 2 can't be"));
    QSignalSpy scans(view, &TarvikService::imageContainerChangedSignal);
    ASSERT_TRUE(waitFor([&] { return scans.size() >= 2; }));
    write(5);
    EXPECT_TRUE(reaches(5));
    EXPECT_THAT(shown, ElementsAre(3, 5));
    EXPECT_EQ(notices.size(), 1) << "a frame that is not there yet is no unreadable one";
    EXPECT_THAT(log.take(), testing::Not(testing::Contains("error")));
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

TEST_F(Modes, TheMonitorShowsPictureAfterPicture)
{
    const std::atomic<bool> never = false;
    const SimulatedDetector simulated;
    morvend::imglib::MHalvoDetector detector(SimulatedDetector::Host, simulated.port());
    QSignalSpy notices(view, &TarvikService::noticeSignal);
    view->setHalvoMonitorHost(SimulatedDetector::Host, 1, 0);
    view->setHalvoMonitorMode(true);
    ASSERT_TRUE(waitFor([&] { return !notices.empty(); })) << "why there is no picture";
    view->setHalvoMonitorHost(SimulatedDetector::Host, simulated.port(), 0);
    for (std::size_t pictures = 1; pictures < 4; ++pictures)
        ASSERT_TRUE(waitFor([&] {
            detector.arm(never);
            detector.trigger(never);
            return shown.size() >= pictures;
        }));
    view->setHalvoMonitorMode(false);
    EXPECT_EQ(view->image().width(), 96);
    EXPECT_TRUE(view->image().optionalData().wavelength());
    QSettings().clear();
}

TEST_F(Modes, PicturesOfADetectorReachTheirViewOnly)
{
    TarvikService* other = newView();
    QSignalSpy otherShown(other, &TarvikService::newImageSignal);
    emit core.halvoService()->monitorSignal(view->halvoClient(), image());
    EXPECT_TRUE(waitFor([&] { return view->imageLoaded(); }));
    EXPECT_EQ(otherShown.size(), 0);
}

}  // namespace
