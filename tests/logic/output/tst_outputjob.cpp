// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Work on a worker, its report and its end.
#include "logic/output/OutputJob.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/formats/base/Cancellation.h"
#include "tests/support/WaitFor.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QThread>

#include <atomic>
#include <memory>
#include <semaphore>

namespace {

using morvend::imglib::checkCancelled;

TEST(OutputJob, ReportsProgressAndEndOfWorkElsewhere)
{
    const QThread* worker = nullptr;
    OutputJob job([&worker](const pictures::Progress& progress) {
        worker = QThread::currentThread();
        for (const double share : {0.1, 0.101, 0.5})
            progress(share);
    });
    QSignalSpy progress(&job, &OutputJob::progressSignal);
    QSignalSpy finished(&job, &OutputJob::finishedSignal);
    ASSERT_TRUE(finished.wait(Patience));
    EXPECT_NE(worker, QThread::currentThread());
    EXPECT_EQ(finished[0][0].toString(), "");
    EXPECT_EQ(progress, (QList<QVariantList>{{10}, {50}}));

    OutputJob failing(
        [](const pictures::Progress&) { throw morvend::MRuntimeException("Disk is full"); });
    QSignalSpy failed(&failing, &OutputJob::finishedSignal);
    ASSERT_TRUE(failed.wait(Patience));
    EXPECT_EQ(failed[0][0].toString(), "Disk is full");
}

TEST(OutputJob, OneThatIsNoLongerWantedEndsWithoutAWord)
{
    for (const bool deleted : {false, true}) {
        std::binary_semaphore begun(0);
        std::binary_semaphore goOn(0);
        std::atomic<bool> stopped = false;
        std::atomic<bool> ended = false;
        auto job = std::make_unique<OutputJob>([&](const pictures::Progress&) {
            begun.release();
            goOn.acquire();
            try {
                checkCancelled();
            } catch (const morvend::MTerminateException&) {
                stopped = true;
            }
            ended = true;
        });
        int reports = 0;
        QObject::connect(job.get(), &OutputJob::finishedSignal, [&reports] { ++reports; });
        begun.acquire();
        if (deleted)
            job.reset();
        else
            job->cancel();
        goOn.release();
        ASSERT_TRUE(waitFor([&] { return ended.load(); }));
        EXPECT_TRUE(stopped);
        settle();
        EXPECT_EQ(reports, 0);
    }
}

}  // namespace
