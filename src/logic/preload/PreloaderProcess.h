// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The preloader process of this process, kept running.
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QSocketNotifier>
#include <QString>
#include <QTimer>

#include <memory>

/// Starts the preloader, and starts it again when it has died: at once the first time, then after
/// pauses that double up to ten seconds until one has lived that long. It ends by itself
/// when this process has gone. Thread: GUI.
class PreloaderProcess : public QObject {
    Q_OBJECT
public:
    /// @param executable the viewer's program, which takes the role of the preloader too
    /// @param quiet drops what it prints on standard output and standard error: its parent reads
    /// the images that it can't read, and reports those failures itself
    explicit PreloaderProcess(const QString& executable, bool quiet = false,
                              QObject* parent = nullptr);
    ~PreloaderProcess() override;

    /// 0 while it is not running.
    qint64 processId() const { return _pid; }

private:
    void _start();
    /// Waits for the end of the process that has been started.
    void _watch();
    /// Starts the next one after a pause.
    void _ended();

    const QString _executable;
    const bool _quiet;
    qint64 _pid = 0;
    int _handle = -1;  // becomes readable when the process ends
    std::unique_ptr<QSocketNotifier> _end;
    QElapsedTimer _lifetime;
    QTimer _again;
    int _pause = 0;  // ms until the next start
};
