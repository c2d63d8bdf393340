// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Reading ahead of a view.
#pragma once

#include "logic/preload/PreloaderCache.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

/// Fills a cache with the images behind a wanted one, on a thread of its own, until the series ends
/// or the cache holds 1 GiB. After a step back it reads those in front first, the nearest ones
/// before the others, into three quarters of that. What it reads lies in shared memory, ready to be
/// handed over.
/// Thread: run() from one thread.
class Preloader {
public:
    /// Images are read while the cache holds no more.
    static constexpr std::uint64_t mostBytes = 0x3FFFFFFF;

    /// @throws MRuntimeException "thread constructor failed"
    explicit Preloader(PreloaderCache& cache, std::uint64_t most = mostBytes);
    /// Waits for an image that is being read.
    ~Preloader();
    Preloader(const Preloader&) = delete;
    Preloader& operator=(const Preloader&) = delete;

    /// Reads ahead from behind this image. Nothing happens when it is the wanted one already,
    /// unless its series could not be opened.
    void run(const PreloaderCache::Key& key);
    /// Nobody looks at this series any more: if it is the wanted one, its images go and their
    /// memory is given back.
    void forget(const std::string& path);
    /// Waits until all is read that was asked for.
    void waitUntilIdle();

private:
    class Series;

    void _threadMethod();
    /// Waits for a request. @returns false when the thread is to end
    bool _nextRequest(PreloaderCache::Key& key, bool& back);
    /// A series that could not be opened may be asked for again.
    void _forget();
    void _readAhead(const PreloaderCache::Key& key, Series& series);
    void _readBack(const PreloaderCache::Key& key, Series& series);
    /// Reads one image, unless it is there. @returns false behind the end of the series
    bool _read(const PreloaderCache::Key& key, Series& series);
    /// Makes a wish the one to follow; the mutex is held.
    void _wish(const PreloaderCache::Key& key);
    bool _interrupted() const { return _stop || _request; }

    PreloaderCache& _cache;
    const std::uint64_t _mostBytes;
    PreloaderCache::Key _wanted;
    bool _back = false;  // is it in front of the one before?
    std::atomic<bool> _stop = false;
    std::atomic<bool> _request = false;
    bool _idle = false;
    std::mutex _mutex;
    std::condition_variable _condition;
    std::thread _thread;  // last: it uses the other members
};
