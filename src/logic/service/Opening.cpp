// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Requests for images: open, next, last, scan and watch.
#include "logic/service/TarvikServicePrivate.h"

ImageLoader::Data TarvikService::TarvikServicePrivate::request() const
{
    ImageLoader::Data request;
    request.contrastData = _contrast.value();
    request.viewportData = _viewport.value();
    request.statisticsData = _statisticsRecord.value();
    request.peakData = _peaks.value();
    return request;
}

void TarvikService::TarvikServicePrivate::openIndex(int index, bool signalLoadError)
{
    if (_image.empty())
        return;
    ImageLoader::Data request = this->request();
    request.index = index;
    _imageLoader.open(ImageLoader::TaskOpenIndex, request, signalLoadError);
}

void TarvikService::openImage(const char* fileName)
{
    _d->_loadClock.restart();
    ImageLoader::Data request = _d->request();
    request.path = fileName;
    _d->_imageLoader.open(ImageLoader::TaskOpenSeries, request, true);
}

void TarvikService::openImage(int imageIndex)
{
    _d->_loadClock.restart();
    _d->openIndex(imageIndex, true);
}

void TarvikService::openImage(morvend::imglib::MImage image)
{
    _d->_loadClock.restart();
    ImageLoader::Data request = _d->request();
    request.image = std::move(image);
    _d->_imageLoader.open(ImageLoader::TaskPushImage, request, true);
}

void TarvikService::nextImage(int n, bool signalLoadError)
{
    _d->_loadClock.restart();
    if (n == 0)
        return _d->openIndex(_d->_imageIndex, signalLoadError);
    if (imageLoaded())
        _d->_imageLoader.step(n, _d->request(), signalLoadError);
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
