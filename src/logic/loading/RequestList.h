// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The requests of a view that are pending.
#pragma once

#include <chrono>
#include <list>
#include <mutex>
#include <optional>
#include <string>

/// Knows each request from creation to end: whether it waits or runs, since when, and whether
/// the view has its answer. Thread: any; the mutex is held briefly.
class RequestList {
public:
    using Clock = std::chrono::steady_clock;
    struct Request {
        std::string what;    ///< what is loaded, for users; empty for a scan
        bool reads = false;  ///< from files, which may not answer
        int way = 0;         ///< see LoaderRequest::way()
    };
    struct Waiting {
        std::string what;
        Clock::duration time;
    };

    /// Adds a request at the end. @returns its number, which rises from request to request
    unsigned int enter(Request request);
    /// Its job starts. @returns false for a request that was dropped, which must not run
    bool begin(unsigned int number);
    /// Steps have been added to a request that waits.
    void setWay(unsigned int number, int way);
    /// The view has the result, or knows that nothing comes.
    void answer(unsigned int number);
    /// Its job has ended, or never starts.
    void leave(unsigned int number);
    /// Drops all requests that have not begun. Those that have begun run on.
    void drop();

    /// True if drop() was called after the request was made.
    bool dropped(unsigned int number) const;
    /// True if there is a newer request, other than steps in that direction.
    bool overtaken(unsigned int number, int way) const;
    /// True if a request is queued or running. Scans do not count.
    bool loading() const;
    /// True if a request has not begun yet.
    bool queued(unsigned int number) const;
    /// The oldest request without answer, and for how long it has been waiting.
    std::optional<Waiting> oldest() const;
    /// True if a job has been reading for that long.
    bool hangs(Clock::duration patience) const;

private:
    struct Entry {
        unsigned int number = 0;
        Request request;
        Clock::time_point entered;
        std::optional<Clock::time_point> begun{};
        bool answered = false;
        bool unwanted = false;
    };
    using Entries = std::list<Entry>;

    /// The entry of a number or the end; the caller holds the mutex.
    Entries::iterator _find(unsigned int number);
    Entries::const_iterator _find(unsigned int number) const;

    mutable std::mutex _mutex;
    Entries _entries;  // by rising number
    unsigned int _lastNumber = 0;
};
