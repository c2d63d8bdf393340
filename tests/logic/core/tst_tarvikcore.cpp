// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Groups, their switches, services and objects made for other threads.
#include "imagelib/display/MColorTable.h"
#include "logic/core/ObjectGenerator.h"
#include "logic/core/TarvikCore.h"
#include "logic/service/TarvikService.h"
#include "tests/support/WaitFor.h"

#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <gtest/gtest.h>

#include <thread>

namespace {

using morvend::imglib::MColorTable;

template <class T>
class View : public AbstractObserver<T> {
public:
    explicit View(TarvikCore& core)
        : _core(core)
    {}
    ~View() override { _core.detach(*this); }
    void virtualNotify() override
    {
        ++notified;
        if (leaves)
            _core.detach(*this);
    }
    int notified = 0;
    bool leaves = false;  // its group when it is notified

private:
    TarvikCore& _core;
};

PeakData peaks(int number)
{
    PeakData data;
    data.numberOfPeaks = number;
    return data;
}

TEST(TarvikCore, GroupLivesAsLongAsItHasMembers)
{
    TarvikCore core;
    View<PeakData> first(core), second(core), other(core);
    core.attach(first, "10_10_a");
    first.spread(peaks(5));
    core.attach(second, "10_10_a");
    EXPECT_EQ(second.data().numberOfPeaks, 5);
    EXPECT_EQ(second.notified, 0);
    core.attach(other, "10_10_b");
    EXPECT_EQ(other.data(), PeakData()) << "a new group has a default record";

    second.spread(peaks(6));
    EXPECT_EQ(first.notified, 1);
    EXPECT_EQ(other.notified, 0);

    core.detach(first);
    core.detach(first);
    core.detach(second);
    core.attach(first, "10_10_a");
    EXPECT_EQ(first.data(), PeakData()) << "the record went with the last member";
}

/// The switch of one kind of record spreads nothing while off and catches up when on.
template <class T>
void expectSwitch(void (TarvikCore::*slot)(bool), void (TarvikCore::*signal)(bool), const T& record)
{
    TarvikCore core;
    QSignalSpy spy(&core, signal);
    View<T> a(core), b(core), late(core);
    core.attach(a, "x");
    core.attach(b, "x");
    (core.*slot)(true);
    EXPECT_EQ(spy.size(), 0) << "on from the start";
    (core.*slot)(false);
    (core.*slot)(false);
    EXPECT_EQ(spy.size(), 1);
    a.spread(record);
    EXPECT_EQ(b.notified, 0);
    core.attach(late, "y");
    core.detach(b);
    core.attach(b, "y");  // a group made while switched off is off too
    late.spread(record);
    EXPECT_EQ(b.notified, 0);
    (core.*slot)(true);
    EXPECT_EQ(b.notified, 1);
    EXPECT_EQ(b.data(), record);
    ASSERT_EQ(spy.size(), 2);
    EXPECT_TRUE(spy[1][0].toBool());
}

TEST(TarvikCore, GroupMayEndWhileItIsSwitchedOn)
{
    TarvikCore core;
    View<PeakData> only(core), other(core);
    core.synchronizePeaksSlot(false);
    core.attach(only, "x");
    core.attach(other, "y");
    {
        View<PeakData> former(core), formerOther(core);
        core.attach(former, "x");
        core.attach(formerOther, "y");
        former.spread(peaks(5));
        formerOther.spread(peaks(6));
    }
    only.leaves = true;
    core.synchronizePeaksSlot(true);
    EXPECT_EQ(only.notified, 1);
    EXPECT_EQ(other.data().numberOfPeaks, 6) << "the groups after it are not left out";
}

TEST(TarvikCore, EachKindOfRecordHasItsSwitch)
{
    StatisticsData region;
    region.radius = 4;
    using C = TarvikCore;
    expectSwitch(&C::synchronizeContrastSlot, &C::synchronizeContrastSignal,
                 ContrastData(9, 1, nullptr, false));
    expectSwitch(&C::synchronizeViewportSlot, &C::synchronizeViewportSignal,
                 ViewportData(1, 2, 3, 0, 0));
    expectSwitch(&C::synchronizeStatisticsSlot, &C::synchronizeStatisticsSignal, region);
    expectSwitch(&C::synchronizePeaksSlot, &C::synchronizePeaksSignal, peaks(3));
}

TEST(TarvikCore, DefaultColourTableReachesLaterServicesOnly)
{
    TarvikCore core;
    core.setDefaultColorTable("High Dynamic Range");
    TarvikService* early = core.newService("1");
    core.setDefaultColorTable("Heat");
    TarvikService* late = core.newService("1");
    EXPECT_EQ(early->defaultColorTable(), MColorTable::hdr());
    EXPECT_EQ(late->defaultColorTable(), MColorTable::heat());
    EXPECT_EQ(late->colorTables(),
              (std::list<const MColorTable*>{MColorTable::hdr(), MColorTable::grey(),
                                             MColorTable::heat(), MColorTable::rainbow(),
                                             MColorTable::viridis(), MColorTable::cividis()}));
}

TEST(TarvikCore, RecordsAreKnownToTheMetaSystemByName)
{
    const TarvikCore core;
    for (const char* name :
         {"ViewportData", "ContrastData", "StatisticsData", "const StatisticsData*", "PeakData",
          "morvend::imglib::MImage", "const morvend::imglib::MDrawingList<>*"})
        EXPECT_TRUE(QMetaType::fromName(name).isValid()) << name;
}

TEST(TarvikCoreDeathTest, UnknownColourTableIsAProgrammingError)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(TarvikCore().setDefaultColorTable("Grey"), "logic/core/TarvikCore");
}

TEST(TarvikCore, ServicesGoWhenToldOrWithTheCore)
{
    QPointer<TarvikService> told, pending, remaining;
    {
        TarvikCore core;
        told = core.newService("1");
        pending = core.newService("1");
        remaining = core.newService("1");
        core.deleteService(told);
        EXPECT_TRUE(told) << "not before the event loop is reached";
        QCoreApplication::sendPostedEvents(told, QEvent::DeferredDelete);
        EXPECT_FALSE(told);
        core.deleteService(pending);
    }
    EXPECT_FALSE(pending);
    EXPECT_FALSE(remaining);
}

class NumberGenerator : public ObjectGenerator {
public:
    using ObjectGenerator::ObjectGenerator;
    QThread* madeOn = nullptr;

protected:
    void* virtualmake() override
    {
        madeOn = QThread::currentThread();
        return &madeOn;
    }
};

TEST(ObjectGenerator, MakesOnTheCoresThread)
{
    TarvikCore core;
    NumberGenerator generator(&core);
    EXPECT_EQ(generator.object(), nullptr);
    EXPECT_EQ(generator.make(), &generator.madeOn);
    EXPECT_EQ(generator.object(), &generator.madeOn);

    std::atomic<void*> made = nullptr;
    std::thread caller([&] { made = generator.make(); });
    EXPECT_TRUE(waitFor([&] { return made.load() != nullptr; }));
    caller.join();
    EXPECT_EQ(generator.madeOn, core.thread()) << "for another thread too";
    EXPECT_EQ(made, &generator.madeOn);
}

}  // namespace
