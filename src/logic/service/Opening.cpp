// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/service/Opening.h"

#include <QFile>

#include <limits>
#include <utility>

namespace {

QString fileOf(const ShownImage& shown)
{
    return QFile::decodeName(QByteArray::fromStdString(shown.path));
}

}  // namespace

Opening::Opening(const ShownImage& shown, const Records& records)
    : _shown(shown)
    , _records(records)
{}

LoaderData Opening::_request() const
{
    LoaderData request;
    request.contrastData = _records.contrast();
    request.viewportData = _records.viewport();
    request.statisticsData = _records.statistics();
    request.peakData = _records.peaks();
    request.pack = _packing;
    request.wantsMaxima = _maxima;
    return request;
}

void Opening::openImage(const char* fileName)
{
    _clock.restart();
    LoaderData request = _request();
    request.path = fileName;
    _loader.open(ImageLoader::TaskOpenSeries, request, true);
}

void Opening::openImage(int imageIndex, bool signalLoadError)
{
    _clock.restart();
    if (!_shown.loaded())
        return;
    LoaderData request = _request();
    request.index = imageIndex;
    _loader.open(ImageLoader::TaskOpenIndex, request, signalLoadError);
}

void Opening::openImage(const MImage& image)
{
    _clock.restart();
    LoaderData request = _request();
    request.image = image;
    _loader.open(ImageLoader::TaskPushImage, request, true);
}

void Opening::nextImage(int n, bool signalLoadError)
{
    if (n == 0)
        return openImage(_shown.index, signalLoadError);
    _clock.restart();
    if (_shown.loaded())
        _loader.step(n, _request(), signalLoadError);
}

void Opening::seekImage(int imageIndex)
{
    _clock.restart();
    if (!_shown.loaded() || imageIndex < 0)
        return;
    LoaderData request = _request();
    request.index = imageIndex;
    const bool atEnd = imageIndex == std::numeric_limits<int>::max();
    _loader.seek(request, imageIndex >= _shown.index && !atEnd);
}

SeriesState Opening::seriesState() const
{
    return _shown.loaded() ? _loader.seriesState() : SeriesState{};
}

void Opening::openLast(bool signalLoadError) { openImage(lastIndex(), signalLoadError); }

int Opening::firstIndex() const { return _shown.loaded() ? _loader.firstIndex() : -1; }
int Opening::lastIndex() const { return _shown.loaded() ? _loader.lastIndex() : -1; }

std::optional<LoaderData> Opening::takeFinished()
{
    // Each record has a signal of its own. If two were finished before the first was handled,
    // the second follows with the next signal: the image requested last is shown last.
    _loader.results(_finished);
    if (_finished.empty())
        return {};
    LoaderData load = std::move(_finished.front());
    _finished.pop_front();
    return load;
}

void Opening::watch(bool on)
{
    _watch.reset();
    if (!on)
        return;
    _watch = std::make_unique<ContainerWatch>(fileOf(_shown));
    connect(_watch.get(), &ContainerWatch::changedSignal, this, &Opening::folderChangedSignal);
}

void Opening::watchShownImage()
{
    if (_watch)
        _watch->setFile(fileOf(_shown));
}
