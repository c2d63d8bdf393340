// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Writing of pictures and files on a worker.
#pragma once

#include "logic/output/Pictures.h"

#include <QObject>
#include <QString>

#include <functional>
#include <memory>

/// Runs one piece of work on a thread of the pool and reports its end. Deleted or cancelled, it
/// reports no more, and the work ends soon without effect, whatever its file system does. The
/// application's end waits a while for works that run. Thread: GUI only.
class OutputJob : public QObject {
    Q_OBJECT
public:
    /// Called on a worker; follows checkCancelled() and fails by exceptions.
    using Work = std::function<void(const pictures::Progress& progress)>;

    /// Begins at once.
    explicit OutputJob(Work work, QObject* parent = nullptr);
    ~OutputJob() override;

    void cancel();

signals:
    /// The share that is done, in percent; 100 while the rest can't be measured.
    void progressSignal(int percent);
    /// @param error  empty when the work is done
    void finishedSignal(QString error);

private:
    struct State;
    const std::shared_ptr<State> _state;
};
