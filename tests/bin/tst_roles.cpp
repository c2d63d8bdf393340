// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The processes of each role: how they start, what they print, and when they end.
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <gmock/gmock.h>

#include <csignal>

namespace {

struct Ended {
    int exitCode;
    std::string out;
};

Ended runToEnd(const QStringList& arguments, bool withDisplay)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    if (!withDisplay) {
        environment.remove("DISPLAY");
        environment.remove("WAYLAND_DISPLAY");
    }
    process.setProcessEnvironment(environment);
    process.start(TARVIK_EXECUTABLE, arguments);
    EXPECT_TRUE(process.waitForFinished(20000));
    return {process.exitCode(), process.readAllStandardOutput().toStdString()};
}

/// The one process that was told to watch `parent`, or 0.
qint64 childThatWatches(qint64 parent)
{
    const QByteArray wanted = "--parent-pid" + QByteArray(1, '\0') + QByteArray::number(parent);
    for (const QString& entry : QDir("/proc").entryList(QDir::Dirs)) {
        QFile file("/proc/" + entry + "/cmdline");
        if (entry.toLongLong() > 0 && file.open(QIODevice::ReadOnly) &&
            file.readAll().contains(wanted + '\0'))
            return entry.toLongLong();
    }
    return 0;
}

/// Milliseconds until a condition holds, at most 20 s.
template <class Condition>
qint64 msUntil(Condition&& condition)
{
    QElapsedTimer clock;
    clock.start();
    EXPECT_TRUE(QTest::qWaitFor(condition, 20000));
    return clock.elapsed();
}

/// A started process of the program, killed in the end.
class Program {
public:
    using Variables = std::vector<std::pair<QString, QString>>;
    explicit Program(const QStringList& arguments, const Variables& variables = {})
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const auto& [name, value] : variables)
            environment.insert(name, value);
        process.setProcessEnvironment(environment);
        process.setStandardOutputFile(QProcess::nullDevice());
        process.setStandardErrorFile(QProcess::nullDevice());
        process.start(TARVIK_EXECUTABLE, arguments);
        EXPECT_TRUE(process.waitForStarted());
    }
    ~Program()
    {
        process.kill();
        process.waitForFinished();
    }
    bool running() const { return process.state() == QProcess::Running; }

    QProcess process;
};

TEST(Roles, TextsNeedNoDisplay)
{
    EXPECT_EQ(runToEnd({"--version"}, false).out, "3.2.0\n");
    const Ended help = runToEnd({"a.cbf", "--help"}, false);
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_THAT(help.out, testing::StartsWith("usage: tarvik [options]"));
    for (const QStringList& wrong : {QStringList{"--daemon"}, QStringList{"--parent-pid", "x"}}) {
        const Ended ended = runToEnd(wrong, false);
        EXPECT_EQ(ended.exitCode, 1);
        EXPECT_EQ(ended.out, help.out);
    }
}

TEST(Roles, OptionsOfTheToolkitAreNoneOfOurs)
{
    const Ended ended = runToEnd({"--daemon", "-platform", "offscreen"}, true);
    EXPECT_EQ(ended.exitCode, 1) << "the queue id is missing";
    EXPECT_THAT(ended.out, testing::StartsWith("usage: tarvik"));
}

TEST(Roles, PreloaderEndsWithItsParent)
{
    QProcess parent;
    parent.start("sleep", {"100"});
    ASSERT_TRUE(parent.waitForStarted());
    const QStringList arguments = {"--preloader", "q", "--parent-pid",
                                   QString::number(parent.processId())};
    Program preloader(arguments);
    QTest::qWait(1500);
    EXPECT_TRUE(preloader.running());
    parent.kill();
    parent.waitForFinished();
    EXPECT_LT(msUntil([&] { return !preloader.running(); }), 1000);
    EXPECT_EQ(preloader.process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(preloader.process.exitCode(), 0);
}

/// The role starts one preloader, which goes when the process is killed.
void expectPreloader(const QStringList& arguments)
{
    Program program(arguments);
    const qint64 parent = program.process.processId();
    qint64 preloader = 0;
    msUntil([&] { return (preloader = childThatWatches(parent)) != 0; });
    QTest::qWait(1500);
    EXPECT_TRUE(program.running());
    EXPECT_EQ(childThatWatches(parent), preloader);
    QFile commandLine("/proc/" + QString::number(preloader) + "/cmdline");
    ASSERT_TRUE(commandLine.open(QIODevice::ReadOnly));
    EXPECT_TRUE(commandLine.readAll().contains("PRELOADER_" + QByteArray::number(parent)));

    program.process.kill();
    program.process.waitForFinished();
    EXPECT_LT(msUntil([&] {
                  return kill(static_cast<pid_t>(preloader), 0) != 0 ||
                         childThatWatches(parent) == 0;
              }),
              1000);
}

TEST(Roles, APreloaderThatDiesIsReplaced)
{
    Program program({});
    const qint64 parent = program.process.processId();
    qint64 preloader = 0;
    msUntil([&] { return (preloader = childThatWatches(parent)) != 0; });
    for (int i = 0; i < 2; ++i) {
        QTest::qWait(500);  // the viewer's event loop runs by then
        kill(static_cast<pid_t>(preloader), SIGKILL);
        qint64 next = 0;
        EXPECT_LT(msUntil([&] {
                      next = childThatWatches(parent);
                      return next != 0 && next != preloader;
                  }),
                  2000);
        preloader = next;
    }
    EXPECT_TRUE(program.running());
}

TEST(Roles, NothingOfAKilledViewerStays)
{
    // Folders of its own, so that nothing of other programs is taken for its.
    const QTemporaryDir folder;
    Program program({}, {{"XDG_RUNTIME_DIR", folder.path()}, {"TMPDIR", folder.path()}});
    const QByteArray queue = "PRELOADER_" + QByteArray::number(program.process.processId());
    const auto sockets = [&] {
        QFile file("/proc/net/unix");
        return file.open(QIODevice::ReadOnly) && file.readAll().contains(queue);
    };
    msUntil([&] { return sockets(); });
    program.process.kill();
    program.process.waitForFinished();
    EXPECT_LT(msUntil([&] { return !sockets(); }), 1000);
    EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

TEST(Roles, ViewerHasAPreloader) { expectPreloader({}); }

TEST(Roles, DaemonHasAPreloader) { expectPreloader({"--daemon", "q"}); }

TEST(Roles, DaemonEndsWithTheProcessThatItIsToldOf)
{
    QProcess parent;
    parent.start("sleep", {"100"});
    ASSERT_TRUE(parent.waitForStarted());
    Program daemon({"--daemon", "q", "--parent-pid", QString::number(parent.processId())});
    QTest::qWait(1500);
    EXPECT_TRUE(daemon.running());
    parent.kill();
    parent.waitForFinished();
    EXPECT_LT(msUntil([&] { return !daemon.running(); }), 1000);
    EXPECT_EQ(daemon.process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(daemon.process.exitCode(), 0);
}

}  // namespace
