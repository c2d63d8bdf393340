// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Work that lasts as long as its thread.
#pragma once

#include <QObject>
#include <QString>

/// Runs on a thread of its own, started by that thread's started().
class AbstractWorker : public QObject {
    Q_OBJECT
public slots:
    /// Calls run(), then emits finished().
    void work();

public:
    virtual void run() = 0;

signals:
    void finished();
    /// A text for the user.
    void error(QString message);
};
