// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Pictures of a detector at the pace of a view.
#include "imagelib/control/MHalvoDetector.h"
#include "imagelib/control/MHalvoMonitor.h"
#include "imagelib/image/MException.h"
#include "logic/detector/HalvoMonitor.h"
#include "tests/support/SimulatedDetector.h"
#include "tests/support/WaitFor.h"

#include <QSignalSpy>

#include <gmock/gmock.h>

#include <limits>

namespace {

using namespace tarvik::tests;

const std::atomic<bool> Never = false;

class MonitorMode : public testing::Test {
protected:
    MonitorMode()
    {
        detector.setFrameTime(0.001, Never);
        simulated.fault("GET */latest delay 0");  // to see the requests arrive
    }
    void start(double minPause)
    {
        monitor->start(SimulatedDetector::Host, simulated.port(), minPause);
    }
    void takePicture()
    {
        detector.setNImages(1, Never);
        detector.arm(Never);
        detector.trigger(Never);
    }
    /// The unit is asked for pictures from now on.
    bool asks()
    {
        return waitFor([this, before = simulated.struck()] { return simulated.struck() > before; });
    }
    bool comes(int pictures)
    {
        return waitFor([&] { return shown.size() >= pictures; });
    }

    SimulatedDetector simulated;
    morvend::imglib::MHalvoDetector detector{SimulatedDetector::Host, simulated.port()};
    std::unique_ptr<HalvoMonitor> monitor = std::make_unique<HalvoMonitor>();
    QSignalSpy shown{monitor.get(), &HalvoMonitor::newImage};
    QSignalSpy errors{monitor.get(), &HalvoMonitor::errorSignal};
};

TEST_F(MonitorMode, ThereIsNoSecondPictureBeforeTheFirstIsShown)
{
    start(0);
    ASSERT_TRUE(asks());
    takePicture();
    ASSERT_TRUE(comes(1));
    for (int i = 0; i < 5; ++i) {
        takePicture();
        settle();
        EXPECT_EQ(shown.size(), 1);
    }
    monitor->newImageSlot();
    ASSERT_TRUE(comes(2));
    EXPECT_EQ(shown[1][0].value<morvend::imglib::MImage>().width(), 96);
    EXPECT_EQ(errors.size(), 0);
}

TEST_F(MonitorMode, WhatIsOnItsWayWhenItStopsDoesNotCome)
{
    start(0);
    ASSERT_TRUE(asks());
    takePicture();
    const int asked = simulated.struck();
    while (simulated.struck() < asked + 2)
        QThread::msleep(1);  // the picture has been sent, but no event has been handled
    monitor->stop();
    settle();
    EXPECT_EQ(shown.size(), 0);
    // A picture that is never shown holds no later start up.
    for (int pictures = 1; pictures < 4; ++pictures) {
        start(0);
        ASSERT_TRUE(asks());
        takePicture();
        ASSERT_TRUE(comes(pictures));
        monitor->stop();
    }
}

TEST_F(MonitorMode, EndsWhateverItWaitsFor)
{
    for (const bool hasPicture : {false, true})
        for (const double minPause : {0.0, std::numeric_limits<double>::infinity()}) {
            HalvoMonitor ends;
            QSignalSpy pictures(&ends, &HalvoMonitor::newImage);
            ends.start(SimulatedDetector::Host, simulated.port(), minPause);
            ASSERT_TRUE(asks());
            if (!hasPicture)
                continue;
            takePicture();
            ASSERT_TRUE(waitFor([&] { return pictures.size() == 1; }));
        }
}

TEST_F(MonitorMode, WithoutPauseEachPictureComes)
{
    for (const double minPause : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
        shown.clear();
        start(minPause);
        ASSERT_TRUE(asks());
        for (int i = 1; i < 4; ++i) {
            takePicture();
            ASSERT_TRUE(comes(i));
            monitor->newImageSlot();
        }
    }
}

TEST_F(MonitorMode, AUnitThatFailsIsAskedUntilItAnswers)
{
    for (const char* fault : {"PUT */enabled times=2 drop", "PUT */enabled times=1 status 503",
                              "GET */latest times=2 nonsense", "GET */latest times=1 vanish 100"}) {
        SCOPED_TRACE(fault);
        shown.clear();
        errors.clear();
        simulated.heal();
        morvend::imglib::MHalvoMonitor(SimulatedDetector::Host, simulated.port())
            .setEnabled(false, Never);
        simulated.fault(fault);
        monitor->start("http://127.0.0.1:1/", simulated.port(), 0);
        ASSERT_TRUE(waitFor([&] { return !errors.empty(); }));
        ASSERT_TRUE(waitFor([&] {
            try {
                takePicture();
            } catch (const morvend::MException&) {
                // gone for a moment
            }
            return !shown.empty();
        }));
        monitor->stop();
    }
}

}  // namespace
