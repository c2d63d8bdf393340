// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Start of the program in one of its three roles.
#include "api/TarvikInterface.h"
#include "bin/CheckParent.h"
#include "bin/CommandLine.h"
#include "bin/DisplayGuard.h"
#include "bin/MainApplication.h"
#include "bin/PreloaderThread.h"
#include "gui/kit/Look.h"
#include "gui/window/MainWindow.h"
#include "imagelib/io/FormatRegistry.h"
#include "logic/core/TarvikCore.h"
#include "logic/loading/WorkerPool.h"
#include "logic/preload/PreloaderProcess.h"
#include "logic/support/Assert.h"
#include "logic/support/Console.h"

#include <QFile>

#include <chrono>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {

/// Ends the process at once if a job was left behind or waits for a thread, such as one that closes
/// the files of a view: it would outlive static objects.
int leave(int result)
{
    const WorkerPool::Usage usage = WorkerPool::process().usage();
    if (usage.busy == 0 && usage.queued == 0)
        return result;
    std::fflush(nullptr);
    std::_Exit(result);
}

/// True if the arguments only ask for a text or are wrong; prints that text.
bool endsAtOnce(const CommandLine& line)
{
    if (!line.exitCode)
        return false;
    console::print(line.text);
    console::warn(line.reason);
    return true;
}

QStringList rawArguments(int argc, char** argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QFile::decodeName(argv[i]));
    return arguments;
}

int runViewer(MainApplication& application, const CommandLine& line)
{
    console::warn(line.notes);
    const PreloaderProcess preloader(QCoreApplication::applicationFilePath());
    TarvikCore core;
    core.setDefaultColorTable(QStringLiteral("High Dynamic Range"));
    MainWindow mainWindow(core, line.glslEnabled, true);
    application.setMainWindow(&mainWindow);
    mainWindow.restorePlace();
    mainWindow.openFiles(line.imageFiles);
    mainWindow.show();
    const int result = QCoreApplication::exec();
    application.setMainWindow(nullptr);
    return result;
}

int runDaemon(const CommandLine& line)
{
    const PreloaderProcess preloader(QCoreApplication::applicationFilePath());
    TarvikCore core;
    core.setDefaultColorTable(QStringLiteral("Grey Scale"));
    TarvikInterface interface(&core, line.queueId);
    interface.start();
    const int result = QCoreApplication::exec();
    // A reply may still be under way; a client that does not take it must not keep the process.
    if (!interface.stop(std::chrono::seconds(2))) {
        std::fflush(nullptr);
        std::_Exit(result);
    }
    return result;
}

std::unique_ptr<CheckParent> watchParent(const CommandLine& line)
{
    if (line.parentPid <= 0)
        return nullptr;
    auto watch = std::make_unique<CheckParent>(line.parentPid);
    watch->start();
    return watch;
}

/// Needs no display.
int runPreloader(int argc, char** argv, const CommandLine& line)
{
    QCoreApplication application(argc, argv);
    std::setlocale(LC_NUMERIC, "C");
    const auto checkParent = watchParent(line);
    PreloaderThread thread(line.queueId.toStdString());
    thread.start();
    const int result = QCoreApplication::exec();
    thread.stop();
    // A file system that doesn't answer must not keep the process alive.
    if (!thread.wait(200))
        std::_Exit(result);
    return result;
}

}  // namespace

int main(int argc, char** argv)
{
    // Texts and wrong options need no display, so they are checked before the application exists.
    const auto raw = CommandLine::parse(rawArguments(argc, argv), TARVIK_VERSION);
    if (endsAtOnce(raw))
        return *raw.exitCode;
    // The viewer must survive the end of a peer or of a reader of its output.
    std::signal(SIGPIPE, SIG_IGN);
    if (raw.role == CommandLine::Role::Preloader)
        return runPreloader(argc, argv, raw);
    look::beforeApplication();
    DisplayGuard display;
    MainApplication application(argc, argv);
    display.release();

    // Qt has taken its own options out of the arguments now.
    const auto line = CommandLine::parse(QCoreApplication::arguments(), TARVIK_VERSION);
    if (endsAtOnce(line))
        return *line.exitCode;
    const auto checkParent = watchParent(line);
    // Not in the preloader, which reads in place: it is a separate process already.
    morvend::imglib::FormatRegistry::readHdf5OutOfProcess(true);
    switch (line.role) {
    case CommandLine::Role::Viewer:
        return leave(runViewer(application, line));
    case CommandLine::Role::Daemon:
        return leave(runDaemon(line));
    case CommandLine::Role::Preloader:
        break;  // has run above
    }
    assert(!"one of the three roles");
    return 1;
}
