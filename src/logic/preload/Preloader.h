// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Reading ahead of a view.
#pragma once

#include "logic/preload/PreloaderCache.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

/// Fills a cache with the images after a wanted one, on a thread of its own, until the series ends
/// or the cache holds 1 GiB. After a step back it first reads the images before the wanted one, the
/// nearest first, into three quarters of that. What it reads is in shared memory, ready to be
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

    /// Reads ahead from the image after this one. Nothing happens if this is the wanted one
    /// already, unless its series could not be opened.
    /// @param opened  it has just been opened: when hundreds are, one soon after the other, only
    /// the last one is read ahead
    void run(const PreloaderCache::Key& key, bool opened = false);
    /// No view shows this series now: if it is the wanted one, its images are dropped and their
    /// memory is given back.
    void forget(const std::string& path);
    /// Waits until all is read that was asked for.
    void waitUntilIdle();

private:
    class Series;

    /// The thread: serves one request after the other.
    void _threadMethod();
    /// Waits for a request. @returns false when the thread is to end
    bool _nextRequest(PreloaderCache::Key& key, bool& back);
    /// A series that could not be opened may be asked for again.
    void _forget();
    /// Reads the images after one, until there is another request.
    void _readAhead(const PreloaderCache::Key& key, Series& series);
    /// Reads the images before one, until there is another request.
    void _readBack(const PreloaderCache::Key& key, Series& series);
    /// Reads one image, unless the cache has it. @returns false after the end of the series
    bool _read(const PreloaderCache::Key& key, Series& series);
    /// Makes this image the wanted one; the mutex is held.
    void _wish(const PreloaderCache::Key& key);
    bool _interrupted() const { return _stop || _request; }

    PreloaderCache& _cache;
    const std::uint64_t _mostBytes;
    PreloaderCache::Key _wanted;
    std::chrono::steady_clock::time_point _lastOpened;
    std::chrono::steady_clock::time_point _notBefore;
    bool _back = false;  // it is before the previously wanted one
    std::atomic<bool> _stop = false;
    std::atomic<bool> _request = false;
    bool _idle = false;
    std::mutex _mutex;
    std::condition_variable _condition;
    std::thread _thread;  // last: it uses the other members
};
