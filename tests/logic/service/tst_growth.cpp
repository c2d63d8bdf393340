// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Series that grow while other programs write them.
#include "logic/service/ContainerWatch.h"
#include "tests/logic/service/ServiceTest.h"
#include "tests/support/TempFolder.h"

#include <QProcess>

namespace {

using namespace tarvik::tests;

/// A process that writes a series with other libraries and keeps its files open. It adds to the
/// series at each line that it reads, and answers with the number of the last image.
class Writer {
public:
    Writer(const TempFolder& folder, const char* kind)
    {
        _process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        _process.start(TARVIK_PYTHON, {TARVIK_SOURCE_DIR "/tests/logic/service/grow.py", kind,
                                       QString::fromStdString(folder.path())});
        _file = _line();
    }
    ~Writer() { finish(); }
    /// The file to open.
    const std::string& file() const { return _file; }
    /// Makes the series grow. @returns its last number, -1 when the writer has failed
    int grow()
    {
        _process.write("\n");
        const std::string line = _line();
        return line.empty() ? -1 : std::stoi(line);
    }
    /// @returns whether the writer came to a good end
    bool finish()
    {
        _process.closeWriteChannel();
        return _process.state() == QProcess::NotRunning ||
               (_process.waitForFinished() && _process.exitCode() == 0);
    }

private:
    std::string _line()
    {
        while (!_process.canReadLine() && _process.waitForReadyRead(20000)) {
        }
        return _process.readLine().trimmed().toStdString();
    }
    QProcess _process;
    std::string _file;
};

class Growth : public ServiceTest, public testing::WithParamInterface<const char*> {};

TEST_P(Growth, IsNoticedAndLocksNoWriterOut)
{
#if defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "a program started by vfork makes the thread sanitizer lose its order";
#endif
    const TempFolder folder;
    Writer writer(folder, GetParam());
    TarvikService* view = newView();
    QSignalSpy errors(view, &TarvikService::imageLoadErrorSignal);
    view->openImage(writer.file().c_str());
    arrive(view);
    view->setWatchSeriesMode(true);
    for (int round = 0; round < 3; ++round) {
        const int last = writer.grow();
        ASSERT_GT(last, 0);
        EXPECT_TRUE(QTest::qWaitFor([&] { return view->imageIndex() == last; }, 8000))
            << "at " << view->imageIndex() << " of " << view->lastIndex() << ", wanted " << last;
        EXPECT_EQ(view->image().pixel<int>(1, 1, -1), last) << "pixels hold their image's number";
    }
    EXPECT_TRUE(writer.finish());
    EXPECT_EQ(errors.size(), 0);
}

INSTANTIATE_TEST_SUITE_P(Table, Growth,
                         testing::Values("numbered", "frames", "dataset", "swmr", "blocks",
                                         "lastblock"),
                         [](const auto& row) { return std::string(row.param); });

TEST(ContainerWatch, PollsWhereNobodyNotifies)
{
    ContainerWatch watch{QString()};
    QSignalSpy changed(&watch, &ContainerWatch::changedSignal);
    EXPECT_TRUE(changed.wait(ContainerWatch::pollPeriod + 2000));
}

TEST(ContainerWatch, FollowsItsFileToAnotherFolder)
{
    const TempFolder first, second;
    ContainerWatch watch(QString::fromStdString(first.write("a.edf", "x")));
    QSignalSpy changed(&watch, &ContainerWatch::changedSignal);
    watch.setFile(QString::fromStdString(second.write("a.edf", "x")));
    const QString folder = QString::fromStdString(second.path());
    ASSERT_TRUE(QTest::qWaitFor([&] { return changed.contains(QVariantList{folder}); }))
        << "what came before the watch stood counts as a change";
    constexpr int wellBelowThePoll = ContainerWatch::pollPeriod / 3;
    second.write("b.edf", "x");
    EXPECT_TRUE(changed.wait(wellBelowThePoll));
    second.write("a.edf", "longer");
    EXPECT_TRUE(changed.wait(wellBelowThePoll));
}

}  // namespace
