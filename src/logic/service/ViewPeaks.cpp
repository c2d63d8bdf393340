// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/service/ViewPeaks.h"

#include "logic/loading/WorkerPool.h"
#include "logic/support/Console.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <string>
#include <utility>

/// One search. Whoever begins it first does it.
struct ViewPeaks::Search {
    using MImage = morvend::imglib::MImage;

    Search(MImage image_, MImage mask_, ViewPeaks* receiver_)
        : image(std::move(image_))
        , mask(std::move(mask_))
        , receiver(receiver_)
    {}

    void run()
    {
        if (begun.exchange(true))
            return;
        ImagePeaks result;
        try {
            result.setImage(image, mask);
        } catch (const std::exception& error) {
            console::warn(std::string("WARNING: ") + error.what() + '\n');
        }
        const std::lock_guard lock(mutex);
        peaks = std::move(result);
        finished = true;
        ended.notify_all();
        if (receiver)
            QMetaObject::invokeMethod(receiver, &ViewPeaks::_announce, Qt::QueuedConnection);
    }

    const MImage image;
    const MImage mask;
    std::atomic<bool> begun = false;
    std::mutex mutex;  // over all below
    std::condition_variable ended;
    ViewPeaks* receiver;  // null when nobody waits any more
    bool finished = false;
    ImagePeaks peaks;
};

ViewPeaks::ViewPeaks(ShownImage& shown)
    : _shown(shown)
{}

ViewPeaks::~ViewPeaks() { _drop(); }

void ViewPeaks::_drop()
{
    if (!_search)
        return;
    _search->begun = true;  // what runs ends for nobody
    const std::lock_guard lock(_search->mutex);
    _search->receiver = nullptr;
}

void ViewPeaks::take(const LoaderData& load)
{
    _drop();
    _search.reset();
    _known = load.peaks.has_value();
    _found = load.peaks.value_or(ImagePeaks());
}

void ViewPeaks::search()
{
    if (_known || _search || !_shown.loaded())
        return;
    _search = std::make_shared<Search>(_shown.whole(), _shown.mask, this);
    WorkerPool::process().post([search = _search] { search->run(); });
}

const ImagePeaks& ViewPeaks::await()
{
    search();
    if (!_search)
        return _found;
    _search->run();
    std::unique_lock lock(_search->mutex);
    _search->ended.wait(lock, [this] { return _search->finished; });
    _found = _search->peaks;
    _known = true;
    return _found;
}

void ViewPeaks::_announce()
{
    // An event of a search that was dropped may still be on its way.
    if (!_search)
        return;
    {
        const std::lock_guard lock(_search->mutex);
        if (!_search->finished)
            return;
        _found = std::move(_search->peaks);
    }
    _known = true;
    _search.reset();
    emit computedSignal();
}
