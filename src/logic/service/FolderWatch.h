// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Notices changes in a folder, on a thread of its own.
#pragma once

#include <functional>
#include <memory>
#include <string>

/// Reports that files may have been added to a folder or written to: when the
/// system notifies of it, which takes milliseconds, and in any case after each poll period. Bursts
/// are reported once. No call waits: a watch on a dead mount can block for ever; then
/// only the detached thread hangs.
/// Thread: one at a time.
class FolderWatch {
public:
    static constexpr int defaultPollPeriod = 2000;  // ms
    static constexpr int shortestPeriod = 100;

    /// @param changed  called on the thread of the watch, once until lookAgain(), and never after
    /// the end of this object; must not wait
    /// @param pollPeriod  ms, negative for no poll
    explicit FolderWatch(std::function<void()> changed, int pollPeriod = defaultPollPeriod);
    ~FolderWatch();
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;

    /// Switches to another folder, which counts as a change; with an empty path only the poll goes
    /// on.
    void setFolder(const std::string& folder);
    /// Acknowledges a change: the next one will be reported.
    void lookAgain();

private:
    struct Shared;
    static void _run(const std::shared_ptr<Shared>& shared);

    const std::shared_ptr<Shared> _shared;  // with the thread
};
