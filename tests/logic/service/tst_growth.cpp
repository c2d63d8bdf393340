// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Series that grow while other programs write them.
#include "logic/service/ContainerWatch.h"
#include "tests/logic/service/ServiceTest.h"
#include "tests/support/EdfText.h"
#include "tests/support/SourcePath.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WaitFor.h"

#include <QProcess>

#include <fstream>
#include <sstream>

#include <sys/stat.h>

namespace {

using namespace tarvik::tests;

class Growth : public ServiceTest {
protected:
    /// The answer of a process that writes series with other libraries and keeps its files open.
    std::string answer(const std::string& line)
    {
        writer.write((line + "\n").c_str());
        while (!writer.canReadLine() && writer.waitForReadyRead(Patience)) {
        }
        return writer.readLine().trimmed().toStdString();
    }
    QProcess writer;
};

TEST_F(Growth, IsNoticedAndLocksNoWriterOut)
{
#if defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "a program started by vfork makes the thread sanitizer lose its order";
#endif
    writer.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    writer.start(TARVIK_PYTHON,
                 {QString::fromStdString(sourcePath("/tests/logic/service/grow.py"))});
    for (const char* kind :
         {"numbered", "frames", "dataset", "path", "swmr", "blocks", "lastblock"}) {
        SCOPED_TRACE(kind);
        const TempFolder folder;
        TarvikService* view = newView();
        QSignalSpy errors(view, &TarvikService::imageLoadErrorSignal);
        view->openImage(answer(kind + (" " + folder.path())).c_str());
        arrive(view);
        view->setWatchSeriesMode(true);
        for (int round = 0; round < 2; ++round) {
            const int last = std::atoi(answer("").c_str());
            ASSERT_GT(last, 0);
            EXPECT_TRUE(reaches(view, last)) << view->imageIndex() << ", not " << last;
            EXPECT_EQ(view->image().pixel<int>(1, 1, -1), last) << "pixels hold their number";
        }
        EXPECT_EQ(errors.size(), 0);
        core.deleteService(view);
    }
    writer.closeWriteChannel();
    EXPECT_TRUE(writer.waitForFinished(Patience) && writer.exitCode() == 0)
        << "the writer has failed";
}

/// Does the system notify this process of changes in a folder?
bool isWatched(const TempFolder& folder)
{
    struct stat state {};
    EXPECT_EQ(::stat(folder.path().c_str(), &state), 0);
    const std::string wanted = (std::ostringstream() << " ino:" << std::hex << state.st_ino).str();
    std::error_code gone;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fdinfo", gone)) {
        std::ifstream file(entry.path());
        for (std::string line; std::getline(file, line);)
            if (line.starts_with("inotify") && line.find(wanted + ' ') != std::string::npos)
                return true;
    }
    return false;
}

TEST_F(Growth, IsLookedForWhereTheImageIs)
{
    const TempFolder first, second;
    const std::string frame = edfFrame({1});
    TarvikService* view = newView();
    view->openImage(first.write("a_1.edf", frame).c_str());
    arrive(view);
    view->watchImageContainer(true);
    EXPECT_TRUE(waitFor([&] { return isWatched(first); }));
    view->openImage(second.write("b_1.edf", frame).c_str());
    EXPECT_TRUE(QTest::qWaitFor([&] { return isWatched(second) && !isWatched(first); }, Patience));
}

TEST(ContainerWatch, PollsWhereNobodyNotifies)
{
    ContainerWatch watch{QString()};
    QSignalSpy changed(&watch, &ContainerWatch::changedSignal);
    EXPECT_TRUE(changed.wait(Patience));
}

TEST(ContainerWatch, FollowsItsFileToAnotherFolder)
{
    const TempFolder first, second;
    constexpr int never = -1;  // so that what is noticed was notified
    ContainerWatch watch(QString::fromStdString(first.write("a.edf", "x")), never);
    QSignalSpy changed(&watch, &ContainerWatch::changedSignal);
    watch.setFile(QString::fromStdString(second.write("a.edf", "x")));
    const QString folder = QString::fromStdString(second.path());
    ASSERT_TRUE(waitFor([&] { return changed.contains(QVariantList{folder}); }))
        << "what came before the watch stood counts as a change";
    second.write("b.edf", "x");
    EXPECT_TRUE(changed.wait(Patience));
    second.write("a.edf", "longer");
    EXPECT_TRUE(changed.wait(Patience));
}

}  // namespace
