// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Start of the program in one of its three roles.
#include "bin/CheckParent.h"
#include "bin/CommandLine.h"
#include "bin/MainApplication.h"
#include "bin/PreloaderThread.h"
#include "gui/kit/Look.h"
#include "gui/mainwindow.h"
#include "gui/window/SubWindow.h"
#include "imagelib/io/FormatRegistry.h"
#include "logic/preload/PreloaderClient.h"
#include "logic/support/Assert.h"
#include "logic/support/Console.h"
#include "logic/tarvikcore.h"

#include <QFile>
#include <QProcess>

#include <csignal>
#include <cstdlib>
#include <memory>

namespace {

/// Do the arguments ask for no more than a text? Prints it.
bool endsAtOnce(const CommandLine& line)
{
    if (line.exitCode)
        console::print(line.text);
    return line.exitCode.has_value();
}

QStringList rawArguments(int argc, char** argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QFile::decodeName(argv[i]));
    return arguments;
}

void startPreloader()
{
    const QStringList arguments = {
        QStringLiteral("--preloader"), QString::fromStdString(PreloaderClient::messageQueueId()),
        QStringLiteral("--parent-pid"), QString::number(QCoreApplication::applicationPid())};
    QProcess::startDetached(QCoreApplication::applicationFilePath(), arguments);
}

int runViewer(MainApplication& application, const CommandLine& line)
{
    startPreloader();
    TarvikCore core;
    core.setDefaultColorTable(QStringLiteral("High Dynamic Range"));
    MainWindow mainWindow(core, line.glslEnabled, true);
    application.setMainWindow(&mainWindow);
    mainWindow.resize(1200, 800);
    for (const QString& file : line.imageFiles)
        mainWindow.newSubWindow()->loadFile(file);
    mainWindow.show();
    const int result = QCoreApplication::exec();
    application.setMainWindow(nullptr);
    return result;
}

int runDaemon()
{
    startPreloader();
    TarvikCore core;
    core.setDefaultColorTable(QStringLiteral("Grey Scale"));
    return QCoreApplication::exec();
}

[[noreturn]] void runPreloader(const std::string& queueId)
{
    PreloaderThread thread(queueId);
    thread.start();
    // The thread never returns, so the process ends without taking its objects apart.
    std::_Exit(QCoreApplication::exec());
}

}  // namespace

int main(int argc, char** argv)
{
    // Texts and wrong options need no display, hence a first look before the application exists.
    if (const auto line = CommandLine::parse(rawArguments(argc, argv), TARVIK_VERSION);
        endsAtOnce(line))
        return *line.exitCode;
    // A reader of the printed lines, or a peer, that goes must not take the viewer along.
    std::signal(SIGPIPE, SIG_IGN);
    look::beforeApplication();
    MainApplication application(argc, argv);

    // Qt has taken its own options out of the arguments now.
    const auto line = CommandLine::parse(QCoreApplication::arguments(), TARVIK_VERSION);
    if (endsAtOnce(line))
        return *line.exitCode;
    std::unique_ptr<CheckParent> checkParent;
    if (line.parentPid > 0) {
        checkParent = std::make_unique<CheckParent>(line.parentPid);
        checkParent->start();
    }
    // The preloader reads in place: it is a process apart already.
    morvend::imglib::FormatRegistry::readHdf5Apart(line.role != CommandLine::Role::Preloader);
    switch (line.role) {
    case CommandLine::Role::Viewer:
        return runViewer(application, line);
    case CommandLine::Role::Daemon:
        return runDaemon();
    case CommandLine::Role::Preloader:
        runPreloader(line.queueId.toStdString());
    }
    assert(!"one of the three roles");
    return 1;
}
