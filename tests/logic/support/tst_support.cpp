// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Printed lines, the checking mutex and the machine's settings.
#include "logic/support/ConfigFile.h"
#include "logic/support/Console.h"
#include "logic/support/DebugMutex.h"
#include "logic/support/FailureSummary.h"
#include "logic/support/GlobalSettings.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace {

TEST(Console, PrintsExactlyWhatItIsGiven)
{
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    console::print("no newline");
    console::printTime("\nTIME OPENING SERIES: ", 12);
    console::warn("WARNING: x\n");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "no newline\nTIME OPENING SERIES: 12\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "WARNING: x\n");
}

TEST(DebugMutex, LocksAgainOnItsOwnThreadOnly)
{
    DebugMutex mutex;
    mutex.lock();
    EXPECT_TRUE(mutex.tryLock());
    std::thread([&] { EXPECT_FALSE(mutex.tryLock()); }).join();
    mutex.unlock();
    std::thread([&] { EXPECT_FALSE(mutex.tryLock()); }).join();
    mutex.unlock();
    std::thread([&] {
        EXPECT_TRUE(mutex.tryLock());
        mutex.unlock();
    }).join();
}

TEST(DebugMutexDeathTest, AFaultOfLockingEndsTheProcess)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(DebugMutex().unlock(), "DebugMutex.cpp.*_status > 0 && _process ==");
}

TEST(FailureSummary, FailuresThatDifferInNumbersAloneAreOneLine)
{
    FailureSummary failures;
    EXPECT_TRUE(failures.add(3, "no file: /x_0003.h5"));
    EXPECT_TRUE(failures.add(4, "damaged: /x_0004.h5"));
    EXPECT_FALSE(failures.add(5, "no file: /x_00005.h5"));
    EXPECT_EQ(failures.lines(),
              (std::vector<std::string>{"2 images from 3 to 5 can't be read, the first because of: "
                                        "no file: /x_0003.h5",
                                        "damaged: /x_0004.h5"}));
    for (int i = 0; i < 1000; ++i)
        failures.add(i, std::string(static_cast<std::size_t>(i), 'x'));
    EXPECT_LE(failures.lines().size(), 50u);
    failures.clear();
    EXPECT_TRUE(failures.add(6, "no file: /x_0006.h5"));
}

TEST(GlobalSettings, PrintsEachKeyThatTheFileHolds)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("TARVIK.conf");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[General]\nHalvoAccessibleInUserMode=false\nOther=1\n");
    file.close();

    testing::internal::CaptureStdout();
    const GlobalSettings settings(path);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "HalvoAccessibleInUserMode\nOther\n");
    EXPECT_FALSE(settings.value(GlobalSettings::accessibleInUserMode).toBool());
    EXPECT_FALSE(settings.fallbacksEnabled());
}

TEST(ConfigFile, BeginsWithoutFailure)
{
    const ConfigFile file("/etc/x.conf", '=');
    EXPECT_EQ(file.fileName(), "/etc/x.conf");
    EXPECT_EQ(file.separator(), '=');
    EXPECT_EQ(file.fail(), 0);
}

}  // namespace
