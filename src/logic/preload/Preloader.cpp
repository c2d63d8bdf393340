// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The thread that reads ahead.
#include "logic/preload/Preloader.h"

#include "imagelib/image/PixelBuffer.h"
#include "imagelib/io/MImageSeries.h"
#include "imagelib/io/formats/base/ImagePath.h"
#include "imagelib/ipc/SegmentPool.h"
#include "logic/support/Console.h"
#include "logic/support/FailureSummary.h"

#include <algorithm>
#include <limits>
#include <system_error>

#include <malloc.h>

using morvend::imglib::FileStamp;
using morvend::imglib::MImage;
using morvend::imglib::SegmentPool;
using Key = PreloaderCache::Key;

namespace {

/// Files that are opened at shorter intervals are opened together.
constexpr std::chrono::milliseconds calm{300};

void warn(const std::string& place, const std::exception& error)
{
    console::warn("Preloader: Error opening " + place + "\n          " + error.what() + '\n');
}

void giveBack()
{
    SegmentPool::process()->trim();
    morvend::image::PixelBuffer::trimPool();
    ::malloc_trim(0);
}

}  // namespace

/// The series that is read ahead, kept open between requests.
class Preloader::Series {
public:
    /// Opens another series, or looks whether the open one has changed.
    void select(const std::string& path)
    {
        // Stamped before the look: what is written meanwhile counts as a change.
        const FileStamp now(morvend::imglib::ImagePath::of(path).file);
        if (path != _path) {
            _series.open(path);
            _path = path;
            _failures.clear();
            // The images of the old one have another size as a rule.
            SegmentPool::process()->trim();
        } else if (_ended || !(now == _stamp)) {
            _series.update();
        }
        _stamp = now;
        _ended = false;
    }

    MImage read(unsigned long number, PreloaderCache::Origin& origin)
    {
        origin.mayGrow = _series.formatName() == "HDF5";
        origin.path = _series.pathToImage(number);
        origin.stamp = FileStamp(origin.path);
        const morvend::image::PixelSource::Scope scope(*SegmentPool::process());
        return _series[number];
    }

    /// The number itself, or the next one of the series if that is in a gap.
    unsigned long overGap(unsigned long number) const
    {
        const int last = _series.last();
        if (number == 0 || last < 0 || number > static_cast<unsigned long>(last))
            return number;
        return static_cast<unsigned long>(_series.next(static_cast<int>(number - 1)));
    }

    /// The number before, -1 at the start.
    int before(int number) const { return _series.previous(number); }

    void close()
    {
        _series.open(0);
        _path.clear();
    }

    /// The series had no further image: it may have grown when it is asked for again.
    void ended() { _ended = true; }

    /// Notes that an image can't be read. Each request starts again with the images after it, so
    /// only the first failure of a kind is reported.
    void failed(unsigned long number, const std::exception& error)
    {
        if (_failures.add(static_cast<long long>(number), error.what()))
            warn(_path + ':' + std::to_string(number), error);
    }

private:
    morvend::imglib::MImageSeries _series{0};
    std::string _path;
    FileStamp _stamp;
    bool _ended = false;
    FailureSummary _failures;
};

Preloader::Preloader(PreloaderCache& cache, std::uint64_t most)
    : _cache(cache)
    , _mostBytes(most)
{
    try {
        _thread = std::thread([this] { _threadMethod(); });
    } catch (const std::system_error&) {
        throw morvend::MRuntimeException("thread constructor failed");
    }
}

Preloader::~Preloader()
{
    {
        const std::lock_guard lock(_mutex);
        _stop = true;
    }
    _condition.notify_all();
    _thread.join();
}

void Preloader::run(const Key& key, bool opened)
{
    const std::lock_guard lock(_mutex);
    const auto now = std::chrono::steady_clock::now();
    const bool together =
        opened && std::get<0>(key) != std::get<0>(_wanted) && now - _lastOpened < calm;
    if (opened)
        _lastOpened = now;
    else
        _notBefore = {};
    if (key == _wanted)
        return _condition.notify_all();
    _notBefore = together ? now + calm : now;
    _wish(key);
}

void Preloader::forget(const std::string& path)
{
    const std::lock_guard lock(_mutex);
    if (path == std::get<0>(_wanted)) {
        _notBefore = {};
        _wish({});
    }
}

void Preloader::_wish(const Key& key)
{
    _back = std::get<0>(key) == std::get<0>(_wanted) && key < _wanted;
    _wanted = key;
    _request = true;
    _condition.notify_all();
}

void Preloader::waitUntilIdle()
{
    std::unique_lock lock(_mutex);
    _condition.wait(lock, [this] { return _idle && !_request; });
}

bool Preloader::_nextRequest(Key& key, bool& back)
{
    std::unique_lock lock(_mutex);
    _idle = true;
    _condition.notify_all();
    _condition.wait(lock, [this] { return _stop || _request; });
    while (!_stop && std::chrono::steady_clock::now() < _notBefore)
        _condition.wait_until(lock, std::chrono::steady_clock::time_point(_notBefore));
    _idle = false;
    key = _wanted;
    back = _back;
    _request = false;
    return !_stop;
}

void Preloader::_forget()
{
    const std::lock_guard lock(_mutex);
    if (!_request)
        _wanted = {};
}

void Preloader::_threadMethod()
{
    Series series;
    Key key;
    bool back = false;
    while (_nextRequest(key, back)) {
        const std::string& path = std::get<0>(key);
        if (path.empty()) {
            series.close();
            _cache.eraseIfLessEqual(key);
            giveBack();
            continue;
        }
        try {
            series.select(path);
        } catch (const std::exception& error) {
            warn(path, error);
            _forget();
            continue;  // the series before stays open
        }
        if (back) {
            _cache.eraseFarBehind(key, _mostBytes / 4);
            _readBack(key, series);
        } else {
            _cache.eraseIfLessEqual(key);
        }
        _readAhead(key, series);
    }
}

void Preloader::_readBack(const Key& key, Series& series)
{
    const auto& [path, number] = key;
    const std::uint64_t most = _mostBytes / 4 * 3;
    constexpr unsigned long Largest = std::numeric_limits<int>::max();
    for (int i = series.before(static_cast<int>(std::min(number, Largest)));
         i >= 0 && !_interrupted() && _cache.fill() <= most; i = series.before(i))
        _read({path, static_cast<unsigned long>(i)}, series);
}

void Preloader::_readAhead(const Key& key, Series& series)
{
    const auto& [path, number] = key;
    for (unsigned long i = number + 1; !_interrupted() && _cache.fill() <= _mostBytes; ++i) {
        i = series.overGap(i);
        if (!_read({path, i}, series)) {
            series.ended();
            return;
        }
    }
}

bool Preloader::_read(const Key& key, Series& series)
{
    const unsigned long number = std::get<1>(key);
    _cache.eraseIfStale(key);
    if (_cache.count(key))
        return true;
    try {
        PreloaderCache::Origin origin{};
        const MImage image = series.read(number, origin);
        _cache.add(key, image, origin);
    } catch (const morvend::MOutOfRangeException&) {
        return false;
    } catch (const std::exception& error) {
        series.failed(number, error);
        _cache.fail(key, error.what());
    }
    return true;
}
