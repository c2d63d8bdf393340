// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What the jobs of a view's loader work with, also after the view has closed.
#pragma once

#include "logic/loading/LoaderDesk.h"
#include "logic/loading/RequestList.h"
#include "logic/loading/SeriesSession.h"

#include <atomic>
#include <memory>
#include <string>

/// A session, the requests for it, and the way to the desk. Jobs share it with the loader: when a
/// job does not come back from the file system, the loader takes another context, and nothing that
/// this one reports later reaches the view. Thread: any, but for the session.
class LoaderContext {
public:
    /// Begins at the current state of the desk's view.
    explicit LoaderContext(std::shared_ptr<LoaderDesk> desk);

    /// The view goes on without this context: its job ends as soon as it can.
    void abandon();
    bool abandoned() const { return _abandoned; }

    // Of the running job.
    /// Publishes the bounds of the series and a record.
    void deliver(const LoaderData& record);
    /// Publishes the bounds and a failure, an empty one silently.
    void fail(const std::string& message);
    /// Sends a sentence to be shown for a while.
    void notice(const std::string& message);
    /// The job of a scan: looks for new images.
    void scan();
    /// The job that asks what has been read ahead.
    void listReadAhead();

    SeriesSession session;  ///< the running job's alone
    RequestList requests;
    std::atomic<bool> scanQueued = false;
    std::atomic<bool> listQueued = false;

private:
    const std::shared_ptr<LoaderDesk> _desk;
    std::atomic<bool> _abandoned = false;
    std::string _scanFailure;  // of the last scan, empty if it went well; the running job's alone
};
