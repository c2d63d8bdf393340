// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The processes of each role: how they start, what they print, and when they end.
#include "tests/support/WaitFor.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <gmock/gmock.h>

#include <csignal>

namespace {

struct Ended {
    QProcess::ExitStatus status;
    int exitCode;
    std::string out;
    std::string errors;
};

Ended runWithoutDisplay(const QStringList& arguments, const QString& display = {})
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove("DISPLAY");
    environment.remove("WAYLAND_DISPLAY");
    if (!display.isEmpty())
        environment.insert("DISPLAY", display);
    process.setProcessEnvironment(environment);
    process.start(TARVIK_EXECUTABLE, arguments);
    EXPECT_TRUE(process.waitForFinished(60000));
    return {process.exitStatus(), process.exitCode(), process.readAllStandardOutput().toStdString(),
            process.readAllStandardError().toStdString()};
}

/// The one process that was started to watch `parent`, or 0.
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

/// A started process, killed in the end.
class Program {
public:
    explicit Program(const QStringList& arguments, const QString& program = TARVIK_EXECUTABLE,
                     const QString& folder = {})
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        if (!folder.isEmpty())
            for (const char* name : {"XDG_RUNTIME_DIR", "TMPDIR"})
                environment.insert(name, folder);
        process.setProcessEnvironment(environment);
        process.setStandardOutputFile(QProcess::nullDevice());
        process.setStandardErrorFile(QProcess::nullDevice());
        process.start(program, arguments);
        EXPECT_TRUE(process.waitForStarted());
    }
    ~Program() { kill(); }
    void kill()
    {
        process.kill();
        process.waitForFinished();
    }
    qint64 pid() const { return process.processId(); }
    bool running() const { return process.state() == QProcess::Running; }
    bool endedWell() const
    {
        return !running() && process.exitStatus() == QProcess::NormalExit &&
               process.exitCode() == 0;
    }

    QProcess process;
};

/// How often the threads of a process have gone to sleep, which a busy machine counts alike.
qint64 switches(qint64 pid)
{
    qint64 sum = 0;
    const QString tasks = QStringLiteral("/proc/%1/task").arg(pid);
    for (const QString& task : QDir(tasks).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile file(tasks + '/' + task + "/status");
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QByteArray text = file.readAll();
        const qsizetype at = text.indexOf("\nvoluntary_ctxt_switches:");
        sum += at < 0
                   ? 0
                   : text.mid(at + 25, text.indexOf('\n', at + 1) - at - 25).trimmed().toLongLong();
    }
    return sum;
}

/// Waits for the one preloader of a process, other than `former`.
qint64 preloaderOf(qint64 parent, qint64 former = 0)
{
    qint64 found = 0;
    EXPECT_TRUE(waitFor([&] {
        found = childThatWatches(parent);
        return found != 0 && found != former;
    }));
    return found;
}

TEST(Roles, TextsNeedNoDisplay)
{
    EXPECT_EQ(runWithoutDisplay({"--version"}).out, "3.2.0\n");
    const Ended help = runWithoutDisplay({"a.cbf", "--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_THAT(help.out, testing::StartsWith("usage: tarvik [options]"));
    // Options of the toolkit are none of ours: here the queue id is missing.
    for (const QStringList& wrong :
         {QStringList{"--daemon", "-platform", "offscreen"}, QStringList{"--parent-pid", "x"}}) {
        const Ended ended = runWithoutDisplay(wrong);
        EXPECT_EQ(ended.exitCode, 1);
        EXPECT_EQ(ended.out, help.out);
        EXPECT_THAT(ended.errors, testing::ContainsRegex("tarvik: --[a-z-]+ needs a .*\n$"));
    }
}

TEST(Roles, WithoutADisplayAWindowIsRefusedInOneSentence)
{
    const std::string sentence = "tarvik: There is no display to show windows on: ";
    const std::string advice = ". tarvik-image works without one.\n";
    const std::tuple<QStringList, QString, std::string> table[] = {
        {{"a.cbf"}, "", "DISPLAY is not set"},
        {{"-h"}, "", "DISPLAY is not set"},
        {{"--daemon", "q"}, "", "DISPLAY is not set"},
        {{}, ":4711", "could not connect to display :4711"},
        {{}, "nonsense", "could not connect to display nonsense"}};
    for (const auto& [arguments, display, reason] : table) {
        const Ended ended = runWithoutDisplay(arguments, display);
        EXPECT_EQ(ended.status, QProcess::NormalExit);
        EXPECT_EQ(ended.exitCode, 1);
        EXPECT_EQ(ended.out, "");
        EXPECT_EQ(ended.errors, sentence + reason + advice);
    }
}

TEST(Roles, LiveAsLongAsWhoTheyWatchAndNoLonger)
{
    Program watched({"1000"}, "sleep");
    const QString pid = QString::number(watched.pid());
    Program preloader({"--preloader", "q", "--parent-pid", pid});
    Program daemon({"--daemon", "r", "--parent-pid", pid});
    Program loneDaemon({"--daemon", "s"});
    const qint64 itsPreloader = preloaderOf(loneDaemon.pid());
    for (const Program* each : {&preloader, &daemon})
        EXPECT_TRUE(waitFor([&, begin = switches(each->pid())] {
            return switches(each->pid()) > begin + 20 || !each->running();
        })) << "it looks for whom it watches some times";
    EXPECT_TRUE(preloader.running() && daemon.running() && loneDaemon.running());
    EXPECT_EQ(childThatWatches(loneDaemon.pid()), itsPreloader);

    const qint64 killed = loneDaemon.pid();
    loneDaemon.kill();
    watched.kill();
    EXPECT_TRUE(waitFor([&] {
        return preloader.endedWell() && daemon.endedWell() && childThatWatches(killed) == 0;
    }));
}

TEST(Roles, ViewerReplacesAPreloaderThatDiesAndLeavesNothingWhenItIsKilled)
{
    // Folders of its own, so that nothing of other programs is taken for its.
    const QTemporaryDir folder;
    Program program({}, TARVIK_EXECUTABLE, folder.path());
    const QByteArray queue = "PRELOADER_" + QByteArray::number(program.pid());
    const auto sockets = [&] {
        QFile file("/proc/net/unix");
        return file.open(QIODevice::ReadOnly) && file.readAll().contains(queue);
    };
    EXPECT_TRUE(waitFor(sockets));
    qint64 preloader = preloaderOf(program.pid());
    for (int i = 0; i < 2; ++i) {
        ::kill(static_cast<pid_t>(preloader), SIGKILL);
        preloader = preloaderOf(program.pid(), preloader);
    }
    QFile commandLine("/proc/" + QString::number(preloader) + "/cmdline");
    ASSERT_TRUE(commandLine.open(QIODevice::ReadOnly));
    EXPECT_TRUE(commandLine.readAll().contains(queue));
    EXPECT_TRUE(program.running());

    const qint64 killed = program.pid();
    program.kill();
    EXPECT_TRUE(waitFor([&] { return childThatWatches(killed) == 0 && !sockets(); }));
    EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

}  // namespace
