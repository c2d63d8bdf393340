// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Queueing of requests and re-scans, and the hand-over of results.
#include "logic/loading/ImageLoader.h"

#include "imagelib/io/MImageSeries.h"
#include "logic/ImageLoaderThread.h"
#include "logic/support/Console.h"

#include <string>

namespace {

constexpr qint64 scanPeriod = 100;  // ms

}  // namespace

ImageLoader::ImageLoader(QObject* parent)
    : QObject(parent)
    , _series(std::make_unique<morvend::imglib::MImageSeries>(ImageLoaderThread::pushedImages))
{
    _pool.setMaxThreadCount(1);
    _updateTimer.setSingleShot(true);
    connect(&_updateTimer, &QTimer::timeout, this, &ImageLoader::update);
    _updateClock.start();
}

ImageLoader::~ImageLoader()
{
    _abort = true;      // nothing that is queued begins
    _series->cancel();  // a read that hangs would hold up the end of the view
    emptyTaskQueue();
    _awaitHandOver();
}

void ImageLoader::open(Task task, const Data& data, bool signalLoadError)
{
    if (_abort)
        return;
    auto job = std::make_unique<ImageLoaderThread>(this, task, data, signalLoadError, _abort);
    const std::lock_guard lock(_handOver);
    _pool.start(job.release(), 0);  // the pool owns it now
}

void ImageLoader::emptyTaskQueue()
{
    _abort = true;
    _pool.waitForDone();
    _abort = false;
    if (_scanQueued.exchange(false))
        _updateTimer.start(static_cast<int>(scanPeriod));  // a scan was dropped: later, then
}

void ImageLoader::results(std::list<Data>& out)
{
    const std::lock_guard lock(_mutex);
    out.splice(out.end(), _results);
}

int ImageLoader::firstIndex() const
{
    const std::lock_guard lock(_mutex);
    return _firstIndex;
}

int ImageLoader::lastIndex() const
{
    const std::lock_guard lock(_mutex);
    return _lastIndex;
}

void ImageLoader::update()
{
    if (_updateClock.elapsed() >= scanPeriod) {
        _updateClock.restart();
        // One scan that has not begun yet serves all who asked for it.
        if (!_scanQueued.exchange(true)) {
            const std::lock_guard lock(_handOver);
            _pool.start([this] { _scan(); });
        }
    } else if (!_updateTimer.isActive()) {
        _updateTimer.start(static_cast<int>(scanPeriod));
    }
}

void ImageLoader::_scan()
{
    _awaitHandOver();
    if (_abort)
        return;
    _scanQueued = false;
    try {
        _series->update();
    } catch (const std::exception& error) {
        // What is known of the series stays; a picture of it is on the screen.
        console::warn(std::string("WARNING: ") + error.what() + '\n');
    }
    {
        const std::lock_guard lock(_mutex);
        _noteBounds();
    }
    emit imageContainerChangedSignal();
}

void ImageLoader::_awaitHandOver() { const std::lock_guard lock(_handOver); }

void ImageLoader::_noteBounds()
{
    const bool empty = _series->empty();
    _firstIndex = empty ? -1 : _series->first();
    _lastIndex = empty ? -1 : _series->last();
}
