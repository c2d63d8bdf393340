// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What the jobs of a view's loader work with, whether the view still lives or not.
#pragma once

#include "logic/loading/LoaderDesk.h"
#include "logic/loading/RequestList.h"
#include "logic/loading/SeriesSession.h"

#include <atomic>
#include <memory>

/// A session, the requests for it, and the way to the desk. Jobs share it with the loader, so that
/// a job that does not come back from the file system can be left behind with it: nothing that it
/// says later reaches the view. Thread: any, but for the session.
class LoaderContext {
public:
    /// Begins where the desk's view stands.
    explicit LoaderContext(std::shared_ptr<LoaderDesk> desk);

    /// Nothing that works here counts any more, and what can be ended ends soon.
    void abandon();
    bool abandoned() const { return _abandoned; }

    // Of the running job.
    /// Publishes the bounds of the series and a record.
    void deliver(const LoaderData& record);
    /// Publishes the bounds and a failure, an empty one in silence.
    void fail(const QString& message);
    /// Sends a sentence to be shown for a while.
    void notice(const QString& message);
    /// The job of a scan: looks for new images.
    void scan();

    SeriesSession session;  ///< the running job's alone
    RequestList requests;
    std::atomic<bool> scanQueued = false;

private:
    const std::shared_ptr<LoaderDesk> _desk;
    std::atomic<bool> _abandoned = false;
};
