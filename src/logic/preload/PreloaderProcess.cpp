// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Start, end and restart of the preloader.
#include "logic/preload/PreloaderProcess.h"

#include "logic/preload/PreloaderClient.h"

#include <QCoreApplication>
#include <QProcess>

#include <algorithm>
#include <csignal>

#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr int shortestPause = 100;       // ms
constexpr int longestPause = 10'000;     // ms
constexpr int pauseWithoutHandle = 500;  // ms

}  // namespace

PreloaderProcess::PreloaderProcess(const QString& executable, bool quiet, QObject* parent)
    : QObject(parent)
    , _executable(executable)
    , _quiet(quiet)
{
    _again.setSingleShot(true);
    connect(&_again, &QTimer::timeout, this, &PreloaderProcess::_start);
    _start();
}

PreloaderProcess::~PreloaderProcess()
{
    _end.reset();
    if (_handle >= 0)
        ::close(_handle);
}

void PreloaderProcess::_start()
{
    QProcess process;
    process.setProgram(_executable);
    process.setArguments(
        {QStringLiteral("--preloader"), QString::fromStdString(PreloaderClient::messageQueueId()),
         QStringLiteral("--parent-pid"), QString::number(QCoreApplication::applicationPid())});
    process.setStandardInputFile(QProcess::nullDevice());
    if (_quiet) {
        process.setStandardOutputFile(QProcess::nullDevice());
        process.setStandardErrorFile(QProcess::nullDevice());
    }
    _lifetime.start();
    if (process.startDetached(&_pid))
        _watch();
    else
        _ended();
}

void PreloaderProcess::_watch()
{
    _handle = static_cast<int>(::syscall(SYS_pidfd_open, static_cast<pid_t>(_pid), 0));
    if (_handle < 0) {
        if (::kill(static_cast<pid_t>(_pid), 0) != 0)
            return _ended();  // it has ended already
        // It runs, but this process can't have a handle on it now, or never on an old system.
        QTimer::singleShot(pauseWithoutHandle, this, &PreloaderProcess::_watch);
        return;
    }
    _end = std::make_unique<QSocketNotifier>(_handle, QSocketNotifier::Read);
    connect(_end.get(), &QSocketNotifier::activated, this, &PreloaderProcess::_ended);
}

void PreloaderProcess::_ended()
{
    if (_end) {
        _end->setEnabled(false);
        _end.release()->deleteLater();  // this may be its own signal
        ::close(_handle);
    }
    _handle = -1;
    _pid = 0;
    const int pause = _lifetime.hasExpired(longestPause) ? 0 : _pause;
    _pause = std::clamp(2 * pause, shortestPause, longestPause);
    _again.start(pause);
}
