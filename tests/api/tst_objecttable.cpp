// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The objects that a script may name, while they go.
#include "api/ObjectTable.h"
#include "tests/api/OtherThread.h"

#include <QObject>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using namespace std::chrono_literals;

namespace {

bool never() { return false; }

TEST(ObjectTable, HoldsWhatIsInItOnly)
{
    ObjectTable table;
    QObject object, other;
    const quint64 id = ObjectTable::id(&object).toULongLong();
    EXPECT_EQ(id, reinterpret_cast<quintptr>(&object));
    EXPECT_EQ(table.find(id), nullptr);
    EXPECT_FALSE(table.hold(&object));
    table.attach(&object);
    table.attach(&other);
    EXPECT_EQ(table.find(id), &object);
    EXPECT_EQ(table.find(0), nullptr);
    EXPECT_EQ(table.find(id + 1), nullptr);
    EXPECT_TRUE(table.hold(&object));
    int last = 0;
    EXPECT_TRUE(table.remove(&object, [&] { ++last; }));
    EXPECT_FALSE(table.remove(&object, [&] { ++last; })) << "it has gone";
    EXPECT_FALSE(table.remove(nullptr, [&] { ++last; }));
    EXPECT_EQ(last, 1);
    EXPECT_FALSE(table.hold(&object));
    table.detach(&object);
    EXPECT_TRUE(table.contains(&other));
    table.attach(&object);
    EXPECT_TRUE(table.hold(&object)) << "an address that comes again";
}

TEST(ObjectTable, WaitsUntilAnObjectHasGone)
{
    ObjectTable table;
    QObject object;
    EXPECT_TRUE(table.waitUntilGone(&object, 0ms, never));
    table.attach(&object);
    EXPECT_FALSE(table.waitUntilGone(&object, 0ms, never));
    EXPECT_FALSE(table.waitUntilGone(&object, 24h, [] { return true; }));
    std::atomic<bool> waiting = false;
    auto gone = std::async(std::launch::async, [&] {
        return table.waitUntilGone(&object, 24h, [&] {
            waiting = true;
            return false;
        });
    });
    ASSERT_TRUE(waitFor([&] { return waiting.load(); }));
    table.detach(&object);
    EXPECT_TRUE(gone.get());
}

TEST(ObjectTable, ACallUnderWayEndsBeforeItsObjectGoes)
{
    ObjectTable table;
    QObject object;
    table.attach(&object);
    std::atomic<bool> held = false;
    bool called = false;
    auto script = std::async(std::launch::async, [&] {
        const auto hold = table.hold(&object);
        held = true;
        const auto call = [&] { called = table.contains(&object); };
        QMetaObject::invokeMethod(&object, call, Qt::BlockingQueuedConnection);
    });
    while (!held)
        std::this_thread::yield();
    table.detach(&object);  // without an event loop but its own
    EXPECT_TRUE(called);
    EXPECT_FALSE(table.contains(&object));
    script.get();
}

// While one object is kept by a call, the events that the GUI thread serves may take others out,
// and the call may end and be followed by one that waits for them.
TEST(ObjectTable, ObjectsThatGoMeanwhileDisturbNoWait)
{
    ObjectTable table;
    QObject held, awaited, others[1000];
    table.attach(&held);
    table.attach(&awaited);
    std::atomic<bool> holding = false, finished = false;
    std::atomic<int> waits = 0;
    std::thread script([&] {
        auto hold = table.hold(&held);
        holding = true;
        const auto call = [&] {
            // The other thread goes for the table, which this one has locked.
            while (waits == 0)
                std::this_thread::yield();
            for (QObject& each : others) {
                table.attach(&each);
                table.detach(&each);
            }
            finished = true;
        };
        QMetaObject::invokeMethod(&held, call, Qt::QueuedConnection);
        while (!finished)
            std::this_thread::yield();
    });
    std::thread waiting([&] {
        while (!holding)
            std::this_thread::yield();
        while (!finished) {
            ++waits;
            table.waitUntilGone(&awaited, 0ms, never);
        }
    });
    while (!holding)
        std::this_thread::yield();
    table.detach(&held);
    script.join();
    waiting.join();
    EXPECT_TRUE(table.contains(&awaited));
}

}  // namespace
