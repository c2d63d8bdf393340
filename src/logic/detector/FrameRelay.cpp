// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/detector/FrameRelay.h"

#include <algorithm>
#include <utility>

FrameRelay::FrameRelay(std::shared_ptr<SeriesMeter> meter, QObject* parent)
    : QObject(parent)
    , _meter(std::move(meter))
{}

void FrameRelay::addSeries(const OptionalData& header, int seriesId)
{
    _add(Series{header, seriesId});
}

void FrameRelay::addFrame(const ImageData& frame, int seriesId, int frameId)
{
    _add(Frame{frame, seriesId, frameId});
}

void FrameRelay::_add(Item item)
{
    const auto isFrame = [](const Item& each) { return std::holds_alternative<Frame>(each); };
    bool idle = false;
    bool left = false;
    {
        const std::lock_guard lock(_mutex);
        idle = _items.empty();
        if (!isFrame(item) && !idle && !isFrame(_items.back()))
            _items.pop_back();  // a series without frames
        _items.push_back(std::move(item));
        if (std::size_t(std::count_if(_items.begin(), _items.end(), isFrame)) > MostFrames) {
            _items.erase(std::find_if(_items.begin(), _items.end(), isFrame));
            left = true;
        }
    }
    if (left)
        _meter->leftOut();
    if (idle)
        QMetaObject::invokeMethod(this, &FrameRelay::_deliver, Qt::QueuedConnection);
}

void FrameRelay::_deliver()
{
    std::deque<Item> items;
    {
        const std::lock_guard lock(_mutex);
        items.swap(_items);
    }
    for (const Item& item : items) {
        if (const auto* series = std::get_if<Series>(&item)) {
            emit newSeries(series->header, series->id);
        } else {
            const Frame& frame = std::get<Frame>(item);
            _meter->shown();
            emit newFrame(frame.pixels, frame.seriesId, frame.id);
        }
    }
}
