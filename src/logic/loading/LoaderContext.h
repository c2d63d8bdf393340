// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What the jobs of a view's loader work with, whether the view still lives or not.
#pragma once

#include "imagelib/io/MImageSeries.h"
#include "logic/loading/AwaitedImage.h"
#include "logic/loading/LoaderData.h"
#include "logic/loading/MaskFixup.h"
#include "logic/loading/MaskThumbnails.h"
#include "logic/preload/PreloaderClient.h"

#include <QString>

#include <atomic>
#include <chrono>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

class ImageLoader;
class LoaderContext;

/// Where jobs leave what they have for their view. The mutex is held for moments only, and while a
/// job emits a signal of the loader. Thread: any, under the mutex.
struct LoaderDesk {
    std::recursive_mutex mutex;
    ImageLoader* loader = nullptr;           // null when the view is closed
    const LoaderContext* current = nullptr;  // whose jobs count
    std::list<LoaderData> results;
    std::string openedAs;  // the path that the series of the last result was opened by, if any
    int firstIndex = -1;
    int lastIndex = -1;
    int delivered = -1;  // number of the last record
};

/// An open series with what belongs to it, and the requests that wait for it. Jobs share it with
/// the loader, so that a job that does not come back from the file system can be left behind: it
/// then leaves nothing on the desk any more.
class LoaderContext {
public:
    using Clock = std::chrono::steady_clock;
    /// What a job is for.
    struct Request {
        std::string what;    ///< what is loaded, for users; empty for a scan
        bool reads = false;  ///< from files, which may not answer
        int way = 0;         ///< 1 or -1 for steps from the number asked for last, all that way
    };
    struct Waiting {
        std::string what;
        Clock::duration time;
    };

    /// @param comeBackTo  a file of the series that a request for an image means as long as no
    /// other series is open here
    explicit LoaderContext(std::shared_ptr<LoaderDesk> desk, std::string comeBackTo = {});

    /// Nothing that works here counts any more, and what can be ended ends soon.
    void abandon();
    bool abandoned() const { return _abandoned; }

    // Of jobs, which run one at a time; cancel() of the series is for any thread.
    /// Opens the series that this one is to come back to, if none is open.
    void comeBack();
    /// Another series is open here. @param path  that it was opened by, empty for one in memory
    void opened(const std::string& path);
    /// Publishes the bounds of the series and a record.
    /// @param print  called when the signal is out and before the consumer can print
    void deliver(const LoaderData& record, const std::function<void()>& print);
    /// The same for a failure. @param silent  without a signal
    void fail(const QString& message, bool silent);
    /// Sends a sentence to be shown for a while.
    void notice(const QString& message);
    /// Looks for new images.
    void scan();

    morvend::imglib::MImageSeries series;
    MaskFixup maskFixup;
    MaskThumbnails maskThumbnails;
    PreloaderClient preloader;
    int asked;      // number of the request by number that began last
    int delivered;  // number of the last record
    AwaitedImage awaited;

    // Of any thread.
    /// Notes a request from its making to its end. @returns its number
    unsigned int enter(Request request);
    void begin(unsigned int number);
    /// The steps of a request that waits have become others.
    void setWay(unsigned int number, int way);
    /// Has something been asked for after a request, other than steps of that way?
    bool overtaken(unsigned int number, int way) const;
    /// The view knows the result, or that there is none.
    void answer(unsigned int number);
    void leave(unsigned int number);
    /// Is a request queued or running? Scans do not count.
    bool loading() const;
    /// Has a request not begun yet?
    bool queued(unsigned int number) const;
    /// The oldest request without answer, and for how long it has been waiting.
    std::optional<Waiting> oldest() const;
    /// Has a job been at its files for so long?
    bool hangs(Clock::duration patience) const;

    std::atomic<unsigned int> generation = 0;  // requests of an earlier one are dropped
    std::atomic<bool> scanQueued = false;

private:
    struct Entry {
        unsigned int number = 0;
        Request request;
        Clock::time_point entered;
        std::optional<Clock::time_point> begun{};
        bool answered = false;
    };
    template <class Change>
    void _change(unsigned int number, Change&& change);
    void _noteBounds();

    const std::shared_ptr<LoaderDesk> _desk;
    std::atomic<bool> _abandoned = false;
    std::string _comeBackTo;
    std::string _openedAs;
    mutable std::mutex _mutex;
    std::list<Entry> _requests;  // by rising number
    unsigned int _lastNumber = 0;
};
