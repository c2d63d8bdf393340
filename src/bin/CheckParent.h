// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Ends the process when its parent is gone.
#pragma once

#include <QSemaphore>
#include <QThread>

/// Polls for a process every 100 ms and ends the application's event loop when it is gone, whatever
/// windows are open. Runs until it is destroyed.
class CheckParent : public QThread {
    Q_OBJECT
public:
    explicit CheckParent(int parentPid);
    /// Stops polling and waits for the thread.
    ~CheckParent() override;

protected:
    void run() override;

private:
    const int _parentPid;
    QSemaphore _stop;
};
