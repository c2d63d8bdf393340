// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Notices changes in a folder, on a thread of its own.
#pragma once

#include <functional>
#include <memory>
#include <string>

/// Tells that files may have come to a folder or that some of it have been written to: when the
/// system notifies of it, which takes milliseconds, and in any case after each poll period. Bursts
/// are told once. No call waits: a mount that is dead lets nobody go who asks for a watch, and then
/// holds the thread alone, which is left behind.
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

    /// Goes over to another folder, which counts as a change; with an empty path only the poll goes
    /// on.
    void setFolder(const std::string& folder);
    /// The change has been taken note of: the next one is to be told.
    void lookAgain();

private:
    struct Shared;
    static void _run(const std::shared_ptr<Shared>& shared);

    const std::shared_ptr<Shared> _shared;  // with the thread
};
