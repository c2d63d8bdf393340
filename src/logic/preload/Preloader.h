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
/// or the cache holds 1 GiB. What it reads lies in shared memory, ready to be handed over.
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
    /// Waits until all is read that was asked for.
    void waitUntilIdle();

private:
    class Series;

    void _threadMethod();
    /// Waits for a request. @returns false when the thread is to end
    bool _nextRequest(PreloaderCache::Key& key);
    /// A series that could not be opened may be asked for again.
    void _forget();
    void _readAhead(const PreloaderCache::Key& key, Series& series);
    bool _interrupted() const { return _stop || _request; }

    PreloaderCache& _cache;
    const std::uint64_t _mostBytes;
    PreloaderCache::Key _wanted;
    std::atomic<bool> _stop = false;
    std::atomic<bool> _request = false;
    bool _idle = false;
    std::mutex _mutex;
    std::condition_variable _condition;
    std::thread _thread;  // last: it uses the other members
};
