// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Requests for images: open, next, last, scan and watch.
#include "logic/service/TarvikServicePrivate.h"

#include <QFile>

#include <algorithm>
#include <limits>

void TarvikService::TarvikServicePrivate::open(ImageLoader::Task task, ImageLoader::Data request,
                                               bool signalLoadError)
{
    request.contrastData = _contrast.value();
    request.viewportData = _viewport.value();
    request.statisticsData = _statisticsRecord.value();
    request.peakData = _peaks.value();
    _imageLoader.open(task, request, signalLoadError);
}

void TarvikService::TarvikServicePrivate::openIndex(int index, bool signalLoadError)
{
    if (_image.empty())
        return;
    ImageLoader::Data request;
    request.index = index;
    open(ImageLoader::TaskOpenIndex, request, signalLoadError);
}

void TarvikService::openImage(const char* fileName)
{
    _d->_loadClock.restart();
    ImageLoader::Data request;
    request.path = fileName;
    _d->open(ImageLoader::TaskOpenSeries, request, true);
}

void TarvikService::openImage(int imageIndex)
{
    _d->_loadClock.restart();
    _d->openIndex(imageIndex, true);
}

void TarvikService::openImage(morvend::imglib::MImage image)
{
    _d->_loadClock.restart();
    ImageLoader::Data request;
    request.image = std::move(image);
    _d->open(ImageLoader::TaskPushImage, request, true);
}

void TarvikService::nextImage(int n, bool signalLoadError)
{
    _d->_loadClock.restart();
    // Held within what a number can be: beyond the series it fails as any other.
    using Limits = std::numeric_limits<int>;
    const long long index = static_cast<long long>(_d->_imageIndex) + n;
    _d->openIndex(static_cast<int>(std::clamp<long long>(index, Limits::min(), Limits::max())),
                  signalLoadError);
}

void TarvikService::openLast(bool signalLoadError)
{
    _d->_loadClock.restart();
    _d->openIndex(lastIndex(), signalLoadError);
}

void TarvikService::scanImageContainer() { _d->_imageLoader.update(); }

void TarvikService::_scanImageContainterSlot(const QString&) { _d->_imageLoader.update(); }

void TarvikService::watchImageContainer(bool watch)
{
    _d->_watch.reset();
    if (!watch)
        return;
    _d->_watch = std::make_unique<ContainerWatch>(imagePath());
    connect(_d->_watch.get(), &ContainerWatch::changedSignal, this,
            &TarvikService::_scanImageContainterSlot);
}
